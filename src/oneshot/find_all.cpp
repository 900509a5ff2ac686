// Every match, located in the caller's subject.
#include <algorithm>
#include <tuple>

#include "oneshot/match_walk.h"
#include "scl/regex/prepared_text.h"
#include "scl/regex/source_results.h"

namespace scl::regex {

std::vector<source_match> regex_find_all(regex& re, const std::u16string& subject) {
  const prepared_text mapped = prepare_text_mapped(subject, re.options());
  const std::size_t size = mapped.text().size();
  const std::size_t groups = static_cast<std::size_t>(std::max(re.getGroupsCount(), 0)) + 1;
  // An engine of the caller's own may report positions past the prepared text.
  const auto source = [&mapped, size](std::size_t start, std::size_t end) {
    return mapped.source_range(std::min(start, size), std::min(end, size));
  };
  std::vector<source_match> matches;
  detail::walk_matches(re, subject, [&](const regex_result& match) {
    source_match found;
    std::tie(found.start, found.end) = source(match.start, std::max(match.start, match.end));
    found.groups.assign(groups, {npos, npos});
    found.groups[0] = {found.start, found.end};
    for (std::size_t i = 1; i < std::min(groups, match.groups.size()); ++i) {
      const group_result& group = match.groups[i];
      if (group.start != npos && group.end != npos) {
        found.groups[i] = source(group.start, std::max(group.start, group.end));
      }
    }
    matches.push_back(std::move(found));
  });
  return matches;
}

std::vector<source_match> regex_find_all(const std::u16string& subject, const std::u16string& pattern,
                                         constants::syntax_option_type options) {
  regex re(pattern, options, nullptr);
  return regex_find_all(re, subject);
}

}  // namespace scl::regex
