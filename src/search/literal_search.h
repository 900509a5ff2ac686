// Literal search on folded text: where a folded query occurs in a folded
// text, kept only where it covers whole pieces of the source and the source
// allows a match to begin and end there.
#ifndef SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H
#define SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/match_rules.h"

namespace scl::regex::detail {

// Appends to `out` the matches of `query` (folded, not empty) in `source`,
// folded as `folded`, going on from folded unit `from` without overlap, until
// `out` holds `limit` matches. While the fold is not complete (`last` false),
// only matches that end before unit `final_units` are taken. Returns where the
// next call goes on. Stops at the calling thread's match_time_limit by
// throwing regex_exception(U_REGEX_TIME_OUT).
int32_t find_literal(const fold_table& table, std::u16string_view query, const char16_t* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out);
int32_t find_literal(const fold_table& table, std::u16string_view query, const char* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_LITERAL_SEARCH_H
