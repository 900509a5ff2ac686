// The engine behind the one-shot replace functions: a matcher of its own over
// the subject, from the thread's cache of compiled patterns.
#ifndef SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H
#define SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H

#include <optional>
#include <string>
#include <string_view>

#include <unicode/unistr.h>

#include "icu/compile.h"
#include "icu/matcher.h"

namespace scl::regex::detail {

// Replaces the matches (all or the first) of `pattern`, compiled with
// `options` from its text as `text` says, in `subject` up to its first
// U+0000, with `replacement` (ICU's syntax, up to its first U+0000). Returns
// ICU's result, or nothing if the pattern does not compile or ICU fails.
std::optional<icu::UnicodeString> replace_once(std::u16string_view subject,
                                               std::u16string_view pattern,
                                               std::u16string_view replacement,
                                               constants::syntax_option_type options,
                                               pattern_text text, replace_scope scope);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ONESHOT_REPLACE_ONCE_H
