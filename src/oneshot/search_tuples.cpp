// Collecting every match with its group texts.
#include <utility>

#include "scl/regex/oneshot_search.h"
#include "scl/regex/prepare.h"
#include "scl/regex/regex_iterator.h"

namespace scl::regex {

void regex_search(regex& re, const std::u16string& subject, std::vector<match_tuple>& out) {
  out.clear();
  // The regex prepares its subject again on reset; preparing is idempotent.
  const std::u16string prepared = prepare_text(subject, re.options());
  for (regex_iterator it(prepared, re); it->start != npos || it->end != npos;
       ++it) {
    std::vector<std::u16string> groups;
    if (it->groups.size() >= 2) {
      groups.reserve(it->groups.size() - 1);
      for (std::size_t i = 1; i < it->groups.size(); ++i) groups.push_back(it->groups[i].str());
    }
    out.emplace_back(it->str(), std::move(groups));
  }
}

void regex_search(const std::u16string& subject, const std::u16string& pattern,
                  std::vector<match_tuple>& out, constants::syntax_option_type options) {
  regex re(pattern, options, nullptr);
  regex_search(re, subject, out);
}

}  // namespace scl::regex
