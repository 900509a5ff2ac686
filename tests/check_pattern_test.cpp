// check_pattern: the error createMatcher would throw, and where ICU found it,
// as an offset in the caller's pattern.
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/parseerr.h>
#include <unicode/regex.h>

#include <scl/regex.h>

#include "support/hex.h"

namespace {

namespace re = scl::regex;
using re::npos;
using scl_regex_test::hex;

// ICU's own parse position for the prepared pattern: {line, column}.
std::pair<int, int> icu_position(const std::u16string& pattern, std::uint32_t options) {
  const std::u16string prepared = re::prepare_text(pattern, options);
  UParseError where{};
  where.line = 0;
  where.offset = -1;
  UErrorCode status = U_ZERO_ERROR;
  delete icu::RegexPattern::compile(
      icu::UnicodeString(prepared.data(), static_cast<int32_t>(prepared.size())),
      UREGEX_DOTALL | ((options & 1) != 0 ? UREGEX_CASE_INSENSITIVE : 0), where, status);
  return {where.line, where.offset};
}

// The error createMatcher throws, as its mnemonic; "" if it compiles.
std::string thrown(const std::u16string& pattern, std::uint32_t options) {
  try {
    (void)re::createMatcher(pattern, options);
    return "";
  } catch (const re::regex_exception& e) {
    return e.getErrorCodeMnemonic();
  }
}

struct rejected {
  std::u16string pattern;
  std::uint32_t options;
  const char* code;
  int line, column;    // what ICU reports for the prepared pattern
  std::size_t offset;  // converted by hand into the caller's pattern
};

// Every error code of the message table that a pattern can produce. The others
// come from matching (U_REGEX_STACK_OVERFLOW, U_REGEX_TIME_OUT,
// U_REGEX_STOPPED_BY_CALLER, U_REGEX_INVALID_STATE), from compile flags the
// library never passes (U_REGEX_INVALID_FLAG), or no longer from ICU 72's
// parser (U_REGEX_SET_CONTAINS_STRING, U_REGEX_OCTAL_TOO_BIG).
const std::vector<rejected>& every_code() {
  static const std::vector<rejected> cases = {
      {u"*a", 0, "U_REGEX_RULE_SYNTAX", 1, 1, 1},
      {u"\\x{110000}", 0, "U_REGEX_BAD_ESCAPE_SEQUENCE", 1, 2, 2},
      {u"\\p{Foo}", 0, "U_REGEX_PROPERTY_SYNTAX", 1, 7, 7},
      {u"(?(1)a)", 0, "U_REGEX_UNIMPLEMENTED", 1, 3, 3},
      {u"(a", 0, "U_REGEX_MISMATCHED_PAREN", 1, 2, 2},
      {u"a{99999999999}", 0, "U_REGEX_NUMBER_TOO_BIG", 1, 12, 12},
      {u"a{1", 0, "U_REGEX_BAD_INTERVAL", 1, 3, 3},
      {u"a{2,1}", 0, "U_REGEX_MAX_LT_MIN", 1, 6, 6},
      {u"\\2", 0, "U_REGEX_INVALID_BACK_REF", 1, 2, 2},
      {u"(?<=a*)", 0, "U_REGEX_LOOK_BEHIND_LIMIT", 1, 7, 7},
      {u"[a", 0, "U_REGEX_MISSING_CLOSE_BRACKET", 1, 2, 2},
      {u"[z-a]", 0, "U_REGEX_INVALID_RANGE", 1, 4, 4},
      {u"(?<a>x)(?<a>y)", 0, "U_REGEX_INVALID_CAPTURE_GROUP_NAME", 1, 12, 12},
      // ICU's parser keeps 100 states: the 101st nested "(" is one too many.
      {std::u16string(300, u'(') + std::u16string(300, u')'), 0, "U_REGEX_INTERNAL_ERROR", 1, 101,
       101},
      // Positions by line and column.
      {u"a\nb{2,1}", 0, "U_REGEX_MAX_LT_MIN", 2, 6, 8},      // "a" LF: line 2 starts at 2
      {u"a\r\nb(", 0, "U_REGEX_MISMATCHED_PAREN", 2, 2, 5},  // CR LF is one break
      {u"a\rb(", 0, "U_REGEX_MISMATCHED_PAREN", 2, 2, 4},
      {u"a\u0085b(", 0, "U_REGEX_MISMATCHED_PAREN", 2, 2, 4},
      {u"a\u2028b(", 0, "U_REGEX_MISMATCHED_PAREN", 2, 2, 4},
      {u"x\n\ny(", 0, "U_REGEX_MISMATCHED_PAREN", 3, 2, 5},
      // A non-BMP character is one column and two units.
      {u"\U0001F600(", 0, "U_REGEX_MISMATCHED_PAREN", 1, 2, 3},
      {u"\U0001F600\U0001F600[z-a]", 0, "U_REGEX_INVALID_RANGE", 1, 6, 8},
      // Decomposed accents removed before compiling: prepared "cafe(x", column 6, the
      // end of the prepared pattern, is the end of the caller's (8 units).
      {u"cafe\u0301\u0301(x", 0x4, "U_REGEX_MISMATCHED_PAREN", 1, 6, 8},
      // Prepared "e[z-a]": column 5 is "]", unit 7 of the caller's pattern.
      {u"e\u0301\u0301[z-a]", 0x4, "U_REGEX_INVALID_RANGE", 1, 5, 7},
      {u"e\u0301\u0301[z-a]", 0x5, "U_REGEX_INVALID_RANGE", 1, 5, 7},
      // Composed by NFC: prepared "\u00e9(", column 2 is its end.
      {u"e\u0301(", 0x2, "U_REGEX_MISMATCHED_PAREN", 1, 2, 3},
  };
  return cases;
}

TEST(CheckPattern, EveryCodeWithItsOffset) {
  for (const rejected& c : every_code()) {
    SCOPED_TRACE(hex(c.pattern));
    EXPECT_EQ(icu_position(c.pattern, c.options), std::make_pair(c.line, c.column));
    const std::optional<re::pattern_error> error = re::check_pattern(c.pattern, c.options);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->error.getErrorCodeMnemonic(), c.code);
    EXPECT_EQ(thrown(c.pattern, c.options), c.code);
    EXPECT_EQ(error->offset, c.offset);
    EXPECT_LE(error->offset, c.pattern.size());
  }
}

TEST(CheckPattern, TheSameErrorAsCreateMatcher) {
  for (const rejected& c : every_code()) {
    const std::optional<re::pattern_error> error = re::check_pattern(c.pattern, c.options);
    ASSERT_TRUE(error.has_value());
    const auto expected = re::createExpectedMatcher(c.pattern, c.options);
    ASSERT_TRUE(expected.has_error());
    EXPECT_STREQ(error->error.what(), expected.error().what());
    EXPECT_EQ(error->error.getErrorCodeMnemonic(), expected.error().getErrorCodeMnemonic());
  }
}

TEST(CheckPattern, NoValueExactlyWhenCreateMatcherCompiles) {
  for (const std::u16string pattern : {u"", u"a", u"(?<year>\\d+)-(\\d+)", u"caf\u00e9", u"\\Q(\\E",
                                       u"[\\p{L}&&[a-z]]", u"\U0001F600+", u"a\nb", u"\\q"}) {
    for (std::uint32_t options : {0u, 1u, 2u, 4u, 7u}) {
      EXPECT_EQ(re::check_pattern(pattern, options).has_value(), thrown(pattern, options) != "")
          << hex(pattern) << " options " << options;
    }
  }
  // Options decide: removing the accent leaves "*" with nothing to repeat.
  EXPECT_FALSE(re::check_pattern(u"\u0301*", 0).has_value());
  const std::optional<re::pattern_error> error = re::check_pattern(u"\u0301*", 4);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_REGEX_RULE_SYNTAX");
  EXPECT_EQ(error->offset, 2u);  // ICU's column 1 is the end of the prepared "*"
}

TEST(CheckPattern, PatternTooBig) {
  const std::u16string pattern(16777216, u'a');
  const std::optional<re::pattern_error> error = re::check_pattern(pattern, 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_REGEX_PATTERN_TOO_BIG");
  EXPECT_EQ(error->offset, 16777216u);  // ICU: line 1, column 16777216
  // A long pattern is shown around the offset only.
  EXPECT_LT(error->description.size(), 200u);
}

TEST(CheckPattern, NoPositionWhenICUGivesNone) {
  EXPECT_EQ(icu_position(u"\\N{FOO}", 0), std::make_pair(0, -1));
  const std::optional<re::pattern_error> error = re::check_pattern(u"\\N{FOO}", 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_ILLEGAL_CHAR_FOUND");
  EXPECT_EQ(error->offset, npos);
  EXPECT_EQ(error->description, "unknown regex error (no position given)\n  \\N{FOO}");
}

TEST(CheckPattern, DescriptionPointsACaretAtTheOffset) {
  const std::optional<re::pattern_error> error = re::check_pattern(u"(ab|cd", 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->description,
            "Incorrectly nested parentheses in regexp pattern. (at offset 6)\n"
            "  (ab|cd\n"
            "        ^");
}

TEST(CheckPattern, DescriptionShowsControlCharactersSoThatTheCaretLinesUp) {
  const std::optional<re::pattern_error> error = re::check_pattern(u"a\tb\u0085c\r\n(?<1>)", 0);
  ASSERT_TRUE(error.has_value());
  // U+0085 and CR LF end lines 1 and 2; line 3 starts at unit 7, and ICU had
  // read 4 characters of it, "(?<1".
  EXPECT_EQ(icu_position(u"a\tb\u0085c\r\n(?<1>)", 0), std::make_pair(3, 4));
  EXPECT_EQ(error->offset, 11u);
  // 2 + 15 columns of escaped text and 4 more before the caret.
  EXPECT_EQ(error->description,
            "Syntax error in regexp pattern. (at offset 11)\n"
            "  a\\tb\\u{85}c\\r\\n(?<1>)\n"
            "                     ^");
}

TEST(CheckPattern, DescriptionCountsWideCharactersAndMarksInColumns) {
  // Two wide ideographs take two columns each; the combining acute takes none.
  const std::optional<re::pattern_error> error = re::check_pattern(u"\u4e2d\u6587e\u0301[z-a]", 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->offset, 8u);  // the "]"
  EXPECT_EQ(error->description,
            "In a character range [x-y], x is greater than y. (at offset 8)\n"
            "  \u4e2d\u6587e\u0301[z-a]\n"
            "           ^");
}

TEST(CheckPattern, DescriptionOfALongPatternShowsAWindow) {
  const std::u16string pattern = std::u16string(100, u'a') + u"[z-a]" + std::u16string(100, u'b');
  const std::optional<re::pattern_error> error = re::check_pattern(pattern, 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->offset, 104u);  // the "]"
  // 40 characters before it, 30 from it on.
  const std::string expected_line =
      "  ..." + std::string(36, 'a') + "[z-a]" + std::string(29, 'b') + "...";
  EXPECT_EQ(error->description,
            "In a character range [x-y], x is greater than y. (at offset 104)\n" + expected_line +
                "\n" + std::string(2 + 3 + 40, ' ') + "^");
}

TEST(CheckPattern, DescriptionIsUtf8AndEscapesUnpairedSurrogates) {
  const std::optional<re::pattern_error> error = re::check_pattern(u"\xD800\u00e9(", 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->offset, 3u);
  EXPECT_EQ(error->description,
            "Incorrectly nested parentheses in regexp pattern. (at offset 3)\n"
            "  \\u{D800}\xC3\xA9(\n"
            "            ^");
}

TEST(CheckPattern, NulUnitsArePartOfThePattern) {
  // createMatcher compiles the whole prepared pattern, U+0000 included.
  const std::u16string pattern(u"a\0(", 3);
  const std::optional<re::pattern_error> error = re::check_pattern(pattern, 0);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->offset, 3u);
  EXPECT_EQ(thrown(pattern, 0), "U_REGEX_MISMATCHED_PAREN");
}

}  // namespace
