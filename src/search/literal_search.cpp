#include "search/literal_search.h"

#include <cstring>

#include <unicode/uchar.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "scl/regex/exception.h"
#include "search/code_points.h"
#include "search/grapheme_boundary.h"
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
      : table_(table), source_(source), size_(folded.source_size), folded_(folded) {}

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
          accepts(start, end, span)) {
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
  // Whether folded units [start, end) make a match, and where it is in the source.
  bool accepts(int32_t start, int32_t end, source_span& span) const {
    if (!folded_.starts_piece(start) || !folded_.ends_piece(end)) return false;
    span.start = folded_.origin[start];
    span.end = folded_.piece_end(end);
    if (!grapheme_boundary(table_, source_, size_, span.start)) return false;
    if (inside_contraction(span.start) || inside_contraction(span.end)) return false;
    return !splits_marks(span.end);
  }

  // Whether `at` falls between a prevowel and the character it contracts with.
  bool inside_contraction(int32_t at) const {
    if (at <= 0 || at >= size_) return false;
    const UChar32 before = code_point_before(source_, at);
    return fold_value::prevowel(table_.value(before)) &&
           table_.contracts(before, code_point_at(source_, at, size_));
  }

  // Whether an end at `at` falls between two characters that canonical
  // reordering could swap (non-zero trailing, then non-zero leading class).
  bool splits_marks(int32_t at) const {
    if (at <= 0 || at >= size_) return false;
    const UChar32 after = code_point_at(source_, at, size_);
    if (after < 0x300 || u_getIntPropertyValue(after, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) == 0) {
      return false;
    }
    return u_getIntPropertyValue(code_point_before(source_, at),
                                 UCHAR_TRAIL_CANONICAL_COMBINING_CLASS) != 0;
  }

  const fold_table& table_;
  const Unit* source_;
  int32_t size_;
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
