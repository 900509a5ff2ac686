// Literal search on folded text: where a folded query occurs in a folded
// text, kept only where it covers whole pieces of the source and the source
// allows a match to begin and end there.
#ifndef SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H
#define SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/match_rules.h"
#include "search/typed_accents.h"

namespace scl::regex::detail {

// A folded query. Where the characters between two lone surrogates folded to
// nothing, its units read as a pair although they are two characters: those
// places are kept, and match only the same in the text.
struct literal_query {
  std::u16string units;
  std::vector<int32_t> false_pairs;  // each p where units p - 1 and p are two lone surrogates

  // The query for `folded`.
  static literal_query of(const folded_text& folded) {
    literal_query query{std::u16string(folded.text()), {}};
    for (int32_t at = 1; at < folded.size; ++at) {
      if (folded.false_pair(at)) query.false_pairs.push_back(at);
    }
    return query;
  }
};

// A literal search: the folded query, and what options add to its matches.
struct literal_search {
  const fold_table& table;  // the fold of the text and the query
  const literal_query& query;
  const typed_accents* accents;  // diacritics matched where typed: each match's check
  match_policy policy;
};

// Appends to `out` the matches of the query (folded, not empty) in `source`,
// folded as `folded`, going on from folded unit `from` without overlap, until
// `out` holds `limit` matches. While the fold is not complete (`last` false),
// only matches that end before unit `final_units` are taken. Returns where the
// next call goes on. Stops at the calling thread's match_time_limit by
// throwing regex_exception(U_REGEX_TIME_OUT).
int32_t find_literal(const literal_search& search, const char16_t* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out);
int32_t find_literal(const literal_search& search, const char* source, const folded_text& folded,
                     int32_t from, int32_t final_units, bool last, std::size_t limit,
                     std::vector<source_span>& out);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H
