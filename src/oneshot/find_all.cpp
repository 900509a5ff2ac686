// Every match, located in the caller's subject.
#include "object/match_walk.h"
#include "oneshot/source_locator.h"
#include "prepare/prepared_subject.h"
#include "scl/regex/source_results.h"

namespace scl::regex {

std::vector<source_match> regex_find_all(regex& re, const std::u16string& subject) {
  const detail::prepared_subject prepared(subject, re.options(), true);
  const detail::source_locator locator(prepared, re.getGroupsCount());
  std::vector<source_match> matches;
  detail::walk_matches(re, subject, prepared, [&](const regex_result& match) {
    matches.push_back(locator.locate(match));
  });
  return matches;
}

std::vector<source_match> regex_find_all(const std::u16string& subject,
                                         const std::u16string& pattern,
                                         constants::syntax_option_type options) {
  regex re(pattern, options);
  return regex_find_all(re, subject);
}

}  // namespace scl::regex
