// Valid but expensive input: a pattern that overflows ICU's backtrack stack on
// a long subject. Every function gives its documented folded result or the
// reported error, and never crashes.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>

#include <scl/regex.h>

namespace {

using namespace std::string_literals;

// (a|aa)+$ needs backtrack stack in proportion to the subject; a million units
// exceed ICU's default limit of 8 MB.
const std::u16string kPattern = u"(a|aa)+$";
const std::u16string& long_subject() {
  static const std::u16string subject(1000000, u'a');
  return subject;
}

TEST(HostileInput, HandleSearchAndGroupsFoldToFalseAndEmpty) {
  const scl::regex::matcher_ptr handle = scl::regex::createMatcher(kPattern, 0);
  EXPECT_FALSE(scl::regex::regex_search(handle, long_subject(), false));
  EXPECT_FALSE(scl::regex::regex_search(handle, long_subject(), true));
  EXPECT_EQ(scl::regex::get_group(handle, 1), u"");
  EXPECT_FALSE(scl::regex::regex_search(long_subject().c_str(), kPattern.c_str(), false, 0));
}

TEST(HostileInput, HandleReplacementsReturnTheSubject) {
  const scl::regex::matcher_ptr handle = scl::regex::createMatcher(kPattern, 0);
  EXPECT_EQ(scl::regex::regex_replace(handle, long_subject(), u"x"), long_subject());
  EXPECT_EQ(scl::regex::regex_replace_first(handle, long_subject(), u"x"), long_subject());
  int calls = 0;
  EXPECT_EQ(scl::regex::regex_replace(handle, long_subject(),
                                      [&](const std::u16string&, bool&) {
                                        ++calls;
                                        return u"x";
                                      }),
            long_subject());
  EXPECT_EQ(scl::regex::regex_replace(
                long_subject(), kPattern,
                [&](const std::u16string&, bool&) {
                  ++calls;
                  return u"x";
                },
                0),
            long_subject());
  EXPECT_EQ(calls, 0);
}

TEST(HostileInput, OneShotReplacementsReturnTheSubject) {
  EXPECT_EQ(scl::regex::regex_replace(long_subject(), kPattern, u"x", 0), long_subject());
  EXPECT_EQ(scl::regex::regex_replace_first(long_subject(), kPattern, u"x", 0), long_subject());
  const std::string utf8(1000000, 'a');
  EXPECT_EQ(scl::regex::regex_replace(utf8, "(a|aa)+$"s, "x"s, 0), utf8);
}

TEST(HostileInput, RegexMatchEndsAndMatchExReportsTheOverflow) {
  scl::regex::regex re(kPattern, 0);
  re.reset(long_subject());
  EXPECT_EQ(re.match().start, scl::regex::npos);
  re.reset(long_subject());
  const auto ex = re.match_ex();
  ASSERT_TRUE(ex.has_error());
  EXPECT_EQ(ex.error().getErrorCodeMnemonic(), "U_REGEX_STACK_OVERFLOW");
}

TEST(HostileInput, WalksEndWithoutResults) {
  scl::regex::regex re(kPattern, 0);
  EXPECT_EQ(scl::regex::regex_iterator(long_subject(), re)->start, scl::regex::npos);
  std::vector<scl::regex::match_tuple> out;
  scl::regex::regex_search(long_subject(), kPattern, out, 0);
  EXPECT_TRUE(out.empty());
  const auto [prefix, suffix] = scl::regex::regex_search_prefix_suffix(long_subject(), kPattern, 0);
  EXPECT_EQ(prefix, u"");
  EXPECT_EQ(suffix, long_subject());
}

TEST(HostileInput, DeeplyNestedPatternIsRejectedOrCompiled) {
  // ICU's pattern parser keeps its state on a stack of fixed size: nesting up
  // to some depth compiles, anything deeper is rejected as an internal error
  // (ICU 72: 99 levels compile, 100 do not). Whichever way a depth goes, what
  // comes out is checked: a compiled pattern matches "a" and nothing else,
  // through every group; a rejection carries ICU's code and the library's
  // message for it, from both ways of making a handle. Both ways must occur.
  bool compiled_any = false;
  bool rejected_any = false;
  for (const int depth : {1, 10, 50, 99, 100, 101, 1000, 5000}) {
    SCOPED_TRACE(depth);
    const auto levels = static_cast<std::size_t>(depth);
    const std::u16string nested =
        std::u16string(levels, u'(') + u"a" + std::u16string(levels, u')');
    auto result = scl::regex::createExpectedMatcher(nested, 0);
    if (!result.has_error()) {
      EXPECT_FALSE(rejected_any) << "compiled after a shallower nesting was rejected";
      compiled_any = true;
      const scl::regex::matcher_ptr& handle = result.value();
      ASSERT_NE(handle.get(), nullptr);
      EXPECT_EQ(scl::regex::get_group_count(handle), depth + 1);
      EXPECT_FALSE(scl::regex::regex_search(handle, u"aa", true));
      EXPECT_FALSE(scl::regex::regex_search(handle, u"b", false));
      ASSERT_TRUE(scl::regex::regex_search(handle, u"xay", false));
      EXPECT_EQ(scl::regex::get_group(handle, 0), u"a");
      EXPECT_EQ(scl::regex::get_group(handle, 1), u"a");
      EXPECT_EQ(scl::regex::get_group(handle, depth), u"a");
      ASSERT_TRUE(scl::regex::regex_search(handle, u"a", true));
      EXPECT_EQ(scl::regex::get_group(handle, depth), u"a");
    } else {
      rejected_any = true;
      EXPECT_EQ(result.error().getErrorCodeMnemonic(), "U_REGEX_INTERNAL_ERROR");
      EXPECT_STREQ(result.error().what(), "An internal error (bug) was detected.");
      try {
        (void)scl::regex::createMatcher(nested, 0);
        ADD_FAILURE() << "createMatcher compiled what createExpectedMatcher rejected";
      } catch (const scl::regex::regex_exception& e) {
        EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_INTERNAL_ERROR");
      }
    }
  }
  EXPECT_TRUE(compiled_any);
  EXPECT_TRUE(rejected_any);

  // Unbalanced nesting is an error at any depth; at this depth the parser's
  // stack runs out before the missing ")" is noticed.
  auto shallow = scl::regex::createExpectedMatcher(std::u16string(10, u'('), 0);
  ASSERT_TRUE(shallow.has_error());
  EXPECT_EQ(shallow.error().getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  auto unbalanced = scl::regex::createExpectedMatcher(std::u16string(5000, u'('), 0);
  ASSERT_TRUE(unbalanced.has_error());
  EXPECT_EQ(unbalanced.error().getErrorCodeMnemonic(), "U_REGEX_INTERNAL_ERROR");
  EXPECT_STREQ(unbalanced.error().what(), "An internal error (bug) was detected.");
  EXPECT_THROW((void)scl::regex::createMatcher(std::u16string(5000, u'('), 0),
               scl::regex::regex_exception);
}

TEST(HostileInput, HugeRepetitionCountsAreErrorsNotCrashes) {
  auto result = scl::regex::createExpectedMatcher(u"a{99999999999}", 0);
  ASSERT_TRUE(result.has_error());
  EXPECT_STREQ(result.error().what(), "Decimal number is too large.");
}

TEST(HostileInput, IcuTimeLimitOnAHandleTurnsANeverEndingSearchIntoFalse) {
  // ICU 72 never finishes a lazy quantifier over a group that can match the empty
  // string when there is no match; a time limit set on the handle's ICU matcher
  // ends it, and the search folds ICU's time-out into false.
  for (const char16_t* pattern : {u"(a?)+?b", u"(a*)+?b", u"(a{0,2})*?b"}) {
    const scl::regex::matcher_ptr handle = scl::regex::createMatcher(pattern, 0);
    UErrorCode status = U_ZERO_ERROR;
    static_cast<icu::RegexMatcher*>(handle.get())->setTimeLimit(50, status);
    ASSERT_TRUE(U_SUCCESS(status));
    EXPECT_FALSE(scl::regex::regex_search(handle, u"a", false));
    EXPECT_FALSE(
        scl::regex::regex_search(handle, u"aa", false));  // the limit survives a new search
  }
}

}  // namespace
