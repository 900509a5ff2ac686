// Listing the named groups of a regex by scanning its engine's stored text.
#include <string>
#include <vector>

#include "i18n/host_i18n.h"
#include "scl/regex/regex_class.h"
#include "scl/regex/regex_iterator.h"

namespace scl::regex {

std::vector<std::string> regex::getGroupNamesIfAvailable() const {
  // "?<", a name (an ASCII letter, then ASCII letters and digits), ">".
  static const std::u16string name_finder(u"\\?<([a-zA-Z][a-zA-Z0-9]*)>");
  std::vector<std::string> names;
  if (!impl_) return names;
  const std::u16string text = impl_->getPattern();
  if (text.empty()) return names;

  // Each thread makes its finder once and resets it onto every text it scans;
  // nothing it runs can call back into here.
  thread_local regex finder(name_finder, 0);
  for (regex_iterator it(text, finder); it->start != npos || it->end != npos; ++it) {
    if (it->groups.size() >= 2) names.push_back(detail::i18n::to_string(it->groups[1].str()));
  }
  return names;
}

}  // namespace scl::regex
