// Compiled patterns kept per thread, for the functions that compile a pattern
// for one call only.
//
// Each thread keeps up to kCachedPatterns compiled patterns (and at most
// kCachedUnits units of pattern text in all), least recently used first out.
// The key is exactly what ICU compiles: the pattern text and the flag word.
// A pattern that fails to compile is never kept. Callers hold the pattern
// they get for as long as they use it: an entry evicted meanwhile (say by a
// replace callback that runs other one-shot functions) stays alive until its
// last holder lets go. Everything is freed when the thread ends.
#ifndef SCL_REGEX_SRC_CACHE_PATTERN_CACHE_H
#define SCL_REGEX_SRC_CACHE_PATTERN_CACHE_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include <unicode/parseerr.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace scl::regex::detail {

inline constexpr std::size_t kCachedPatterns = 64;
inline constexpr std::size_t kCachedUnits = std::size_t{64} * 1024;

using shared_pattern = std::shared_ptr<const icu::RegexPattern>;

// Returns `pattern` compiled with ICU `flags`, from this thread's cache or
// compiled now (and kept). On failure returns null with ICU's error in
// `status` and, when `where` is given, ICU's parse position in it.
shared_pattern compiled_pattern(const icu::UnicodeString& pattern, std::uint32_t flags,
                                UErrorCode& status, UParseError* where = nullptr);

// A new matcher of `pattern` over `input` (or over nothing), whose searches
// keep the thread's time limit; null with `status` set if ICU fails.
std::unique_ptr<icu::RegexMatcher> new_matcher_of(const icu::RegexPattern& pattern,
                                                  const icu::UnicodeString* input,
                                                  UErrorCode& status);

// For tests: whether the calling thread keeps patterns (it does unless told
// otherwise), and what it keeps.
void set_pattern_cache_enabled(bool enabled) noexcept;
std::size_t cached_pattern_count() noexcept;
bool pattern_is_cached(const icu::UnicodeString& pattern, std::uint32_t flags) noexcept;

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_CACHE_PATTERN_CACHE_H
