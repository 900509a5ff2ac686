// Escaping text so that it matches itself when used as a pattern.
#include <string>

#include <unicode/uchar.h>

#include "scl/regex/oneshot_replace.h"
#include "text/until_nul.h"

namespace scl::regex {
namespace {

// The characters that get a backslash: the pattern syntax characters below,
// and white space as ICU's "\s" knows it (the White_Space property, which has
// only characters of the BMP, so looking at single code units is enough).
bool needs_backslash(char16_t unit) {
  switch (unit) {
    case u'-':
    case u'[':
    case u']':
    case u'{':
    case u'}':
    case u'(':
    case u')':
    case u'*':
    case u'+':
    case u'?':
    case u'.':
    case u',':
    case u'\\':
    case u'^':
    case u'$':
    case u'|':
    case u'#':
      return true;
    default:
      return unit >= 0x09 && u_isUWhiteSpace(unit);
  }
}

}  // namespace

std::u16string regex_escape(const std::u16string& text) {
  std::u16string escaped;
  escaped.reserve(text.size() + text.size() / 4);
  for (const char16_t unit : detail::until_nul(text)) {
    if (needs_backslash(unit)) escaped += u'\\';
    escaped += unit;
  }
  return escaped;
}

}  // namespace scl::regex
