// Scanning folded text for the units a match must start with.
#ifndef SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H
#define SCL_REGEX_SRC_SEARCH_UNIT_SCAN_H

#include <algorithm>
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
  const std::size_t start = from;
#if defined(__SSE2__)
  // Eight units at a time: their origins must go on from origin[start] one
  // by one (the step into the first of them is checked with them), and none
  // may be a surrogate.
  __m128i low = _mm_add_epi32(_mm_set1_epi32(origin[start]), _mm_setr_epi32(0, 1, 2, 3));
  __m128i high = _mm_add_epi32(low, _mm_set1_epi32(4));
  const __m128i eight = _mm_set1_epi32(8);
  const __m128i mask = _mm_set1_epi16(static_cast<short>(0xF800));
  const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
  for (; from + 8 <= last + 1; from += 8) {
    const auto* at = reinterpret_cast<const __m128i*>(origin + from);
    const auto on = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_packs_epi32(_mm_cmpeq_epi32(_mm_loadu_si128(at), low),
                                          _mm_cmpeq_epi32(_mm_loadu_si128(at + 1), high))));
    const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + from));
    const auto lone = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(here, mask), surrogate)));
    if (on != 0xFFFF || lone != 0) {
      // A unit whose origin is off ends the run at the unit before it.
      std::size_t end = last;
      if (on != 0xFFFF) end = from + (__builtin_ctz(~on) >> 1) - 1;
      if (lone != 0) end = std::min(end, from + (__builtin_ctz(lone) >> 1));
      return std::min(end, last);
    }
    low = _mm_add_epi32(low, eight);
    high = _mm_add_epi32(high, eight);
  }
  // The step into `from` is not checked yet.
  if (from > start) --from;
#endif
  for (; from < last; ++from) {
    if ((units[from] & 0xF800) == 0xD800 || origin[from + 1] != origin[from] + 1) return from;
  }
  (void)start;
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
