// The ICU side of a matcher handle.
//
// A handle points at an ICU RegexMatcher made from a compiled pattern (shared
// with this thread's cache). Beside the matcher lives the handle's own
// storage, allocated from ICU's allocator before anything else: the compiled
// pattern, which the matcher only refers to, and a subject slot, the text
// onto which the library last reset the matcher, so that group texts can be
// read after the search that produced them has returned. The matcher finds
// its storage through the context of its match callback.
#ifndef SCL_REGEX_SRC_ICU_HANDLE_MATCHER_H
#define SCL_REGEX_SRC_ICU_HANDLE_MATCHER_H

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "icu/compile.h"
#include "scl/regex/matcher.h"

namespace scl::regex::detail {

// The matcher of a new handle for `pattern` compiled with `options`. Returns
// null, with no error, if ICU's allocator has no storage for the handle.
// Otherwise returns the matcher, or null with ICU's failure in `status`.
// Throws std::bad_alloc.
icu::RegexMatcher* new_handle_matcher(const std::u16string& pattern,
                                      constants::syntax_option_type options, UErrorCode& status);

// Destroys a matcher made by new_handle_matcher and its storage.
void delete_handle_matcher(icu::RegexMatcher* matcher) noexcept;

// The subject slot of a matcher made by new_handle_matcher: the text it
// searches stays there, beside it, after the search returns.
icu::UnicodeString& handle_slot(icu::RegexMatcher& matcher) noexcept;

// The ICU matcher of a handle, or null for an empty handle.
inline icu::RegexMatcher* icu_matcher(const matcher_ptr& handle) noexcept {
  return static_cast<icu::RegexMatcher*>(handle.get());
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_HANDLE_MATCHER_H
