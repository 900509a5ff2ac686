// ICU matchers as the library uses them: made from a compiled pattern, with
// the thread's time limit; set onto a subject; searched, and replaced with.
#ifndef SCL_REGEX_SRC_ICU_MATCHER_H
#define SCL_REGEX_SRC_ICU_MATCHER_H

#include <memory>
#include <string_view>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace scl::regex::detail {

// A new matcher of `pattern`, over no text yet, whose searches keep the
// thread's time limit; null with ICU's failure in `status` if it cannot be made.
std::unique_ptr<icu::RegexMatcher> new_matcher(const icu::RegexPattern& pattern,
                                               UErrorCode& status);

// Copies `text` into `slot` (reusing its buffer) and resets `matcher` onto
// it; the previous match is discarded. ICU's matcher only refers to its
// input: `slot` must outlive the searches. With `until_nul`, the text ends at
// its first U+0000 (found while copying). Throws std::bad_alloc.
enum class subject_end { whole, until_nul };
void set_subject(icu::RegexMatcher& matcher, icu::UnicodeString& slot, std::u16string_view text,
                 subject_end end = subject_end::whole);

// The next match after the previous one, within the thread's time limit; a
// search stopped by it fails with U_REGEX_TIME_OUT.
bool find_next(icu::RegexMatcher& matcher, UErrorCode& status);

// Every match, or the first, replaced as ICU's replaceAll or replaceFirst
// does, within the thread's time limit: should the limit stop any search
// inside, the replacement fails with U_REGEX_TIME_OUT (ICU would carry on as
// if there were no more matches).
enum class replace_scope { all, first };
icu::UnicodeString replace_matches(icu::RegexMatcher& matcher, replace_scope scope,
                                   const icu::UnicodeString& replacement, UErrorCode& status);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_MATCHER_H
