// Replacement with a matcher handle, and the one-shot callback form.
#include <utility>

#include "handle/replace_loops.h"
#include "icu/compile.h"
#include "icu/handle_matcher.h"
#include "icu/icu_string.h"
#include "icu/matcher.h"
#include "scl/regex/matcher_replace.h"

namespace scl::regex {
namespace {

// The result of a replacement into `output`: its text up to the first U+0000,
// or the subject unchanged if the replacement failed or ICU has no buffer.
std::u16string result_or_subject(bool succeeded, icu::UnicodeString& output,
                                 const std::u16string& subject) {
  return succeeded ? detail::from_icu_until_nul(output, subject) : subject;
}

// The frame every handle form shares: an empty handle gives "", otherwise the
// matcher is reset onto the whole subject (kept beside it, so the matcher never
// refers to a dead text) and `replace(output, matcher)` does the work.
template <class Replace>
std::u16string replace_on_handle(const matcher_ptr& handle, const std::u16string& subject,
                                 Replace&& replace) {
  icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  if (matcher == nullptr) return {};
  detail::set_subject(*matcher, detail::handle_slot(*matcher), subject);
  icu::UnicodeString output;
  const bool succeeded = replace(output, *matcher);
  return result_or_subject(succeeded, output, subject);
}

}  // namespace

std::u16string regex_replace_first(const matcher_ptr& handle, const std::u16string& subject,
                                   const std::u16string& replacement) {
  return replace_on_handle(handle, subject, [&](icu::UnicodeString& output, icu::RegexMatcher& m) {
    UErrorCode status = U_ZERO_ERROR;
    output = detail::replace_matches(m, detail::replace_scope::first,
                                     detail::to_icu_until_nul(replacement), status);
    return U_SUCCESS(status);
  });
}

std::u16string regex_replace(const matcher_ptr& handle, const std::u16string& subject,
                             const std::u16string& replacement) {
  return replace_on_handle(handle, subject, [&](icu::UnicodeString& output, icu::RegexMatcher& m) {
    UErrorCode status = U_ZERO_ERROR;
    output = detail::replace_matches(m, detail::replace_scope::all,
                                     detail::to_icu_until_nul(replacement), status);
    return U_SUCCESS(status);
  });
}

std::u16string regex_replace(const matcher_ptr& handle, const std::u16string& subject,
                             std::function<std::u16string(const std::u16string&, bool&)> callback) {
  return replace_on_handle(handle, subject, [&](icu::UnicodeString& output, icu::RegexMatcher& m) {
    return detail::replace_loop_text(output, m, callback);
  });
}

std::u16string regex_replace(const matcher_ptr& handle, const std::u16string& subject,
                             std::function<std::u16string(const matcher_ptr&, bool&)> callback) {
  return replace_on_handle(handle, subject, [&](icu::UnicodeString& output, icu::RegexMatcher&) {
    return detail::replace_loop_handle(output, handle, callback);
  });
}

std::u16string regex_replace(
    const matcher_ptr& handle, const std::u16string& subject,
    std::function<std::u16string(const std::u16string&, ECallbackTermination&)> callback) {
  return replace_on_handle(handle, subject, [&](icu::UnicodeString& output, icu::RegexMatcher&) {
    return detail::replace_loop_termination(output, handle, callback);
  });
}

// The interface takes the callback by value.
// NOLINTBEGIN(performance-unnecessary-value-param)
std::u16string regex_replace(const std::u16string& subject, const std::u16string& pattern,
                             std::function<std::u16string(const std::u16string&, bool&)> callback,
                             constants::syntax_option_type options) {
  // NOLINTEND(performance-unnecessary-value-param)
  // Pattern and subject both end at their first U+0000; nothing is prepared.
  const detail::compiled_pattern compiled =
      detail::compile_pattern(pattern, options, detail::pattern_text::as_given_until_nul);
  if (!compiled) return subject;
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString input;  // outlives the matcher, which refers to it
  const std::unique_ptr<icu::RegexMatcher> matcher = detail::new_matcher(*compiled.pattern, status);
  if (matcher == nullptr) return subject;
  detail::set_subject(*matcher, input, subject, detail::subject_end::until_nul);
  icu::UnicodeString output;
  const bool succeeded = detail::replace_loop_text(output, *matcher, callback);
  return result_or_subject(succeeded, output, subject);
}

}  // namespace scl::regex
