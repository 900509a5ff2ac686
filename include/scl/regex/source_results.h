// Matches located in the caller's own text.
//
//   namespace re = scl::regex;
//   // "Crème brûlée et crème", typed decomposed (e + U+0300).
//   const std::u16string text = u"Cre\u0300me bru\u0302le\u0301e et cre\u0300me";
//   for (const re::source_match& m :
//        re::regex_find_all(text, u"creme", re::constants::case_insensitive |
//                                            re::constants::ignore_diacritics)) {
//     text.substr(m.start, m.end - m.start);  // u"Cre\u0300me", then u"cre\u0300me"
//   }
//   re::regex_replace_preserving(u"Caf\u00e9 cr\u00e8me, \u00e9t\u00e9", u"cafe", u"tea",
//                                re::constants::case_insensitive |
//                                    re::constants::ignore_diacritics);
//   // u"tea cr\u00e8me, \u00e9t\u00e9": only the match changed
//
// Searches with normalize_nfc or ignore_diacritics run on prepared text, and
// the positions that regex_result reports count its units. The functions here
// map every position back through prepare_text_mapped, so that a match can be
// shown, highlighted or cut where the user sees it.
#ifndef SCL_REGEX_SOURCE_RESULTS_H
#define SCL_REGEX_SOURCE_RESULTS_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <scl/regex/export.h>
#include <scl/regex/npos.h>
#include <scl/regex/options.h>
#include <scl/regex/regex_class.h>

namespace scl::regex {

// One match, in units of the caller's subject.
struct source_match {
  std::size_t start = npos;  // first unit of the match in the caller's subject
  std::size_t end = npos;    // one past its last unit
  // Element i is capture group i, element 0 the whole match (equal to {start, end});
  // {npos, npos} for a group that took no part in the match.
  std::vector<std::pair<std::size_t, std::size_t>> groups;
};

// Returns every match of `re` in `subject`, in subject order, empty matches
// included (as empty ranges): the matches that a regex_iterator over `subject`
// and `re` visits, each position mapped to `subject` with
// prepare_text_mapped(subject, re.options()).source_range. Every match has
// getGroupsCount() + 1 groups. `re` is left reset onto `subject`, past its
// last match. A failed search step ends the walk; the matches found so far
// are returned. With an engine of the caller's own, positions are mapped as
// if it prepared its subject as prepare_text does (positions past the
// prepared text count as its end). Throws only std::bad_alloc.
SCL_REGEX_API std::vector<source_match> regex_find_all(regex& re, const std::u16string& subject);

// The same with `pattern` compiled with `options`. Note the order: subject
// first. Throws regex_exception if ICU rejects the pattern.
SCL_REGEX_API std::vector<source_match> regex_find_all(const std::u16string& subject,
                                                       const std::u16string& pattern,
                                                       constants::syntax_option_type options);

// Returns `subject` with the source range of every match of `re` (as
// regex_find_all finds them) replaced by the expansion of `replacement`;
// every unit outside the matches comes back as passed, accents, U+0000 units
// and any text after a U+0000 that ignore_diacritics stopped at included.
// The replacement is read up to its first U+0000, with ICU's syntax and rules:
// "$n" and "${name}" insert the group's text from `subject` (nothing for a
// group that took no part), and a backslash makes the next character literal
// ("\uhhhh" and "\Uhhhhhhhh" give that character). A match whose source
// range starts inside the previous replaced one is not replaced. Returns
// `subject` unchanged if ICU would reject the replacement or a search step
// fails. Where preparation changes nothing, the result is ICU's replaceAll on
// `subject`. `re` is left as regex_find_all leaves it. Throws only
// std::bad_alloc.
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace_preserving(
    regex& re, const std::u16string& subject, const std::u16string& replacement);

// The same with `pattern` compiled with `options`; returns `subject`
// unchanged if ICU rejects the pattern. Never throws regex_exception.
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace_preserving(
    const std::u16string& subject, const std::u16string& pattern, const std::u16string& replacement,
    constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_SOURCE_RESULTS_H
