// Test helpers that look inside a matcher handle: its pointer is an ICU RegexMatcher.
#ifndef SCL_REGEX_TESTS_SUPPORT_ICU_VIEW_H
#define SCL_REGEX_TESTS_SUPPORT_ICU_VIEW_H

#include <string>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <scl/regex.h>

namespace scl_regex_test {

inline icu::RegexMatcher& icu_matcher(const scl::regex::matcher_ptr& handle) {
  return *static_cast<icu::RegexMatcher*>(handle.get());
}

inline std::u16string to_u16(const icu::UnicodeString& text) {
  return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

// The pattern text that ICU compiled.
inline std::u16string compiled_pattern(const scl::regex::matcher_ptr& handle) {
  return to_u16(icu_matcher(handle).pattern().pattern());
}

// The ICU compile flags of the handle's pattern.
inline uint32_t compiled_flags(const scl::regex::matcher_ptr& handle) {
  return icu_matcher(handle).pattern().flags();
}

// Runs the handle's ICU matcher over `subject` (its full length) and returns
// whether the pattern is found; `start` receives the first match's start.
// The matcher is left referring to a dead input: reset it before reading it again.
inline bool icu_find(const scl::regex::matcher_ptr& handle, const std::u16string& subject,
                     int* start = nullptr) {
  icu::RegexMatcher& matcher = icu_matcher(handle);
  const icu::UnicodeString input(subject.data(), static_cast<int32_t>(subject.size()));
  matcher.reset(input);
  UErrorCode status = U_ZERO_ERROR;
  const bool found = matcher.find(status) != 0 && U_SUCCESS(status);
  if (found && start != nullptr) *start = matcher.start(status);
  return found;
}

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_ICU_VIEW_H
