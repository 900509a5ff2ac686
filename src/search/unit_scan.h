// Scanning folded text for the units a match must start with.
#ifndef SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H
#define SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H

#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace scl::regex::detail {

// The first position p in [from, last) with p[0] == first and p[1] == second
// (p[1] may be `last`), or nullptr.
inline const char16_t* find_pair(const char16_t* from, const char16_t* last, char16_t first,
                                 char16_t second) {
#if defined(__SSE2__)
  const __m128i firsts = _mm_set1_epi16(static_cast<short>(first));
  const __m128i seconds = _mm_set1_epi16(static_cast<short>(second));
  for (; from + 8 <= last; from += 8) {
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 1));
    const int mask = _mm_movemask_epi8(
        _mm_and_si128(_mm_cmpeq_epi16(here, firsts), _mm_cmpeq_epi16(next, seconds)));
    if (mask != 0) return from + (__builtin_ctz(static_cast<unsigned>(mask)) >> 1);
  }
#endif
  for (; from < last; ++from) {
    if (from[0] == first && from[1] == second) return from;
  }
  return nullptr;
}

// The first position in [from, last) holding `unit`, or nullptr.
inline const char16_t* find_unit(const char16_t* from, const char16_t* last, char16_t unit) {
#if defined(__SSE2__)
  const __m128i units = _mm_set1_epi16(static_cast<short>(unit));
  for (; from + 8 <= last; from += 8) {
    const int mask = _mm_movemask_epi8(
        _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)), units));
    if (mask != 0) return from + (__builtin_ctz(static_cast<unsigned>(mask)) >> 1);
  }
#endif
  for (; from < last; ++from) {
    if (*from == unit) return from;
  }
  return nullptr;
}

// The first position in [from, last) holding a surrogate, or `last`.
inline const char16_t* find_surrogate(const char16_t* from, const char16_t* last) {
#if defined(__SSE2__)
  const __m128i mask = _mm_set1_epi16(static_cast<short>(0xF800));
  const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
  for (; from + 8 <= last; from += 8) {
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const int found = _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(here, mask), surrogate));
    if (found != 0) return from + (__builtin_ctz(static_cast<unsigned>(found)) >> 1);
  }
#endif
  for (; from < last; ++from) {
    if ((*from & 0xF800) == 0xD800) return from;
  }
  return last;
}

// The first position in [from, last) where `needle` (not empty) starts and
// ends before `end` (last <= end), or nullptr.
inline const char16_t* find_units(const char16_t* from, const char16_t* last, const char16_t* end,
                                  std::u16string_view needle) {
  if (needle.size() == 1) return find_unit(from, last, needle[0]);
  for (;;) {
    const char16_t* hit = find_pair(from, last, needle[0], needle[1]);
    if (hit == nullptr) return nullptr;
    const auto left = static_cast<std::size_t>(end - hit);
    if (left >= needle.size() && std::u16string_view(hit, needle.size()) == needle) return hit;
    from = hit + 1;
  }
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H
