// Moving text between std::u16string and ICU's UnicodeString.
#ifndef SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
#define SCL_REGEX_SRC_ENGINE_ICU_TEXT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include <unicode/unistr.h>

namespace scl::regex::detail {

// The whole text, embedded U+0000 units included (length cut to 32 bits).
inline icu::UnicodeString icu_whole(const std::u16string& text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

// The number of units before the first U+0000 among `length` units at `text`
// (`length` if there is none). Looks at four units per step: a 64-bit word has
// a zero 16-bit lane exactly when (w - 0x0001...) & ~w & 0x8000... is non-zero.
inline std::size_t units_before_nul(const char16_t* text, std::size_t length) noexcept {
  constexpr std::uint64_t ones = 0x0001000100010001u;
  constexpr std::uint64_t highs = 0x8000800080008000u;
  std::size_t at = 0;
  for (; at + 4 <= length; at += 4) {
    std::uint64_t word;
    std::memcpy(&word, text + at, sizeof word);
    if (((word - ones) & ~word & highs) != 0) break;
  }
  while (at < length && text[at] != u'\0') ++at;
  return at;
}

// Copies the units at `from` into `to` up to the first U+0000 among `length`
// of them, in one pass, four units per step; returns how many it copied.
inline std::size_t copy_until_nul(char16_t* to, const char16_t* from, std::size_t length) noexcept {
  constexpr std::uint64_t ones = 0x0001000100010001u;
  constexpr std::uint64_t highs = 0x8000800080008000u;
  std::size_t at = 0;
  for (; at + 4 <= length; at += 4) {
    std::uint64_t word;
    std::memcpy(&word, from + at, sizeof word);
    if (((word - ones) & ~word & highs) != 0) break;
    std::memcpy(to + at, &word, sizeof word);
  }
  for (; at < length && from[at] != u'\0'; ++at) to[at] = from[at];
  return at;
}

// The length of the text up to its first U+0000 (cut to 32 bits).
inline int32_t length_until_nul(const std::u16string& text) {
  return static_cast<int32_t>(units_before_nul(text.data(), text.size()));
}

// The text up to its first U+0000.
inline icu::UnicodeString icu_until_nul(const std::u16string& text) {
  return icu::UnicodeString(text.c_str());
}

// The contents of `text` up to its first U+0000. Throws std::logic_error if
// ICU cannot give a terminated buffer (it could not allocate one).
inline std::u16string text_until_nul(icu::UnicodeString& text) {
  const char16_t* buffer = text.getTerminatedBuffer();
  if (buffer == nullptr) throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(buffer);
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
