// The one walk over a regex's matches that the searches collecting matches
// share.
#ifndef SCL_REGEX_SRC_ONESHOT_MATCH_WALK_H
#define SCL_REGEX_SRC_ONESHOT_MATCH_WALK_H

#include <string>

#include "scl/regex/npos.h"
#include "scl/regex/regex_class.h"
#include "scl/regex/regex_iterator.h"

namespace scl::regex::detail {

// Resets `re` onto `subject` (which it prepares with its options) and calls
// `visit` with each match in subject order, until no further match is found
// or a search step fails. `re` is left past its last match.
template <class Visit>
void walk_matches(regex& re, const std::u16string& subject, Visit visit) {
  for (regex_iterator it(subject, re); it->start != npos || it->end != npos; ++it) visit(*it);
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ONESHOT_MATCH_WALK_H
