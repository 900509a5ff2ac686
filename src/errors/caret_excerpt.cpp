#include "errors/caret_excerpt.h"

#include <algorithm>
#include <cstdio>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include "i18n/host_i18n.h"

namespace scl::regex::detail {
namespace {

constexpr int kBefore = 40;  // characters shown before the caret
constexpr int kAfter = 30;   // and from it on

// Appends `c` as it is shown; returns the columns it takes.
std::size_t show(UChar32 c, std::u16string& shown) {
  const auto escape = [&shown](const char* text) {
    for (const char* p = text; *p != '\0'; ++p) shown += static_cast<char16_t>(*p);
    return std::char_traits<char>::length(text);
  };
  switch (c) {
    case u'\n':
      return escape("\\n");
    case u'\r':
      return escape("\\r");
    case u'\t':
      return escape("\\t");
    default:
      break;
  }
  const auto type = static_cast<UCharCategory>(u_charType(c));
  if (type == U_CONTROL_CHAR || type == U_FORMAT_CHAR || type == U_SURROGATE ||
      type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR) {
    char text[16];
    std::snprintf(text, sizeof text, "\\u{%X}", static_cast<unsigned>(c));
    return escape(text);
  }
  if (U_IS_BMP(c)) {
    shown += static_cast<char16_t>(c);
  } else {
    shown += U16_LEAD(c);
    shown += U16_TRAIL(c);
  }
  if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// Appends the characters of text[from, to) as shown; returns their columns.
std::size_t show_range(const std::u16string& text, std::size_t from, std::size_t to,
                       std::u16string& shown) {
  std::size_t columns = 0;
  while (from < to) {
    UChar32 c;
    U16_NEXT(text.data(), from, to, c);
    columns += show(c, shown);
  }
  return columns;
}

}  // namespace

std::string caret_excerpt(const std::u16string& text, std::size_t at) {
  const std::size_t length = text.size();
  at = std::min(at, length);
  std::size_t first = at;
  for (int n = 0; n < kBefore && first > 0; ++n) U16_BACK_1(text.data(), 0, first);
  std::size_t last = at;
  for (int n = 0; n < kAfter && last < length; ++n) U16_FWD_1(text.data(), last, length);

  std::u16string shown = u"  ";
  std::size_t caret = shown.size();
  if (first > 0) {
    shown += u"...";
    caret += 3;
  }
  caret += show_range(text, first, at, shown);
  show_range(text, at, last, shown);
  if (last < length) shown += u"...";
  shown += u'\n';
  shown.append(caret, u' ');
  shown += u'^';
  return i18n::to_string(shown);
}

}  // namespace scl::regex::detail
