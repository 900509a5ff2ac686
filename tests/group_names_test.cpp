// Listing named groups by scanning the engine's stored text.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

using scl::regex::regex;
using Names = std::vector<std::string>;

TEST(GroupNames, NamedGroupsInOrderOfAppearance) {
  const regex re(u"(?<year>[0-9]+)-(?<month>[0-9]+)", 0);
  EXPECT_EQ(re.getGroupNamesIfAvailable(), (Names{"year", "month"}));
}

TEST(GroupNames, PatternWithoutNamedGroupsGivesEmptyList) {
  EXPECT_TRUE(regex(u"(a)(b)", 0).getGroupNamesIfAvailable().empty());
}

TEST(GroupNames, SameNameWrittenTwiceIsListedTwice) {
  // ICU rejects a duplicate group name, but an escaped "\?<a>" is literal text
  // that the textual scan still counts.
  const regex re(u"(?<a>x)\\?<a>", 0);
  EXPECT_EQ(re.getGroupNamesIfAvailable(), (Names{"a", "a"}));
}

TEST(GroupNames, LookbehindIsNotAName) {
  EXPECT_TRUE(regex(u"(?<=a)b", 0).getGroupNamesIfAvailable().empty());
  EXPECT_TRUE(regex(u"(?<!a)b", 0).getGroupNamesIfAvailable().empty());
}

TEST(GroupNames, RegexWithoutEngineGivesEmptyList) {
  regex re(u"(?<name>x)", 0);
  regex moved = std::move(re);
  EXPECT_TRUE(re.getGroupNamesIfAvailable().empty());
  EXPECT_EQ(moved.getGroupNamesIfAvailable(), Names{"name"});
}

TEST(GroupNames, AfterResetTheSubjectIsScannedInsteadOfThePattern) {
  regex re(u"(?<first>a)(?<second>b)", 0);
  re.reset(u"text with ?<abc> inside");
  EXPECT_EQ(re.getGroupNamesIfAvailable(), Names{"abc"});
  re.reset(u"no names here");
  EXPECT_TRUE(re.getGroupNamesIfAvailable().empty());
}

TEST(GroupNames, OnlyAsciiLetterThenLettersAndDigits) {
  EXPECT_TRUE(regex(u"\\?<a_b>", 0).getGroupNamesIfAvailable().empty());
  EXPECT_TRUE(regex(u"\\?<1a>", 0).getGroupNamesIfAvailable().empty());
  EXPECT_EQ(regex(u"(?<a1B2>x)", 0).getGroupNamesIfAvailable(), Names{"a1B2"});
}

TEST(GroupNames, ScanIsTextualAndNeedsNoParenthesis) {
  EXPECT_EQ(regex(u"[?<inclass>]", 0).getGroupNamesIfAvailable(), Names{"inclass"});
}

TEST(GroupNames, ScanningDoesNotChangeTheRegex) {
  regex re(u"(?<d>\\d)", 0);
  re.reset(u"1 2");
  ASSERT_EQ(re.match().start, 0u);
  EXPECT_TRUE(re.getGroupNamesIfAvailable().empty());
  EXPECT_EQ(re.match().start, 2u);  // the walk goes on where it was
}

TEST(GroupNames, EmptyStoredTextGivesEmptyList) {
  regex re(u"(?<x>a)", 0);
  re.reset(u"");
  EXPECT_TRUE(re.getGroupNamesIfAvailable().empty());
}

}  // namespace
