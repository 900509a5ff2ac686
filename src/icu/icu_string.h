// The one conversion between the library's std::u16string and ICU's
// UnicodeString, both ways.
#ifndef SCL_REGEX_SRC_ICU_ICU_STRING_H
#define SCL_REGEX_SRC_ICU_ICU_STRING_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include <unicode/unistr.h>

#include "text/until_nul.h"

namespace scl::regex::detail {

// A length handed to ICU, which counts in int32_t. Longer texts cannot be
// handed over at all: std::bad_alloc, as for any text too big to hold.
inline int32_t icu_length(std::size_t length) {
  if (length > static_cast<std::size_t>(INT32_MAX)) throw std::bad_alloc();
  return static_cast<int32_t>(length);
}

// A copy of `text` for ICU, every unit of it (embedded U+0000 units included).
inline icu::UnicodeString to_icu(std::u16string_view text) {
  return icu::UnicodeString(text.data(), icu_length(text.size()));
}

// `text` as ICU reads a NUL-terminated string: up to its first U+0000.
inline icu::UnicodeString to_icu_until_nul(std::u16string_view text) {
  return to_icu(until_nul(text));
}

// The contents of `text` up to its first U+0000, as ICU's terminated buffer
// gives them. Throws std::logic_error if ICU cannot give that buffer (it could
// not allocate one), as constructing a string from null does.
inline std::u16string from_icu_until_nul(icu::UnicodeString& text) {
  const char16_t* buffer = text.getTerminatedBuffer();
  if (buffer == nullptr)
    throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(buffer);
}

// The same, or `fallback` if ICU cannot give the buffer.
inline std::u16string from_icu_until_nul(icu::UnicodeString& text, const std::u16string& fallback) {
  const char16_t* buffer = text.getTerminatedBuffer();
  return buffer != nullptr ? std::u16string(buffer) : fallback;
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_ICU_STRING_H
