// Search and capture-group access on a matcher handle.
//
//   namespace re = scl::regex;
//   re::matcher_ptr handle = re::createMatcher(u"(?<year>\\d{4})-(\\d\\d)", 0);
//   re::regex_search(handle, u"due 2026-11", false);  // true: a match anywhere
//   re::get_group(handle, 1);                         // u"2026"
//   re::get_group_count(handle);                      // 3: two groups and the whole match
//   re::regex_search(handle, u"due 2026-11", true);   // false: not the whole subject
#ifndef SCL_REGEX_MATCHER_SEARCH_H
#define SCL_REGEX_MATCHER_SEARCH_H

#include <string>

#include <scl/regex/export.h>
#include <scl/regex/matcher.h>
#include <scl/regex/options.h>

namespace scl::regex {

// Returns true if `subject`, prepared with the options the handle was compiled
// with, matches the pattern: as a whole if `whole` is true, else anywhere
// (first match from the start). The subject ends at its first U+0000.
// Returns false for an empty handle and for any ICU failure during the search
// (time-out, backtrack stack overflow). The match stays current on the handle:
// get_group reads its groups until the next search or replacement.
SCL_REGEX_API bool regex_search(const matcher_ptr& handle, const std::u16string& subject,
                                bool whole);

// Compiles `pattern` with `options` for this one call and searches `subject`
// as above. Both are NUL-terminated; note the order: subject first.
// Returns false if either pointer is null (nothing is compiled then).
// Throws regex_exception if ICU rejects the pattern.
[[nodiscard]] SCL_REGEX_API bool regex_search(const char16_t* subject, const char16_t* pattern,
                                              bool whole, constants::syntax_option_type options);

// Returns the text of capture group `group` of the handle's current match
// (a negative number means group 0, the whole match), up to its first U+0000.
// Returns an empty string for an empty handle, when there is no current match,
// for a number above the group count and for a group that took no part.
[[nodiscard]] SCL_REGEX_API std::u16string get_group(const matcher_ptr& handle, int group);

// Returns the number of capture groups of the handle's pattern plus one (for
// group 0, the whole match), or 0 for an empty handle.
[[nodiscard]] SCL_REGEX_API int get_group_count(const matcher_ptr& handle);

}  // namespace scl::regex

#endif  // SCL_REGEX_MATCHER_SEARCH_H
