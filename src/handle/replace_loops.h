// The replacement engines shared by the handle functions and the one-shot
// callback form. Each writes into `output` and returns false when ICU fails;
// the caller then returns the subject unchanged.
#ifndef SCL_REGEX_SRC_HANDLE_REPLACE_LOOPS_H
#define SCL_REGEX_SRC_HANDLE_REPLACE_LOOPS_H

#include <functional>
#include <string>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "scl/regex/matcher.h"
#include "scl/regex/matcher_replace.h"

namespace scl::regex::detail {

using text_callback = std::function<std::u16string(const std::u16string&, bool&)>;
using handle_callback = std::function<std::u16string(const matcher_ptr&, bool&)>;
using termination_callback =
    std::function<std::u16string(const std::u16string&, ECallbackTermination&)>;

// Replaces every match with the callback's text for the matched text.
bool replace_loop_text(icu::UnicodeString& output, icu::RegexMatcher& matcher,
                       const text_callback& callback);

// Replaces every match with the callback's text; the callback gets `handle`,
// whose matcher stands on the current match.
bool replace_loop_handle(icu::UnicodeString& output, const matcher_ptr& handle,
                         const handle_callback& callback);

// Replaces every match with the callback's text; the callback decides how to go on.
bool replace_loop_termination(icu::UnicodeString& output, const matcher_ptr& handle,
                              const termination_callback& callback);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_HANDLE_REPLACE_LOOPS_H
