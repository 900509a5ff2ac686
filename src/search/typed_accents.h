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
// Accents that are pieces of their own (after a line break, a soft hyphen,
// at the start of the text) can begin or end a match: ICU skips the first
// kind before the query's first letter, so the match starts at the first of
// them that may start a match; and a query's accents may be found in them.
#ifndef SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H
#define SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include <unicode/utypes.h>

#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/match_rules.h"

namespace scl::regex::detail {

class typed_accents {
 public:
  typed_accents() = default;
  // The elements of `query`, folded with `accents` (a table with accents and
  // without case). With `dot_apart`, a match may not start at the dot of
  // "l\u00b7": the case level compares the match apart from its text, where
  // that dot is punctuation (unless punctuation is ignored).
  typed_accents(const fold_table& accents, std::u16string_view query, bool dot_apart);

  // Whether the match found without accents at source `span` (of the whole
  // source[0, size)) has the query's accents; if so, moves `span` to where the
  // match starts and ends with them. It starts after `limit`, and where
  // `may_start` allows.
  using start_check = std::function<bool(int32_t)>;
  bool place(const char16_t* source, int32_t size, int32_t limit, source_span& span,
             const start_check& may_start) const;
  bool place(const char* source, int32_t size, int32_t limit, source_span& span,
             const start_check& may_start) const;

 private:
  // One collation element of a fold with accents.
  struct element {
    UChar32 primary;  // its fold without accents; 0 for an accent
    bool common;      // a letter with the common secondary weight
    UChar32 unit;     // the folded character it is part of, and which element of it
    std::uint32_t index;
    int32_t piece_start;  // its piece in the source
    int32_t piece_end;

    bool same(const element& other) const { return unit == other.unit && index == other.index; }
  };

  template <class Unit>
  bool place_in(const Unit* source, int32_t size, int32_t limit, source_span& span,
                const start_check& may_start) const;
  // Appends the elements of `folded`, whose source starts at `offset`.
  void elements_of(const folded_text& folded, int32_t offset, std::vector<element>& out) const;
  // Matches the query from text[from], which holds its elements to the end
  // of what may follow a match (a letter of a piece that ends after source
  // offset `tail` ends that); returns one past the last element matched, or 0
  // if it does not match.
  std::size_t match_from(const std::vector<element>& text, std::size_t from, int32_t tail) const;
  // Whether `c`, after `previous`, has no element but accents: an accent, or
  // what folds to nothing anyway, or punctuation that "shifted" ignores.
  bool accent(UChar32 c, UChar32 previous) const;

  const fold_table* table_ = nullptr;
  const fold_table* letters_ = nullptr;  // the same collation at primary strength
  bool dot_apart_ = false;
  std::vector<element> query_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_TYPED_ACCENTS_H
