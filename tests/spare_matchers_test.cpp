// Matchers of a compiled pattern kept for reuse.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>

#include "icu/spare_matchers.h"

namespace {

namespace detail = scl::regex::detail;

std::unique_ptr<icu::RegexPattern> compiled(const char16_t* text) {
  UParseError where;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::RegexPattern> pattern(
      icu::RegexPattern::compile(icu::UnicodeString(text), 0, where, status));
  EXPECT_TRUE(U_SUCCESS(status));
  return pattern;
}

TEST(SpareMatchers, GiveBackWhatTheyLentForTheNextBorrower) {
  const auto pattern = compiled(u"a(b)");
  const detail::spare_matchers spares(*pattern);
  const icu::RegexMatcher* first = nullptr;
  {
    const detail::borrowed_matcher matcher = spares.borrow();
    first = &*matcher;
    EXPECT_EQ(&matcher->pattern(), pattern.get());
    EXPECT_EQ(matcher->groupCount(), 1);
  }
  const detail::borrowed_matcher again = spares.borrow();
  EXPECT_EQ(&*again, first);
}

// Borrows `count` matchers at once, each different from those lent before.
void borrow_at_once(const detail::spare_matchers& spares, int count,
                    std::vector<const icu::RegexMatcher*>& lent) {
  const detail::borrowed_matcher matcher = spares.borrow();
  for (const icu::RegexMatcher* other : lent) EXPECT_NE(&*matcher, other);
  lent.push_back(&*matcher);
  if (count > 1) borrow_at_once(spares, count - 1, lent);
}

TEST(SpareMatchers, LendADifferentMatcherToEachBorrowerAtOnce) {
  const auto pattern = compiled(u"x");
  const detail::spare_matchers spares(*pattern);
  // More borrowers at once than are kept: the rest are deleted when given
  // back (LeakSanitizer sees that none is lost).
  std::vector<const icu::RegexMatcher*> lent;
  borrow_at_once(spares, 6, lent);
  ASSERT_EQ(lent.size(), 6U);
  // The kept ones are lent again.
  const detail::borrowed_matcher again = spares.borrow();
  EXPECT_NE(std::find(lent.begin(), lent.end(), &*again), lent.end());
}

TEST(SpareMatchers, KeepNothingFromABorrowerThatThrew) {
  const auto pattern = compiled(u"x");
  const detail::spare_matchers spares(*pattern);
  const icu::UnicodeString text(u"xyz");
  try {
    const detail::borrowed_matcher matcher = spares.borrow();
    matcher->reset(text);
    throw std::runtime_error("search failed");
  } catch (const std::runtime_error&) {
  }
  // A new matcher, over no text (the one that was lent had "xyz").
  const detail::borrowed_matcher next = spares.borrow();
  EXPECT_EQ(next->input().length(), 0);
  {
    const detail::borrowed_matcher kept = spares.borrow();
    kept->reset(text);
  }
  // One given back normally is lent again as it was left.
  const detail::borrowed_matcher again = spares.borrow();
  EXPECT_EQ(again->input(), text);
}

TEST(SpareMatchers, AreSharedByThreads) {
  const auto pattern = compiled(u"(\\d+)");
  const detail::spare_matchers spares(*pattern);
  std::vector<std::thread> threads;
  std::vector<int> wrong(8, 0);
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      const icu::UnicodeString text =
          icu::UnicodeString("n") + icu::UnicodeString(u"0123456789"[t]);
      for (int round = 0; round < 2000; ++round) {
        const detail::borrowed_matcher matcher = spares.borrow();
        UErrorCode status = U_ZERO_ERROR;
        matcher->reset(text);
        if (!matcher->find(status) || matcher->start(status) != 1 || U_FAILURE(status)) ++wrong[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < 8; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t;
}

}  // namespace
