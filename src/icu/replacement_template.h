// Replacement text in ICU's syntax, read once into literal text and group
// references, so that groups can be taken from any text.
#ifndef SCL_REGEX_SRC_ICU_REPLACEMENT_TEMPLATE_H
#define SCL_REGEX_SRC_ICU_REPLACEMENT_TEMPLATE_H

#include <functional>
#include <string>
#include <vector>

#include <unicode/utypes.h>

namespace scl::regex::detail {

// One part of an expansion: literal text, or (when `group` >= 0) a group.
struct replacement_part {
  std::u16string text;
  int group = -1;
};

// Reads `replacement` as ICU's RegexMatcher::appendReplacement does: "\"
// takes the next character literally ("\uhhhh" and "\Uhhhhhhhh" give that
// character; what ICU reads of an escape that fails gives nothing), "$"
// followed by digits is the longest group number not above `group_count`,
// "${name}" the group that `number_of` names (a name of ASCII letters and the
// digits 1-9; 0 when there is none). Returns ICU's error where ICU reports
// one: U_INDEX_OUTOFBOUNDS_ERROR for a first digit above the count,
// U_REGEX_INVALID_CAPTURE_GROUP_NAME for "$" followed by neither, an unknown
// or malformed name; U_ZERO_ERROR otherwise.
UErrorCode parse_replacement(const std::u16string& replacement, int group_count,
                             const std::function<int(const std::string&)>& number_of,
                             std::vector<replacement_part>& parts);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_REPLACEMENT_TEMPLATE_H
