// Scanning folded text for the units a match must start with.
#ifndef SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H
#define SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H

#include <cstddef>
#include <cstdint>
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

// The first position p in [from, last) where unit p is a surrogate or
// origin[p + 1] != origin[p] + 1 (origin[last] is read), or `last`: where a
// run of units that each come from the next source unit ends.
inline std::size_t aligned_run_end(const char16_t* units, const int32_t* origin, std::size_t from,
                                   std::size_t last) {
#if defined(__SSE2__)
  const __m128i one = _mm_set1_epi32(1);
  const __m128i mask = _mm_set1_epi16(static_cast<short>(0xF800));
  const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
  for (; from + 8 <= last; from += 8) {
    const auto at = [&](std::size_t k) {
      return _mm_loadu_si128(reinterpret_cast<const __m128i*>(origin + from + k));
    };
    const __m128i steps = _mm_packs_epi32(_mm_cmpeq_epi32(_mm_sub_epi32(at(1), at(0)), one),
                                          _mm_cmpeq_epi32(_mm_sub_epi32(at(5), at(4)), one));
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + from));
    const __m128i bad = _mm_cmpeq_epi16(_mm_and_si128(here, mask), surrogate);
    const auto good = static_cast<unsigned>(_mm_movemask_epi8(_mm_andnot_si128(bad, steps)));
    if (good != 0xFFFF) return from + (__builtin_ctz(~good) >> 1);
  }
#endif
  for (; from < last; ++from) {
    if ((units[from] & 0xF800) == 0xD800 || origin[from + 1] != origin[from] + 1) return from;
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
