// The value-or-error record.
#include <memory>
#include <string>
#include <type_traits>
#include <variant>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

using scl::regex::expected_result;
using scl::regex::regex_exception;

static_assert(std::is_constructible_v<expected_result<std::string>, std::string>);
static_assert(std::is_constructible_v<expected_result<std::string>, regex_exception>);
static_assert(
    std::is_same_v<decltype(std::declval<const expected_result<int>&>().has_error()), bool>);
static_assert(noexcept(std::declval<const expected_result<int>&>().has_error()));
static_assert(std::is_same_v<decltype(std::declval<expected_result<int>&>().value()), int&>);
static_assert(
    std::is_same_v<decltype(std::declval<const expected_result<int>&>().value()), const int&>);
static_assert(
    std::is_same_v<decltype(std::declval<expected_result<int>&>().error()), regex_exception&>);
static_assert(std::is_same_v<decltype(std::declval<const expected_result<int>&>().error()),
                             const regex_exception&>);
static_assert(!std::is_copy_constructible_v<expected_result<std::unique_ptr<int>>>);
static_assert(std::is_move_constructible_v<expected_result<std::unique_ptr<int>>>);

TEST(ExpectedResult, MadeFromValueHoldsValueWithoutError) {
  expected_result<std::u16string> result(std::u16string(u"text"));
  EXPECT_FALSE(result.has_error());
  EXPECT_EQ(result.value(), u"text");
  result.value() += u"!";
  EXPECT_EQ(result.value(), u"text!");
}

TEST(ExpectedResult, MadeFromExceptionHoldsErrorWithFlagSet) {
  const expected_result<std::u16string> result(regex_exception(-1000));
  EXPECT_TRUE(result.has_error());
  EXPECT_STREQ(result.error().what(), "Matcher is not available.");
}

TEST(ExpectedResult, TakingTheAbsentSideThrowsInsteadOfReadingGarbage) {
  expected_result<int> value(7);
  EXPECT_THROW((void)value.error(), std::bad_variant_access);
  expected_result<int> error(regex_exception(-1001));
  EXPECT_THROW((void)error.value(), std::bad_variant_access);
}

TEST(ExpectedResult, CopiesKeepTheirSide) {
  const expected_result<std::string> error(regex_exception(66310));
  const expected_result<std::string> copy = error;
  ASSERT_TRUE(copy.has_error());
  EXPECT_EQ(copy.error().getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  const expected_result<std::string> value(std::string("v"));
  const expected_result<std::string> value_copy = value;
  ASSERT_FALSE(value_copy.has_error());
  EXPECT_EQ(value_copy.value(), "v");
}

TEST(ExpectedResult, HoldsMoveOnlyValuesAndGivesThemUp) {
  expected_result<std::unique_ptr<int>> result(std::make_unique<int>(3));
  std::unique_ptr<int> taken = std::move(result).value();
  ASSERT_NE(taken, nullptr);
  EXPECT_EQ(*taken, 3);
}

}  // namespace
