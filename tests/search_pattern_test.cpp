// search_pattern with literal queries: what it finds, where, and what it keeps.
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/hex.h"
#include "support/search_support.h"

namespace {

namespace re = scl::regex;
using scl_regex_test::find;
using scl_regex_test::ranges;

ranges find(std::u16string_view query, std::u16string_view text) {
  return find(re::search_pattern(query), text);
}

struct example {
  std::u16string query;
  std::u16string text;
  ranges expected;
};

class Examples : public ::testing::TestWithParam<example> {};

TEST_P(Examples, FindExactlyTheseSourceRanges) {
  const example& e = GetParam();
  EXPECT_EQ(find(e.query, e.text), e.expected);
}

INSTANTIATE_TEST_SUITE_P(
    LiteralSearch, Examples,
    ::testing::Values(
        example{u"lodz", u"\u0141\u00f3d\u017a", {{0, 4}}}, example{u"ss", u"\u00dfs", {{0, 1}}},
        example{u"s", u"\u00df", {}}, example{u"e", u"e\u0301", {{0, 2}}},
        example{u"a", u"\u00ada", {{1, 2}}},
        example{u"\U0001F469", u"\U0001F469\u200D\U0001F4BB", {{0, 3}}},
        example{u"\U0001F4BB", u"\U0001F469\u200D\U0001F4BB", {}},
        example{u"\u0939\u093F\u0928\u0926\u0940", u"\u0939\u093F\u0928\u094D\u0926\u0940", {}},
        example{u"naive", u"NA\u00CFVE na\u00EFve", {{0, 5}, {6, 11}}},
        // What the feature request says people type every day.
        example{u"strasse", u"Stra\u00DFe", {{0, 6}}}, example{u"naive", u"na\u00EFve", {{0, 5}}},
        example{u"zurich", u"Z\u00FCrich", {{0, 6}}},
        example{u"kobenhavn", u"K\u00F8benhavn", {{0, 9}}},
        example{u"usb", u"\uFF35\uFF33\uFF22", {{0, 3}}}, example{u"ae", u"\u00E6", {{0, 1}}},
        example{u"fi", u"\uFB01", {{0, 1}}}, example{u"123", u"\u0661\u0662\u0663", {{0, 3}}},
        example{u"\u304B", u"\u304C", {{0, 1}}},
        // Letters that stay apart.
        example{u"i", u"\u0131", {}}, example{u"\u0438", u"\u0439", {}},
        example{u"th", u"\u00FE", {}},
        // The query is folded too.
        example{u"\u0141\u00f3d\u017a", u"lodz", {{0, 4}}},
        example{u"\uFF35\uFF33\uFF22", u"usb", {{0, 3}}}, example{u"e\u0301", u"e", {{0, 1}}},
        example{u"e\u0301", u"\u00e9", {{0, 1}}},
        // Marks and ZWJ after the last character belong to the match; a soft hyphen does not.
        example{u"x", u"x\u200Dy", {{0, 2}}}, example{u"x", u"x\u00AD", {{0, 1}}},
        example{u"ab", u"a\u00ADb", {{0, 3}}},
        // A match starts on a grapheme boundary.
        example{u"\U0001F3FD", u"\U0001F44B\U0001F3FD", {}},
        // No edge between a Thai prevowel and the consonant it contracts with.
        example{u"\u0E01", u"\u0E40\u0E01", {}}, example{u"\u0E40", u"\u0E40\u0E01", {}},
        example{u"\u0E40\u0E01", u"\u0E40\u0E01", {{0, 2}}},
        // The end does not split marks that canonical reordering could swap.
        example{u"x", u"x\u0338\u0F72", {}}, example{u"x", u"x\u0F72", {{0, 1}}},
        // Catalan middle dot after l folds to nothing and is a piece of its own.
        example{u"coll", u"col\u00B7l", {{0, 5}}}, example{u"l", u"l\u00B7", {{0, 1}}},
        // Metacharacters are literal.
        example{u"a.b", u"axb a.b", {{4, 7}}}, example{u"(x)*", u"(X)*", {{0, 4}}},
        example{u"\\d", u"1\\D", {{1, 3}}},
        // Matches do not overlap.
        example{u"aa", u"aaaaa", {{0, 2}, {2, 4}}},
        example{u"ss", u"\u00DF\u00DF", {{0, 1}, {1, 2}}}));

TEST(LiteralQuery, ThatFoldsToNothingFindsNothing) {
  for (const std::u16string& query : {std::u16string(), std::u16string(u"\u0301"),
                                      std::u16string(u"\u00AD\u200D"), std::u16string(1, u'\0')}) {
    const re::search_pattern pattern(query);
    EXPECT_TRUE(pattern.find_all(u"a\u0301\u00AD\u200D b").empty());
    EXPECT_FALSE(pattern.found_in(u"\u0301"));
    EXPECT_FALSE(pattern.find_first(std::u16string_view(u"\0", 1)).has_value());
  }
}

TEST(LiteralQuery, DefaultPatternIsAnEmptyLiteralQuery) {
  const re::search_pattern pattern;
  EXPECT_EQ(pattern.syntax(), re::query_syntax::literal);
  EXPECT_EQ(pattern.group_count(), 0);
  EXPECT_EQ(pattern.group_number("x"), -1);
  EXPECT_TRUE(pattern.find_all(u"anything").empty());
  EXPECT_FALSE(pattern.found_in("anything"));
  EXPECT_EQ(pattern.replace_all(u"abc", u"x"), u"abc");
}

TEST(LiteralQuery, HasNoGroups) {
  const re::search_pattern pattern(u"(?<name>a)");
  EXPECT_EQ(pattern.syntax(), re::query_syntax::literal);
  EXPECT_EQ(pattern.group_count(), 0);
  EXPECT_EQ(pattern.group_number("name"), -1);
}

TEST(LiteralQuery, EachMatchHasItsRangeAsItsOnlyGroup) {
  const std::vector<re::source_match> found =
      re::search_pattern(u"cafe").find_all(u"Caf\u00E9, CAFE");
  ASSERT_EQ(found.size(), 2U);
  for (const re::source_match& m : found) {
    ASSERT_EQ(m.groups.size(), 1U);
    EXPECT_EQ(m.groups[0], std::make_pair(m.start, m.end));
  }
}

TEST(LiteralQuery, FoundInAndFindFirstAgreeWithFindAll) {
  const re::search_pattern pattern(u"creme");
  for (std::u16string_view text :
       {u"", u"cr\u00E8me", u"x CREME y cr\u00E8me", u"crem", u"cr\u00E8mes"}) {
    const std::vector<re::source_match> all = pattern.find_all(text);
    EXPECT_EQ(pattern.found_in(text), !all.empty());
    const std::optional<re::source_match> first = pattern.find_first(text);
    ASSERT_EQ(first.has_value(), !all.empty());
    if (first) {
      EXPECT_EQ(first->start, all.front().start);
      EXPECT_EQ(first->end, all.front().end);
      EXPECT_EQ(first->groups, all.front().groups);
    }
  }
}

TEST(LiteralQuery, CopiesSearchAlike) {
  const re::search_pattern original(u"lodz");
  re::search_pattern copy = original;
  re::search_pattern moved = std::move(copy);
  re::search_pattern assigned;
  assigned = moved;
  EXPECT_EQ(find(assigned, std::u16string_view(u"\u0141\u00F3d\u017A")), (ranges{{0, 4}}));
  EXPECT_EQ(find(original, std::u16string_view(u"\u0141\u00F3d\u017A")), (ranges{{0, 4}}));
}

TEST(LiteralReplace, ReplacesEveryMatchAndKeepsEveryOtherUnit) {
  const re::search_pattern pattern(u"cafe");
  const std::u16string text = std::u16string(u"\0Caf\u00E9\xD800 cafe\u0301 \xDC00x", 15);
  EXPECT_EQ(pattern.replace_all(text, u"tea"), std::u16string(u"\0tea\xD800 tea \xDC00x", 12));
}

TEST(LiteralReplace, TakesTheReplacementLiterally) {
  EXPECT_EQ(re::search_pattern(u"b").replace_all(u"abc", u"$0\\1"), u"a$0\\1c");
  EXPECT_EQ(re::search_pattern("b").replace_all("abc", "$0\\"), "a$0\\c");
}

TEST(LiteralReplace, WithoutMatchGivesTheTextBack) {
  const std::u16string text = u"cr\u00E8me br\u00FBl\u00E9e";
  EXPECT_EQ(re::search_pattern(u"tea").replace_all(text, u"x"), text);
}

TEST(Utf8, OffsetsAreBytesOfTheCallersText) {
  const re::search_pattern lodz("lodz");
  const std::string text = "x \xC5\x81\xC3\xB3\x64\xC5\xBA y";  // "x Łódź y"
  EXPECT_EQ(find(lodz, std::string_view(text)), (ranges{{2, 9}}));
}

TEST(Utf8, QueryIsTheSameAsItsUtf16Form) {
  const std::u16string text = u"\u0141\u00F3d\u017A, \uFF35\uFF33\uFF22, Stra\u00DFe";
  for (const auto& [utf8, utf16] : std::vector<std::pair<std::string, std::u16string>>{
           {"\xC5\x81\xC3\xB3\x64\xC5\xBA", u"\u0141\u00F3d\u017A"},
           {"usb", u"usb"},
           {"strasse", u"strasse"},
           {"e\xCC\x81", u"e\u0301"}}) {
    EXPECT_EQ(find(re::search_pattern(utf8), std::u16string_view(text)),
              find(re::search_pattern(utf16), std::u16string_view(text)));
  }
}

TEST(Utf8, EachIllFormedSequenceReadsAsReplacementCharacter) {
  // "\xE0\x80" is two maximal subparts: two U+FFFD.
  const re::search_pattern two(u"\uFFFD\uFFFD");
  EXPECT_EQ(find(two, std::string_view("a\xE0\x80z")), (ranges{{1, 3}}));
  // "\xE2\x82" is one truncated sequence: one U+FFFD.
  const re::search_pattern one(u"a\uFFFDz");
  EXPECT_EQ(find(one, std::string_view("a\xE2\x82z")), (ranges{{0, 4}}));
  // An ill-formed query reads the same way.
  EXPECT_EQ(find(re::search_pattern(std::string_view("\xFF")), std::string_view("x\xEF\xBF\xBD")),
            (ranges{{1, 4}}));
}

TEST(Utf8, ReplaceKeepsEveryByteOutsideTheMatches) {
  const std::string text(
      "\xFF"
      "Caf\xC3\xA9\0 \xC0\xAF cafe\xCC\x81!\xED\xA0\x80",
      21);
  EXPECT_EQ(re::search_pattern("cafe").replace_all(text, "tea"),
            std::string("\xFF"
                        "tea\0 \xC0\xAF tea!\xED\xA0\x80",
                        16));
}

TEST(Utf8, FindFirstAndFoundInAgreeWithFindAll) {
  const re::search_pattern pattern("creme");
  const std::string text = "x CREME y cr\xC3\xA8me";
  const std::vector<re::source_match> all = pattern.find_all(std::string_view(text));
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1].start, 10U);
  EXPECT_EQ(all[1].end, 16U);
  EXPECT_TRUE(pattern.found_in(std::string_view(text)));
  ASSERT_TRUE(pattern.find_first(std::string_view(text)).has_value());
  EXPECT_EQ(pattern.find_first(std::string_view(text))->start, 2U);
}

TEST(Check, ALiteralQueryNeverFails) {
  EXPECT_FALSE(re::search_pattern::check(u"(unbalanced[", re::query_syntax::literal));
  EXPECT_FALSE(re::search_pattern::check(std::string_view("\xFF("), re::query_syntax::literal));
}

TEST(TimeLimit, StopsASearchWithAnException) {
  const re::search_pattern pattern(u"creme");
  const std::u16string text(1 << 16, u'c');
  re::match_time_limit limit(std::chrono::milliseconds(0));
  try {
    static_cast<void>(pattern.find_all(text));
    FAIL() << "the search ran past its deadline";
  } catch (const re::regex_exception& e) {
    EXPECT_EQ(e.getErrorCodeMnemonic(), "U_REGEX_TIME_OUT");
  }
  EXPECT_TRUE(limit.exceeded());
  EXPECT_THROW(static_cast<void>(pattern.found_in(std::string_view("creme"))), re::regex_exception);
  EXPECT_THROW(static_cast<void>(pattern.replace_all(u"creme", u"x")), re::regex_exception);
}

TEST(TimeLimit, FarAwayLetsSearchesFinish) {
  const re::search_pattern pattern(u"creme");
  re::match_time_limit limit(std::chrono::hours(1));
  EXPECT_EQ(pattern.find_all(u"cr\u00E8me").size(), 1U);
  EXPECT_FALSE(limit.exceeded());
}

// The worked example at the top of the header.
TEST(HeaderExample, GivesWhatItSays) {
  const re::search_pattern lodz(u"lodz");
  EXPECT_EQ(find(lodz, std::u16string_view(u"\u0141\u00f3d\u017a, \u0141OD\u0179")),
            (ranges{{0, 4}, {6, 10}}));
  EXPECT_TRUE(lodz.found_in("Lodz"));
  const std::optional<re::source_match> usb =
      re::search_pattern(u"usb").find_first(u"\uff35\uff33\uff22 cable");
  ASSERT_TRUE(usb.has_value());
  EXPECT_EQ(std::make_pair(usb->start, usb->end), std::make_pair(std::size_t{0}, std::size_t{3}));
  EXPECT_EQ(re::search_pattern("cafe").replace_all("Caf\xc3\xa9 cr\xc3\xa8me", "tea"),
            "tea cr\xc3\xa8me");
  EXPECT_EQ(re::search_fold(u"Stra\u00dfe").text(), u"strasse");

  const re::search_pattern street(u"(\\w+)stra\u00dfe", re::query_syntax::regex);
  const std::vector<re::source_match> found = street.find_all(u"Hauptstrasse");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].groups, (ranges{{0, 12}, {0, 5}}));
  EXPECT_EQ(street.replace_all(u"K\u00f6nigstra\u00dfe", u"$1 St."), u"K\u00f6nig St.");
}

}  // namespace

namespace {

// The text is folded and searched in stretches of 64 Ki units: a match, a
// decomposed letter or a run of marks across the edge of a stretch must give
// what it gives anywhere else.
TEST(LongText, StretchEdgesChangeNothing) {
  const std::u16string tail =
      u" cre\u0300me\u0316 e\u0301\u0316\u0300 \u0141\u00f3d\u017a \u00dfs \u0e40\u0e01 "
      u"\U0001F469\u200D\U0001F4BB x\u00ADy z\u0F72\u0F71";
  const std::vector<std::u16string> queries = {u"creme",        u"e",          u"lodz", u"ss", u"s",
                                               u"\u0e40\u0e01", u"\U0001F469", u"xy",   u"z"};
  for (const std::u16string& query : queries) {
    const re::search_pattern pattern(query);
    const ranges expected = find(pattern, std::u16string_view(tail));
    ASSERT_FALSE(expected.empty() && query != u"s" && query != u"z")
        << "no match for a query of the test";
    for (std::size_t prefix = 65536 - tail.size() - 1; prefix <= 65536 + 1; ++prefix) {
      const std::u16string text = std::u16string(prefix, u'x') + tail;
      ranges shifted;
      for (const auto& [start, end] : expected) shifted.emplace_back(start + prefix, end + prefix);
      ASSERT_EQ(find(pattern, std::u16string_view(text)), shifted) << "prefix " << prefix;
      // UTF-8: the same bytes for the prefix, so the edge falls on the same offsets of the tail.
      std::string utf8(prefix, 'x');
      for (char16_t unit : std::u16string_view(tail).substr(0, 1)) utf8 += static_cast<char>(unit);
      utf8 += "cre\xCC\x80me\xCC\x96 e\xCC\x81\xCC\x96\xCC\x80";
      const std::vector<re::source_match> found8 = pattern.find_all(std::string_view(utf8));
      if (query == u"creme") {
        ASSERT_EQ(found8.size(), 1U) << "prefix " << prefix;
        EXPECT_EQ(found8[0].start, prefix + 1);
        EXPECT_EQ(found8[0].end, prefix + 10);
      }
    }
  }
}

// A regex query's first match is searched for in the start of the text as it
// is folded (4 Ki units, then twice as many each time, while that is an
// eighth of the text at most), and taken where ICU's engine did not read to
// the end of what is folded. Whatever falls across those edges, find_first
// and found_in give what find_all gives first.
TEST(LongText, RegexFirstMatchIsTheSameAcrossStretchEdges) {
  const std::u16string tail =
      u" cre\u0300me\u0316s e\u0301\u0316\u0300 \u0141\u00f3d\u017a \u00dfs \u0e40\u0e01 "
      u"\U0001F469\u200D\U0001F4BB x\u00ADy z\u0F72\u0F71 ab.";
  const std::vector<std::u16string> queries = {
      u"cr[e\u00e8]me\\w*", u"e",        u"\u00e9",       u"lodz|ss",  u"(?<=x)y",
      u"y(?= z)",           u"\\bab\\b", u"(e)(\u0301)?", u"s+",       u"\\w\\.",
      u"\U0001F469",        u"(?=ab)",   u"ab\\.$",       u"q|\u0e01", u"nowhere"};
  // What follows matches none of the queries: the text is long enough for
  // the start to be searched at the edge.
  const std::u16string filler(40000, u'~');
  for (const std::u16string& query : queries) {
    SCOPED_TRACE(std::string(query.begin(), query.end()));
    const re::search_pattern pattern(query, re::query_syntax::regex);
    // The first edge, at every offset of the tail; the second, at some.
    for (const std::size_t edge : {std::size_t{4096}, std::size_t{4096 + 8192}}) {
      const std::u16string pad = edge > 4096 ? filler + filler + filler : filler;
      const std::size_t step = edge > 4096 ? 7 : 1;
      for (std::size_t prefix = edge - tail.size() - 1; prefix <= edge + 1; prefix += step) {
        const std::u16string text = std::u16string(prefix, u'x') + u"-" + tail + pad;
        const std::vector<re::source_match> all = pattern.find_all(text);
        const std::optional<re::source_match> first = pattern.find_first(text);
        ASSERT_EQ(first.has_value(), !all.empty()) << "prefix " << prefix;
        EXPECT_EQ(pattern.found_in(text), !all.empty()) << "prefix " << prefix;
        if (first) {
          ASSERT_EQ(first->start, all[0].start) << "prefix " << prefix;
          ASSERT_EQ(first->end, all[0].end) << "prefix " << prefix;
          ASSERT_EQ(first->groups, all[0].groups) << "prefix " << prefix;
        }
      }
    }
  }
}

// Expects find_first and found_in to give what find_all gives first; returns
// whether there is a match.
template <class Text>
bool expect_first_is_first_of_all(const re::search_pattern& pattern, Text text,
                                  std::size_t prefix) {
  const std::vector<re::source_match> all = pattern.find_all(text);
  const std::optional<re::source_match> first = pattern.find_first(text);
  EXPECT_EQ(first.has_value(), !all.empty()) << "prefix " << prefix;
  EXPECT_EQ(pattern.found_in(text), !all.empty()) << "prefix " << prefix;
  if (first && !all.empty()) {
    EXPECT_EQ(first->start, all[0].start) << "prefix " << prefix;
    EXPECT_EQ(first->end, all[0].end) << "prefix " << prefix;
    EXPECT_EQ(first->groups, all[0].groups) << "prefix " << prefix;
  }
  return !all.empty();
}

// The same with each toggle and a language with contractions: whole words,
// accents matched (and where typed), punctuation ignored, Danish "aa". The
// tail puts accents, punctuation, a word boundary and a contraction on each
// side of the edge in turn.
TEST(LongText, RegexFirstMatchIsTheSameAcrossStretchEdgesWithEachOption) {
  using scl_regex_test::options_with;
  const std::u16string tail =
      u" cre\u0300me\u0316s e\u0301\u0316\u0300, c.r.e.m.e \u00e9\u0301 Aarhus aa-a "
      u"\u0141\u00f3d\u017a \u00e9t\u00e9 x\u00ADy ab.";
  const std::vector<std::pair<re::search_options, std::vector<std::u16string>>> cases = {
      {options_with(false, re::diacritics_rule::ignore, true),
       {u"cr[e\u00e8]me\\w*", u"e", u"aarhus", u"ab\\.", u"(?:y|ab)"}},
      {options_with(false, re::diacritics_rule::match),
       {u"cr[e\u00e8]m", u"\u00e9t", u"\u00e9", u"[e\u00e9]\\W", u"lodz|\u0142"}},
      {options_with(false, re::diacritics_rule::match_typed),
       {u"cr\u00e8m", u"e", u"\u00e9", u"\u00e9t\u00e9", u"[e\u00e9]s"}},
      {options_with(true, re::diacritics_rule::ignore, false, true),
       {u"creme", u"c\\.?r", u"e\\w", u"Aa", u"x\\w"}},
      {options_with(false, re::diacritics_rule::ignore, false, false, "da"),
       {u"[\u00e5]rhus", u"a", u"aa", u"\u00e5-?a", u"a\\b"}},
  };
  const std::u16string filler(40000, u'~');
  for (const auto& [options, queries] : cases) {
    for (const std::u16string& query : queries) {
      SCOPED_TRACE(scl_regex_test::hex(query) + " in " + options.locale);
      const re::search_pattern pattern(query, re::query_syntax::regex, options);
      bool matched = false;
      for (std::size_t prefix = 4096 - tail.size() - 1; prefix <= 4096 + 1; ++prefix) {
        const std::u16string text = std::u16string(prefix, u'x') + u"-" + tail + filler;
        matched |= expect_first_is_first_of_all(pattern, std::u16string_view(text), prefix);
        const std::string text8 = scl_regex_test::utf8(text);
        expect_first_is_first_of_all(pattern, std::string_view(text8), prefix);
      }
      EXPECT_TRUE(matched) << "a query of the test that matches nothing";
    }
  }
}

TEST(LongText, RegexFirstMatchIsFoundFarInAndInUtf8) {
  const std::u16string text =
      std::u16string(300000, u'a') + u" Cr\u00e8me " + std::u16string(100000, u'b') + u" CREME";
  const re::search_pattern pattern(u"cr[e\u00e8]me", re::query_syntax::regex);
  ASSERT_TRUE(pattern.find_first(text).has_value());
  EXPECT_EQ(pattern.find_first(text)->start, 300001U);
  EXPECT_TRUE(pattern.found_in(text));
  EXPECT_FALSE(re::search_pattern(u"cremes", re::query_syntax::regex).found_in(text));
  // Early, in UTF-8: the same first match, in bytes.
  const std::string utf8 = std::string(5000, 'a') + " Cr\xC3\xA8me" + std::string(60000, 'b');
  const std::optional<re::source_match> first = pattern.find_first(std::string_view(utf8));
  ASSERT_TRUE(first.has_value());
  EXPECT_EQ(first->start, 5001U);
  EXPECT_EQ(first->end, 5007U);
  // The end anchor needs the whole text.
  const re::search_pattern at_end(u"b$", re::query_syntax::regex);
  ASSERT_TRUE(at_end.find_first(std::string_view(utf8)).has_value());
  EXPECT_EQ(at_end.find_first(std::string_view(utf8))->start, utf8.size() - 1);
}

TEST(LongText, FindFirstAndFoundInSeeMatchesFarIn) {
  const std::u16string text =
      std::u16string(300000, u'a') + u" Cr\u00e8me " + std::u16string(100000, u'b') + u" CREME";
  const re::search_pattern pattern(u"creme");
  const std::vector<re::source_match> all = pattern.find_all(text);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].start, 300001U);
  EXPECT_EQ(all[1].start, 400008U);
  EXPECT_TRUE(pattern.found_in(text));
  ASSERT_TRUE(pattern.find_first(text).has_value());
  EXPECT_EQ(pattern.find_first(text)->start, 300001U);
  EXPECT_FALSE(re::search_pattern(u"cremes").found_in(text));
}

}  // namespace

namespace {

TEST(SearchFoldMap, UPlus0000IsAnEmptyPieceOfItsOwn) {
  const re::prepared_text folded = re::search_fold(std::u16string_view(u"a\0\u0301b", 4));
  EXPECT_EQ(folded.text(), u"ab");
  EXPECT_EQ(folded.source_size(), 4U);
  // "a" ends where U+0000 starts; the mark after U+0000 does not join "a".
  EXPECT_EQ(folded.source_range(0, 1), std::make_pair(std::size_t{0}, std::size_t{1}));
  EXPECT_EQ(folded.source_range(1, 2), std::make_pair(std::size_t{3}, std::size_t{4}));
  EXPECT_EQ(folded.source_range(0, 2), std::make_pair(std::size_t{0}, std::size_t{4}));
  // And a search does not take it into a match.
  EXPECT_EQ(find(u"a", std::u16string_view(u"a\0b", 3)), (ranges{{0, 1}}));
}

TEST(SearchFoldMap, EmptyAndIgnorableTexts) {
  EXPECT_EQ(re::search_fold(u"").text(), u"");
  EXPECT_EQ(re::search_fold(u"").source_size(), 0U);
  const re::prepared_text ignorable = re::search_fold(u"\u00AD\u200D\u0301");
  EXPECT_EQ(ignorable.text(), u"");
  EXPECT_EQ(ignorable.source_size(), 3U);
  EXPECT_EQ(ignorable.source_range(0, 0), std::make_pair(std::size_t{3}, std::size_t{3}));
  EXPECT_THROW(static_cast<void>(ignorable.source_range(0, 1)), std::out_of_range);
}

TEST(SearchFoldMap, ExpansionsAndMarksAreOnePiece) {
  const re::prepared_text folded = re::search_fold(u"\u00DFe\u0301\U0001D400");
  EXPECT_EQ(folded.text(), u"ssea");
  EXPECT_EQ(folded.source_range(0, 1), std::make_pair(std::size_t{0}, std::size_t{1}));
  EXPECT_EQ(folded.source_range(1, 2), std::make_pair(std::size_t{0}, std::size_t{1}));
  EXPECT_EQ(folded.source_range(2, 3), std::make_pair(std::size_t{1}, std::size_t{3}));
  EXPECT_EQ(folded.source_range(3, 4), std::make_pair(std::size_t{3}, std::size_t{5}));
}

}  // namespace
