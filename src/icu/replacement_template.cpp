#include "icu/replacement_template.h"

#include <algorithm>
#include <cstdint>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>

namespace scl::regex::detail {
namespace {

void append_literal(std::vector<replacement_part>& parts, UChar32 c) {
  if (parts.empty() || parts.back().group >= 0) parts.push_back({});
  if (U_IS_BMP(c)) {
    parts.back().text += static_cast<char16_t>(c);
  } else {
    parts.back().text += U16_LEAD(c);
    parts.back().text += U16_TRAIL(c);
  }
}

// ICU reads a "\u" or "\U" escape of a replacement through a UText, by code
// points, and goes on reading the replacement from wherever that reading left
// the text: after a failed escape, or one whose look-ahead for a trail
// surrogate ran off the end, that is not simply the end of the escape. This
// reader moves the text exactly as ICU's does.
struct escape_reader {
  UText* text;
  int32_t last_offset;
};

UChar read_escape_unit(int32_t offset, void* context) {
  auto* reader = static_cast<escape_reader*>(context);
  UChar32 c;
  if (offset == reader->last_offset + 1) {
    c = UTEXT_NEXT32(reader->text);
    ++reader->last_offset;
  } else if (offset == reader->last_offset) {
    c = UTEXT_PREVIOUS32(reader->text);
    UTEXT_NEXT32(reader->text);
  } else {
    utext_moveIndex32(reader->text, offset - reader->last_offset - 1);
    c = UTEXT_NEXT32(reader->text);
    reader->last_offset = offset;
  }
  return U_IS_BMP(c) ? static_cast<UChar>(c) : UChar{0};
}

// Reads the escape whose "u" or "U" is at `at`, appends its character if it
// is one, and returns where reading goes on.
std::size_t read_unicode_escape(const std::u16string& replacement, std::size_t at,
                                std::vector<replacement_part>& parts) {
  UErrorCode status = U_ZERO_ERROR;
  UText text = UTEXT_INITIALIZER;
  utext_openUChars(&text, replacement.data(), static_cast<int64_t>(replacement.size()), &status);
  if (U_FAILURE(status)) return replacement.size();
  UTEXT_SETNATIVEINDEX(&text, static_cast<int64_t>(at));
  escape_reader reader{&text, -1};
  int32_t offset = 0;
  const UChar32 escaped = u_unescapeAt(read_escape_unit, &offset, INT32_MAX, &reader);
  if (escaped != static_cast<UChar32>(0xFFFFFFFF)) {
    append_literal(parts, escaped);
    // Back to the end of the escape, from wherever the look-ahead went.
    if (reader.last_offset == offset) {
      (void)UTEXT_PREVIOUS32(&text);
    } else if (reader.last_offset != offset - 1) {
      utext_moveIndex32(&text, offset - reader.last_offset - 1);
    }
  }
  const auto next = static_cast<std::size_t>(UTEXT_GETNATIVEINDEX(&text));
  utext_close(&text);
  return std::max(next, at + 1);  // always past the "u": every escape reads at least that
}

bool name_character(UChar32 c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'1' && c <= u'9');
}

}  // namespace

UErrorCode parse_replacement(const std::u16string& replacement, int group_count,
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
        at = read_unicode_escape(replacement, at, parts);
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
    if (at == length) return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
    UChar32 next;
    std::size_t after = at;
    U16_NEXT(replacement.data(), after, length, next);
    int group = 0;
    if (next == u'{') {
      std::string name;
      at = after;
      for (;;) {
        if (at == length) return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
        U16_NEXT(replacement.data(), at, length, next);
        if (next == u'}') break;
        if (!name_character(next)) return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
        name += static_cast<char>(next);
      }
      // Names of groups start with a letter; "${1}" names no group.
      if (name.empty() || (name[0] >= '1' && name[0] <= '9')) {
        return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
      }
      group = number_of(name);
      if (group <= 0) return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
    } else if (u_isdigit(next)) {
      int digits = 0;
      while (at < length) {
        std::size_t digit_end = at;
        UChar32 digit;
        U16_NEXT(replacement.data(), digit_end, length, digit);
        if (!u_isdigit(digit)) break;
        const int value = u_charDigitValue(digit);
        if (group * 10 + value > group_count) {
          if (digits == 0) return U_INDEX_OUTOFBOUNDS_ERROR;
          break;
        }
        group = group * 10 + value;
        ++digits;
        at = digit_end;
      }
    } else {
      return U_REGEX_INVALID_CAPTURE_GROUP_NAME;
    }
    parts.push_back({{}, group});
  }
  return U_ZERO_ERROR;
}

}  // namespace scl::regex::detail
