// Pattern text for folded text with accents (diacritics matched, or matched
// where typed). There a character of the caller's text folds to a cluster:
// a letter followed by the accents on it ("e" U+0301 for "\u00e9"), or
// accents alone. So:
//   - a class matches one cluster that is the fold of one of its members:
//     "[e\u00e9]" matches "e" and "e" U+0301 but not "e" U+0300; a negated class
//     matches any other cluster;
//   - "." matches one cluster;
//   - with diacritics matched where typed, a letter of a literal matches the
//     same letter with any secondary weight and the accents after it, and an
//     accent matches that accent (typed_accents.h says the same of literal
//     queries); a class's letter member matches the letter with any accents.
#ifndef SCL_REGEX_SRC_SEARCH_CLUSTER_SYNTAX_H
#define SCL_REGEX_SRC_SEARCH_CLUSTER_SYNTAX_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/utypes.h>

#include "search/class_set.h"
#include "search/fold_runs.h"
#include "search/fold_table.h"

namespace scl::regex::detail {

class cluster_syntax {
 public:
  // For `table`, which keeps accents; `typed` for diacritics matched where
  // typed.
  cluster_syntax(const fold_table& table, bool typed);

  // Appends pattern text that matches the folded literal `units` (a run of
  // the pattern's literal characters, folded). Without `typed`, the units as
  // they are. Returns how the run ends where typed: with a letter and how
  // many accents typed after it, or accents alone and how many.
  struct typed_end {
    bool letter = false;
    int accents = -1;  // -1: the run does not end so (or is not typed)
  };
  typed_end append_literal(std::u16string_view units, std::u16string& out) const;
  // The accents of folded text with `table`'s accents.
  static const code_point_bits& accents_of(const fold_table& table);
  // Appends a class: a cluster that is the fold of one of the members of
  // `set`, or with set.negated, any other cluster.
  void append_class(const class_set& set, std::u16string& out) const;
  // Appends what "." becomes: one cluster.
  void append_any(std::u16string& out) const;
  // Appends pattern text for any accents, or none; with `dot_apart`, not
  // starting with dot_accent (see typed_accents.h).
  void append_accents(std::u16string& out, bool dot_apart = false) const;
  // What the pattern text of one table needs, made once per process.
  struct alphabet;
  static const alphabet& alphabet_of(const fold_table& table);

  // Whether `unit` of folded text is an accent.
  bool accent(UChar32 unit) const;

 private:
  // Appends a set of the letters that a letter of the query matches where
  // typed: the letter, and the same letter with other secondary weights.
  void append_letter(UChar32 letter, std::u16string& out) const;
  bool common(UChar32 letter) const;
  // Appends an accent of a literal, where typed.
  void append_accent(UChar32 accent, std::u16string& out) const;
  // Adds to `letters` the letters that each of them matches where typed.
  void widen(code_point_bits& letters) const;
  void widen(std::vector<UChar32>& letters) const;
  // The positive class, without the grouping around it.
  void append_members(const class_set& set, std::u16string& out) const;

  const fold_table& table_;
  bool typed_;
  const alphabet& alphabet_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_CLUSTER_SYNTAX_H
