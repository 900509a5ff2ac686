// The library's one rule for U+0000: where a text is handed on as a
// NUL-terminated string, it ends at its first U+0000 unit. Everything that
// applies the rule goes through until_nul() (or, when the text is copied at
// the same time, copy_until_nul()).
#ifndef SCL_REGEX_SRC_TEXT_UNTIL_NUL_H
#define SCL_REGEX_SRC_TEXT_UNTIL_NUL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace scl::regex::detail {

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

// `text` up to its first U+0000 (all of it if there is none).
inline std::u16string_view until_nul(std::u16string_view text) noexcept {
  return text.substr(0, units_before_nul(text.data(), text.size()));
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_TEXT_UNTIL_NUL_H
