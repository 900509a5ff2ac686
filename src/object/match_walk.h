// The one walk over a regex's matches that the searches collecting matches
// share.
#ifndef SCL_REGEX_SRC_OBJECT_MATCH_WALK_H
#define SCL_REGEX_SRC_OBJECT_MATCH_WALK_H

#include <string>
#include <utility>

#include "object/regex_access.h"
#include "prepare/prepared_subject.h"
#include "scl/regex/npos.h"
#include "scl/regex/regex_class.h"

namespace scl::regex::detail {

// How a walk learns of a failed search step.
enum class on_failure {
  end_walk,  // steps with match(): a failure looks like the end, as in regex_iterator
  report,    // steps with match_ex(): a failure ends the walk and is reported
};

// Resets `re` onto `subject` (`prepared` is its preparation with re.options())
// and calls `visit` with each match in subject order, until no further match
// is found or a search step fails; `re` is left past its last match. Returns
// false if a step failed and `failure` is on_failure::report, else true.
template <class Visit>
bool walk_matches(regex& re, const std::u16string& subject, const prepared_subject& prepared,
                  Visit visit, on_failure failure = on_failure::end_walk) {
  regex_access::reset(re, subject, prepared);
  for (;;) {
    regex_result match(npos, npos, nullptr);
    if (failure == on_failure::report) {
      expected_result<regex_result> step = re.match_ex();
      if (step.has_error()) return false;
      match = std::move(step).value();
    } else {
      match = re.match();
    }
    if (match.start == npos && match.end == npos) return true;
    visit(match);
  }
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_OBJECT_MATCH_WALK_H
