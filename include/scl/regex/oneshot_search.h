// Searches that collect matches: every match with its groups, and the text
// before the first and after the last match.
//
// clang-format off
//   namespace re = scl::regex;
//   std::vector<re::match_tuple> all;
//   re::regex_search(u"x=1, y=2", u"(\\w)=(\\d)", all, 0);  // {u"x=1", {u"x", u"1"}}, {u"y=2", {u"y", u"2"}}
//   auto [before, after] = re::regex_search_prefix_suffix(u"<b>hi</b>!", u"<[^>]+>", 0);  // u"", u"!"
// clang-format on
#ifndef SCL_REGEX_ONESHOT_SEARCH_H
#define SCL_REGEX_ONESHOT_SEARCH_H

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <scl/regex/export.h>
#include <scl/regex/options.h>
#include <scl/regex/regex_class.h>

namespace scl::regex {

// One match: its whole text, and the texts of capture groups 1..n in order
// (an empty string for a group that took no part).
using match_tuple = std::tuple<std::u16string, std::vector<std::u16string>>;

// Clears `out`, then appends one tuple per match of `re` in `subject`, in
// subject order. The subject is prepared with `re`'s options, and the texts
// are taken from the prepared subject. `re` is left reset onto it, past its
// last match. A failed search step ends the walk; what was found so far stays.
SCL_REGEX_API void regex_search(regex& re, const std::u16string& subject,
                                std::vector<match_tuple>& out);

// Compiles `pattern` with `options` and collects its matches in `subject` as
// above. Note the order: subject first. Throws regex_exception if the pattern
// is rejected (`out` is then left as it was).
SCL_REGEX_API void regex_search(const std::u16string& subject, const std::u16string& pattern,
                                std::vector<match_tuple>& out,
                                constants::syntax_option_type options);

// Returns (prefix, suffix): the text of `subject` before the first match of
// `pattern` and after its last match; (empty, subject) when nothing matches.
// Throws regex_exception if the pattern is rejected.
// Positions found in the prepared subject are applied to `subject` as passed:
// when normalize_nfc or ignore_diacritics change its length, the prefix is
// cut at the prepared position (clamped to the subject's length), and a last
// match ending beyond the subject's length throws std::out_of_range.
SCL_REGEX_API std::pair<std::u16string, std::u16string> regex_search_prefix_suffix(
    const std::u16string& subject, const std::u16string& pattern,
    constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_ONESHOT_SEARCH_H
