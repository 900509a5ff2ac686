// Collecting every match with its group texts.
#include <utility>

#include "object/match_walk.h"
#include "prepare/prepared_subject.h"
#include "scl/regex/oneshot_search.h"
#include "scl/regex/prepare.h"

namespace scl::regex {

void regex_search(regex& re, const std::u16string& subject, std::vector<match_tuple>& out) {
  out.clear();
  // The regex is reset onto the prepared subject, and prepares it once more
  // (the engine's stored text is then the prepared subject, not the caller's).
  const std::u16string prepared = prepare_text(subject, re.options());
  detail::walk_matches(re, prepared, detail::prepared_subject(prepared, re.options()),
                       [&out](const regex_result& match) {
                         std::vector<std::u16string> groups;
                         if (match.groups.size() >= 2) {
                           groups.reserve(match.groups.size() - 1);
                           for (std::size_t i = 1; i < match.groups.size(); ++i)
                             groups.push_back(match.groups[i].str());
                         }
                         out.emplace_back(match.str(), std::move(groups));
                       });
}

void regex_search(const std::u16string& subject, const std::u16string& pattern,
                  std::vector<match_tuple>& out, constants::syntax_option_type options) {
  regex re(pattern, options);
  regex_search(re, subject, out);
}

}  // namespace scl::regex
