// Search and group access on a matcher handle.
#include <string>

#include "cache/pattern_cache.h"
#include "engine/icu_flags.h"
#include "engine/icu_text.h"
#include "handle/matcher_storage.h"
#include "prepare/prepare_pass.h"
#include "scl/regex/matcher_search.h"
#include "scl/regex/prepare.h"
#include "time_limit/deadline.h"

namespace scl::regex {

namespace {

// Searches `subject`, up to its first U+0000 and prepared with `options`, with
// `matcher`, which is reset onto `slot`, where the searched text stays.
// Text that preparation would give back unchanged (always without
// preparation bits; commonly with them) is copied straight in.
bool search_in_slot(icu::RegexMatcher& matcher, icu::UnicodeString& slot,
                    const std::u16string& subject, bool whole,
                    constants::syntax_option_type options) {
  if ((options & (constants::normalize_nfc | constants::ignore_diacritics)) == 0) {
    detail::reset_onto_until_nul(matcher, slot, subject);
  } else if (const int32_t length = detail::length_until_nul(subject); detail::preparation_keeps(
                 subject.c_str(), static_cast<std::size_t>(length), options)) {
    detail::reset_onto(matcher, slot, subject.c_str(), length);
  } else {
    const std::u16string prepared = prepare_text(subject, options);
    detail::reset_onto(matcher, slot, prepared.c_str(), detail::length_until_nul(prepared));
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
  // Compiled as createMatcher compiles, from the thread's cache.
  const std::u16string prepared = prepare_text(std::u16string(pattern), options);
  UErrorCode status = U_ZERO_ERROR;
  const detail::shared_pattern compiled =
      detail::compiled_pattern(detail::icu_whole(prepared), detail::icu_flags(options), status);
  if (compiled == nullptr) throw regex_exception(status);
  icu::UnicodeString slot;  // outlives the matcher, which refers to it
  const std::unique_ptr<icu::RegexMatcher> matcher =
      detail::new_matcher_of(*compiled, nullptr, status);
  if (matcher == nullptr) return false;
  return search_in_slot(*matcher, slot, std::u16string(subject), whole, options);
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
