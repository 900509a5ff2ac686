// The storage behind a matcher handle.
//
// A handle points at an ICU RegexMatcher allocated with ICU's allocator. The
// same allocation holds, right behind the matcher, a subject slot: the text
// onto which the library last reset the matcher. ICU's matcher only refers to
// its input, so keeping that input here lets group texts be read after the
// search that produced them has returned.
#ifndef SCL_REGEX_SRC_HANDLE_MATCHER_STORAGE_H
#define SCL_REGEX_SRC_HANDLE_MATCHER_STORAGE_H

#include <cstdint>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "scl/regex/matcher.h"

namespace scl::regex::detail {

// Compiles `pattern` with ICU `flags` into a new matcher, whose searches keep
// the thread's time limit. Returns null, with `status` untouched, if ICU's
// allocator has no storage. Otherwise returns the matcher even when ICU
// reports a failure in `status`; the caller destroys it.
icu::RegexMatcher* new_matcher(const icu::UnicodeString& pattern, std::uint32_t flags,
                               UErrorCode& status);

// Destroys a matcher made by new_matcher, its subject slot, and frees the storage.
void delete_matcher(icu::RegexMatcher* matcher) noexcept;

// Copies `length` units at `text` into `slot` (reusing its buffer) and resets
// `matcher` onto it; the previous match is discarded.
void reset_onto(icu::RegexMatcher& matcher, icu::UnicodeString& slot, const char16_t* text,
                int32_t length);

// The same with `text` up to its first U+0000, found while copying.
// Throws std::bad_alloc if the slot cannot grow.
void reset_onto_until_nul(icu::RegexMatcher& matcher, icu::UnicodeString& slot,
                          const std::u16string& text);

// The subject slot of a matcher made by new_matcher: the text it searches
// stays there, beside it, after the search returns.
icu::UnicodeString& handle_slot(icu::RegexMatcher& matcher) noexcept;

// The ICU matcher of a handle, or null for an empty handle.
inline icu::RegexMatcher* icu_matcher(const matcher_ptr& handle) noexcept {
  return static_cast<icu::RegexMatcher*>(handle.get());
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_HANDLE_MATCHER_STORAGE_H
