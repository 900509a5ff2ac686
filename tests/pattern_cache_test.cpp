// The per-thread cache of compiled patterns: what it keeps, for how long, and
// that a pattern in use outlives its eviction.
#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <scl/regex.h>

#include "icu/compile.h"
#include "icu/handle_matcher.h"
#include "icu/pattern_cache.h"

namespace {

namespace re = scl::regex;
using re::detail::cached_pattern_count;
using re::detail::kCachedPatterns;
using re::detail::pattern_is_cached;

constexpr std::uint32_t kDotAll = UREGEX_DOTALL;

// `text` compiled as a pattern with options 0 (ICU flags: DOTALL), through the
// library's one compile step; ICU's verdict in `status`.
re::detail::shared_pattern compiled_pattern(const icu::UnicodeString& text, UErrorCode& status) {
  const re::detail::compiled_pattern compiled = re::detail::compile_prepared(
      std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length())), 0);
  if (U_FAILURE(compiled.status)) status = compiled.status;
  return compiled.pattern;
}

icu::UnicodeString numbered(std::size_t i) {
  return icu::UnicodeString(u"p") + icu::UnicodeString(static_cast<UChar32>(u'a' + i % 26)) +
         icu::UnicodeString(static_cast<UChar32>(u'a' + i / 26));
}

// Each test starts from an empty cache on its own thread.
template <class Test>
void on_fresh_thread(Test test) {
  std::thread(test).join();
}

TEST(PatternCache, KeepsTheMostRecentlyUsedAndEvictsTheLeast) {
  on_fresh_thread([] {
    UErrorCode status = U_ZERO_ERROR;
    for (std::size_t i = 0; i < kCachedPatterns; ++i) compiled_pattern(numbered(i), status);
    ASSERT_EQ(cached_pattern_count(), kCachedPatterns);
    compiled_pattern(numbered(0), status);                // used again: now the most recent
    compiled_pattern(numbered(kCachedPatterns), status);  // one more evicts the least recent
    EXPECT_EQ(cached_pattern_count(), kCachedPatterns);
    EXPECT_TRUE(pattern_is_cached(numbered(0), kDotAll));
    EXPECT_FALSE(pattern_is_cached(numbered(1), kDotAll));
    EXPECT_TRUE(pattern_is_cached(numbered(2), kDotAll));
    EXPECT_TRUE(pattern_is_cached(numbered(kCachedPatterns), kDotAll));
    EXPECT_TRUE(U_SUCCESS(status));
  });
}

TEST(PatternCache, EqualKeysShareOnePattern) {
  on_fresh_thread([] {
    UErrorCode status = U_ZERO_ERROR;
    const auto first = compiled_pattern(u"a+b", status);
    const auto second = compiled_pattern(u"a+b", status);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(cached_pattern_count(), 1u);
  });
}

TEST(PatternCache, FailingPatternsAreNotKept) {
  on_fresh_thread([] {
    UErrorCode status = U_ZERO_ERROR;
    EXPECT_EQ(compiled_pattern(u"(a", status), nullptr);
    EXPECT_EQ(status, U_REGEX_MISMATCHED_PAREN);
    EXPECT_EQ(cached_pattern_count(), 0u);
    status = U_ZERO_ERROR;
    EXPECT_EQ(compiled_pattern(u"(a", status),
              nullptr);  // fails again, not a stale success
    EXPECT_EQ(status, U_REGEX_MISMATCHED_PAREN);
    EXPECT_EQ(re::regex_replace(u"(a", u"(a", u"x", 0), u"(a");
    EXPECT_EQ(cached_pattern_count(), 0u);
  });
}

TEST(PatternCache, EqualPreparedPatternsFromDifferentRawPatternsShareAnEntry) {
  on_fresh_thread([] {
    EXPECT_EQ(re::regex_replace(u"caf\u00e9", u"caf\u00e9", u"x", 0x4), u"x");
    EXPECT_EQ(re::regex_replace(u"caf\u00e9", u"cafe\u0301", u"y", 0x4), u"y");
    EXPECT_EQ(re::regex_replace(u"caf\u00e9", u"cafe", u"z", 0x4), u"z");
    EXPECT_EQ(cached_pattern_count(), 1u);
    EXPECT_TRUE(pattern_is_cached(u"cafe", kDotAll));
  });
}

TEST(PatternCache, DifferentFlagWordsDoNotShare) {
  on_fresh_thread([] {
    EXPECT_EQ(re::regex_replace(u"Aa", u"a", u"x", 0), u"Ax");
    EXPECT_EQ(re::regex_replace(u"Aa", u"a", u"x", re::constants::case_insensitive), u"xx");
    EXPECT_EQ(cached_pattern_count(), 2u);
    // Options that only change preparation share the flag word.
    EXPECT_EQ(re::regex_replace(u"Aa", u"a", u"x", re::constants::normalize_nfc), u"Ax");
    EXPECT_EQ(cached_pattern_count(), 2u);
  });
}

TEST(PatternCache, PatternTextIsTheKeyToItsFirstNul) {
  on_fresh_thread([] {
    // The one-shot replacement reads its pattern up to the first U+0000.
    EXPECT_EQ(re::regex_replace(u"ab", std::u16string(u"a\0zzz", 5), u"x", 0), u"xb");
    EXPECT_EQ(re::regex_replace(u"ab", u"a", u"y", 0), u"yb");
    EXPECT_EQ(cached_pattern_count(), 1u);
  });
}

TEST(PatternCache, CallbackRunningOtherOneShotsThatEvictItsPatternIsSafe) {
  on_fresh_thread([] {
    int calls = 0;
    const std::u16string result = re::regex_replace(
        u"a1 a2 a3", u"a\\d",
        [&](const std::u16string& matched, bool&) {
          ++calls;
          // Evicts every entry, the caller's pattern among them.
          for (std::size_t i = 0; i < 2 * kCachedPatterns; ++i) {
            const icu::UnicodeString p = numbered(i);
            (void)re::regex_replace(
                u"x", std::u16string(p.getBuffer(), static_cast<std::size_t>(p.length())), u"y", 0);
          }
          return u"<" + matched + u">";
        },
        0);
    EXPECT_EQ(result, u"<a1> <a2> <a3>");
    EXPECT_EQ(calls, 3);
    EXPECT_FALSE(pattern_is_cached(u"a\\d", kDotAll));
  });
}

TEST(PatternCache, LongPatternsAreNotKeptAndTextIsBounded) {
  on_fresh_thread([] {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString huge(static_cast<int32_t>(re::detail::kCachedUnits + 1), u'a',
                                  static_cast<int32_t>(re::detail::kCachedUnits + 1));
    EXPECT_NE(compiled_pattern(huge, status), nullptr);
    EXPECT_EQ(cached_pattern_count(), 0u);
    const icu::UnicodeString big(static_cast<int32_t>(re::detail::kCachedUnits / 2), u'b',
                                 static_cast<int32_t>(re::detail::kCachedUnits / 2));
    compiled_pattern(big, status);
    compiled_pattern(big + u"c", status);  // together over the bound: the first goes
    EXPECT_EQ(cached_pattern_count(), 1u);
    EXPECT_TRUE(pattern_is_cached(big + u"c", kDotAll));
  });
}

TEST(PatternCache, ThousandsOfShortLivedThreadsEachFreeTheirPatterns) {
  // Under LeakSanitizer, anything a thread's cache kept past its exit is reported.
  for (int i = 0; i < 2000; ++i) {
    std::thread([i] {
      const std::u16string pattern =
          u"a{" + std::u16string(1, static_cast<char16_t>(u'1' + i % 9)) + u"}";
      EXPECT_EQ(re::regex_replace(u"aaaaaaaaa", pattern, u"x", 0).front(), u'x');
      EXPECT_EQ(cached_pattern_count(), 1u);
    }).join();
  }
}

TEST(PatternCache, TimeLimitStopsMatchersFromCachedPatterns) {
  on_fresh_thread([] {
    EXPECT_EQ(re::regex_replace(u"ab", u"(a?)+?b", u"x", 0), u"x");  // compiled and kept
    ASSERT_TRUE(pattern_is_cached(u"(a?)+?b", kDotAll));
    re::match_time_limit limit(std::chrono::milliseconds(30));
    EXPECT_EQ(re::regex_replace(u"aac", u"(a?)+?b", u"x", 0), u"aac");  // the kept pattern, stopped
    EXPECT_TRUE(limit.exceeded());
  });
}

TEST(PatternCache, HandlesAndRegexObjectsShareTheThreadsCompiledPatterns) {
  on_fresh_thread([] {
    const re::matcher_ptr first =
        re::createMatcher(u"caf\u00e9+", re::constants::ignore_diacritics);
    const re::matcher_ptr second =
        re::createMatcher(u"cafe\u0301+", re::constants::ignore_diacritics);
    // Both prepare to "cafe+" and compile with the same flags: one compiled pattern.
    EXPECT_EQ(&re::detail::icu_matcher(first)->pattern(),
              &re::detail::icu_matcher(second)->pattern());
    EXPECT_EQ(cached_pattern_count(), 1u);
    EXPECT_TRUE(pattern_is_cached(u"cafe+", kDotAll));
    // Each handle still has its own matcher and its own subject.
    EXPECT_NE(first.get(), second.get());
    EXPECT_TRUE(re::regex_search(first, u"un caf\u00e9", false));
    EXPECT_FALSE(re::regex_search(second, u"un th\u00e9", false));
    EXPECT_EQ(re::get_group(first, 0), u"cafe");
    re::regex object(u"cafe+", 0);
    EXPECT_EQ(cached_pattern_count(), 1u);
  });
}

TEST(PatternCache, AHandleOutlivesTheThreadThatCompiledItsPattern) {
  re::matcher_ptr handle;
  std::thread([&handle] { handle = re::createMatcher(u"(\\d+)-(\\d+)", 0); }).join();
  // The thread's cache is gone; the handle keeps its pattern.
  ASSERT_TRUE(re::regex_search(handle, u"pages 12-34", false));
  EXPECT_EQ(re::get_group(handle, 2), u"34");
}

TEST(PatternCache, SwitchedOffCompilesEveryCall) {
  on_fresh_thread([] {
    re::detail::set_pattern_cache_enabled(false);
    UErrorCode status = U_ZERO_ERROR;
    const auto first = compiled_pattern(u"a+b", status);
    const auto second = compiled_pattern(u"a+b", status);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(cached_pattern_count(), 0u);
  });
}

}  // namespace
