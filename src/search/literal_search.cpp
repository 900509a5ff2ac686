#include "search/literal_search.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "scl/regex/exception.h"
#include "search/match_rules.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {

namespace {

// The first position p in [from, last) with p[0] == first and p[1] == second
// (p[1] may be `last`), or nullptr.
const char16_t* find_pair(const char16_t* from, const char16_t* last, char16_t first,
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
const char16_t* find_unit(const char16_t* from, const char16_t* last, char16_t unit) {
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

// Candidates rejected between two looks at the clock.
constexpr int rejections_per_check = 4096;

template <class Unit>
class literal_finder {
 public:
  literal_finder(const fold_table& table, const Unit* source, const folded_text& folded)
      : rules_(table, source, folded), folded_(folded) {}

  int32_t run(std::u16string_view query, int32_t from, int32_t final_units, bool last,
              std::size_t limit, std::vector<source_span>& out) const {
    const char16_t* text = folded_.units.data();
    const auto length = static_cast<int32_t>(query.size());
    // The last place a match can start: it must end before the units that may
    // still change.
    const int32_t last_start = last ? folded_.size - length : final_units - 1 - length;
    int rejections = 0;
    for (; from <= last_start && out.size() < limit;) {
      const char16_t* hit = length >= 2
                                ? find_pair(text + from, text + last_start + 1, query[0], query[1])
                                : find_unit(text + from, text + last_start + 1, query[0]);
      if (hit == nullptr) break;
      const auto start = static_cast<int32_t>(hit - text);
      const int32_t end = start + length;
      source_span span{};
      if ((length <= 2 ||
           std::memcmp(hit + 2, query.data() + 2, static_cast<std::size_t>(length - 2) * 2) == 0) &&
          rules_.accepts(start, end, span)) {
        out.push_back(span);
        from = end;
      } else {
        from = start + 1;
        if (++rejections == rejections_per_check) {
          rejections = 0;
          UErrorCode status = U_ZERO_ERROR;
          check_deadline(status);
          if (U_FAILURE(status)) throw regex_exception(status);
        }
      }
    }
    return from;
  }

 private:
  match_rules<Unit> rules_;
  const folded_text& folded_;
};

}  // namespace

int32_t find_literal(const fold_table& table, std::u16string_view query, const char16_t* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out) {
  return literal_finder<char16_t>(table, source, folded)
      .run(query, from, final_units, last, limit, out);
}

int32_t find_literal(const fold_table& table, std::u16string_view query, const char* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out) {
  return literal_finder<char>(table, source, folded)
      .run(query, from, final_units, last, limit, out);
}

}  // namespace scl::regex::detail
