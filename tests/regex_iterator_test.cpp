// Walking matches with regex_iterator.
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

using scl::regex::regex;
using scl::regex::regex_iterator;

using scl::regex::npos;

bool at_end(const regex_iterator& it) { return it->start == npos && it->end == npos; }

std::vector<std::pair<std::size_t, std::size_t>> walk(regex_iterator it) {
  std::vector<std::pair<std::size_t, std::size_t>> spans;
  for (; !at_end(it); ++it) spans.emplace_back(it->start, it->end);
  return spans;
}

TEST(RegexIterator, SubjectWithoutMatchIsAtEndRightAway) {
  regex re(u"z", 0);
  const regex_iterator it(std::u16string(u"abc"), re);
  EXPECT_TRUE(at_end(it));
  EXPECT_EQ(it->impl, nullptr);
  EXPECT_TRUE((*it).groups.empty());
}

TEST(RegexIterator, VisitsEveryMatchInOrder) {
  regex re(u"\\d+", 0);
  const auto spans = walk(regex_iterator(std::u16string(u"a1b22c333"), re));
  EXPECT_EQ(spans, (std::vector<std::pair<std::size_t, std::size_t>>{{1, 2}, {3, 5}, {6, 9}}));
}

TEST(RegexIterator, EmptyMatchesAreVisitedOnceIncludingAtTheEnd) {
  regex re(u"x*", 0);
  const auto spans = walk(regex_iterator(std::u16string(u"ab"), re));
  EXPECT_EQ(spans, (std::vector<std::pair<std::size_t, std::size_t>>{{0, 0}, {1, 1}, {2, 2}}));
}

TEST(RegexIterator, ViewConstructorIsEndAndLeavesRegexAlone) {
  regex re(u"\\d", 0);
  re.reset(u"1 2");
  ASSERT_EQ(re.match().start, 0u);
  const std::u16string other = u"999";
  const regex_iterator end(std::u16string_view(other), re);
  EXPECT_TRUE(at_end(end));
  EXPECT_EQ(end->impl, nullptr);
  // The regex was neither reset nor advanced.
  EXPECT_EQ(re.str(0, 3), u"1 2");
  EXPECT_EQ(re.match().start, 2u);
}

TEST(RegexIterator, IncrementingAnEndOfSequenceIteratorStaysAtEnd) {
  regex re(u"a", 0);
  regex_iterator end(std::u16string_view(u"aaa"), re);
  ++end;
  end.increment();
  EXPECT_TRUE(at_end(end));
}

TEST(RegexIterator, TwoIteratorsOverOneRegexInterfere) {
  regex re(u"\\w", 0);
  regex_iterator first(std::u16string(u"ab"), re);
  EXPECT_EQ(first->str(), u"a");
  regex_iterator second(std::u16string(u"xyz"), re);  // resets the shared regex
  EXPECT_EQ(second->str(), u"x");
  ++first;  // continues over the second's subject
  EXPECT_EQ(first->start, 1u);
  EXPECT_EQ(first->str(), u"y");
}

TEST(RegexIterator, RangeConstructorWalksTheRange) {
  regex re(u"\\d", 0);
  const std::u16string subject = u"1a2b3";
  const auto spans = walk(regex_iterator(subject.cbegin() + 1, subject.cend() - 1, re));
  EXPECT_EQ(spans, (std::vector<std::pair<std::size_t, std::size_t>>{{1, 2}}));
}

TEST(RegexIterator, StringLiteralIsALiveSubject) {
  regex re(u"b", 0);
  const regex_iterator it(u"abc", re);
  EXPECT_EQ(it->start, 1u);
}

TEST(RegexIterator, DereferenceAndArrowGiveTheCurrentResult) {
  regex re(u"(?<d>\\d)", 0);
  regex_iterator it(std::u16string(u"x7"), re);
  EXPECT_EQ(&*it, it.operator->());
  EXPECT_EQ((*it)["d"].str(), u"7");
  EXPECT_EQ(&++it, &it);
  EXPECT_TRUE(at_end(it));
}

TEST(RegexIterator, PositionsAreThoseOfThePreparedSubject) {
  regex re(u"x", scl::regex::constants::ignore_diacritics);
  const auto spans = walk(regex_iterator(std::u16string(u"a\u0301\u0302x"), re));
  EXPECT_EQ(spans, (std::vector<std::pair<std::size_t, std::size_t>>{{1, 2}}));
}

TEST(RegexIterator, SearchErrorEndsTheWalk) {
  regex re(u"(a|aa)+$", 0);
  EXPECT_TRUE(at_end(regex_iterator(std::u16string(1000000, u'a'), re)));
}

TEST(RegexIterator, RegexWithoutEngineGivesEndRightAway) {
  regex re(u"a", 0);
  regex moved = std::move(re);
  EXPECT_TRUE(at_end(regex_iterator(std::u16string(u"aaa"), re)));
}

}  // namespace
