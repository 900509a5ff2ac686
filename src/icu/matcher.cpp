#include "icu/matcher.h"

#include <new>

#include "icu/icu_string.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {

std::unique_ptr<icu::RegexMatcher> new_matcher(const icu::RegexPattern& pattern,
                                               UErrorCode& status) {
  std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(status));
  if (U_FAILURE(status)) return nullptr;
  if (matcher == nullptr) {
    status = U_MEMORY_ALLOCATION_ERROR;
    return nullptr;
  }
  watch_deadline(*matcher);
  return matcher;
}

void set_subject(icu::RegexMatcher& matcher, icu::UnicodeString& slot, std::u16string_view text,
                 subject_end end) {
  if (end == subject_end::whole) {
    slot.setTo(text.data(), icu_length(text.size()));
  } else {
    const int32_t capacity = icu_length(text.size());
    char16_t* buffer = slot.getBuffer(capacity);
    if (buffer == nullptr) throw std::bad_alloc();
    const std::size_t copied = copy_until_nul(buffer, text.data(), text.size());
    slot.releaseBuffer(static_cast<int32_t>(copied));
  }
  matcher.reset(slot);
}

bool find_next(icu::RegexMatcher& matcher, UErrorCode& status) {
  check_deadline(status);
  const bool found = matcher.find(status);
  status = search_status(status);
  return found;
}

icu::UnicodeString replace_matches(icu::RegexMatcher& matcher, replace_scope scope,
                                   const icu::UnicodeString& replacement, UErrorCode& status) {
  check_deadline(status);
  const unsigned stops = deadline_stops();
  icu::UnicodeString output = scope == replace_scope::all
                                  ? matcher.replaceAll(replacement, status)
                                  : matcher.replaceFirst(replacement, status);
  status = search_status(status);
  if (U_SUCCESS(status) && deadline_stops() != stops) status = U_REGEX_TIME_OUT;
  return output;
}

}  // namespace scl::regex::detail
