// Where in a pattern ICU stopped parsing, as a UTF-16 offset.
#ifndef SCL_REGEX_SRC_ERRORS_PARSE_OFFSET_H
#define SCL_REGEX_SRC_ERRORS_PARSE_OFFSET_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace scl::regex::detail {

// Returns the UTF-16 offset in `pattern` of ICU's parse position: just past
// the first `column` code points of line `line` (1-based; a line ends at LF,
// CR, CR LF, U+0085 or U+2028), or the end of the pattern if it is shorter.
// Returns npos for a position ICU did not give (line < 1 or column < 0).
std::size_t parse_offset(const std::u16string& pattern, std::int32_t line,
                         std::int32_t column) noexcept;

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ERRORS_PARSE_OFFSET_H
