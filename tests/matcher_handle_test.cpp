// Making, holding and destroying matcher handles.
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/icu_view.h"

namespace {

namespace constants = scl::regex::constants;
using scl::regex::createExpectedMatcher;
using scl::regex::createMatcher;
using scl::regex::matcher_ptr;
using scl::regex::regex_exception;
using scl_regex_test::compiled_pattern;
using scl_regex_test::icu_find;

static_assert(
    std::is_same_v<matcher_ptr, std::unique_ptr<void, scl::regex::detail::matcher_destroyer>>);
static_assert(!std::is_copy_constructible_v<matcher_ptr>);
static_assert(std::is_nothrow_move_constructible_v<matcher_ptr>);
static_assert(std::is_same_v<decltype(createMatcher(u"", 0)), matcher_ptr>);
static_assert(std::is_same_v<decltype(createExpectedMatcher(u"", 0)),
                             scl::regex::expected_result<matcher_ptr>>);

TEST(CreateMatcher, CompilesPatternIntoNonNullHandle) {
  const matcher_ptr handle = createMatcher(u"a+b", 0);
  ASSERT_NE(handle.get(), nullptr);
  EXPECT_EQ(compiled_pattern(handle), u"a+b");
  EXPECT_TRUE(icu_find(handle, u"xaab"));
}

TEST(CreateMatcher, UnbalancedParenthesisThrowsWithLibraryMessage) {
  try {
    (void)createMatcher(u"(a", 0);
    FAIL() << "no exception";
  } catch (const regex_exception& e) {
    EXPECT_STREQ(e.what(), "Incorrectly nested parentheses in regexp pattern.");
    EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  }
}

TEST(CreateMatcher, RejectedPatternsThrowTheirIcuError) {
  const std::pair<std::u16string, const char*> cases[] = {
      {u"*", "U_REGEX_RULE_SYNTAX"},
      {u"a{2,1}", "U_REGEX_MAX_LT_MIN"},
      {u"[b-a]", "U_REGEX_INVALID_RANGE"},
      {u"[ab", "U_REGEX_MISSING_CLOSE_BRACKET"},
      {u"\\k<nope>", "U_REGEX_INVALID_CAPTURE_GROUP_NAME"},
      {u"(?<=a*)b", "U_REGEX_LOOK_BEHIND_LIMIT"},
      {u"\\p{NoSuchProperty}", "U_REGEX_PROPERTY_SYNTAX"},
      {u"(a)\\2", "U_REGEX_INVALID_BACK_REF"},
  };
  for (const auto& [pattern, mnemonic] : cases) {
    try {
      (void)createMatcher(pattern, 0);
      ADD_FAILURE() << "no exception for " << mnemonic;
    } catch (const regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), mnemonic);
    }
  }
}

TEST(CreateMatcher, ExceptionIsCatchableAsStdException) {
  EXPECT_THROW((void)createMatcher(u")", 0), std::exception);
}

TEST(CreateExpectedMatcher, UnbalancedParenthesisIsReturnedNotThrown) {
  scl::regex::expected_result<matcher_ptr> result(matcher_ptr{});
  EXPECT_NO_THROW(result = createExpectedMatcher(u"(a", 0));
  ASSERT_TRUE(result.has_error());
  EXPECT_EQ(result.error().getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  EXPECT_STREQ(result.error().what(), "Incorrectly nested parentheses in regexp pattern.");
}

TEST(CreateExpectedMatcher, GoodPatternGivesHandleWithOptions) {
  auto result = createExpectedMatcher(u"caf\u00e9", constants::ignore_diacritics);
  ASSERT_FALSE(result.has_error());
  matcher_ptr handle = std::move(result.value());
  ASSERT_NE(handle.get(), nullptr);
  EXPECT_EQ(handle.get_deleter().options, constants::ignore_diacritics);
  EXPECT_EQ(compiled_pattern(handle), u"cafe");
}

TEST(CreateExpectedMatcher, PreparesPatternLikeCreateMatcher) {
  for (constants::syntax_option_type options = 0; options < 8; ++options) {
    const std::u16string pattern = u"A\u030a|e\u0301";
    auto expected = createExpectedMatcher(pattern, options);
    ASSERT_FALSE(expected.has_error());
    EXPECT_EQ(compiled_pattern(expected.value()),
              compiled_pattern(createMatcher(pattern, options)));
    EXPECT_EQ(compiled_pattern(expected.value()), scl::regex::prepare_text(pattern, options));
  }
}

TEST(CreateMatcher, EmptyPatternCompilesAndMatchesEmptyString) {
  const matcher_ptr handle = createMatcher(u"", 0);
  ASSERT_NE(handle.get(), nullptr);
  EXPECT_TRUE(icu_find(handle, u""));
  auto& matcher = scl_regex_test::icu_matcher(handle);
  const icu::UnicodeString empty;
  matcher.reset(empty);
  UErrorCode status = U_ZERO_ERROR;
  EXPECT_TRUE(matcher.matches(status));
  EXPECT_EQ(matcher.end(status), 0);
}

TEST(CreateMatcher, HandleKeepsOptionsInItsDeleter) {
  const matcher_ptr handle = createMatcher(u"cafe", 0x5);
  EXPECT_EQ(handle.get_deleter().options, 0x5u);
  EXPECT_EQ(scl_regex_test::compiled_flags(handle), 34u);
}

TEST(CreateMatcher, MovingHandleMovesMatcherAndOptionsTogether) {
  matcher_ptr source = createMatcher(u"a", 0x6);
  void* const matcher = source.get();
  matcher_ptr target = std::move(source);
  EXPECT_EQ(target.get(), matcher);
  EXPECT_EQ(target.get_deleter().options, 0x6u);
  EXPECT_EQ(source.get(), nullptr);
}

TEST(MatcherDestroyer, MovedFromHandleIsEmptyAndOnlyTheTargetDeletes) {
  matcher_ptr target;
  {
    matcher_ptr source = createMatcher(u"a", 0);
    target = std::move(source);
    EXPECT_EQ(source.get(), nullptr);
  }  // destroying the moved-from handle must not free the matcher
  EXPECT_TRUE(icu_find(target, u"a"));
}

TEST(CreateMatcher, PatternOfCombiningMarksOnlyIsEmptyUnderIgnoreDiacritics) {
  const matcher_ptr handle = createMatcher(u"\u0301\u0327", constants::ignore_diacritics);
  EXPECT_EQ(compiled_pattern(handle), u"");
  EXPECT_TRUE(icu_find(handle, u"anything"));
}

TEST(CreateMatcher, PatternWithEmbeddedNulKeepsIt) {
  using namespace std::string_literals;
  const matcher_ptr handle = createMatcher(u"a\0b"s, 0);
  EXPECT_EQ(compiled_pattern(handle), u"a\0b"s);
  EXPECT_TRUE(icu_find(handle, u"xa\0b"s));
  EXPECT_FALSE(icu_find(handle, u"ab"));
}

TEST(CreateMatcher, NfcPatternIsCompiledComposed) {
  const matcher_ptr handle = createMatcher(u"e\u0301", constants::normalize_nfc);
  EXPECT_EQ(compiled_pattern(handle), u"\u00e9");
}

TEST(CreateMatcher, CallersPatternIsNotModified) {
  const std::u16string pattern = u"caf\u00e9";
  (void)createMatcher(pattern, 0x7);
  EXPECT_EQ(pattern, u"caf\u00e9");
}

}  // namespace
