// Walking matches with regex_iterator.
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
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

namespace {

namespace rr = scl::regex;

static_assert(std::is_same_v<std::iterator_traits<rr::regex_iterator>::iterator_category,
                             std::input_iterator_tag>);
static_assert(
    std::is_same_v<std::iterator_traits<rr::regex_iterator>::value_type, rr::regex_result>);
static_assert(
    std::is_same_v<std::iterator_traits<rr::regex_iterator>::reference, const rr::regex_result&>);

TEST(RegexRange, RangeForWalksTheSameMatchesAsTheIterator) {
  rr::regex digits(u"\\d+", 0);
  std::vector<std::u16string> walked;
  for (const rr::regex_result& m : rr::regex_range(u"a1b22c333", digits)) walked.push_back(m.str());
  EXPECT_EQ(walked, (std::vector<std::u16string>{u"1", u"22", u"333"}));
  EXPECT_EQ(digits.match().start, rr::npos);  // the walk is over, as after an iterator's
}

TEST(RegexRange, EmptyWalkAndPreparedSubject) {
  rr::regex word(u"cafe", rr::constants::ignore_diacritics);
  int count = 0;
  for (const rr::regex_result& m : rr::regex_range(u"un caf\u00e9", word)) {
    EXPECT_EQ(m.start, 3u);  // positions of the prepared subject
    ++count;
  }
  EXPECT_EQ(count, 1);
  for (const rr::regex_result& m : rr::regex_range(u"nothing", word)) ADD_FAILURE() << m.start;
}

TEST(RegexRange, SentinelAndIteratorComparisons) {
  rr::regex digits(u"\\d", 0);
  rr::regex_iterator it(u"1a2", digits);
  EXPECT_TRUE(it != rr::regex_sentinel{});
  EXPECT_FALSE(rr::regex_sentinel{} == it);
  const rr::regex_iterator same = it;
  EXPECT_TRUE(it == same);
  ++it;
  EXPECT_TRUE(it != same);  // another match of the same regex
  ++it;
  EXPECT_TRUE(it == rr::regex_sentinel{});
  EXPECT_TRUE(it.at_end());
  rr::regex other(u"x", 0);
  const rr::regex_iterator end_of_sequence(std::u16string_view(u"ignored"), other);
  EXPECT_TRUE(it == end_of_sequence);  // every end equals every end
  EXPECT_FALSE(same == end_of_sequence);
}

}  // namespace
