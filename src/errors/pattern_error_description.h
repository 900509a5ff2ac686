// The description of a rejected pattern, for people: what check_pattern and
// search_pattern::check give.
#ifndef SCL_REGEX_SRC_ERRORS_PATTERN_ERROR_DESCRIPTION_H
#define SCL_REGEX_SRC_ERRORS_PATTERN_ERROR_DESCRIPTION_H

#include <cstddef>
#include <string>

#include "scl/regex/exception.h"

namespace scl::regex::detail {

// error.what() with "(at offset `shown_offset`)" and two lines that show
// `pattern` with a caret under UTF-16 offset `at`; or, when `at` is npos,
// "(no position given)" and the start of the pattern.
std::string describe_pattern_error(const regex_exception& error, const std::u16string& pattern,
                                   std::size_t at, std::size_t shown_offset);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ERRORS_PATTERN_ERROR_DESCRIPTION_H
