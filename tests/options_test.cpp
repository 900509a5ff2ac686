// Option bits and how they reach ICU.
#include <cstdint>
#include <type_traits>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/icu_view.h"

namespace {

namespace constants = scl::regex::constants;
using scl_regex_test::compiled_flags;
using scl_regex_test::icu_find;

static_assert(std::is_same_v<constants::syntax_option_type, std::uint32_t>);
static_assert(
    std::is_same_v<decltype(constants::case_insensitive), const constants::syntax_option_type>);
static_assert(constants::case_insensitive == 0x1);
static_assert(constants::normalize_nfc == 0x2);
static_assert(constants::ignore_diacritics == 0x4);
static_assert(constants::retry_on_stack_overflow == 0x2);
static_assert(std::is_same_v<decltype(constants::retry_on_stack_overflow), const std::uint32_t>);
static_assert((constants::case_insensitive | constants::ignore_diacritics) == 0x5);

TEST(OptionBits, CaseInsensitiveCompilesWithIcuFlags34OtherwiseFlags32) {
  for (constants::syntax_option_type options = 0; options < 8; ++options) {
    const auto handle = scl::regex::createMatcher(u"x", options);
    const uint32_t expected = (options & 0x1) != 0 ? 34u : 32u;
    EXPECT_EQ(compiled_flags(handle), expected) << "options " << options;
  }
}

TEST(OptionBits, BitsOutsideTheThreeAreIgnored) {
  const auto high = scl::regex::createMatcher(u"x", 0xFFFFFFF8u);
  EXPECT_EQ(compiled_flags(high), 32u);
  const auto high_and_case = scl::regex::createMatcher(u"x", 0xFFFFFFF9u);
  EXPECT_EQ(compiled_flags(high_and_case), 34u);
  // No NFC or diacritics removal was applied to the pattern.
  const auto untouched = scl::regex::createMatcher(u"e\u0301", 0x80000000u);
  EXPECT_EQ(scl_regex_test::compiled_pattern(untouched), u"e\u0301");
}

TEST(OptionBits, DotMatchesLineFeedWithOptionsZero) {
  const auto handle = scl::regex::createMatcher(u"a.b", 0);
  EXPECT_TRUE(icu_find(handle, u"a\nb"));
  EXPECT_TRUE(icu_find(handle, u"a\rb"));
  EXPECT_TRUE(icu_find(handle, u"a\u2028b"));
  // ICU's "." takes a CR LF pair as one line end.
  EXPECT_TRUE(icu_find(handle, u"a\r\nb"));
  // Without DOTALL none of these would match: "." alone matches no line end then.
  const auto plain = scl::regex::createMatcher(u"(?-s)a.b", 0);
  EXPECT_FALSE(icu_find(plain, u"a\nb"));
}

TEST(OptionBits, CaseInsensitiveMatchesOtherCaseOnlyWithBit1) {
  EXPECT_TRUE(icu_find(scl::regex::createMatcher(u"ABC", constants::case_insensitive), u"abc"));
  EXPECT_FALSE(icu_find(scl::regex::createMatcher(u"ABC", 0), u"abc"));
}

TEST(OptionBits, MultilineAndCommentsAreNeverSet) {
  // Without MULTILINE "^" matches only at the start; without COMMENTS blanks are literal.
  EXPECT_FALSE(icu_find(scl::regex::createMatcher(u"^b", 0x7), u"a\nb"));
  EXPECT_FALSE(icu_find(scl::regex::createMatcher(u"a b", 0x7), u"ab"));
  EXPECT_TRUE(icu_find(scl::regex::createMatcher(u"a b", 0x7), u"a b"));
}

}  // namespace
