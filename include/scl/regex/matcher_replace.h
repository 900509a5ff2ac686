// Replacement with a matcher handle, with fixed text or with callbacks.
//
//   namespace re = scl::regex;
//   re::matcher_ptr handle = re::createMatcher(u"(\\w+)@(\\w+)", 0);
//   re::regex_replace(handle, u"ann@home bob@work", u"$2:$1");  // u"home:ann work:bob"
//   re::regex_replace(handle, u"ann@home bob@work",
//                     [](const std::u16string& matched, bool& go_on) {
//                       go_on = false;                            // stop after this match
//                       return u"<" + matched + u">";
//                     });                                          // u"<ann@home>"
//
// Replacement text, fixed or returned by a callback, is ICU replacement
// syntax: "$1" and "${name}" insert groups, a backslash quotes the next
// character. It is never escaped by the library (see regex_escape).
//
// Unlike regex_search, these functions take the subject exactly as passed:
// the handle's normalize_nfc / ignore_diacritics options are not applied.
// None of them throws regex_exception: on any ICU failure they return the
// subject unchanged. Results end at their first U+0000.
#ifndef SCL_REGEX_MATCHER_REPLACE_H
#define SCL_REGEX_MATCHER_REPLACE_H

#include <cstdint>
#include <functional>
#include <string>

#include <scl/regex/export.h>
#include <scl/regex/matcher.h>
#include <scl/regex/options.h>

namespace scl::regex {

// How a replacement callback goes on after the current match is replaced.
// Any other non-zero value acts like eStop.
enum ECallbackTermination : std::int32_t {
  eContinue = 0,         // go on with the next match
  eStop = 1,             // stop; keep the rest of the subject unchanged
  eStopAndTruncate = 2,  // stop; drop the rest of the subject
};

// Returns `subject` with its first match replaced by `replacement`.
// Returns "" for an empty handle; `subject` unchanged on ICU failure (for
// example "$x" or a reference to a missing group in `replacement`).
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace_first(const matcher_ptr& handle,
                                                               const std::u16string& subject,
                                                               const std::u16string& replacement);

// Returns `subject` with every match replaced by `replacement`.
// Returns "" for an empty handle; `subject` unchanged on ICU failure.
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace(const matcher_ptr& handle,
                                                         const std::u16string& subject,
                                                         const std::u16string& replacement);

// Returns `subject` with every match replaced by what `callback` returns for
// the matched text (cut at its first U+0000). The callback may set its bool
// to false to stop after this match; the rest of the subject is then dropped.
// Returns "" for an empty handle (callback not called); `subject` unchanged on
// ICU failure. Throws std::bad_function_call at the first match if `callback`
// is empty; the callback's own exceptions pass through.
SCL_REGEX_API std::u16string regex_replace(
    const matcher_ptr& handle, const std::u16string& subject,
    std::function<std::u16string(const std::u16string&, bool&)> callback);

// As above, but the callback gets the handle itself, standing on the current
// match, so it can read groups with get_group and get_group_count. It must not
// search or replace with the same handle. Setting the bool to false stops and
// drops the rest of the subject.
SCL_REGEX_API std::u16string regex_replace(
    const matcher_ptr& handle, const std::u16string& subject,
    std::function<std::u16string(const matcher_ptr&, bool&)> callback);

// As the matched-text form, but the callback decides with an
// ECallbackTermination: eStop keeps the rest of the subject, eStopAndTruncate
// drops it.
SCL_REGEX_API std::u16string regex_replace(
    const matcher_ptr& handle, const std::u16string& subject,
    std::function<std::u16string(const std::u16string&, ECallbackTermination&)> callback);

// Compiles `pattern` for this one call and replaces every match in `subject`
// with what `callback` returns, as the matched-text form above. Note the order:
// subject first. Only `case_insensitive` is honoured: neither pattern nor
// subject is normalised or stripped of diacritics, and both end at their first
// U+0000. Returns `subject` unchanged if the pattern does not compile or ICU
// fails.
SCL_REGEX_API std::u16string regex_replace(
    const std::u16string& subject, const std::u16string& pattern,
    std::function<std::u16string(const std::u16string&, bool&)> callback,
    constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_MATCHER_REPLACE_H
