// Search and group access on a matcher handle.
#include <string>

#include "engine/icu_text.h"
#include "handle/matcher_storage.h"
#include "prepare/prepare_pass.h"
#include "scl/regex/matcher_search.h"
#include "scl/regex/prepare.h"
#include "time_limit/deadline.h"

namespace scl::regex {

bool regex_search(const matcher_ptr& handle, const std::u16string& subject, bool whole) {
  icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  if (matcher == nullptr) return false;
  // The subject, ending at its first U+0000, is prepared as the pattern was and
  // kept beside the matcher, so that get_group can read the match after this
  // call returns. Text that preparation would give back unchanged (always
  // without preparation bits; commonly with them) is copied straight in.
  const constants::syntax_option_type options = handle.get_deleter().options;
  if ((options & (constants::normalize_nfc | constants::ignore_diacritics)) == 0) {
    detail::reset_onto_until_nul(*matcher, subject);
  } else if (const int32_t length = detail::length_until_nul(subject);
             detail::preparation_keeps(subject.c_str(), static_cast<std::size_t>(length), options)) {
    detail::reset_onto(*matcher, subject.c_str(), length);
  } else {
    const std::u16string prepared = prepare_text(subject, options);
    detail::reset_onto(*matcher, prepared.c_str(), detail::length_until_nul(prepared));
  }
  UErrorCode status = U_ZERO_ERROR;
  detail::check_deadline(status);
  const bool found = whole ? matcher->matches(status) : matcher->find(0, status);
  return U_SUCCESS(status) && found;
}

bool regex_search(const char16_t* subject, const char16_t* pattern, bool whole,
                  constants::syntax_option_type options) {
  if (subject == nullptr || pattern == nullptr) return false;
  const matcher_ptr handle = createMatcher(std::u16string(pattern), options);
  return regex_search(handle, std::u16string(subject), whole);
}

std::u16string get_group(const matcher_ptr& handle, int group) {
  icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  if (matcher == nullptr) return {};
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text = group < 0 ? matcher->group(status) : matcher->group(group, status);
  if (U_FAILURE(status)) return {};
  return detail::text_until_nul(text);
}

int get_group_count(const matcher_ptr& handle) {
  const icu::RegexMatcher* matcher = detail::icu_matcher(handle);
  return matcher == nullptr ? 0 : matcher->groupCount() + 1;
}

}  // namespace scl::regex
