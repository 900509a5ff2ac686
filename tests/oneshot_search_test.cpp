// Collecting all matches with their groups, and the text around the matches.
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

namespace constants = scl::regex::constants;
using scl::regex::match_tuple;
using scl::regex::regex;
using scl::regex::regex_search;
using scl::regex::regex_search_prefix_suffix;
using Strings = std::vector<std::u16string>;
using Pair = std::pair<std::u16string, std::u16string>;

static_assert(std::is_same_v<match_tuple, std::tuple<std::u16string, std::vector<std::u16string>>>);

TEST(SearchTuples, NoMatchLeavesOutputEmptyEvenIfItHeldElements) {
  std::vector<match_tuple> out{match_tuple{u"old", {u"x"}}};
  regex_search(u"abc", u"z", out, 0);
  EXPECT_TRUE(out.empty());
}

TEST(SearchTuples, PatternWithoutGroupsGivesEmptyGroupVectors) {
  std::vector<match_tuple> out;
  regex_search(u"a1b2", u"\\d", out, 0);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(std::get<0>(out[0]), u"1");
  EXPECT_TRUE(std::get<1>(out[0]).empty());
  EXPECT_EQ(std::get<0>(out[1]), u"2");
  EXPECT_TRUE(std::get<1>(out[1]).empty());
}

TEST(SearchTuples, UnmatchedGroupsGiveEmptyStringsInGroupOrder) {
  std::vector<match_tuple> out;
  regex_search(u"a1 b", u"([a-z])(\\d)?", out, 0);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(std::get<0>(out[0]), u"a1");
  EXPECT_EQ(std::get<1>(out[0]), (Strings{u"a", u"1"}));
  EXPECT_EQ(std::get<0>(out[1]), u"b");
  EXPECT_EQ(std::get<1>(out[1]), (Strings{u"b", u""}));
}

TEST(SearchTuples, AdjacentMatchesEachGiveOneTupleInOrder) {
  std::vector<match_tuple> out;
  regex_search(u"aabbb", u"(a|b)", out, 0);
  ASSERT_EQ(out.size(), 5u);
  const Strings expected = {u"a", u"a", u"b", u"b", u"b"};
  for (std::size_t i = 0; i < out.size(); ++i) {
    EXPECT_EQ(std::get<0>(out[i]), expected[i]);
    EXPECT_EQ(std::get<1>(out[i]), Strings{expected[i]});
  }
}

TEST(SearchTuples, EmptyMatchesGiveEmptyTextAndTheSearchGoesOn) {
  std::vector<match_tuple> out;
  regex_search(u"ab", u"(x*)", out, 0);
  ASSERT_EQ(out.size(), 3u);
  for (const auto& [whole, groups] : out) {
    EXPECT_EQ(whole, u"");
    EXPECT_EQ(groups, Strings{u""});
  }
}

TEST(SearchTuples, TextsComeFromThePreparedSubject) {
  std::vector<match_tuple> out;
  regex_search(u"Caf\u00e9 cr\u00e8me", u"(\\w+)", out, constants::ignore_diacritics);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(std::get<0>(out[0]), u"Cafe");
  EXPECT_EQ(std::get<0>(out[1]), u"creme");
  std::vector<match_tuple> nfc;
  regex_search(u"e\u0301", u".", nfc, constants::normalize_nfc);
  ASSERT_EQ(nfc.size(), 1u);
  EXPECT_EQ(std::get<0>(nfc[0]), u"\u00e9");
}

TEST(SearchTuples, RegexFormLeavesRegexResetToPreparedSubjectPastItsLastMatch) {
  regex re(u"(\\w)", constants::ignore_diacritics);
  std::vector<match_tuple> out;
  regex_search(re, u"\u00e0b", out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(std::get<0>(out[0]), u"a");
  EXPECT_EQ(re.str(0, 2), u"ab");
  EXPECT_EQ(re.match().start, scl::regex::npos);
}

TEST(SearchTuples, RegexFormCountsTheSameAsTheIterator) {
  regex re(u"[aeiou]", 0);
  std::vector<match_tuple> out;
  const std::u16string subject = u"the quick brown fox jumps over the lazy dog";
  regex_search(re, subject, out);
  std::size_t steps = 0;
  for (scl::regex::regex_iterator it(subject, re); it->start != scl::regex::npos; ++it) {
    ++steps;
  }
  EXPECT_EQ(out.size(), steps);
  EXPECT_EQ(steps, 11u);
}

TEST(SearchTuples, SubjectIsPreparedOnceMoreBeforeTheWalk) {
  // Found by fuzzing: for text whose preparation is not idempotent (unpaired
  // surrogates brought together by removing a mark), the tuples come from the
  // subject prepared twice, while a plain walk sees it prepared once.
  const std::u16string subject = u"\xD800\u0301\xDC00\u0301a";
  regex walked(u".", constants::ignore_diacritics);
  std::size_t steps = 0;
  for (scl::regex::regex_iterator it(subject, walked); it->start != scl::regex::npos; ++it) {
    ++steps;
  }
  EXPECT_EQ(steps, 3u);  // U+10000, U+0301, "a"
  std::vector<match_tuple> out;
  regex_search(subject, u".", out, constants::ignore_diacritics);
  ASSERT_EQ(out.size(), 2u);  // U+10000, "a"
  EXPECT_EQ(std::get<0>(out[0]), u"\xD800\xDC00");
  EXPECT_EQ(std::get<0>(out[1]), u"a");
}

TEST(SearchTuples, RegexWithoutEngineGivesNoTuples) {
  regex re(u"a", 0);
  regex moved = std::move(re);
  std::vector<match_tuple> out{match_tuple{u"old", {}}};
  regex_search(re, u"aaa", out);
  EXPECT_TRUE(out.empty());
}

TEST(SearchTuples, BadPatternThrowsAndLeavesOutputAlone) {
  std::vector<match_tuple> out{match_tuple{u"old", {}}};
  EXPECT_THROW(regex_search(u"abc", u"(", out, 0), scl::regex::regex_exception);
  EXPECT_EQ(out.size(), 1u);
}

TEST(SearchTuples, SearchErrorStopsTheWalkWithoutThrowing) {
  std::vector<match_tuple> out;
  EXPECT_NO_THROW(regex_search(std::u16string(1000000, u'a'), u"(a|aa)+$", out, 0));
  EXPECT_TRUE(out.empty());
}

TEST(PrefixSuffix, NoMatchGivesEmptyPrefixAndWholeSubject) {
  EXPECT_EQ(regex_search_prefix_suffix(u"abc", u"z", 0), (Pair{u"", u"abc"}));
}

TEST(PrefixSuffix, MatchAtStartGivesEmptyPrefixMatchAtEndEmptySuffix) {
  EXPECT_EQ(regex_search_prefix_suffix(u"abc", u"a", 0), (Pair{u"", u"bc"}));
  EXPECT_EQ(regex_search_prefix_suffix(u"abc", u"c", 0), (Pair{u"ab", u""}));
}

TEST(PrefixSuffix, SingleMatchInTheMiddle) {
  EXPECT_EQ(regex_search_prefix_suffix(u"left=right", u"=", 0), (Pair{u"left", u"right"}));
}

TEST(PrefixSuffix, SeveralMatchesDropTheTextBetweenThem) {
  EXPECT_EQ(regex_search_prefix_suffix(u"a1b22c333d", u"\\d+", 0), (Pair{u"a", u"d"}));
}

TEST(PrefixSuffix, PatternMatchingEmptyEverywhereGivesTwoEmptyStrings) {
  EXPECT_EQ(regex_search_prefix_suffix(u"abc", u"x*", 0), (Pair{u"", u""}));
}

TEST(PrefixSuffix, EmptySubjectGivesTwoEmptyStrings) {
  EXPECT_EQ(regex_search_prefix_suffix(u"", u"a", 0), (Pair{u"", u""}));
  EXPECT_EQ(regex_search_prefix_suffix(u"", u"a*", 0), (Pair{u"", u""}));
}

TEST(PrefixSuffix, PreparedPositionsCutTheRawSubjectAsTheyStand) {
  // "e" U+0301 "xa" is prepared to "exa": the match "a" is [2, 3) there, and
  // those positions are applied to the caller's four units unchanged.
  EXPECT_EQ(regex_search_prefix_suffix(u"e\u0301xa", u"a", constants::ignore_diacritics),
            (Pair{u"e\u0301", u"a"}));
}

TEST(PrefixSuffix, LastEndBeyondTheRawSubjectThrowsOutOfRange) {
  // U+0958 is one unit but two after NFC (U+0915 U+093C); the match ends at 2.
  EXPECT_THROW((void)regex_search_prefix_suffix(u"\u0958", u"\u093c", constants::normalize_nfc),
               std::out_of_range);
}

TEST(PrefixSuffix, CaseInsensitiveOptionReachesTheRegex) {
  EXPECT_EQ(regex_search_prefix_suffix(u"xABCy", u"abc", constants::case_insensitive),
            (Pair{u"x", u"y"}));
}

TEST(PrefixSuffix, BadPatternThrowsRegexException) {
  EXPECT_THROW((void)regex_search_prefix_suffix(u"abc", u"[", 0), scl::regex::regex_exception);
}

TEST(PrefixSuffix, SearchErrorEndsTheWalkAsNoMatch) {
  const std::u16string subject(1000000, u'a');
  EXPECT_EQ(regex_search_prefix_suffix(subject, u"(a|aa)+$", 0), (Pair{u"", subject}));
}

}  // namespace
