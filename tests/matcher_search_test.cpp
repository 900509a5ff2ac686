// Search and capture-group access on a matcher handle.
#include <string>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/icu_view.h"

namespace {

namespace constants = scl::regex::constants;
using scl::regex::createMatcher;
using scl::regex::get_group;
using scl::regex::get_group_count;
using scl::regex::matcher_ptr;
using scl::regex::regex_search;
using namespace std::string_literals;

TEST(HandleSearch, WholeRequiresEntireSubjectAnywhereFindsInside) {
  const matcher_ptr handle = createMatcher(u"abc", 0);
  EXPECT_TRUE(regex_search(handle, u"xabcx", false));
  EXPECT_FALSE(regex_search(handle, u"xabcx", true));
  EXPECT_TRUE(regex_search(handle, u"abc", false));
  EXPECT_TRUE(regex_search(handle, u"abc", true));
  EXPECT_FALSE(regex_search(handle, u"ab", false));
}

TEST(HandleSearch, SubjectEndsAtFirstNul) {
  const matcher_ptr handle = createMatcher(u"b", 0);
  EXPECT_FALSE(regex_search(handle, u"a\0b"s, false));
  const matcher_ptr a = createMatcher(u"a", 0);
  EXPECT_TRUE(regex_search(a, u"a\0b"s, true));  // the whole subject is "a"
}

TEST(HandleSearch, EmptyHandleGivesFalseZeroAndEmptyGroups) {
  const matcher_ptr empty;
  EXPECT_FALSE(regex_search(empty, u"abc", false));
  EXPECT_FALSE(regex_search(empty, u"", true));
  EXPECT_EQ(get_group(empty, 0), u"");
  EXPECT_EQ(get_group(empty, -1), u"");
  EXPECT_EQ(get_group_count(empty), 0);
}

TEST(HandleSearch, SubjectIsPreparedWithHandleOptions) {
  const matcher_ptr handle = createMatcher(u"cafe", constants::ignore_diacritics);
  EXPECT_TRUE(regex_search(handle, u"caf\u00e9", false));
  EXPECT_TRUE(regex_search(handle, u"cafe\u0301", true));
  const matcher_ptr nfc = createMatcher(u"\u00e9", constants::normalize_nfc);
  EXPECT_TRUE(regex_search(nfc, u"e\u0301", true));
  const matcher_ptr raw = createMatcher(u"\u00e9", 0);
  EXPECT_FALSE(regex_search(raw, u"e\u0301", false));
}

TEST(HandleSearch, OptionsFiveCaseAndDiacriticsTogether) {
  const matcher_ptr handle = createMatcher(u"CAFE", 0x5);
  EXPECT_TRUE(regex_search(handle, u"un caf\u00c9", false));
}

TEST(HandleSearch, BacktrackStackOverflowIsFoldedIntoFalse) {
  const matcher_ptr handle = createMatcher(u"(a|aa)+$", 0);
  EXPECT_TRUE(regex_search(handle, std::u16string(100000, u'a'), false));
  // A million units overflow ICU's default backtrack stack (8 MB).
  EXPECT_FALSE(regex_search(handle, std::u16string(1000000, u'a'), false));
  EXPECT_EQ(get_group(handle, 0), u"");  // a failed search leaves no current match
}

TEST(HandleSearch, TimeOutIsFoldedIntoFalse) {
  const matcher_ptr handle = createMatcher(u"(a|b)*c", 0);
  UErrorCode status = U_ZERO_ERROR;
  scl_regex_test::icu_matcher(handle).setTimeLimit(1, status);
  ASSERT_TRUE(U_SUCCESS(status));
  EXPECT_FALSE(regex_search(handle, std::u16string(20000, u'a'), false));
}

TEST(PointerSearch, CompilesForOneCallAndSearches) {
  EXPECT_TRUE(regex_search(u"xabcx", u"abc", false, 0));
  EXPECT_FALSE(regex_search(u"xabcx", u"abc", true, 0));
  EXPECT_TRUE(regex_search(u"xABCx", u"abc", false, constants::case_insensitive));
  EXPECT_TRUE(regex_search(u"caf\u00e9", u"cafe", true, constants::ignore_diacritics));
  EXPECT_FALSE(regex_search(u"caf\u00e9", u"cafe", true, 0));
}

TEST(PointerSearch, NullSubjectOrPatternGivesFalseWithoutCompiling) {
  EXPECT_FALSE(regex_search(nullptr, u"abc", false, 0));
  EXPECT_FALSE(regex_search(u"abc", nullptr, false, 0));
  // Nothing is compiled, so even a bad pattern does not throw.
  EXPECT_NO_THROW(EXPECT_FALSE(regex_search(nullptr, u"(", false, 0)));
}

TEST(PointerSearch, RejectedPatternThrowsMismatchedParen) {
  try {
    (void)regex_search(u"abc", u"(", false, 0);
    FAIL() << "no exception";
  } catch (const scl::regex::regex_exception& e) {
    EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  }
}

TEST(PointerSearch, FailedSearchIsFalseNotAnException) {
  EXPECT_FALSE(regex_search(std::u16string(1000000, u'a').c_str(), u"(a|aa)+$", false, 0));
}

TEST(GroupCount, CountsCaptureGroupsPlusWholeMatch) {
  EXPECT_EQ(get_group_count(createMatcher(u"abc", 0)), 1);
  EXPECT_EQ(get_group_count(createMatcher(u"(a)(b)", 0)), 3);
  EXPECT_EQ(get_group_count(createMatcher(u"(?:a)(b)", 0)), 2);
  EXPECT_EQ(get_group_count(createMatcher(u"(?<y>\\d+)-(?<m>\\d+)", 0)), 3);
}

TEST(GroupCount, DependsOnPatternNotOnSearch) {
  const matcher_ptr handle = createMatcher(u"(a)(b)?", 0);
  EXPECT_EQ(get_group_count(handle), 3);
  EXPECT_FALSE(regex_search(handle, u"zzz", false));
  EXPECT_EQ(get_group_count(handle), 3);
}

TEST(GetGroup, AfterSearchGivesGroupTextsOfThatSearch) {
  const matcher_ptr handle = createMatcher(u"(\\w+)@(\\w+)", 0);
  ASSERT_TRUE(regex_search(handle, u"mail: anna@example now", false));
  EXPECT_EQ(get_group(handle, 0), u"anna@example");
  EXPECT_EQ(get_group(handle, 1), u"anna");
  EXPECT_EQ(get_group(handle, 2), u"example");
}

TEST(GetGroup, SurvivesTheCallersSubjectGoingAway) {
  // The subject passed to the search is a temporary; the groups must still read
  // valid text afterwards (a sanitizer build catches any read of freed memory).
  const matcher_ptr handle = createMatcher(u"(b+)", 0);
  ASSERT_TRUE(regex_search(handle, std::u16string(u"a") + std::u16string(100, u'b') + u"c", false));
  std::u16string overwrite(200, u'z');  // reuse the freed heap
  EXPECT_EQ(get_group(handle, 1), std::u16string(100, u'b'));
  EXPECT_EQ(overwrite.size(), 200u);
}

TEST(GetGroup, ComesFromPreparedSubject) {
  const matcher_ptr handle = createMatcher(u"caf(.)", constants::ignore_diacritics);
  ASSERT_TRUE(regex_search(handle, u"un caf\u00e9!", false));
  EXPECT_EQ(get_group(handle, 0), u"cafe");
  EXPECT_EQ(get_group(handle, 1), u"e");
}

TEST(GetGroup, NegativeNumberIsTheWholeMatch) {
  const matcher_ptr handle = createMatcher(u"b(c)", 0);
  ASSERT_TRUE(regex_search(handle, u"abcd", false));
  EXPECT_EQ(get_group(handle, -1), get_group(handle, 0));
  EXPECT_EQ(get_group(handle, -7), u"bc");
}

TEST(GetGroup, NumberAboveCountGivesEmptyString) {
  const matcher_ptr handle = createMatcher(u"b(c)", 0);
  ASSERT_TRUE(regex_search(handle, u"abcd", false));
  EXPECT_EQ(get_group(handle, 2), u"");
  EXPECT_EQ(get_group(handle, 1000), u"");
}

TEST(GetGroup, BeforeAnySearchGivesEmptyString) {
  const matcher_ptr handle = createMatcher(u"(a)", 0);
  EXPECT_EQ(get_group(handle, 0), u"");
  EXPECT_EQ(get_group(handle, 1), u"");
}

TEST(GetGroup, AfterFailedSearchGivesEmptyString) {
  const matcher_ptr handle = createMatcher(u"(a)", 0);
  ASSERT_TRUE(regex_search(handle, u"a", false));
  ASSERT_FALSE(regex_search(handle, u"b", false));
  EXPECT_EQ(get_group(handle, 1), u"");
}

TEST(GetGroup, NonParticipatingAndEmptyGroupsGiveEmptyString) {
  const matcher_ptr optional = createMatcher(u"(x)?y", 0);
  ASSERT_TRUE(regex_search(optional, u"y", false));
  EXPECT_EQ(get_group(optional, 0), u"y");
  EXPECT_EQ(get_group(optional, 1), u"");
  const matcher_ptr empty_group = createMatcher(u"a(b*)c", 0);
  ASSERT_TRUE(regex_search(empty_group, u"ac", false));
  EXPECT_EQ(get_group(empty_group, 1), u"");
}

TEST(GetGroup, WholeSearchLeavesItsMatchCurrent) {
  const matcher_ptr handle = createMatcher(u"(\\d+)-(\\d+)", 0);
  ASSERT_TRUE(regex_search(handle, u"12-345", true));
  EXPECT_EQ(get_group(handle, 2), u"345");
}

TEST(GetGroup, TextEndsAtFirstNulOfTheGroup) {
  const matcher_ptr handle = createMatcher(u"x(.*)", 0);
  // The search subject ends at its U+0000, so a group cannot reach past it.
  ASSERT_TRUE(regex_search(handle, u"xab\0cd"s, false));
  EXPECT_EQ(get_group(handle, 1), u"ab");
}

TEST(GetGroup, MatchEndingInsideASurrogatePairGivesWholeCodePoints) {
  // Found by fuzzing: the pattern's lone lead surrogate matches the lead half of
  // the subject's pair U+1F6DE, so ICU's match ends between its halves; ICU's
  // group text holds whole code points only, and get_group gives it as it is.
  const matcher_ptr handle = createMatcher(u"=\xDE78\xDC00\xD83D", 0);
  ASSERT_TRUE(regex_search(handle, u"|=\xDE78\xDC00\xD83D\xDEDE", false));
  EXPECT_EQ(get_group(handle, 0), u"=\xDE78\xDC00");
}

TEST(GetGroup, NewSearchReplacesTheKeptSubject) {
  const matcher_ptr handle = createMatcher(u"(\\d+)", 0);
  ASSERT_TRUE(regex_search(handle, u"a1", false));
  ASSERT_TRUE(regex_search(handle, u"b22", false));
  EXPECT_EQ(get_group(handle, 1), u"22");
}

}  // namespace
