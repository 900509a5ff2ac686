// Search and group access on a matcher handle.
#include <string>

#include "icu/compile.h"
#include "icu/handle_matcher.h"
#include "icu/icu_string.h"
#include "icu/matcher.h"
#include "prepare/prepare_pass.h"
#include "prepare/prepared_subject.h"
#include "scl/regex/matcher_search.h"
#include "time_limit/deadline.h"

namespace scl::regex {

namespace {

// Searches `subject`, up to its first U+0000 and prepared with `options`, with
// `matcher`, which is reset onto `slot`, where the searched text stays.
// Text that preparation would give back unchanged (always without
// preparation bits; commonly with them) is copied straight in.
bool search_in_slot(icu::RegexMatcher& matcher, icu::UnicodeString& slot,
                    std::u16string_view subject, bool whole,
                    constants::syntax_option_type options) {
  if ((options & (constants::normalize_nfc | constants::ignore_diacritics)) == 0) {
    detail::set_subject(matcher, slot, subject, detail::subject_end::until_nul);
  } else if (const std::u16string_view text = detail::until_nul(subject);
             detail::preparation_keeps(text.data(), text.size(), options)) {
    detail::set_subject(matcher, slot, text);
  } else {
    const detail::prepared_subject prepared(subject, options);
    detail::set_subject(matcher, slot, prepared.text(), detail::subject_end::until_nul);
  }
  UErrorCode status = U_ZERO_ERROR;
  detail::check_deadline(status);
  const bool found = whole ? matcher.matches(status) : matcher.find(0, status);
  return U_SUCCESS(status) && found;
}

}  // namespace

bool regex_search(const matcher_ptr& handle, const std::u16string& subject, bool whole) {
  icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  if (matcher == nullptr) return false;
  // The searched text stays beside the matcher, so that get_group can read
  // the match after this call returns.
  return search_in_slot(*matcher, detail::handle_slot(*matcher), subject, whole,
                        handle.get_deleter().options);
}

bool regex_search(const char16_t* subject, const char16_t* pattern, bool whole,
                  constants::syntax_option_type options) {
  if (subject == nullptr || pattern == nullptr) return false;
  // Compiled as createMatcher compiles.
  const detail::compiled_pattern compiled =
      detail::compile_pattern(pattern, options, detail::pattern_text::prepared);
  if (!compiled) throw compiled.error();
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString slot;  // outlives the matcher, which refers to it
  const std::unique_ptr<icu::RegexMatcher> matcher = detail::new_matcher(*compiled.pattern, status);
  if (matcher == nullptr) return false;
  return search_in_slot(*matcher, slot, subject, whole, options);
}

std::u16string get_group(const matcher_ptr& handle, int group) {
  icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  if (matcher == nullptr) return {};
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text = group < 0 ? matcher->group(status) : matcher->group(group, status);
  if (U_FAILURE(status)) return {};
  return detail::from_icu_until_nul(text);
}

int get_group_count(const matcher_ptr& handle) {
  const icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  return matcher == nullptr ? 0 : matcher->groupCount() + 1;
}

}  // namespace scl::regex
