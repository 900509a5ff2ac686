// A regex for the length of one call, on a pattern from the thread's cache.
#ifndef SCL_REGEX_SRC_OBJECT_ONE_CALL_REGEX_H
#define SCL_REGEX_SRC_OBJECT_ONE_CALL_REGEX_H

#include <memory>
#include <string>

#include "engine/cached_icu_engine.h"
#include "scl/regex/regex_class.h"

namespace scl::regex::detail {

// The regex that regex(pattern, options) would be, except that its matcher
// comes from a cached compiled pattern. Throws regex_exception as that would.
inline regex one_call_regex(const std::u16string& pattern, constants::syntax_option_type options) {
  return regex(pattern, options, std::make_unique<cached_icu_engine>());
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_OBJECT_ONE_CALL_REGEX_H
