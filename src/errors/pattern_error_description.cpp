#include "errors/pattern_error_description.h"

#include "errors/caret_excerpt.h"
#include "scl/regex/npos.h"

namespace scl::regex::detail {

std::string describe_pattern_error(const regex_exception& error, const std::u16string& pattern,
                                   std::size_t at, std::size_t shown_offset) {
  std::string description = error.what();
  if (at == npos) {
    // Only the pattern: there is nothing to point at.
    const std::string excerpt = caret_excerpt(pattern, 0);
    description += " (no position given)\n" + excerpt.substr(0, excerpt.rfind('\n'));
  } else {
    description += " (at offset " + std::to_string(shown_offset) + ")\n";
    description += caret_excerpt(pattern, at);
  }
  return description;
}

}  // namespace scl::regex::detail
