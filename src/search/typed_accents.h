// Diacritics matched where typed: ICU's asymmetric search
// (USEARCH_PATTERN_BASE_WEIGHT_IS_WILDCARD) at secondary strength.
//
// A match is found first without accents; its accents are then compared with
// the query's, collation element by collation element, in the folds with
// accents (a letter, then the accents on it):
//   - a letter of the query with the common secondary weight (typed without
//     an accent) matches the same letter with any secondary weight;
//   - a letter with a secondary weight of its own ("\u00f0", the first "s"
//     of "\u00df") matches only the same;
//   - an accent of the query matches only the same accent, next in the text;
//   - the text's other accents are skipped before each letter of the query
//     and after its last element, except that after a last element that is an
//     accent they must all be that accent.
#ifndef SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H
#define SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/utypes.h>

#include "search/code_points.h"
#include "search/fold_table.h"

namespace scl::regex::detail {

class typed_accents {
 public:
  typed_accents() = default;
  // The elements of `query`, folded with `accents` (a table with accents and
  // without case).
  typed_accents(const fold_table& accents, std::u16string_view query);

  // Whether source[start, end), which matches the query without accents, has
  // the query's accents.
  bool accepts(const char16_t* source, int32_t start, int32_t end) const;
  bool accepts(const char* source, int32_t start, int32_t end) const;

  // Where a match found at `start` starts with the text's accents before it:
  // ICU skips accents before the query's first letter, so the match starts at
  // the first of those accents (after `limit`, with only what folds to nothing
  // between them and `start`) that may start a match, as `may_start` says.
  template <class Unit, class MayStart>
  int32_t leading_start(const Unit* source, int32_t start, int32_t limit,
                        MayStart may_start) const;

 private:
  // One collation element of a fold with accents.
  struct element {
    UChar32 primary;  // its fold without accents; 0 for an accent
    bool common;      // a letter with the common secondary weight
    UChar32 unit;     // the folded character it is part of, and which element of it
    std::uint32_t index;

    bool same(const element& other) const { return unit == other.unit && index == other.index; }
  };

  void elements_of(std::u16string_view folded, std::vector<element>& out) const;
  bool matches(const std::vector<element>& text) const;
  template <class Unit>
  bool accepts_range(const Unit* source, int32_t start, int32_t end) const;
  // Whether `c` is an accent that the table keeps, and what ends a run of them.
  bool primary_ignorable(UChar32 c) const;
  bool ignores_accents_after(UChar32 c) const;

  const fold_table* table_ = nullptr;
  std::vector<element> query_;
};

template <class Unit, class MayStart>
int32_t typed_accents::leading_start(const Unit* source, int32_t start, int32_t limit,
                                     MayStart may_start) const {
  if (query_.empty() || query_.front().primary == 0) return start;
  std::vector<int32_t> accents;  // where each accent starts, nearest first
  std::u16string fold;
  for (int32_t position = start; position > limit;) {
    int32_t before = position;
    const UChar32 c = previous_code_point(source, before);
    if (!primary_ignorable(c)) {
      if (ignores_accents_after(c)) return start;
      break;
    }
    fold.clear();
    table_->append_fold(c, fold);
    if (!fold.empty()) accents.push_back(before);
    position = before;
  }
  for (auto it = accents.rbegin(); it != accents.rend(); ++it) {
    if (may_start(*it)) return *it;
  }
  return start;
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H
