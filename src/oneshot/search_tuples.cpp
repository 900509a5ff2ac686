// Collecting every match with its group texts.
#include <utility>

#include "object/one_call_regex.h"
#include "oneshot/match_walk.h"
#include "scl/regex/oneshot_search.h"
#include "scl/regex/prepare.h"

namespace scl::regex {

void regex_search(regex& re, const std::u16string& subject, std::vector<match_tuple>& out) {
  out.clear();
  // The regex prepares its subject again on reset; preparing is idempotent.
  const std::u16string prepared = prepare_text(subject, re.options());
  detail::walk_matches(re, prepared, [&out](const regex_result& match) {
    std::vector<std::u16string> groups;
    if (match.groups.size() >= 2) {
      groups.reserve(match.groups.size() - 1);
      for (std::size_t i = 1; i < match.groups.size(); ++i) groups.push_back(match.groups[i].str());
    }
    out.emplace_back(match.str(), std::move(groups));
  });
}

void regex_search(const std::u16string& subject, const std::u16string& pattern,
                  std::vector<match_tuple>& out, constants::syntax_option_type options) {
  regex re = detail::one_call_regex(pattern, options);
  regex_search(re, subject, out);
}

}  // namespace scl::regex
