// The ICU engine, driven directly through its interface.
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>

#include <scl/regex.h>
#include <scl/regex/regex_impl_icu.h>

namespace {

namespace constants = scl::regex::constants;
using scl::regex::group_result;
using scl::regex::regex_result;
using scl::regex::detail::regex_impl_icu;
using namespace std::string_literals;

using scl::regex::npos;

TEST(IcuEngine, DefaultConstructedEngineIsEmpty) {
  regex_impl_icu engine;
  EXPECT_EQ(engine.matcher.get(), nullptr);
  EXPECT_EQ(engine.matcher.get_deleter().options, 0u);
  EXPECT_EQ(engine.getPattern(), u"");
  EXPECT_EQ(engine.subject.length(), 0);
}

TEST(IcuEngine, MatchWithoutMatcherGivesEmptyResultAndMatchExGivesMinus1000) {
  regex_impl_icu engine;
  const regex_result result = engine.match(0);
  EXPECT_EQ(result.start, npos);
  EXPECT_EQ(result.end, npos);
  EXPECT_EQ(result.impl, nullptr);
  EXPECT_TRUE(result.groups.empty());
  const auto ex = engine.match_ex(0);
  ASSERT_TRUE(ex.has_error());
  EXPECT_STREQ(ex.error().what(), "Matcher is not available.");
}

TEST(IcuEngine, WithoutMatcherOtherOperationsFoldOrReportMinus1000) {
  regex_impl_icu engine;
  std::vector<group_result> groups{group_result{1, 2, nullptr}};
  engine.getGroups(groups);
  EXPECT_TRUE(groups.empty());
  EXPECT_EQ(engine.getGroupNumber("1"), -1);
  EXPECT_EQ(engine.getGroupsCount(), 0);
  EXPECT_EQ(engine.replace(u"abc"s, u"x"), u"abc");
  const auto ex = engine.replace_ex(u"abc"s, u"x");
  ASSERT_TRUE(ex.has_error());
  EXPECT_STREQ(ex.error().what(), "Matcher is not available.");
  engine.reset(u"xyz"s, 0);  // a subject without a pattern is kept
  EXPECT_EQ(engine.str(1, 2), u"yz");
}

TEST(IcuEngine, AfterInitBeforeResetNothingIsFound) {
  regex_impl_icu engine;
  engine.init(u"a"s, 0);
  EXPECT_EQ(engine.match(0).start, npos);
  const auto ex = engine.match_ex(0);
  ASSERT_FALSE(ex.has_error());
  EXPECT_EQ(ex.value().start, npos);
}

TEST(IcuEngine, InitStoresPatternAndCompilesFromEveryForm) {
  const std::u16string text = u"b+";
  regex_impl_icu from_string;
  from_string.init(text, 0);
  regex_impl_icu from_range;
  from_range.init(text.data(), text.data() + text.size(), 0);
  regex_impl_icu from_view;
  from_view.init(std::u16string_view(text), 0);
  for (regex_impl_icu* engine : {&from_string, &from_range, &from_view}) {
    EXPECT_EQ(engine->getPattern(), u"b+");
    engine->reset(u"abbc"s, 0);
    const regex_result m = engine->match(0);
    EXPECT_EQ(m.start, 1u);
    EXPECT_EQ(m.end, 3u);
  }
}

TEST(IcuEngine, BadPatternThrowsWithPatternOverwrittenAndOldMatcherKept) {
  regex_impl_icu engine;
  engine.init(u"a"s, 0);
  void* const old_matcher = engine.matcher.get();
  EXPECT_THROW(engine.init(u"("s, 0), scl::regex::regex_exception);
  EXPECT_EQ(engine.getPattern(), u"(");
  EXPECT_EQ(engine.matcher.get(), old_matcher);
  engine.reset(u"xa"s, 0);
  EXPECT_EQ(engine.match(0).start, 1u);
}

TEST(IcuEngine, InitWithNewPatternKeepsSubjectButSearchesEmptyTextUntilReset) {
  regex_impl_icu engine;
  engine.init(u"a"s, 0);
  engine.reset(u"aa"s, 0);
  engine.init(u"a"s, constants::case_insensitive);
  EXPECT_EQ(engine.matcher.get_deleter().options, constants::case_insensitive);
  EXPECT_EQ(engine.str(0, 2), u"aa");
  EXPECT_EQ(engine.match(0).start, npos);
  engine.reset(u"A"s, constants::case_insensitive);
  EXPECT_EQ(engine.match(0).start, 0u);
}

TEST(IcuEngine, ResetOverwritesStoredTextWithRawSubject) {
  regex_impl_icu engine;
  engine.init(u"x"s, constants::ignore_diacritics);
  engine.reset(u"ab"s, constants::ignore_diacritics);
  EXPECT_EQ(engine.getPattern(), u"ab");
  engine.reset(u"caf\u00e9"s, constants::ignore_diacritics);
  EXPECT_EQ(engine.getPattern(), u"caf\u00e9");  // raw, not prepared
  EXPECT_EQ(engine.str(0, 4), u"cafe");          // the subject is prepared
}

TEST(IcuEngine, ResetFromEveryFormRewindsTheSearch) {
  const std::u16string text = u"a1b2";
  regex_impl_icu engine;
  engine.init(u"\\d"s, 0);
  engine.reset(text, 0);
  EXPECT_EQ(engine.match(0).start, 1u);
  engine.reset(text.data(), text.data() + text.size(), 0);
  EXPECT_EQ(engine.match(0).start, 1u);
  EXPECT_EQ(engine.match(0).start, 3u);
  engine.reset(std::u16string_view(text).substr(2), 0);
  EXPECT_EQ(engine.getPattern(), u"b2");
  EXPECT_EQ(engine.match(0).start, 1u);
  EXPECT_EQ(engine.match(0).start, npos);
}

TEST(IcuEngine, NfcSubjectIsMatchedAndCutComposedWithPreparedPositions) {
  regex_impl_icu engine;
  engine.init(u"\u00e9x"s, constants::normalize_nfc);
  engine.reset(u"ae\u0301x"s, constants::normalize_nfc);
  const regex_result m = engine.match(0);
  EXPECT_EQ(m.start, 1u);
  EXPECT_EQ(m.end, 3u);  // 4 in the caller's text
  EXPECT_EQ(m.str(), u"\u00e9x");
  EXPECT_EQ(engine.str(0, 3), u"a\u00e9x");
}

TEST(IcuEngine, StrCutsAtNulAndPinsOutOfRangePositions) {
  regex_impl_icu engine;
  engine.init(u"z"s, 0);
  engine.reset(u"ab\0cd"s, 0);
  EXPECT_EQ(engine.str(0, 5), u"ab");  // cut at the embedded U+0000
  EXPECT_EQ(engine.str(3, 2), u"cd");
  EXPECT_EQ(engine.str(npos, 0), u"");
  EXPECT_EQ(engine.str(10, 3), u"");
  EXPECT_EQ(engine.str(1, 100), u"b");
}

TEST(IcuEngine, SuccessiveMatchesAdvanceAndEmptyMatchesDoNotRepeat) {
  regex_impl_icu engine;
  engine.init(u"x*"s, 0);
  engine.reset(u"ab"s, 0);
  std::vector<std::size_t> starts;
  for (regex_result m = engine.match(0); m.start != npos; m = engine.match(0))
    starts.push_back(m.start);
  EXPECT_EQ(starts, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(IcuEngine, GroupsOfAlternationMatchedOnSecondBranch) {
  regex_impl_icu engine;
  engine.init(u"(a)|(b)"s, 0);
  engine.reset(u"b"s, 0);
  const regex_result m = engine.match(0);
  ASSERT_EQ(m.groups.size(), 3u);
  EXPECT_EQ(m.groups[0].start, 0u);
  EXPECT_EQ(m.groups[0].end, 1u);
  EXPECT_EQ(m.groups[1].start, npos);
  EXPECT_EQ(m.groups[1].end, npos);
  EXPECT_EQ(m.groups[2].start, 0u);
  EXPECT_EQ(m.groups[2].end, 1u);
  for (const auto& group : m.groups) EXPECT_EQ(group.impl, &engine);
  std::vector<group_result> direct;
  engine.getGroups(direct);
  EXPECT_EQ(direct.size(), 3u);
}

TEST(IcuEngine, GetGroupsWithoutCurrentMatchIsEmpty) {
  regex_impl_icu engine;
  engine.init(u"(a)"s, 0);
  engine.reset(u"b"s, 0);
  std::vector<group_result> groups{group_result{0, 0, nullptr}};
  engine.getGroups(groups);
  EXPECT_TRUE(groups.empty());
}

TEST(IcuEngine, GroupNumberByNameOrDecimalText) {
  regex_impl_icu engine;
  engine.init(u"(?<year>\\d+)"s, 0);
  EXPECT_EQ(engine.getGroupNumber("year"), 1);
  EXPECT_EQ(engine.getGroupNumber("1"), 1);
  EXPECT_EQ(engine.getGroupNumber("abc"), -1);
  EXPECT_EQ(engine.getGroupNumber(""), -1);
  EXPECT_EQ(engine.getGroupNumber("99999999999"), -1);
  EXPECT_EQ(engine.getGroupNumber("2x"), 2);
  EXPECT_EQ(engine.getGroupNumber("-3"), -3);
  EXPECT_EQ(engine.getGroupNumber(" 7"), 7);
  EXPECT_EQ(engine.getGroupNumber("2147483647"), 2147483647);
  EXPECT_EQ(engine.getGroupNumber("2147483648"), -1);
  regex_impl_icu plain;
  plain.init(u"abc"s, 0);
  EXPECT_EQ(plain.getGroupNumber("1"), 1);
}

TEST(IcuEngine, GroupReferenceIsIcuNamedReference) {
  regex_impl_icu engine;
  EXPECT_EQ(engine.getGroupReference(u"x"), u"${x}");
  EXPECT_EQ(engine.getGroupReference(u""), u"${}");
}

TEST(IcuEngine, GroupsCountExcludesWholeMatch) {
  regex_impl_icu engine;
  engine.init(u"(a)(?:b)(c)"s, 0);
  EXPECT_EQ(engine.getGroupsCount(), 2);
}

TEST(IcuEngine, ReplacePreparesSubjectWithMatcherOptions) {
  regex_impl_icu engine;
  engine.init(u"cafe"s, constants::ignore_diacritics | constants::case_insensitive);
  EXPECT_EQ(engine.replace(u"Un CAF\u00c9"s, u"tea"), u"Un tea");
  EXPECT_EQ(engine.getPattern(), u"Un CAF\u00c9");  // replace leaves the engine reset onto it
  const auto ex = engine.replace_ex(u"caf\u00e9 x"s, u"[$0]");
  ASSERT_FALSE(ex.has_error());
  EXPECT_EQ(ex.value(), u"[cafe] x");
}

TEST(IcuEngine, InvalidReplacementGivesRawSubjectOrIcuError) {
  regex_impl_icu engine;
  engine.init(u"(a)"s, constants::ignore_diacritics);
  EXPECT_EQ(engine.replace(u"\u00e1bc"s, u"$2"), u"\u00e1bc");  // raw, not prepared
  const auto ex = engine.replace_ex(u"abc"s, u"$2");
  ASSERT_TRUE(ex.has_error());
  EXPECT_EQ(ex.error().getErrorCodeMnemonic(), "U_INDEX_OUTOFBOUNDS_ERROR");
  const auto dollar = engine.replace_ex(u"abc"s, u"$x");
  ASSERT_TRUE(dollar.has_error());
  EXPECT_STREQ(dollar.error().what(), "Invalid capture group name.");
}

TEST(IcuEngine, ReplacementKeepsUnitsPastNulButResultEndsAtFirstNul) {
  regex_impl_icu engine;
  engine.init(u"b"s, 0);
  EXPECT_EQ(engine.replace(u"abc"s, u"x\0y"s), u"ax");
}

TEST(IcuEngine, MatchExNoMatchCarriesEngineWhileMatchDoesNot) {
  regex_impl_icu engine;
  engine.init(u"z"s, 0);
  engine.reset(u"abc"s, 0);
  const regex_result plain = engine.match(0);
  EXPECT_EQ(plain.start, npos);
  EXPECT_EQ(plain.impl, nullptr);
  engine.reset(u"abc"s, 0);
  const auto ex = engine.match_ex(0);
  ASSERT_FALSE(ex.has_error());
  EXPECT_EQ(ex.value().start, npos);
  EXPECT_EQ(ex.value().end, npos);
  EXPECT_EQ(ex.value().impl, &engine);
  EXPECT_TRUE(ex.value().groups.empty());
  EXPECT_EQ(ex.value().str(), u"");
}

TEST(IcuEngine, MatchExGivesPositionsAndGroups) {
  regex_impl_icu engine;
  engine.init(u"(\\d)(\\d)"s, 0);
  engine.reset(u"a12"s, 0);
  const auto ex = engine.match_ex(0);
  ASSERT_FALSE(ex.has_error());
  EXPECT_EQ(ex.value().start, 1u);
  EXPECT_EQ(ex.value().end, 3u);
  ASSERT_EQ(ex.value().groups.size(), 3u);
  EXPECT_EQ(ex.value().groups[2].str(), u"2");
}

// (a|aa)+$ needs backtrack stack in proportion to the subject: 300,000 units
// overflow ICU's default 8 MB but fit in 16 MB; 1,000,000 overflow both.
const std::u16string& fits_after_doubling() {
  static const std::u16string text(300000, u'a');
  return text;
}
const std::u16string& overflows_twice() {
  static const std::u16string text(1000000, u'a');
  return text;
}

TEST(IcuEngineStackOverflow, WithoutRetryFirstOverflowIsFinal) {
  regex_impl_icu engine;
  engine.init(u"(a|aa)+$"s, 0);
  engine.reset(fits_after_doubling(), 0);
  EXPECT_EQ(engine.match(0).start, npos);
  engine.reset(fits_after_doubling(), 0);
  const auto ex = engine.match_ex(0);
  ASSERT_TRUE(ex.has_error());
  EXPECT_EQ(ex.error().getErrorCodeMnemonic(), "U_REGEX_STACK_OVERFLOW");
  EXPECT_STREQ(ex.error().what(), "Regular expression backtrack stack overflow.");
  EXPECT_EQ(static_cast<icu::RegexMatcher*>(engine.matcher.get())->getStackLimit(), 8000000);
}

TEST(IcuEngineStackOverflow, RetryDoublesTheLimitOnceAndSucceeds) {
  regex_impl_icu engine;
  engine.init(u"(a|aa)+$"s, 0);
  engine.reset(fits_after_doubling(), 0);
  const regex_result m = engine.match(constants::retry_on_stack_overflow);
  EXPECT_EQ(m.start, 0u);
  EXPECT_EQ(m.end, 300000u);
  EXPECT_EQ(static_cast<icu::RegexMatcher*>(engine.matcher.get())->getStackLimit(), 16000000);
}

TEST(IcuEngineStackOverflow, MatchExRetrySucceeds) {
  regex_impl_icu engine;
  engine.init(u"(a|aa)+$"s, 0);
  engine.reset(fits_after_doubling(), 0);
  const auto ex = engine.match_ex(constants::retry_on_stack_overflow);
  ASSERT_FALSE(ex.has_error());
  EXPECT_EQ(ex.value().end, 300000u);
}

TEST(IcuEngineStackOverflow, SecondOverflowIsFinal) {
  regex_impl_icu engine;
  engine.init(u"(a|aa)+$"s, 0);
  engine.reset(overflows_twice(), 0);
  EXPECT_EQ(engine.match(constants::retry_on_stack_overflow).start, npos);
  EXPECT_EQ(static_cast<icu::RegexMatcher*>(engine.matcher.get())->getStackLimit(), 16000000);
  engine.reset(overflows_twice(), 0);
  const auto ex = engine.match_ex(constants::retry_on_stack_overflow);
  ASSERT_TRUE(ex.has_error());
  EXPECT_EQ(ex.error().getErrorCodeMnemonic(), "U_REGEX_STACK_OVERFLOW");
  // Each overflow that is retried doubles the limit again.
  EXPECT_EQ(static_cast<icu::RegexMatcher*>(engine.matcher.get())->getStackLimit(), 32000000);
}

TEST(IcuEngineStackOverflow, RetryAfterEarlierMatchesStartsAgainAtTheBeginning) {
  // ICU rewinds a matcher whose stack limit changes, so the retried search
  // meets the earlier match "b" once more before the long run of "a".
  regex_impl_icu engine;
  engine.init(u"b|(a|aa)+$"s, 0);
  engine.reset(u"b" + fits_after_doubling(), 0);
  std::vector<std::pair<std::size_t, std::size_t>> spans;
  for (regex_result m = engine.match(constants::retry_on_stack_overflow); m.start != npos;
       m = engine.match(constants::retry_on_stack_overflow)) {
    spans.emplace_back(m.start, m.end);
  }
  EXPECT_EQ(spans, (std::vector<std::pair<std::size_t, std::size_t>>{{0, 1}, {0, 1}, {1, 300001}}));
}

TEST(IcuEngineStackOverflow, OtherFlagBitsDoNotRetry) {
  regex_impl_icu engine;
  engine.init(u"(a|aa)+$"s, 0);
  engine.reset(fits_after_doubling(), 0);
  EXPECT_EQ(engine.match(0x1 | 0x4 | 0x8).start, npos);
}

TEST(IcuEngine, TimeOutIsSwallowedByMatchAndReportedByMatchEx) {
  regex_impl_icu engine;
  engine.init(u"(a|b)*c"s, 0);
  UErrorCode status = U_ZERO_ERROR;
  static_cast<icu::RegexMatcher*>(engine.matcher.get())->setTimeLimit(1, status);
  const std::u16string subject(20000, u'a');
  engine.reset(subject, 0);
  EXPECT_EQ(engine.match(constants::retry_on_stack_overflow).start, npos);
  engine.reset(subject, 0);
  const auto ex = engine.match_ex(constants::retry_on_stack_overflow);
  ASSERT_TRUE(ex.has_error());
  EXPECT_STREQ(ex.error().what(), "Maximum allowed match time exceeded");
}

}  // namespace
