#include "oneshot/source_locator.h"

#include <algorithm>
#include <tuple>

namespace scl::regex::detail {

source_locator::source_locator(const std::u16string& subject, constants::syntax_option_type options,
                               int group_count)
    : mapped_(prepare_text_mapped(subject, options)),
      groups_(static_cast<std::size_t>(std::max(group_count, 0)) + 1) {}

std::pair<std::size_t, std::size_t> source_locator::source(std::size_t start,
                                                           std::size_t end) const {
  const std::size_t size = mapped_.text().size();
  start = std::min(start, size);
  return mapped_.source_range(start, std::max(start, std::min(end, size)));
}

source_match source_locator::locate(const regex_result& match) const {
  source_match found;
  std::tie(found.start, found.end) = source(match.start, match.end);
  found.groups.assign(groups_, {npos, npos});
  found.groups[0] = {found.start, found.end};
  for (std::size_t i = 1; i < std::min(groups_, match.groups.size()); ++i) {
    const group_result& group = match.groups[i];
    if (group.start != npos && group.end != npos) found.groups[i] = source(group.start, group.end);
  }
  return found;
}

}  // namespace scl::regex::detail
