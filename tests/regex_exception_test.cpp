// The exception type, its fixed messages and ICU mnemonics.
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>
#include <unicode/utypes.h>

#include <scl/regex.h>

namespace {

using scl::regex::regex_exception;

static_assert(std::is_base_of_v<std::exception, regex_exception>);
static_assert(std::is_nothrow_copy_constructible_v<regex_exception>);
static_assert(std::is_nothrow_move_constructible_v<regex_exception>);
static_assert(!std::is_convertible_v<std::int64_t, regex_exception>, "constructor is explicit");
static_assert(sizeof(regex_exception) == sizeof(void*) + sizeof(std::int64_t));
static_assert(noexcept(std::declval<const regex_exception&>().what()));

struct MessageRow {
  std::int64_t code;
  const char* mnemonic;
  const char* message;
};

// Every code with a message of its own, as the library states it.
const MessageRow kMessageTable[] = {
    {0x10300, "U_REGEX_INTERNAL_ERROR", "An internal error (bug) was detected."},
    {0x10301, "U_REGEX_RULE_SYNTAX", "Syntax error in regexp pattern."},
    {0x10302, "U_REGEX_INVALID_STATE", "RegexMatcher in invalid state for requested operation"},
    {0x10303, "U_REGEX_BAD_ESCAPE_SEQUENCE", "Unrecognized backslash escape sequence in pattern"},
    {0x10304, "U_REGEX_PROPERTY_SYNTAX", "Incorrect Unicode property"},
    {0x10305, "U_REGEX_UNIMPLEMENTED", "Use of regexp feature that is not yet implemented."},
    {0x10306, "U_REGEX_MISMATCHED_PAREN", "Incorrectly nested parentheses in regexp pattern."},
    {0x10307, "U_REGEX_NUMBER_TOO_BIG", "Decimal number is too large."},
    {0x10308, "U_REGEX_BAD_INTERVAL", "Error in {min,max} interval"},
    {0x10309, "U_REGEX_MAX_LT_MIN", "In {min,max}, max is less than min."},
    {0x1030A, "U_REGEX_INVALID_BACK_REF", "Back-reference to a non-existent capture group."},
    {0x1030B, "U_REGEX_INVALID_FLAG", "Invalid value for match mode flags."},
    {0x1030C, "U_REGEX_LOOK_BEHIND_LIMIT",
     "Look-Behind pattern matches must have a bounded maximum length."},
    {0x1030D, "U_REGEX_SET_CONTAINS_STRING", "Regexps cannot have UnicodeSets containing strings."},
    {0x1030F, "U_REGEX_MISSING_CLOSE_BRACKET", "Missing closing bracket on a bracket expression."},
    {0x10310, "U_REGEX_INVALID_RANGE", "In a character range [x-y], x is greater than y."},
    {0x10311, "U_REGEX_STACK_OVERFLOW", "Regular expression backtrack stack overflow."},
    {0x10312, "U_REGEX_TIME_OUT", "Maximum allowed match time exceeded"},
    {0x10313, "U_REGEX_STOPPED_BY_CALLER", "Matching operation aborted by user callback fn."},
    {0x10314, "U_REGEX_PATTERN_TOO_BIG", "Pattern exceeds limits on size or complexity."},
    {0x10315, "U_REGEX_INVALID_CAPTURE_GROUP_NAME", "Invalid capture group name."},
};

void PrintTo(const MessageRow& row, std::ostream* os) { *os << row.mnemonic; }

class RegexErrorMessages : public testing::TestWithParam<MessageRow> {};

TEST_P(RegexErrorMessages, WhatGivesFixedMessageAndMnemonicGivesIcuName) {
  const regex_exception e(GetParam().code);
  EXPECT_STREQ(e.what(), GetParam().message);
  EXPECT_EQ(e.getErrorCodeMnemonic(), GetParam().mnemonic);
}

INSTANTIATE_TEST_SUITE_P(AllTwentyOneEntries, RegexErrorMessages, testing::ValuesIn(kMessageTable),
                         [](const testing::TestParamInfo<MessageRow>& info) {
                           return std::string(info.param.mnemonic);
                         });

TEST(RegexException, RuleSyntaxHasItsMessageAndMnemonic) {
  const regex_exception e(U_REGEX_RULE_SYNTAX);
  EXPECT_STREQ(e.what(), "Syntax error in regexp pattern.");
  EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_RULE_SYNTAX");
}

TEST(RegexException, OctalTooBigFallsToDefaultMessage) {
  const regex_exception e(0x1030E);
  EXPECT_STREQ(e.what(), "unknown regex error");
  EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_OCTAL_TOO_BIG");
}

TEST(RegexException, GeneralIcuCodesFallToDefaultMessage) {
  EXPECT_STREQ(regex_exception(U_ZERO_ERROR).what(), "unknown regex error");
  EXPECT_STREQ(regex_exception(U_ILLEGAL_ARGUMENT_ERROR).what(), "unknown regex error");
  EXPECT_STREQ(regex_exception(U_INDEX_OUTOFBOUNDS_ERROR).what(), "unknown regex error");
  EXPECT_EQ(regex_exception(1).getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
  EXPECT_EQ(regex_exception(8).getErrorCodeMnemonic(), "U_INDEX_OUTOFBOUNDS_ERROR");
  EXPECT_EQ(regex_exception(0).getErrorCodeMnemonic(), "U_ZERO_ERROR");
}

TEST(RegexException, LibraryCodesHaveTheirOwnMessages) {
  EXPECT_STREQ(regex_exception(-1000).what(), "Matcher is not available.");
  EXPECT_STREQ(regex_exception(-1001).what(), "Unknown regex implementation.");
  EXPECT_STREQ(regex_exception(-1002).what(), "unknown regex error");
}

TEST(RegexException, LibraryCodesGetWhateverMnemonicIcuGivesForUnknownCodes) {
  EXPECT_EQ(regex_exception(-1000).getErrorCodeMnemonic(),
            u_errorName(static_cast<UErrorCode>(-1000)));
  EXPECT_EQ(regex_exception(-1001).getErrorCodeMnemonic(),
            u_errorName(static_cast<UErrorCode>(-1001)));
}

TEST(RegexException, WarningCodesFallToDefaultMessage) {
  const regex_exception e(U_USING_DEFAULT_WARNING);
  EXPECT_STREQ(e.what(), "unknown regex error");
  EXPECT_EQ(e.getErrorCodeMnemonic(), "U_USING_DEFAULT_WARNING");
}

TEST(RegexException, MessageLookupUsesLow32BitsButLibraryCodesCompareAll64) {
  const std::int64_t high = std::int64_t{1} << 32;
  EXPECT_STREQ(regex_exception(high + U_REGEX_RULE_SYNTAX).what(),
               "Syntax error in regexp pattern.");
  EXPECT_EQ(regex_exception(high + U_REGEX_RULE_SYNTAX).getErrorCodeMnemonic(),
            "U_REGEX_RULE_SYNTAX");
  // Low 32 bits equal to -1000, but not -1000 as a 64-bit value.
  EXPECT_STREQ(regex_exception(high - 1000).what(), "unknown regex error");
}

TEST(RegexException, SameCodeGivesSamePointerThatOutlivesTheExceptions) {
  const char* first = nullptr;
  const char* second = nullptr;
  {
    const regex_exception a(U_REGEX_MISMATCHED_PAREN);
    const regex_exception b(U_REGEX_MISMATCHED_PAREN);
    first = a.what();
    second = b.what();
  }
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "Incorrectly nested parentheses in regexp pattern.");
  const char* unknown_a = regex_exception(1).what();
  const char* unknown_b = regex_exception(-1002).what();
  EXPECT_EQ(unknown_a, unknown_b);
  EXPECT_STREQ(unknown_a, "unknown regex error");
}

TEST(RegexException, CopyAndMoveKeepTheCode) {
  const regex_exception original(U_REGEX_TIME_OUT);
  regex_exception copy = original;
  EXPECT_EQ(copy.getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  regex_exception moved = std::move(copy);
  EXPECT_STREQ(moved.what(), "Maximum allowed match time exceeded");
  regex_exception assigned(0);
  assigned = original;
  EXPECT_EQ(assigned.what(), original.what());
}

TEST(RegexException, IcuStatusIsStoredSignExtended) {
  // A negative 32-bit ICU code keeps its sign: -1000 from a 32-bit value is the library code.
  const std::int32_t narrow = -1000;
  EXPECT_STREQ(regex_exception(narrow).what(), "Matcher is not available.");
}

}  // namespace
