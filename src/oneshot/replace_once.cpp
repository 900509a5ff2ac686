#include "oneshot/replace_once.h"

#include <utility>

#include <unicode/regex.h>

#include "cache/pattern_cache.h"
#include "engine/icu_text.h"
#include "i18n/host_i18n.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

// Runs `replace` over `input`; false if the pattern does not compile or ICU fails.
bool replace_in(const icu::UnicodeString& input, const icu::UnicodeString& pattern,
                const icu::UnicodeString& replacement, std::uint32_t flags, replace_member replace,
                icu::UnicodeString& output) {
  UErrorCode status = U_ZERO_ERROR;
  const shared_pattern compiled = compiled_pattern(pattern, flags, status);
  if (compiled == nullptr) return false;
  const std::unique_ptr<icu::RegexMatcher> matcher = new_matcher_of(*compiled, &input, status);
  if (matcher == nullptr) return false;
  output = replace_within_deadline(*matcher, replace, replacement, status);
  return U_SUCCESS(status);
}

std::u16string replace_once(std::u16string subject, const icu::UnicodeString& pattern,
                            const icu::UnicodeString& replacement, std::uint32_t flags,
                            replace_member replace) {
  icu::UnicodeString output;
  if (!replace_in(icu_until_nul(subject), pattern, replacement, flags, replace, output)) {
    return subject;
  }
  const char16_t* buffer = output.getTerminatedBuffer();
  if (buffer != nullptr) subject.assign(buffer);
  return subject;
}

}  // namespace

std::u16string replace_all_once(std::u16string subject, const icu::UnicodeString& pattern,
                                const icu::UnicodeString& replacement, std::uint32_t flags) {
  return replace_once(std::move(subject), pattern, replacement, flags,
                      &icu::RegexMatcher::replaceAll);
}

std::u16string replace_first_once(std::u16string subject, const icu::UnicodeString& pattern,
                                  const icu::UnicodeString& replacement, std::uint32_t flags) {
  return replace_once(std::move(subject), pattern, replacement, flags,
                      &icu::RegexMatcher::replaceFirst);
}

std::string replace_all_utf8(const std::string& subject, const icu::UnicodeString& pattern,
                             const icu::UnicodeString& replacement, std::uint32_t flags) {
  icu::UnicodeString output;
  if (!replace_in(icu_until_nul(i18n::utf8_to_ustring(subject)), pattern, replacement, flags,
                  &icu::RegexMatcher::replaceAll, output)) {
    return subject;
  }
  return i18n::ustring_to_utf8(output.getTerminatedBuffer());
}

}  // namespace scl::regex::detail
