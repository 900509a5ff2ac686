// Locates matches found in prepared text in the caller's own subject.
#ifndef SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H
#define SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H

#include <cstddef>
#include <string>

#include "scl/regex/options.h"
#include "scl/regex/prepared_text.h"
#include "scl/regex/result.h"
#include "scl/regex/source_results.h"

namespace scl::regex::detail {

// Maps the matches of one regex over one subject back to that subject.
class source_locator {
 public:
  // Prepares `subject` with `options` and a map, for matches with `group_count`
  // capture groups.
  source_locator(const std::u16string& subject, constants::syntax_option_type options,
                 int group_count);

  // Returns `match` in units of the subject: its range and group_count + 1
  // groups, {npos, npos} for a group that took no part or that `match` lacks.
  // Positions past the prepared text (from an engine of the caller's own)
  // count as its end.
  source_match locate(const regex_result& match) const;

 private:
  std::pair<std::size_t, std::size_t> source(std::size_t start, std::size_t end) const;

  prepared_text mapped_;
  std::size_t groups_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H
