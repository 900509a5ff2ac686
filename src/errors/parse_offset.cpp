#include "errors/parse_offset.h"

#include <unicode/utf16.h>

#include "scl/regex/npos.h"

namespace scl::regex::detail {

std::size_t parse_offset(const std::u16string& pattern, std::int32_t line,
                         std::int32_t column) noexcept {
  if (line < 1 || column < 0) return npos;
  const std::size_t length = pattern.size();
  std::size_t at = 0;
  // Past line - 1 line breaks; a CR LF is one.
  for (std::int32_t breaks = 1; breaks < line && at < length; ++at) {
    const char16_t c = pattern[at];
    if (c == u'\r' || c == u'\n' || c == u'\u0085' || c == u'\u2028') {
      if (c == u'\r' && at + 1 < length && pattern[at + 1] == u'\n') ++at;
      ++breaks;
    }
  }
  for (std::int32_t read = 0; read < column && at < length; ++read) {
    U16_FWD_1(pattern.data(), at, length);
  }
  return at;
}

}  // namespace scl::regex::detail
