// The engines behind the one-shot replace functions: each builds its own ICU
// matcher over the subject, replaces, and gives the matcher up again.
#ifndef SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H
#define SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H

#include <cstdint>
#include <string>

#include <unicode/unistr.h>

namespace scl::regex::detail {

// Replaces every match in the (already prepared) `subject`, read up to its
// first U+0000. Returns the result, or `subject` whole on any ICU failure.
std::u16string replace_all_once(std::u16string subject, const icu::UnicodeString& pattern,
                                const icu::UnicodeString& replacement, std::uint32_t flags);

// As replace_all_once, for the first match only.
std::u16string replace_first_once(std::u16string subject, const icu::UnicodeString& pattern,
                                  const icu::UnicodeString& replacement, std::uint32_t flags);

// Replaces every match in the UTF-8 `subject`, decoded up to its first U+0000.
// Returns the result as UTF-8, or `subject` as passed in on any ICU failure.
std::string replace_all_utf8(const std::string& subject, const icu::UnicodeString& pattern,
                             const icu::UnicodeString& replacement, std::uint32_t flags);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H
