// The map of folded text back to its source, as prepared_text keeps it.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_MAP_H
#define SCL_REGEX_SRC_SEARCH_FOLD_MAP_H

#include <string_view>
#include <vector>

#include "scl/regex/prepared_text.h"
#include "search/folded_text.h"

namespace scl::regex::detail {

// The pieces of `folded` (the fold of `source`) as prepared_text stretches: a
// character that folds to one character of the same length joins an aligned
// stretch; any other piece is a stretch of its own. The blocks the fold
// noted as aligned are passed over; the map is the same without them.
std::vector<map_stretch> map_of(const folded_text& folded, std::u16string_view source);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_MAP_H
