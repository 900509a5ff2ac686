// Escaping text so that it matches itself when used as a pattern.
#include <string>

#include "scl/regex/oneshot_replace.h"

namespace scl::regex {

std::u16string regex_escape(const std::u16string& text) {
  // ICU replacement text: a literal backslash, then the escaped character.
  static const std::u16string escape_replacement(u"\\\\$1");
  // The pattern's special characters, and white space.
  static const std::u16string escape_pattern(u"([-\\[\\]{}()*+?.,\\\\^$|#\\s])");
  return regex_replace(text, escape_pattern, escape_replacement, 0);
}

}  // namespace scl::regex
