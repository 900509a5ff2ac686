// Reading code points from UTF-16 or UTF-8 text with int32_t offsets.
//
// UTF-16: a lone surrogate is a code point of its own. UTF-8: each ill-formed
// sequence (its maximal subpart, as ICU counts them) reads as U+FFFD.
#ifndef SCL_REGEX_SRC_SEARCH_CODE_POINTS_H
#define SCL_REGEX_SRC_SEARCH_CODE_POINTS_H

#include <cstdint>
#include <string>

#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <unicode/utypes.h>

namespace scl::regex::detail {

inline UChar32 next_code_point(const char16_t* text, int32_t& at, int32_t size) {
  UChar32 c = 0;
  U16_NEXT(text, at, size, c);
  return c;
}

inline UChar32 next_code_point(const char* text, int32_t& at, int32_t size) {
  UChar32 c = 0;
  U8_NEXT(text, at, size, c);
  return c < 0 ? 0xFFFD : c;
}

inline UChar32 previous_code_point(const char16_t* text, int32_t& at) {
  UChar32 c = 0;
  U16_PREV(text, 0, at, c);
  return c;
}

inline UChar32 previous_code_point(const char* text, int32_t& at) {
  UChar32 c = 0;
  U8_PREV(text, 0, at, c);
  return c < 0 ? 0xFFFD : c;
}

// Appends `c` to `text` as UTF-16.
inline void append_code_point(std::u16string& text, UChar32 c) {
  if (c <= 0xFFFF) {
    text += static_cast<char16_t>(c);
  } else {
    text += static_cast<char16_t>(U16_LEAD(c));
    text += static_cast<char16_t>(U16_TRAIL(c));
  }
}

// The code point that starts at `at`.
template <class Unit>
UChar32 code_point_at(const Unit* text, int32_t at, int32_t size) {
  return next_code_point(text, at, size);
}

// The code point that ends at `at`.
template <class Unit>
UChar32 code_point_before(const Unit* text, int32_t at) {
  return previous_code_point(text, at);
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_CODE_POINTS_H
