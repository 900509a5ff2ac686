// Locates matches found in prepared text in the caller's own subject.
#ifndef SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H
#define SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H

#include <cstddef>

#include "prepare/prepared_subject.h"
#include "scl/regex/result.h"
#include "scl/regex/source_results.h"

namespace scl::regex::detail {

// Maps the matches of one regex over one subject back to that subject.
class source_locator {
 public:
  // For matches with `group_count` capture groups found in `subject`, which
  // was prepared with its map (and must outlive the locator).
  source_locator(const prepared_subject& subject, int group_count);

  // Returns `match` in units of the subject: its range and group_count + 1
  // groups, {npos, npos} for a group that took no part or that `match` lacks.
  // Positions past the prepared text (from an engine of the caller's own)
  // count as its end.
  [[nodiscard]] source_match locate(const regex_result& match) const;

 private:
  const prepared_subject& subject_;
  std::size_t groups_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ONESHOT_SOURCE_LOCATOR_H
