// The text before the first match and after the last.
#include "object/match_walk.h"
#include "prepare/prepared_subject.h"
#include "scl/regex/oneshot_search.h"

namespace scl::regex {

std::pair<std::u16string, std::u16string> regex_search_prefix_suffix(
    const std::u16string& subject, const std::u16string& pattern,
    constants::syntax_option_type options) {
  regex re(pattern, options);
  std::u16string prefix;
  std::size_t last_end = npos;
  bool first = true;
  // Positions are those of the prepared subject; they cut the caller's subject as they stand.
  detail::walk_matches(
      re, subject, detail::prepared_subject(subject, options), [&](const regex_result& match) {
        if (first) {
          prefix = subject.substr(0, match.start);  // the count is clamped: never throws
          first = false;
        }
        last_end = match.end;
      });
  std::u16string suffix = last_end == npos ? subject : subject.substr(last_end);
  return {std::move(prefix), std::move(suffix)};
}

}  // namespace scl::regex
