// The collation levels a fold keeps: the search options that change what
// folds alike. Each variant has a fold table of its own (fold_table.h).
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_VARIANT_H
#define SCL_REGEX_SRC_SEARCH_FOLD_VARIANT_H

namespace scl::regex::detail {

struct fold_variant {
  bool accents = false;     // secondary strength: accents count
  bool case_level = false;  // the case level: case counts
  bool shifted = false;     // alternate handling "shifted": spaces and punctuation are ignored

  static constexpr int count = 8;

  // 0 is the root collator at primary strength; each option sets a bit.
  constexpr int index() const {
    return (accents ? 1 : 0) | (case_level ? 2 : 0) | (shifted ? 4 : 0);
  }
  static constexpr fold_variant at(int index) {
    return fold_variant{(index & 1) != 0, (index & 2) != 0, (index & 4) != 0};
  }
  // The same variant without accents or without case.
  constexpr fold_variant without_accents() const { return {false, case_level, shifted}; }
  constexpr fold_variant without_case() const { return {accents, false, shifted}; }
};

constexpr bool operator==(fold_variant a, fold_variant b) { return a.index() == b.index(); }
constexpr bool operator!=(fold_variant a, fold_variant b) { return !(a == b); }

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_VARIANT_H
