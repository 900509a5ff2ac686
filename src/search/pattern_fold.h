// A regular expression folded for search: the pattern that ICU runs on
// folded text, and the map back to the caller's pattern.
//
//   folded_pattern folded = fold_pattern(table, u"Stra\u00dfe+|[\u00e9]");
//   folded.text;  // u"stras(?:s)e+|[e]"-like: literals fold as text does, a
//                 // quantifier takes its literal's whole fold, a class takes
//                 // the folds of its members
//
// The fold reads the pattern with ICU's syntax:
//   - Literal characters (typed, escaped, quoted with \Q...\E), in runs
//     between other syntax, are folded as text is (NFC first). A quantifier
//     after a run applies to the fold of its last piece, grouped with (?:...)
//     when that is not one code point (so "ß+" is "(?:ss)+", and a character
//     that folds to nothing under a quantifier is "(?:)").
//   - A class ([...], \p{...}, [:...:], \d \w \s \h \v and negations) becomes
//     a set of the code points that are the fold of one of its members,
//     members folding to several code points or to none left out; a negated
//     class is the complement of its positive form, folded.
//   - Everything else is copied as written: groups, alternation, anchors,
//     look-around, back references, flags, quantifiers. No capturing group is
//     added.
//
// The pattern must be one that ICU compiles (the fold does not check it).
#ifndef SCL_REGEX_SRC_SEARCH_PATTERN_FOLD_H
#define SCL_REGEX_SRC_SEARCH_PATTERN_FOLD_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/class_set.h"
#include "search/fold_table.h"
#include "search/literal_search.h"

namespace scl::regex::detail {

struct folded_pattern {
  std::u16string text;
  // origin[i] is the offset in the caller's pattern of the syntax that gave
  // text[i]; origin[text.size()] is the pattern's size.
  std::vector<int32_t> origin;
  // Set when the pattern is literal characters alone: `literal_fold` is then
  // their fold, which literal search finds as ICU would.
  bool literal = false;
  literal_query literal_fold;
  std::u16string literal_text;  // ... and the characters they are
  // Folded units that every match starts with (empty if there are none).
  std::u16string prefix;
  // With diacritics matched where typed, where the pattern ends with a
  // letter and the accents typed after it: how many accents (-1 otherwise).
  // A match takes the text's other accents after them, but ICU's usearch not
  // past their piece (regex_search.h). Where the pattern is accents alone,
  // `typed_ending_after_letter` is false and the count is of them all.
  int typed_ending = -1;
  bool typed_ending_after_letter = true;

  // The offset in the caller's pattern of folded position `at`.
  int32_t source_offset(std::size_t at) const {
    return origin[at < origin.size() ? at : origin.size() - 1];
  }
};

// With `typed`, diacritics are matched where typed (cluster_syntax.h); with
// a table that keeps accents, classes and "." match clusters.
folded_pattern fold_pattern(const fold_table& table, std::u16string_view pattern,
                            bool typed = false);

// Appends to `out` the set of the folds of `set` (see above), as pattern text.
void append_folded_class(const fold_table& table, const class_set& set, std::u16string& out);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_PATTERN_FOLD_H
