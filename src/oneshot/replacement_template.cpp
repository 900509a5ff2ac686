#include "oneshot/replacement_template.h"

#include <algorithm>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace scl::regex::detail {
namespace {

// The text of an escape for u_unescapeAt, which also records how far it read.
struct unescape_source {
  const std::u16string* text;
  std::size_t from;       // the unit after the backslash
  std::size_t last_read;  // the furthest offset read from `from`
};

UChar unescape_char_at(int32_t offset, void* context) {
  auto* source = static_cast<unescape_source*>(context);
  const auto relative = static_cast<std::size_t>(offset);
  if (relative > source->last_read) source->last_read = relative;
  const std::size_t at = source->from + relative;
  return at < source->text->size() ? (*source->text)[at] : u'\0';
}

void append_literal(std::vector<replacement_part>& parts, UChar32 c) {
  if (parts.empty() || parts.back().group >= 0) parts.push_back({});
  if (U_IS_BMP(c)) {
    parts.back().text += static_cast<char16_t>(c);
  } else {
    parts.back().text += U16_LEAD(c);
    parts.back().text += U16_TRAIL(c);
  }
}

bool name_character(UChar32 c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'1' && c <= u'9');
}

}  // namespace

bool parse_replacement(const std::u16string& replacement, int group_count,
                       const std::function<int(const std::string&)>& number_of,
                       std::vector<replacement_part>& parts) {
  parts.clear();
  const std::size_t length = replacement.size();
  std::size_t at = 0;
  while (at < length) {
    UChar32 c;
    U16_NEXT(replacement.data(), at, length, c);
    if (c == u'\\') {
      if (at == length) break;  // a backslash at the end is dropped
      const char16_t next = replacement[at];
      if (next == u'u' || next == u'U') {
        unescape_source source{&replacement, at, 0};
        int32_t offset = 0;
        const UChar32 escaped = u_unescapeAt(unescape_char_at, &offset,
                                             static_cast<int32_t>(std::min<std::size_t>(length - at, INT32_MAX)),
                                             &source);
        if (escaped != static_cast<UChar32>(0xFFFFFFFF)) {
          append_literal(parts, escaped);
          at += static_cast<std::size_t>(offset);
        } else {
          // ICU reads the replacement as it tries the escape; when the escape
          // fails, everything read so far is dropped, through the whole
          // character last read, and reading goes on after it.
          at += source.last_read;
          U16_FWD_1(replacement.data(), at, length);
        }
        continue;
      }
      U16_NEXT(replacement.data(), at, length, c);
      append_literal(parts, c);
      continue;
    }
    if (c != u'$') {
      append_literal(parts, c);
      continue;
    }
    if (at == length) return false;
    UChar32 next;
    std::size_t after = at;
    U16_NEXT(replacement.data(), after, length, next);
    int group = 0;
    if (next == u'{') {
      std::string name;
      at = after;
      for (;;) {
        if (at == length) return false;
        U16_NEXT(replacement.data(), at, length, next);
        if (next == u'}') break;
        if (!name_character(next)) return false;
        name += static_cast<char>(next);
      }
      // Names of groups start with a letter; "${1}" names no group.
      if (name.empty() || (name[0] >= '1' && name[0] <= '9')) return false;
      group = number_of(name);
      if (group <= 0) return false;
    } else if (u_isdigit(next)) {
      int digits = 0;
      while (at < length) {
        std::size_t digit_end = at;
        UChar32 digit;
        U16_NEXT(replacement.data(), digit_end, length, digit);
        if (!u_isdigit(digit)) break;
        const int value = u_charDigitValue(digit);
        if (group * 10 + value > group_count) {
          if (digits == 0) return false;
          break;
        }
        group = group * 10 + value;
        ++digits;
        at = digit_end;
      }
    } else {
      return false;
    }
    parts.push_back({{}, group});
  }
  return true;
}

}  // namespace scl::regex::detail
