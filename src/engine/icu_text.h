// Moving text between std::u16string and ICU's UnicodeString, and finding
// where a text ends (its first U+0000).
#ifndef SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
#define SCL_REGEX_SRC_ENGINE_ICU_TEXT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <unicode/unistr.h>

namespace scl::regex::detail {

// The whole text, embedded U+0000 units included (length cut to 32 bits).
inline icu::UnicodeString icu_whole(const std::u16string& text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

// Copies the units at `from` into `to` (unless `to` is null) up to the first
// U+0000 among `length` of them, in one pass; returns how many there are.
// Sixteen units per step with SSE2 (every x86-64 has it); elsewhere four, as
// a 64-bit word has a zero 16-bit lane exactly when (w - 0x0001...) & ~w &
// 0x8000... is non-zero.
inline std::size_t copy_until_nul(char16_t* to, const char16_t* from, std::size_t length) noexcept {
  std::size_t at = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  for (; at + 16 <= length; at += 16) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at + 8));
    const __m128i zeros = _mm_or_si128(_mm_cmpeq_epi16(low, zero), _mm_cmpeq_epi16(high, zero));
    if (_mm_movemask_epi8(zeros) != 0) break;
    if (to != nullptr) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), low);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at + 8), high);
    }
  }
  for (; at + 8 <= length; at += 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(units, zero)) != 0) break;
    if (to != nullptr) _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), units);
  }
#else
  constexpr std::uint64_t ones = 0x0001000100010001u;
  constexpr std::uint64_t highs = 0x8000800080008000u;
  for (; at + 4 <= length; at += 4) {
    std::uint64_t word;
    std::memcpy(&word, from + at, sizeof word);
    if (((word - ones) & ~word & highs) != 0) break;
    if (to != nullptr) std::memcpy(to + at, &word, sizeof word);
  }
#endif
  for (; at < length && from[at] != u'\0'; ++at) {
    if (to != nullptr) to[at] = from[at];
  }
  return at;
}

// The number of units before the first U+0000 among `length` units at `text`
// (`length` if there is none).
inline std::size_t units_before_nul(const char16_t* text, std::size_t length) noexcept {
  return copy_until_nul(nullptr, text, length);
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
  if (buffer == nullptr)
    throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(buffer);
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
