// Match results: positions, lazily cut text and group lookup.
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

using scl::regex::regex;
using scl::regex::regex_result;

using scl::regex::npos;

TEST(RegexResult, NoMatchResultsHaveEmptyText) {
  const regex_result empty(npos, npos, nullptr);
  EXPECT_EQ(empty.str(), u"");
  EXPECT_TRUE(empty.groups.empty());
  regex re(u"z", 0);
  re.reset(u"abc");
  EXPECT_EQ(re.match().str(), u"");
  re.reset(u"abc");
  const auto ex = re.match_ex();
  ASSERT_FALSE(ex.has_error());
  EXPECT_NE(ex.value().impl, nullptr);
  EXPECT_EQ(ex.value().str(), u"");
}

TEST(RegexResult, NamedGroupByNameNumberAndZero) {
  regex re(u"(?<word>\\w+)", 0);
  re.reset(u"hi there");
  const regex_result first = re.match();
  const auto& word = first["word"];
  EXPECT_EQ(word.start, 0u);
  EXPECT_EQ(word.end, 2u);
  EXPECT_EQ(word.str(), u"hi");
  EXPECT_EQ(&first["1"], &word);
  EXPECT_EQ(first["0"].str(), u"hi");
  EXPECT_EQ(first["0"].start, first.start);
  EXPECT_EQ(first.str(), u"hi");
}

TEST(RegexResult, UnknownNameThrowsOutOfRangeWithTheName) {
  regex re(u"(?<word>\\w+)", 0);
  re.reset(u"hi");
  const regex_result m = re.match();
  try {
    (void)m["nope"];
    FAIL() << "no exception";
  } catch (const std::out_of_range& e) {
    EXPECT_STREQ(e.what(), "nope");
  }
}

TEST(RegexResult, NegativeNumberThrowsOutOfRangeWithTheName) {
  regex re(u"(a)", 0);
  re.reset(u"a");
  const regex_result m = re.match();
  try {
    (void)m["-2"];
    FAIL() << "no exception";
  } catch (const std::out_of_range& e) {
    EXPECT_STREQ(e.what(), "-2");
  }
}

TEST(RegexResult, NumberBeyondTheGroupsThrowsInsteadOfReadingPastThem) {
  regex re(u"(a)", 0);
  re.reset(u"a");
  const regex_result m = re.match();
  EXPECT_THROW((void)m["2"], std::out_of_range);
  const regex_result empty(npos, npos, nullptr);
  EXPECT_THROW((void)empty["0"], std::out_of_range);
}

TEST(RegexResult, CopyHasItsOwnGroupsWithSamePositionsAndEngine) {
  regex re(u"(\\d)(\\d)", 0);
  re.reset(u"x12");
  regex_result original = re.match();
  regex_result copy = original;
  ASSERT_EQ(copy.groups.size(), 3u);
  EXPECT_NE(copy.groups.data(), original.groups.data());
  EXPECT_EQ(copy.start, original.start);
  EXPECT_EQ(copy.end, original.end);
  EXPECT_EQ(copy.impl, original.impl);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(copy.groups[i].start, original.groups[i].start);
    EXPECT_EQ(copy.groups[i].end, original.groups[i].end);
    EXPECT_EQ(copy.groups[i].impl, original.groups[i].impl);
  }
  original.groups.clear();
  EXPECT_EQ(copy.groups[2].str(), u"2");
}

TEST(RegexResult, AfterResetOlderResultCutsTheNewSubject) {
  regex re(u"b+", 0);
  re.reset(u"abbc");
  const regex_result m = re.match();
  EXPECT_EQ(m.str(), u"bb");
  re.reset(u"wxyz");
  EXPECT_EQ(m.str(), u"xy");
  EXPECT_EQ(m.groups[0].str(), u"xy");
}

TEST(RegexResult, NonParticipatingGroupHasEmptyText) {
  regex re(u"(x)?y", 0);
  re.reset(u"y");
  const regex_result m = re.match();
  ASSERT_EQ(m.groups.size(), 2u);
  EXPECT_EQ(m.groups[1].start, npos);
  EXPECT_EQ(m.groups[1].str(), u"");
  EXPECT_EQ(m["1"].str(), u"");
}

TEST(RegexResult, GroupWithoutEngineHasEmptyText) {
  const scl::regex::group_result group{0, 3, nullptr};
  EXPECT_EQ(group.str(), u"");
}

}  // namespace
