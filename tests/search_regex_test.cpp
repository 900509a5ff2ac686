// search_pattern with regex queries: how the pattern is folded, which matches
// are kept, groups, replacement, errors and limits.
#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <scl/regex.h>

#include "support/search_support.h"

namespace {

namespace re = scl::regex;
using re::npos;
using scl_regex_test::utf8;
using ranges = std::vector<std::pair<std::size_t, std::size_t>>;

constexpr re::query_syntax kRegex = re::query_syntax::regex;

re::search_pattern regex(std::u16string_view query) { return re::search_pattern(query, kRegex); }

template <class Text>
ranges find(const re::search_pattern& pattern, const Text& text) {
  ranges found;
  for (const re::source_match& m : pattern.find_all(text)) found.emplace_back(m.start, m.end);
  return found;
}

ranges find(std::u16string_view query, std::u16string_view text) {
  return find(regex(query), text);
}

struct example {
  std::u16string query;
  std::u16string text;
  ranges expected;
};

void PrintTo(const example& e, std::ostream* os) {
  *os << "query of " << e.query.size() << " units on a text of " << e.text.size();
}

class RegexExamples : public ::testing::TestWithParam<example> {};

// `bytes`, ranges of utf8(text), as UTF-16 offsets in `text`.
ranges in_utf16(const ranges& bytes, std::u16string_view text) {
  std::vector<std::size_t> unit_of_byte;
  for (std::size_t unit = 0; unit < text.size();) {
    const std::size_t next = unit + (U16_IS_LEAD(text[unit]) ? 2 : 1);
    unit_of_byte.resize(utf8(text.substr(0, next)).size(), unit);
    unit = next;
  }
  unit_of_byte.push_back(text.size());
  ranges out;
  for (const auto& [start, end] : bytes) out.emplace_back(unit_of_byte[start], unit_of_byte[end]);
  return out;
}

TEST_P(RegexExamples, FindExactlyTheseSourceRanges) {
  const example& e = GetParam();
  EXPECT_EQ(find(e.query, e.text), e.expected);
  // The same in UTF-8: the query, the text, or both.
  const re::search_pattern utf8_query(utf8(e.query), kRegex);
  EXPECT_EQ(find(utf8_query, e.text), e.expected);
  EXPECT_EQ(in_utf16(find(regex(e.query), utf8(e.text)), e.text), e.expected);
  EXPECT_EQ(in_utf16(find(utf8_query, utf8(e.text)), e.text), e.expected);
}

// Literal characters fold as text does, whichever way they are written.
INSTANTIATE_TEST_SUITE_P(
    Literals, RegexExamples,
    ::testing::Values(example{u"stra\u00dfe", u"STRASSE Strasse", {{0, 7}, {8, 15}}},
                      example{u"caf\\u00e9", u"CAFE caf\u00e9", {{0, 4}, {5, 9}}},
                      example{u"caf\\x{e9}", u"Caf\u00e9", {{0, 4}}},
                      example{u"caf\\xe9", u"Caf\u00e9", {{0, 4}}},
                      example{u"caf\\N{LATIN SMALL LETTER E WITH ACUTE}", u"cafe", {{0, 4}}},
                      example{u"caf\\0351", u"CAF\u00c9", {{0, 4}}},
                      example{u"a\\cIb", u"a\tb", {{0, 3}}},
                      example{u"\\Qa.b\\E", u"axb A.B", {{4, 7}}},
                      example{u"\\Q\u00df\\E", u"SS", {{0, 2}}}, example{u"\\.", u"a.b", {{1, 2}}},
                      example{u"\\\uff04", u"$", {{0, 1}}},
                      // NFC first: "cafe" + U+0301 is "café".
                      example{u"cafe\u0301", u"caf\u00e9 CAFE", {{0, 4}, {5, 9}}},
                      // In free-spacing mode, white space is not a literal.
                      example{u"(?x) s t r a \u00df e  # a comment", u"strasse", {{0, 7}}}));

// A quantifier takes its literal's whole fold.
INSTANTIATE_TEST_SUITE_P(
    Quantifiers, RegexExamples,
    ::testing::Values(example{u"\u00df+", u"ssss", {{0, 4}}},
                      example{u"\u00df+", u"\u00df\u00dfs", {{0, 2}}},
                      example{u"\u00df{2}", u"\u00dfss", {{0, 3}}},
                      example{u"x\u00df?y", u"xy xssy xsy", {{0, 2}, {3, 7}}},
                      example{u"\uFB01+", u"fifi", {{0, 4}}},
                      // NFC makes "e" + U+0301 one character, which "+" repeats.
                      example{u"e\u0301+", u"\u00e9\u00e9e", {{0, 3}}},
                      // A quantifier after a run applies to its last character only.
                      example{u"ab+", u"abbb aab", {{0, 4}, {6, 8}}}));

// A literal that folds to nothing matches the empty string.
INSTANTIATE_TEST_SUITE_P(NothingFolds, RegexExamples,
                         ::testing::Values(example{u"a\u00adb", u"ab a\u00adb", {{0, 2}, {3, 6}}},
                                           example{u"a\u00ad+b", u"ab", {{0, 2}}},
                                           example{u"\u0301", u"ab", {{0, 0}, {1, 1}, {2, 2}}}));

// Classes match a folded character that is the fold of a member.
INSTANTIATE_TEST_SUITE_P(
    Classes, RegexExamples,
    ::testing::Values(
        example{u"[\u00e9]", u"\u00c9 e E \u00e8", {{0, 1}, {2, 3}, {4, 5}, {6, 7}}},
        example{u"[\u00e0-\u00ff]", u"\u00c9", {{0, 1}}}, example{u"\\p{Lu}", u"\u00c9", {{0, 1}}},
        example{u"\\p{Lu}", u"e", {{0, 1}}}, example{u"[A-Z]", u"\u0142", {{0, 1}}},
        example{u"[[:upper:]]", u"\u00e9", {{0, 1}}},
        example{u"[:alpha:]+", u"\u00c9t\u00e9 !", {{0, 3}}}, example{u"[^a-z]", u"\u00e9", {}},
        example{u"[^a-z]", u"\u00e9!", {{1, 2}}}, example{u"\\P{L}", u"\u00e9!", {{1, 2}}},
        example{u"\\d+", u"\u0661\u0662 and \uff13", {{0, 2}, {7, 8}}},
        example{u"\\D", u"\u0661a", {{1, 2}}}, example{u"\\w+", u"Stra\u00dfe!", {{0, 6}}},
        example{u"\\W", u"\u00e9!", {{1, 2}}}, example{u"\\s", u"a\u00a0b", {{1, 2}}},
        example{u"\\h", u"a\u3000b", {{1, 2}}}, example{u"\\v", u"a\u2028b", {{1, 2}}},
        example{u"\\H", u"\u3000b", {{1, 2}}}, example{u"\\V+", u"\u2028ab\n", {{1, 3}}},
        example{u"\\S+", u"\u00e9t\u00e9 x", {{0, 3}, {4, 5}}},
        // Every fold of a member counts, even one a person may not expect.
        example{u"[:alpha:]", u"1", {{0, 1}}}, example{u"[\\W]", u"1", {{0, 1}}},
        example{u"\\W", u"1", {}},
        // A member that folds to several characters, or to none, is left out.
        example{u"[\u00df]", u"\u00df ss", {}}, example{u"[\u00ad]", u"a\u00adb", {}},
        example{u"[\u00dfx]", u"\u00dfx", {{1, 2}}},
        // Set operations work as in ICU, then fold.
        example{u"[a-z--[e]]", u"\u00e9e", {}},
        example{u"[a-z&&[aeiou]]+", u"\u00c1b\u00c9", {{0, 1}, {2, 3}}},
        example{u"[[a-c][x-z]]", u"\u00c7y\u00f1", {{0, 1}, {1, 2}}},
        example{u"[\\p{L}&&\\p{Lu}]", u"e", {{0, 1}}}));

// Everything else stands as written and applies to the folded text.
INSTANTIATE_TEST_SUITE_P(
    Syntax, RegexExamples,
    ::testing::Values(example{u"(\\w)\\1", u"A\u00e1", {{0, 2}}},
                      example{u"(?<c>\\w)\\k<c>", u"\u00c9e", {{0, 2}}},
                      example{u"caf\u00e9|th\u00e9", u"The Cafe", {{0, 3}, {4, 8}}},
                      example{u"^\u00e9", u"Ee", {{0, 1}}}, example{u"e$", u"e\u00e9", {{1, 2}}},
                      example{u"\\be\\b", u"\u00e9 de", {{0, 1}}},
                      example{u"e(?=\u00df)", u"ess ex", {{0, 1}}},
                      example{u"(?<=\u00df)e", u"sse xe", {{2, 3}}},
                      example{u"(?i)\u00c9", u"e", {{0, 1}}},
                      example{u"(?:ab)+", u"ABab", {{0, 4}}}, example{u"\\X", u"e\u0301", {{0, 2}}},
                      example{u"a.b", u"a\nb", {{0, 3}}}));

// Matches cover whole pieces, start on grapheme boundaries, and empty
// matches sit between pieces; ICU's matches that break the rules are skipped.
INSTANTIATE_TEST_SUITE_P(
    MatchRules, RegexExamples,
    ::testing::Values(example{u"s", u"\u00df", {}}, example{u"s+", u"\u00df", {{0, 1}}},
                      example{u"..", u"\u00df", {{0, 1}}}, example{u".", u"\u00df", {}},
                      example{u".", u"\u00dfa", {{1, 2}}}, example{u"s", u"\u00dfs", {{1, 2}}},
                      example{u"e", u"e\u0301", {{0, 2}}},
                      example{u"\\x{1F4BB}", u"\U0001F469\u200D\U0001F4BB", {}},
                      example{u"x*", u"\u00df", {{0, 0}, {1, 1}}}, example{u"x*", u"", {{0, 0}}},
                      example{u"a", u"\u00ada\u00ad", {{1, 2}}}));

TEST(RegexQuery, QuotedLiteralGivesWhatTheLiteralQueryGives) {
  const std::u16string text =
      u"Stra\u00dfe STRASSE stra\u00dfe \u00df e\u0301 \uFB01 \U0001F469\u200D\U0001F4BB "
      u"\u0e40\u0e01 l\u00b7l";
  for (const std::u16string query : {u"strasse", u"s", u"ss", u"e", u"fi", u"\U0001F4BB", u"\u0e40",
                                     u"\u0e01", u"ll", u"l\u00b7l", u"a.b(c)*", u" "}) {
    const re::search_pattern literal(query);
    const re::search_pattern quoted(u"\\Q" + query + u"\\E", kRegex);
    EXPECT_EQ(find(quoted, text), find(literal, text));
  }
}

TEST(Groups, AreSourceRangesInTheCallersText) {
  const re::search_pattern pattern = regex(u"(caf)(e)");
  const std::vector<re::source_match> utf16 = pattern.find_all(u"Caf\u00e9");
  ASSERT_EQ(utf16.size(), 1U);
  EXPECT_EQ(utf16[0].groups, ranges({{0, 4}, {0, 3}, {3, 4}}));
  const std::vector<re::source_match> utf8 = pattern.find_all(std::string_view("Caf\xc3\xa9"));
  ASSERT_EQ(utf8.size(), 1U);
  EXPECT_EQ(utf8[0].groups, ranges({{0, 5}, {0, 3}, {3, 5}}));
}

TEST(Groups, ThatTakeNoPartAreNpos) {
  const std::vector<re::source_match> found = regex(u"(a)|(b)").find_all(u"B");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].groups, ranges({{0, 1}, {npos, npos}, {0, 1}}));
}

TEST(Groups, InsideAPieceCoverTheWholePiece) {
  const std::vector<re::source_match> found = regex(u"(s)(s)").find_all(u"\u00df");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].groups, ranges({{0, 1}, {0, 1}, {0, 1}}));
}

TEST(Groups, CountAndNamesAreTheCallers) {
  const re::search_pattern pattern = regex(u"(?<street>\\w+)stra\u00dfe+ (\\d+)(?:x)?");
  EXPECT_EQ(pattern.group_count(), 2);
  EXPECT_EQ(pattern.group_number("street"), 1);
  EXPECT_EQ(pattern.group_number("nope"), -1);
  EXPECT_EQ(regex(u"\u00df+(\u00df)").group_count(), 1);
  EXPECT_EQ(regex(u"[\u00df]\\p{L}").group_count(), 0);
  const std::vector<re::source_match> found = pattern.find_all(u"Hauptstrasse 5");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].groups, ranges({{0, 14}, {0, 5}, {13, 14}}));
}

TEST(RegexReplace, UsesIcuSyntaxWithGroupsFromTheCallersText) {
  const re::search_pattern pattern = regex(u"(?<word>cr[e\u00e8]me) (\\w+)");
  EXPECT_EQ(pattern.replace_all(u"Une Cr\u00e8me Br\u00fbl\u00e9e!", u"[$2 ${word}] \\$1"),
            u"Une [Br\u00fbl\u00e9e Cr\u00e8me] $1!");
  EXPECT_EQ(pattern.replace_all(std::string_view("Cr\xc3\xa8me br\xc3\xbbl\xc3\xa9\x65"),
                                std::string_view("$2-$1")),
            "br\xc3\xbbl\xc3\xa9\x65-Cr\xc3\xa8me");
}

TEST(RegexReplace, KeepsEveryUnitOutsideTheMatches) {
  const std::u16string text(u"\u00df\0x\xD800\u00e9", 5);
  EXPECT_EQ(regex(u"e").replace_all(text, u"[$0]"), std::u16string(u"\u00df\0x\xD800[\u00e9]", 7));
  EXPECT_EQ(regex(u"q").replace_all(std::string_view("a\xff\xc3"), std::string_view("x")),
            "a\xff\xc3");
}

TEST(RegexReplace, AGroupThatTookNoPartGivesNothing) {
  EXPECT_EQ(regex(u"(a)|(b)").replace_all(u"ab", u"<$1$2>"), u"<a><b>");
}

// The code ICU's own replaceAll gives for the same pattern and replacement.
std::string icu_replace_error(const std::u16string& pattern, const std::u16string& replacement) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError where;
  const std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
      icu::UnicodeString(pattern.data(), static_cast<int32_t>(pattern.size())), 0, where, status));
  const icu::UnicodeString subject(u"a");
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(subject, status));
  (void)matcher->replaceAll(
      icu::UnicodeString(replacement.data(), static_cast<int32_t>(replacement.size())), status);
  return u_errorName(status);
}

TEST(RegexReplace, AReferenceToAMissingGroupThrowsIcusCode) {
  const re::search_pattern pattern = regex(u"(?<g>a)");
  const std::vector<std::pair<std::u16string, std::string>> bad = {
      {u"$2", "U_INDEX_OUTOFBOUNDS_ERROR"},
      {u"${nope}", "U_REGEX_INVALID_CAPTURE_GROUP_NAME"},
      {u"$", "U_REGEX_INVALID_CAPTURE_GROUP_NAME"},
      {u"$x", "U_REGEX_INVALID_CAPTURE_GROUP_NAME"}};
  for (const auto& [replacement, code] : bad) {
    EXPECT_EQ(icu_replace_error(u"(?<g>a)", replacement), code);
    try {
      (void)pattern.replace_all(u"a", replacement);
      ADD_FAILURE() << "accepted a bad replacement";
    } catch (const re::regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), code);
    }
    // Also where nothing matches: the replacement is read first.
    EXPECT_THROW((void)pattern.replace_all(u"zzz", replacement), re::regex_exception);
  }
  EXPECT_EQ(pattern.replace_all(u"A", u"[${g}$1\\$]"), u"[AA$]");
  EXPECT_THROW((void)pattern.replace_all(std::string_view("a"), std::string_view("$9")),
               re::regex_exception);
}

TEST(RegexReplace, ALiteralQueryStillTakesItsReplacementLiterally) {
  EXPECT_EQ(re::search_pattern(u"a").replace_all(u"a", u"$1\\"), u"$1\\");
}

TEST(RegexErrors, TheConstructorThrowsWhatCreateMatcherThrows) {
  for (const std::u16string bad :
       {u"stra\u00dfe(", u"[z-a]", u"a{", u"\\", u"(?<=a+)b", u"\\p{Nope}", u"*", u"\\k<none>"}) {
    std::string expected_code;
    std::string expected_message;
    try {
      (void)re::createMatcher(bad, 0);
      ADD_FAILURE() << "createMatcher accepted a bad pattern";
    } catch (const re::regex_exception& e) {
      expected_code = e.getErrorCodeMnemonic();
      expected_message = e.what();
    }
    try {
      (void)regex(bad);
      ADD_FAILURE() << "search_pattern accepted a bad pattern";
    } catch (const re::regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), expected_code);
      EXPECT_STREQ(e.what(), expected_message.c_str());
    }
    const std::optional<re::pattern_error> error = re::search_pattern::check(bad, kRegex);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->error.getErrorCodeMnemonic(), expected_code);
  }
}

TEST(RegexErrors, CheckGivesTheOffsetInTheCallersQuery) {
  const std::optional<re::pattern_error> error = re::search_pattern::check(u"stra\u00dfe(", kRegex);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_REGEX_MISMATCHED_PAREN");
  EXPECT_EQ(error->offset, 7U);
  // As check_pattern describes it.
  const std::optional<re::pattern_error> described = re::check_pattern(u"stra\u00dfe(", 0);
  ASSERT_TRUE(described.has_value());
  EXPECT_EQ(error->description, described->description);
  EXPECT_NE(error->description.find("(at offset 7)"), std::string::npos) << error->description;

  // Bytes for the UTF-8 form: "ß" is two.
  const std::optional<re::pattern_error> utf8 =
      re::search_pattern::check(std::string_view("stra\xc3\x9f\x65("), kRegex);
  ASSERT_TRUE(utf8.has_value());
  EXPECT_EQ(utf8->offset, 8U);
  EXPECT_NE(utf8->description.find("(at offset 8)"), std::string::npos) << utf8->description;
}

TEST(RegexErrors, CheckAcceptsWhatTheConstructorAccepts) {
  for (const std::u16string good :
       {u"\u00df+", u"[^\\s]", u"\\p{L}+", u"(?<n>x)\\k<n>", u"\\Q(\\E", u"(?x) a # b"}) {
    EXPECT_FALSE(re::search_pattern::check(good, kRegex).has_value());
    EXPECT_NO_THROW((void)regex(good));
  }
}

TEST(RegexUtf8, QueryAndTextInUtf8AgreeWithUtf16) {
  const re::search_pattern utf16 = regex(u"(\\w+)stra\u00dfe");
  const re::search_pattern utf8(std::string_view("(\\w+)stra\xc3\x9f\x65"), kRegex);
  EXPECT_EQ(find(utf16, u"Hauptstrasse"), ranges({{0, 12}}));
  EXPECT_EQ(find(utf8, u"Hauptstrasse"), ranges({{0, 12}}));
  EXPECT_EQ(find(utf16, std::string_view("H\xc3\xa4uptstrasse")), ranges({{0, 13}}));
  ASSERT_TRUE(utf16.find_first(std::string_view("H\xc3\xa4uptstrasse")).has_value());
  EXPECT_TRUE(utf16.found_in(std::string_view("x H\xc3\xa4uptstra\xc3\x9f\x65")));
  EXPECT_FALSE(utf16.found_in(std::string_view("strasse")));
}

TEST(RegexQuery, FoundInAndFindFirstAgreeWithFindAll) {
  const re::search_pattern pattern = regex(u"\\p{Lu}\\w*");
  for (const std::u16string text : {u"", u"123", u"\u00e9t\u00e9 Caf\u00e9", u"\u00df"}) {
    const std::vector<re::source_match> all = pattern.find_all(text);
    EXPECT_EQ(pattern.found_in(text), !all.empty());
    const std::optional<re::source_match> first = pattern.find_first(text);
    ASSERT_EQ(first.has_value(), !all.empty());
    if (first) {
      EXPECT_EQ(first->groups, all.front().groups);
    }
  }
}

TEST(RegexQuery, SyntaxIsReported) {
  EXPECT_EQ(regex(u"a").syntax(), kRegex);
  EXPECT_EQ(re::search_pattern(u"a").syntax(), re::query_syntax::literal);
}

// Patterns on which ICU 72 never returns for "aac".
class HangingRegexQuery : public ::testing::TestWithParam<std::u16string> {};

INSTANTIATE_TEST_SUITE_P(TimeLimit, HangingRegexQuery,
                         ::testing::Values(u"(a?)+?b", u"(?:a?)+?b", u"(a?)*?b", u"(a|)+?b",
                                           u"(a*)+?b", u"(a{0,2})*?b"));

TEST_P(HangingRegexQuery, IsStoppedByTheTimeLimit) {
  const re::search_pattern pattern(GetParam(), kRegex);
  for (int form = 0; form < 4; ++form) {
    re::match_time_limit limit(std::chrono::milliseconds(50));
    try {
      switch (form) {
        case 0:
          (void)pattern.find_all(u"aac");
          break;
        case 1:
          (void)pattern.found_in(std::string_view("aac"));
          break;
        case 2:
          (void)pattern.find_first(u"AAC");
          break;
        default:
          (void)pattern.replace_all(u"aac", u"x");
          break;
      }
      ADD_FAILURE() << "the search finished";
    } catch (const re::regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
    }
    EXPECT_TRUE(limit.exceeded());
  }
}

// A query keeps ICU's matcher from search to search: what one search leaves
// in it (a match, groups, a place, a stop by the time limit) changes nothing
// for the next, in either encoding.
TEST(RegexQuery, EachSearchIsAsTheFirst) {
  const std::u16string query = u"(?<w>\\p{L})(\\d)?\\b";
  const re::search_pattern pattern = regex(query);
  const std::vector<std::u16string> texts = {u"a1 b", u"", u"\u00e9", u"12 x3 y", u"z"};
  std::vector<std::vector<re::source_match>> first_time;  // each by a query of its own
  for (const std::u16string& text : texts) first_time.push_back(regex(query).find_all(text));
  for (int round = 0; round < 3; ++round) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const std::vector<re::source_match> all = pattern.find_all(texts[i]);
      ASSERT_EQ(all.size(), first_time[i].size()) << i;
      for (std::size_t m = 0; m < all.size(); ++m)
        EXPECT_EQ(all[m].groups, first_time[i][m].groups);
      EXPECT_EQ(pattern.found_in(utf8(texts[i])), !all.empty());
      const std::optional<re::source_match> first = pattern.find_first(texts[i]);
      ASSERT_EQ(first.has_value(), !all.empty());
      if (first) {
        EXPECT_EQ(first->groups, all[0].groups);
      }
    }
  }
}

TEST(RegexQuery, SearchesWellAfterOneStoppedByTheTimeLimit) {
  const re::search_pattern pattern(u"(a?)+?b", kRegex);
  for (int round = 0; round < 3; ++round) {
    {
      re::match_time_limit limit(std::chrono::milliseconds(20));
      EXPECT_THROW((void)pattern.found_in(u"aac"), re::regex_exception);
    }
    // (These could hang ICU too, past their first match: a limit that a
    // search that works never meets.)
    re::match_time_limit generous(std::chrono::seconds(20));
    const std::optional<re::source_match> first = pattern.find_first(u"ab");
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->groups, ranges({{0, 2}, {0, 1}}));
    EXPECT_TRUE(pattern.found_in(std::string_view("ab")));
  }
}

TEST(RegexQuery, CopiesShareTheCompiledQuery) {
  const re::search_pattern pattern = regex(u"(\\w)\\1");
  const re::search_pattern copy = pattern;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(find(copy, u"Aa b"), ranges({{0, 2}}));
  EXPECT_EQ(copy.group_count(), 1);
}

}  // namespace

namespace {

TEST(ReadmeExample, GivesWhatItSays) {
  const re::search_pattern street(u"(?<name>\\w+)stra\u00dfe", re::query_syntax::regex);
  EXPECT_EQ(find(street, std::u16string_view(u"Hauptstrasse, K\u00f6nigstra\u00dfe")),
            (ranges{{0, 12}, {14, 25}}));
  EXPECT_EQ(street.group_number("name"), 1);
  EXPECT_EQ(street.replace_all(u"K\u00f6nigstra\u00dfe", u"${name} St."), u"K\u00f6nig St.");
}

}  // namespace

namespace {

// Lone surrogates stay lone when the characters between them fold to nothing.
TEST(RegexLoneSurrogates, ThatMeetInFoldedTextStayTwo) {
  const std::u16string text(u"\xD800\u0301\xDC00", 3);
  EXPECT_EQ(find(u".", text), ranges({{0, 2}, {2, 3}}));
  EXPECT_EQ(find(u"\\x{DC00}", text), ranges({{2, 3}}));
  EXPECT_EQ(find(u"\\x{D800}", text), ranges({{0, 2}}));
  EXPECT_EQ(find(std::u16string(u"\\Q\xDC00\\E", 5), text), ranges({{2, 3}}));
  EXPECT_EQ(find(std::u16string(u"(?:\\Q\xDC00\\E)", 9), text), ranges({{2, 3}}));
  EXPECT_EQ(find(u"\\p{Cs}", text), ranges({{0, 2}, {2, 3}}));
  EXPECT_EQ(find(u"[^\\p{Cs}]", text), ranges());
  EXPECT_EQ(find(u"\\x{10000}", text), ranges());
  EXPECT_EQ(find(re::search_pattern(u"\U00010000"), text), ranges());
  EXPECT_EQ(find(re::search_pattern(std::u16string(u"\xDC00", 1)), text), ranges({{2, 3}}));
  // A real pair is one character.
  EXPECT_EQ(find(u".", u"\U00010000a"), ranges({{0, 2}, {2, 3}}));
  EXPECT_EQ(find(u"\\x{10000}", u"\U00010000"), ranges({{0, 2}}));
  EXPECT_EQ(find(re::search_pattern(u"\U00010000"), std::u16string_view(u"x\U00010000")),
            ranges({{1, 3}}));
}

// ICU reads the brace after \p, \P and \N quoted or not.
TEST(RegexSyntax, QuotedBracesAfterPropertyAndNameEscapes) {
  EXPECT_FALSE(re::search_pattern::check(u"\\p\\Q{L}\\E", kRegex).has_value());
  EXPECT_EQ(find(u"\\p\\Q{L}\\E", u"a1"), ranges({{0, 1}}));
  EXPECT_EQ(find(u"[\\p\\Q{L}\\E]", u"a1"), ranges({{0, 1}}));
  EXPECT_EQ(find(u"\\P\\Q{L}", u"a1"), ranges({{1, 2}}));
  EXPECT_EQ(find(u"\\N\\Q{LATIN SMALL LETTER A}", u"bA"), ranges({{1, 2}}));
}

// A comment is not there: a quantifier after it applies to what came before.
TEST(RegexSyntax, AQuantifierAfterACommentAppliesToTheLiteralBeforeIt) {
  EXPECT_EQ(find(u"ab(?#c)+", u"abbb"), ranges({{0, 4}}));
  EXPECT_EQ(find(u"x\u00df(?#c)+", u"xssss"), ranges({{0, 5}}));
  EXPECT_FALSE(re::search_pattern::check(u"\u0301(?#c)*", kRegex).has_value());
  EXPECT_EQ(find(u"a\u00ad(?#c)+b", u"ab"), ranges({{0, 2}}));
}

}  // namespace

namespace {

// Lone surrogates that meet only once the query is folded are two characters
// too, in every form of the query.
TEST(RegexLoneSurrogates, ThatMeetInTheFoldedQueryStayTwo) {
  const std::u16string apart(u"\xD83D\u007F\xDC69", 3);
  const std::u16string pair(u"\U0001F469");
  for (const re::search_pattern& pattern :
       {re::search_pattern(apart), regex(apart), regex(u"\\Q" + apart + u"\\E"),
        regex(u"(?:" + apart + u")")}) {
    EXPECT_EQ(find(pattern, pair), ranges());
    EXPECT_EQ(find(pattern, apart), ranges({{0, 3}}));
  }
  for (const re::search_pattern& pattern : {re::search_pattern(pair), regex(pair)}) {
    EXPECT_EQ(find(pattern, pair), ranges({{0, 2}}));
    EXPECT_EQ(find(pattern, apart), ranges());
  }
}

// A lone surrogate is seen as one: boundaries and clusters around it are ICU's.
TEST(RegexLoneSurrogates, BoundariesAndClustersAroundThemAreIcus) {
  EXPECT_EQ(find(u"a\\b", std::u16string(u"a\xD800", 2)), ranges({{0, 1}}));
  EXPECT_EQ(find(u"a\\B", std::u16string(u"a\xD800", 2)), ranges());
  EXPECT_EQ(find(u"\\X", std::u16string(u"\xD800\u1161", 2)), ranges({{0, 1}, {1, 2}}));
}

TEST(RegexSyntax, FreeSpacingInsideGroupOpenings) {
  EXPECT_EQ(find(u"(?x)( ?:a)b", u"ab"), ranges({{0, 2}}));
  EXPECT_EQ(find(u"(?x)( ?#comment)a", u"a"), ranges({{0, 1}}));
  EXPECT_EQ(find(u"(?x)(? =\u00df)ss", u"ss"), ranges({{0, 2}}));
  EXPECT_EQ(find(u"(?x)(?< =x)\u00df", u"xss"), ranges({{1, 3}}));
  EXPECT_EQ(find(u"(?x)(? !\u00df)s", u"ss"), ranges({{1, 2}}));
  EXPECT_EQ(regex(u"(?x)(? <n>\u00df)").group_number("n"), 1);
  EXPECT_EQ(find(u"(?x)(? <n>\u00df)", u"ss"), ranges({{0, 2}}));
  EXPECT_EQ(find(u"(?x)a{2#}\n}", u"aa"), ranges({{0, 2}}));
}

TEST(RegexSyntax, AnEscapedLetterWithoutMeaningIsThatLetter) {
  EXPECT_EQ(find(u"\\K", u"K k"), ranges({{0, 1}, {2, 3}}));
  EXPECT_EQ(find(u"\\E\\y", u"ey"), ranges({{0, 2}}));
}

TEST(RegexSyntax, BackslashGSeesTheEndOfThePreviousMatch) {
  EXPECT_EQ(find(u"x(?<=\\G.)", u"xxx"), ranges({{0, 1}, {1, 2}, {2, 3}}));
  EXPECT_EQ(find(u"\\Gx", u"xxax"), ranges({{0, 1}, {1, 2}}));
}

// A quantifier applies to the fold of the character before it, after NFC.
TEST(RegexQuantifiers, ApplyToTheLastCharactersFold) {
  EXPECT_EQ(find(u"q\u0301+", u"qqq"), ranges({{0, 1}, {1, 2}, {2, 3}}));
  EXPECT_EQ(find(u"q\u0301{2}", u"qq"), ranges({{0, 1}, {1, 2}}));
  EXPECT_EQ(find(u"l\u00b7+", u"ll"), ranges({{0, 1}, {1, 2}}));
  EXPECT_EQ(find(u"e\u0301+", u"\u00e9e"), ranges({{0, 2}}));  // NFC: one character
}

}  // namespace
