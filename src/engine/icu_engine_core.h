// What an ICU engine does, on its parts: the matcher (null when there is
// none), the prepared subject it searches, and the stored text. Shared by
// the public ICU engine, which owns a matcher handle, and the engine of the
// one-shot functions, which makes its matcher from a cached pattern.
#ifndef SCL_REGEX_SRC_ENGINE_ICU_ENGINE_CORE_H
#define SCL_REGEX_SRC_ENGINE_ICU_ENGINE_CORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "scl/regex/expected.h"
#include "scl/regex/options.h"
#include "scl/regex/regex_impl.h"
#include "scl/regex/result.h"

namespace scl::regex::detail {

// Stores `raw` in `stored`, prepares it with `options` into `subject` and
// rewinds `matcher` onto it.
void set_engine_subject(icu::RegexMatcher* matcher, icu::UnicodeString& subject,
                        std::u16string& stored, std::u16string_view raw,
                        constants::syntax_option_type options);

// `length` units of `subject` from `start`, both taken as signed 32-bit values
// pinned to the subject, up to the first U+0000 among them.
std::u16string engine_subject_piece(const icu::UnicodeString& subject, std::size_t start,
                                    std::size_t length);

// The next match as a result of `engine`, or a no-match result.
regex_result engine_match(icu::RegexMatcher* matcher, std::uint32_t match_flags,
                          const regex_impl_abstract* engine);

// The next match, a no-match result, or ICU's error (-1000 without a matcher).
expected_result<regex_result> engine_match_ex(icu::RegexMatcher* matcher, std::uint32_t match_flags,
                                              const regex_impl_abstract* engine);

// The positions of the current match's groups.
void engine_groups(const icu::RegexMatcher* matcher, const regex_impl_abstract* engine,
                   std::vector<group_result>& groups);

// Resets `engine` onto `subject_text` through its interface (with `options`),
// then replaces every match of `matcher` in it.
expected_result<std::u16string> engine_replace_all(regex_impl_abstract& engine,
                                                   icu::RegexMatcher* matcher,
                                                   constants::syntax_option_type options,
                                                   const std::u16string& subject_text,
                                                   const std::u16string& replacement);

// The replacement-text reference to the group `name`: "${name}".
std::u16string engine_group_reference(const std::u16string& name);

// The group called `name`, or `name` read as a number, or -1.
int engine_group_number(const icu::RegexMatcher* matcher, const std::string& name);

// The number of capture groups; 0 without a matcher.
int engine_group_count(const icu::RegexMatcher* matcher);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_ICU_ENGINE_CORE_H
