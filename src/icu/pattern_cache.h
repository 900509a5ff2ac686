// Compiled patterns kept per thread.
//
// Each thread keeps up to kCachedPatterns compiled patterns (and at most
// kCachedUnits units of pattern text in all), least recently used first out.
// The key is exactly what ICU compiles: the pattern text and the flag word.
// Only compile_pattern (icu/compile.h) fills the cache, with what it returns;
// a pattern that fails to compile is never kept. Holders of a pattern keep it
// alive for as long as they use it: an entry evicted meanwhile (say by a
// replace callback that compiles other patterns) stays alive until its last
// holder lets go. Everything is freed when the thread ends.
#ifndef SCL_REGEX_SRC_ICU_PATTERN_CACHE_H
#define SCL_REGEX_SRC_ICU_PATTERN_CACHE_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace scl::regex::detail {

inline constexpr std::size_t kCachedPatterns = 64;
inline constexpr std::size_t kCachedUnits = std::size_t{64} * 1024;

using shared_pattern = std::shared_ptr<const icu::RegexPattern>;

// This thread's compiled pattern for `text` and ICU `flags`, or null.
shared_pattern cached_pattern(const icu::UnicodeString& text, std::uint32_t flags);

// Keeps `compiled` as this thread's pattern for `text` and `flags`, unless
// the thread keeps nothing or the text is too long to keep.
void keep_pattern(const icu::UnicodeString& text, std::uint32_t flags, shared_pattern compiled);

// For tests: whether the calling thread keeps patterns (it does unless told
// otherwise), and what it keeps.
void set_pattern_cache_enabled(bool enabled) noexcept;
std::size_t cached_pattern_count() noexcept;
bool pattern_is_cached(const icu::UnicodeString& pattern, std::uint32_t flags) noexcept;

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_PATTERN_CACHE_H
