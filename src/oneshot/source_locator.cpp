#include "oneshot/source_locator.h"

#include <algorithm>
#include <tuple>

namespace scl::regex::detail {

source_locator::source_locator(const prepared_subject& subject, int group_count)
    : subject_(subject), groups_(static_cast<std::size_t>(std::max(group_count, 0)) + 1) {}

source_match source_locator::locate(const regex_result& match) const {
  source_match found;
  std::tie(found.start, found.end) = subject_.source_range(match.start, match.end);
  found.groups.assign(groups_, {npos, npos});
  found.groups[0] = {found.start, found.end};
  for (std::size_t i = 1; i < std::min(groups_, match.groups.size()); ++i) {
    const group_result& group = match.groups[i];
    if (group.start != npos && group.end != npos) {
      found.groups[i] = subject_.source_range(group.start, group.end);
    }
  }
  return found;
}

}  // namespace scl::regex::detail
