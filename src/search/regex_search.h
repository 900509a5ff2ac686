// Regex search on folded text: the matches of a folded pattern that ICU
// finds, kept where the match rules allow, with their groups mapped back to
// the source.
#ifndef SCL_REGEX_SRC_SEARCH_REGEX_SEARCH_H
#define SCL_REGEX_SRC_SEARCH_REGEX_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <unicode/regex.h>
#include <unicode/utext.h>

#include "icu/spare_matchers.h"
#include "search/fold_runs.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/match_rules.h"
#include "search/surrogate_stand_in.h"

namespace scl::regex::detail {

// Matches, each as `per_match` spans: the match, then each capturing group
// ({-1, -1} for a group that took no part).
struct regex_matches {
  std::size_t per_match = 1;
  std::vector<source_span> spans;

  std::size_t size() const { return spans.size() / per_match; }
  const source_span* match(std::size_t i) const { return spans.data() + i * per_match; }
};

// Appends to `out` the matches of `pattern` in `source`, folded (whole) as
// `folded` (whose lone surrogates that meet this turns into stand-ins), in order and without
// overlap, until `out` holds `limit` of them. `prefix`, if not empty, is folded text that every
// match starts with: ICU is asked to search only from where it occurs. ICU's matches that break the
// rules are skipped, and the search goes on from the next piece. Throws regex_exception:
// U_REGEX_TIME_OUT when the calling thread's match_time_limit stops the search, or ICU's code.
// Where diacritics are matched where typed and the pattern ends with a
// letter and `typed` accents typed after it (see folded_pattern): a match
// leaves out the text's other accents after those that are not in their
// piece, as ICU's usearch does.
struct typed_ending {
  const code_point_bits* accents;  // the accents of folded text
  int typed;
  bool after_letter = true;  // false: the pattern is `typed` accents alone
};

// Searches folded text for a folded pattern's matches, as find_regex below
// says, in text that may be folded only in part so far: a search of the
// start of a text can stop at its first match.
template <class Unit>
class regex_finder {
 public:
  regex_finder(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
               match_policy policy, const typed_ending* ending, const Unit* source,
               folded_text& folded);
  regex_finder(const regex_finder&) = delete;
  regex_finder& operator=(const regex_finder&) = delete;
  ~regex_finder();

  // Appends to `out` the matches in the first `visible` folded units (those
  // that no later text changes), or in all of them with `complete`, until
  // `out` holds `limit`. Returns false where a match, or whether there is
  // one, may depend on units after `visible` (ICU's engine read to their
  // end): called again with more, it goes on from there. (Only until the
  // first match: the engine's place after a match is not kept from call to
  // call, so a search for more than one match is made complete.)
  bool search(int32_t visible, bool complete, std::size_t limit, regex_matches& out);

 private:
  const fold_table& table_;
  std::u16string_view prefix_;
  match_policy policy_;
  const typed_ending* ending_;
  const Unit* source_;
  folded_text& folded_;
  borrowed_matcher matcher_;
  UText text_ = UTEXT_INITIALIZER;
  // Where the next search starts: with a prefix, every search starts where
  // it occurs; without, a search after a match goes on as ICU goes on (past
  // an empty match by one).
  int64_t from_ = 0;
  bool resume_ = false;
};

extern template class regex_finder<char16_t>;
extern template class regex_finder<char>;

// `policy` adds the rules of the search's options; `ending`, if any, is the
// pattern's typed ending.
void find_regex(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
                match_policy policy, const typed_ending* ending, const char16_t* source,
                folded_text& folded, std::size_t limit, regex_matches& out);
void find_regex(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
                match_policy policy, const typed_ending* ending, const char* source,
                folded_text& folded, std::size_t limit, regex_matches& out);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_REGEX_SEARCH_H
