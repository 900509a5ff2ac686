// match_time_limit: one deadline for every search on the thread, whatever the
// family of functions, with each function's documented failure result.
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>
#include <scl/regex/regex_impl_icu.h>

namespace {

namespace re = scl::regex;
using re::npos;
using std::chrono::milliseconds;
using clock_type = std::chrono::steady_clock;

// Patterns on which ICU 72 never returns for the subject "aac", and one that
// takes exponential time on 30 x's.
const std::vector<std::u16string> kHanging = {u"(a?)+?b", u"(?:a?)+?b", u"(a?)*?b",
                                              u"(a|)+?b", u"(a*)+?b",   u"(a{0,2})*?b"};
const std::u16string kHangingSubject = u"aac";
const std::u16string kExponential = u"(x+x+)+y";
const std::u16string kThirtyXs(30, u'x');

// Runs `search` under a 50 ms limit; checks that it returned promptly (a
// generous bound: the machine is shared) and that the limit saw the stop.
template <class Search>
auto under_limit(Search search) {
  re::match_time_limit limit(milliseconds(50));
  const auto start = clock_type::now();
  auto result = search();
  EXPECT_LT(clock_type::now() - start, std::chrono::seconds(2));
  EXPECT_TRUE(limit.exceeded());
  return result;
}

class HangingPattern : public testing::TestWithParam<std::u16string> {};

INSTANTIATE_TEST_SUITE_P(TimeLimit, HangingPattern,
                         testing::Values(u"(a?)+?b", u"(?:a?)+?b", u"(a?)*?b", u"(a|)+?b",
                                         u"(a*)+?b", u"(a{0,2})*?b"));

TEST_P(HangingPattern, HandleSearchesGiveFalse) {
  re::matcher_ptr handle = re::createMatcher(GetParam(), 0);
  EXPECT_FALSE(under_limit([&] { return re::regex_search(handle, kHangingSubject, false); }));
  EXPECT_FALSE(under_limit([&] { return re::regex_search(handle, kHangingSubject, true); }));
  EXPECT_FALSE(under_limit(
      [&] { return re::regex_search(kHangingSubject.c_str(), GetParam().c_str(), false, 0); }));
  EXPECT_EQ(re::get_group(handle, 0), u"");
}

TEST_P(HangingPattern, HandleReplacementsGiveTheSubjectUnchanged) {
  re::matcher_ptr handle = re::createMatcher(GetParam(), 0);
  EXPECT_EQ(under_limit([&] { return re::regex_replace(handle, kHangingSubject, u"x"); }),
            kHangingSubject);
  EXPECT_EQ(under_limit([&] { return re::regex_replace_first(handle, kHangingSubject, u"x"); }),
            kHangingSubject);
  int calls = 0;
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(handle, kHangingSubject, [&](const std::u16string&, bool&) {
                ++calls;
                return u"x";
              });
            }),
            kHangingSubject);
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(handle, kHangingSubject, [&](const re::matcher_ptr&, bool&) {
                ++calls;
                return u"x";
              });
            }),
            kHangingSubject);
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(handle, kHangingSubject,
                                       [&](const std::u16string&, re::ECallbackTermination&) {
                                         ++calls;
                                         return u"x";
                                       });
            }),
            kHangingSubject);
  EXPECT_EQ(calls, 0);
}

TEST_P(HangingPattern, OneShotReplacementsGiveTheirFailureResult) {
  const std::u16string accented = u"aa\u00e9c";  // prepared with 0x4 into "aaec"
  EXPECT_EQ(under_limit([&] { return re::regex_replace(kHangingSubject, GetParam(), u"x", 0); }),
            kHangingSubject);
  EXPECT_EQ(under_limit([&] { return re::regex_replace(accented, GetParam(), u"x", 0x4); }),
            u"aaec");
  EXPECT_EQ(under_limit([&] { return re::regex_replace_first(accented, GetParam(), u"x", 0x4); }),
            u"aaec");
  const std::string pattern8(GetParam().begin(), GetParam().end());  // ASCII
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(std::string("aac"), pattern8, std::string("x"), 0);
            }),
            "aac");
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(
                  kHangingSubject, GetParam(), [](const std::u16string&, bool&) { return u"x"; },
                  0);
            }),
            kHangingSubject);
  EXPECT_EQ(
      under_limit([&] { return re::regex_replace_preserving(accented, GetParam(), u"x", 0x4); }),
      accented);
  re::regex compiled(GetParam(), 0x4);
  EXPECT_EQ(under_limit([&] { return re::regex_replace_preserving(compiled, accented, u"x"); }),
            accented);
}

TEST_P(HangingPattern, RegexWalksEnd) {
  re::regex compiled(GetParam(), 0);
  compiled.reset(kHangingSubject);
  EXPECT_EQ(under_limit([&] { return compiled.match(); }).start, npos);
  compiled.reset(kHangingSubject);
  const auto step = under_limit([&] { return compiled.match_ex(); });
  ASSERT_TRUE(step.has_error());
  EXPECT_EQ(step.error().getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  EXPECT_STREQ(step.error().what(), "Maximum allowed match time exceeded");
  EXPECT_EQ(under_limit([&] {
              std::size_t steps = 0;
              for (re::regex_iterator it(kHangingSubject, compiled); it->start != npos; ++it)
                ++steps;
              return steps;
            }),
            0u);
  std::vector<re::match_tuple> out{{u"stale", {}}};
  under_limit([&] {
    re::regex_search(kHangingSubject, GetParam(), out, 0);
    return 0;
  });
  EXPECT_TRUE(out.empty());
  under_limit([&] {
    re::regex_search(compiled, kHangingSubject, out);
    return 0;
  });
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(
      under_limit([&] { return re::regex_search_prefix_suffix(kHangingSubject, GetParam(), 0); }),
      std::make_pair(std::u16string(), kHangingSubject));
  EXPECT_TRUE(
      under_limit([&] { return re::regex_find_all(kHangingSubject, GetParam(), 0); }).empty());
  EXPECT_TRUE(under_limit([&] { return re::regex_find_all(compiled, kHangingSubject); }).empty());
}

TEST_P(HangingPattern, IcuEngineReplacementsFail) {
  re::detail::regex_impl_icu engine;
  engine.init(GetParam(), 0);
  EXPECT_EQ(under_limit([&] { return engine.replace(kHangingSubject, u"x"); }), kHangingSubject);
  const auto replaced = under_limit([&] { return engine.replace_ex(kHangingSubject, u"x"); });
  ASSERT_TRUE(replaced.has_error());
  EXPECT_EQ(replaced.error().getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  engine.reset(kHangingSubject, 0);
  EXPECT_EQ(under_limit([&] { return engine.match(0); }).start, npos);
  engine.reset(kHangingSubject, 0);
  const auto step = under_limit([&] { return engine.match_ex(0); });
  ASSERT_TRUE(step.has_error());
  EXPECT_EQ(step.error().getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
}

TEST_P(HangingPattern, AStopAfterSomeMatchesStillFailsTheWholeReplacement) {
  // "ab" matches at once; the search after it never ends. ICU's replaceAll
  // alone would return "x aac".
  const std::u16string subject = u"ab aac";
  re::matcher_ptr handle = re::createMatcher(GetParam(), 0);
  EXPECT_EQ(under_limit([&] { return re::regex_replace(handle, subject, u"x"); }), subject);
  EXPECT_EQ(under_limit([&] { return re::regex_replace(subject, GetParam(), u"x", 0); }), subject);
  const std::string pattern8(GetParam().begin(), GetParam().end());
  EXPECT_EQ(under_limit([&] {
              return re::regex_replace(std::string("ab aac"), pattern8, std::string("x"), 0);
            }),
            "ab aac");
  EXPECT_EQ(under_limit([&] { return re::regex_replace_preserving(subject, GetParam(), u"x", 0); }),
            subject);
  re::detail::regex_impl_icu engine;
  engine.init(GetParam(), 0);
  const auto replaced = under_limit([&] { return engine.replace_ex(subject, u"x"); });
  ASSERT_TRUE(replaced.has_error());
  EXPECT_EQ(replaced.error().getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  // A walk ends after the match it found.
  EXPECT_EQ(under_limit([&] { return re::regex_find_all(subject, GetParam(), 0); }).size(), 1u);
}

TEST(TimeLimit, ExponentialPatternStops) {
  re::matcher_ptr handle = re::createMatcher(kExponential, 0);
  EXPECT_FALSE(under_limit([&] { return re::regex_search(handle, kThirtyXs, false); }));
  EXPECT_EQ(under_limit([&] { return re::regex_replace(kThirtyXs, kExponential, u"y", 0); }),
            kThirtyXs);
}

TEST(TimeLimit, SearchesWithinTheLimitAreUnaffected) {
  re::match_time_limit limit(milliseconds(60000));
  re::matcher_ptr handle = re::createMatcher(u"b+", 0);
  EXPECT_TRUE(re::regex_search(handle, u"abbc", false));
  EXPECT_EQ(re::get_group(handle, 0), u"bb");
  EXPECT_EQ(re::regex_replace(u"abbc", u"b+", u"x", 0), u"axc");
  EXPECT_EQ(re::regex_find_all(u"abbc", u"b+", 0).size(), 1u);
  EXPECT_FALSE(limit.exceeded());
}

TEST(TimeLimit, SearchStartingAfterTheDeadlineFailsAtOnce) {
  re::matcher_ptr handle = re::createMatcher(u"b", 0);
  re::regex compiled(u"b", 0);
  re::match_time_limit limit(milliseconds(0));
  EXPECT_FALSE(re::regex_search(handle, u"abc", false));
  EXPECT_TRUE(limit.exceeded());
  EXPECT_EQ(re::regex_replace(u"ab\u00e9", u"b", u"x", 0x4), u"abe");  // the prepared subject
  EXPECT_EQ(re::regex_replace(handle, u"abc", u"x"), u"abc");
  compiled.reset(u"abc");
  const auto step = compiled.match_ex();
  ASSERT_TRUE(step.has_error());
  EXPECT_EQ(step.error().getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  // Group-name discovery searches too.
  EXPECT_TRUE(re::regex(u"(?<year>\\d+)", 0).getGroupNamesIfAvailable().empty());
}

TEST(TimeLimit, NegativeLimitIsAlreadyPastAndHugeLimitNeverPasses) {
  {
    re::match_time_limit limit(milliseconds(-5));
    EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));
  }
  {
    re::match_time_limit limit(milliseconds::max());
    EXPECT_TRUE(re::regex_search(u"abc", u"b", false, 0));
    EXPECT_FALSE(limit.exceeded());
  }
  re::match_time_limit limit(milliseconds::min());
  EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));
}

TEST(TimeLimit, EarliestDeadlineOfNestedLimitsGoverns) {
  re::match_time_limit outer(milliseconds(0));
  {
    re::match_time_limit inner(std::chrono::hours(1));  // cannot extend the outer deadline
    EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));
    EXPECT_TRUE(inner.exceeded());
  }
  EXPECT_TRUE(outer.exceeded());
}

TEST(TimeLimit, InnerEarlierDeadlineGovernsAndEndsWithItsScope) {
  re::match_time_limit outer(std::chrono::hours(1));
  {
    re::match_time_limit inner(milliseconds(0));
    EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));
    EXPECT_TRUE(inner.exceeded());
  }
  EXPECT_TRUE(outer.exceeded());  // a search was stopped while it lived
  EXPECT_TRUE(re::regex_search(u"abc", u"b", false, 0));
}

TEST(TimeLimit, LimitsEndingOutOfOrderOnTheirThreadLeaveNoDanglingDeadline) {
  auto outer = std::make_unique<re::match_time_limit>(milliseconds(0));
  auto inner = std::make_unique<re::match_time_limit>(std::chrono::hours(1));
  outer.reset();
  EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));  // inner took the earlier deadline
  inner.reset();
  EXPECT_TRUE(re::regex_search(u"abc", u"b", false, 0));
}

TEST(TimeLimit, AfterTheLastLimitSearchesRunFreely) {
  { re::match_time_limit limit(milliseconds(0)); }
  EXPECT_TRUE(re::regex_search(u"abc", u"b", false, 0));
  re::matcher_ptr handle = re::createMatcher(u"b", 0);
  {
    re::match_time_limit limit(milliseconds(0));
    EXPECT_FALSE(re::regex_search(handle, u"abc", false));
  }
  EXPECT_TRUE(re::regex_search(handle, u"abc", false));  // the same handle, no limit now
}

TEST(TimeLimit, CallbackTimeCountsButACallbackIsNeverInterrupted) {
  re::matcher_ptr handle = re::createMatcher(u"b", 0);
  re::match_time_limit limit(milliseconds(50));
  int calls = 0;
  const std::u16string result =
      re::regex_replace(handle, u"abcb", [&](const std::u16string&, bool&) {
        ++calls;
        std::this_thread::sleep_for(milliseconds(80));  // runs to its end
        return std::u16string(u"x");
      });
  EXPECT_EQ(calls, 1);  // the next search started after the deadline
  EXPECT_EQ(result, u"abcb");
  EXPECT_TRUE(limit.exceeded());
}

// An engine of the caller's own: one match of the whole subject, then none.
class WholeSubjectEngine : public re::detail::regex_impl_icu {
 public:
  using re::detail::regex_impl_icu::reset;
  re::regex_result match(std::uint32_t) override {
    if (done_) return re::regex_result(npos, npos, nullptr);
    done_ = true;
    return re::regex_result(0, 1, nullptr);
  }
  void reset(const std::u16string&, re::constants::syntax_option_type) override { done_ = false; }

 private:
  bool done_ = false;
};

TEST(TimeLimit, EnginesOfTheCallersOwnAreNotAffected) {
  re::regex custom(u"x", 0, std::make_unique<WholeSubjectEngine>());
  re::match_time_limit limit(milliseconds(0));
  custom.reset(u"abc");
  EXPECT_EQ(custom.match().start, 0u);
  EXPECT_FALSE(limit.exceeded());
}

TEST(TimeLimit, OtherThreadsAreNotAffected) {
  re::match_time_limit limit(milliseconds(0));
  bool found = false;
  std::thread other([&] { found = re::regex_search(u"abc", u"b", false, 0); });
  other.join();
  EXPECT_TRUE(found);
  EXPECT_FALSE(limit.exceeded());
  EXPECT_FALSE(re::regex_search(u"abc", u"b", false, 0));
}

}  // namespace
