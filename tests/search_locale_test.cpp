// search_pattern with search_options::locale: the language's search
// collation, as CLDR defines it and ICU ships it.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex/search_pattern.h>

#include "support/search_support.h"

namespace {

namespace re = scl::regex;

re::search_options in(const char* locale) {
  re::search_options options;
  options.locale = locale;
  return options;
}

bool finds(const char* locale, std::u16string_view query, std::u16string_view text,
           re::query_syntax syntax = re::query_syntax::literal) {
  return re::search_pattern(query, syntax, in(locale)).found_in(text);
}

TEST(SearchLocale, ReportsTheCollationIcuResolved) {
  EXPECT_EQ(re::search_pattern().collation_locale(), "und");
  EXPECT_EQ(re::search_pattern(u"x").collation_locale(), "und");
  const struct {
    const char* locale;
    const char* collation;
  } cases[] = {{"", "und"},
               {"sv", "sv-u-co-search"},
               {"sv_SE", "sv-u-co-search"},
               {"sv-SE", "sv-u-co-search"},
               {"cs", "und-u-co-search"},
               {"ja", "und-u-co-search"},
               {"zz", "und-u-co-search"},
               {"de-u-co-phonebk", "de-u-co-phonebk"},
               {"da", "da-u-co-search"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    EXPECT_EQ(re::search_pattern(u"x", re::query_syntax::literal, in(c.locale)).collation_locale(),
              c.collation);
  }
}

TEST(SearchLocale, SwedishKeepsItsOwnLettersApart) {
  EXPECT_FALSE(finds("sv", u"\u00c5nger", u"Anger"));
  EXPECT_FALSE(finds("sv", u"anger", u"\u00c5nger"));
  EXPECT_TRUE(finds("sv", u"\u00e5nger", u"\u00c5NGER"));
  EXPECT_TRUE(finds("sv", u"\u00f6l", u"\u00d8l"));  // Ö and Ø are one letter
  EXPECT_TRUE(finds("fi", u"\u00e4", u"\u00c4"));
  EXPECT_TRUE(finds("fi", u"\u00f6", u"\u00f8"));
  EXPECT_FALSE(finds("fi", u"\u00c5nger", u"Anger"));
  EXPECT_FALSE(finds("fi", u"a", u"\u00e4"));
  EXPECT_TRUE(finds("", u"anger", u"\u00c5nger"));  // the root reads them alike
}

TEST(SearchLocale, DanishReadsDoubleAAsARing) {
  EXPECT_TRUE(finds("da", u"aarhus", u"\u00c5rhus"));
  EXPECT_TRUE(finds("da", u"\u00e5rhus", u"Aarhus"));
  EXPECT_TRUE(finds("da", u"[\u00e5]rhus", u"Aarhus", re::query_syntax::regex));
  EXPECT_FALSE(finds("da", u"a", u"Aarhus"));  // "aa" is one letter: no "a" in it
  EXPECT_TRUE(finds("nb", u"aarhus", u"\u00c5rhus"));
  EXPECT_FALSE(finds("nb", u"a", u"Aarhus"));
  EXPECT_EQ(re::search_fold(u"Aa", in("da")).text(), re::search_fold(u"\u00e5", in("da")).text());
  // The whole contraction is one piece of the text.
  const std::vector<re::source_match> found =
      re::search_pattern(u"\u00e5", re::query_syntax::literal, in("da")).find_all(u"xAay");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].start, 1U);
  EXPECT_EQ(found[0].end, 3U);
}

// Contractions are read from the left, longest first, as the collator reads
// them, up to the end of the text.
TEST(SearchLocale, ContractionsAreReadFromTheLeftLongestFirst) {
  const re::search_options danish = in("da");
  EXPECT_EQ(re::search_fold(u"aaa", danish).text(), re::search_fold(u"\u00e5a", danish).text());
  const re::search_pattern ring(u"\u00e5", re::query_syntax::literal, danish);
  const std::vector<re::source_match> rings = ring.find_all(u"aaaa");
  ASSERT_EQ(rings.size(), 2U);
  EXPECT_EQ(rings[0].start, 0U);
  EXPECT_EQ(rings[1].start, 2U);
  EXPECT_EQ(rings[1].end, 4U);
  const std::vector<re::source_match> a =
      re::search_pattern(u"a", re::query_syntax::literal, danish).find_all(u"Aa a");
  ASSERT_EQ(a.size(), 1U);
  EXPECT_EQ(a[0].start, 3U);
  // UTF-8 text reads them alike.
  EXPECT_EQ(ring.find_all("aaaa").size(), 2U);
}

// Diacritics matched where typed check the accents of each match in the
// text as the whole text reads it: after "aa", the third "a" is a letter.
TEST(SearchLocale, TypedDiacriticsReadContractionsAsTheTextDoes) {
  re::search_options options = in("da");
  options.diacritics = re::diacritics_rule::match_typed;
  const re::search_pattern a(u"a", re::query_syntax::literal, options);
  for (const std::u16string_view text : {u"aaa", u"\u001faaa "}) {
    const std::vector<re::source_match> found = a.find_all(text);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].end, text.size() - (text.back() == u' ' ? 1 : 0));
    EXPECT_EQ(found[0].end - found[0].start, 1U);
  }
  EXPECT_EQ(a.find_all("aaa").size(), 1U);
  for (const char16_t* query : {u"\\Qa\\E", u"(?:\\Qa\\E)", u"a"}) {
    EXPECT_EQ(re::search_pattern(query, re::query_syntax::regex, options).find_all(u"aaa").size(),
              1U)
        << "regex";
  }
  // "aa" after "aa" is a second ring.
  const re::search_pattern ring(u"aa", re::query_syntax::literal, options);
  const std::vector<re::source_match> rings = ring.find_all(u"aaaa");
  ASSERT_EQ(rings.size(), 2U);
  EXPECT_EQ(rings[1].start, 2U);
}

// Catalan reads "l\u00b7" as a letter of its own; the root reads the dot as
// an accent of the "l".
TEST(SearchLocale, CatalanReadsLWithMiddleDotAsALetter) {
  EXPECT_FALSE(finds("ca", u"l", u"l\u00b7"));
  EXPECT_TRUE(finds("ca", u"l\u00b7l", u"L\u00b7L"));
  EXPECT_TRUE(finds("", u"l", u"l\u00b7"));
}

TEST(SearchLocale, TurkishDottedAndDotlessIAreTwoLetters) {
  EXPECT_TRUE(finds("tr", u"\u0131", u"I"));
  EXPECT_TRUE(finds("tr", u"i", u"\u0130"));
  EXPECT_FALSE(finds("tr", u"\u0131", u"i"));
  EXPECT_FALSE(finds("tr", u"i", u"I"));
}

TEST(SearchLocale, GermanReadsUmlautsAsE) {
  EXPECT_TRUE(finds("de", u"ae", u"\u00e4"));
  EXPECT_TRUE(finds("de", u"mueller", u"M\u00fcller"));
}

TEST(SearchLocale, SpanishKeepsEnyeApart) {
  EXPECT_FALSE(finds("es", u"ano", u"a\u00f1o"));
  EXPECT_TRUE(finds("es", u"a\u00f1o", u"A\u00d1O"));
}

TEST(SearchLocale, ArabicAlefFormsAreOneLetter) {
  EXPECT_TRUE(finds("ar", u"\u0627\u062d\u0645\u062f", u"\u0623\u062d\u0645\u062f"));
  EXPECT_TRUE(finds("ar", u"\u0627\u062d\u0645\u062f", u"\u0625\u062d\u0645\u062f"));
  EXPECT_TRUE(finds("ar", u"\u0645\u062f\u0631\u0633\u0647", u"\u0645\u062f\u0631\u0633\u0629"));
}

// Slovak's search rules, unlike its sort order, read "ch" as two letters.
TEST(SearchLocale, SlovakSearchRulesReadChAsTwoLetters) {
  EXPECT_TRUE(finds("sk", u"ch", u"CHATA"));
  EXPECT_TRUE(finds("sk", u"c", u"chata"));
}

// A search in a language honours the time limit, literal and regex.
TEST(SearchLocale, TheTimeLimitStopsSearchesInALanguage) {
  const std::u16string text(1 << 16, u'a');
  EXPECT_TRUE(scl_regex_test::times_out(
      re::search_pattern(u"aarhus", re::query_syntax::literal, in("da")), text));
  EXPECT_TRUE(scl_regex_test::times_out(
      re::search_pattern(u"[\u00e5]rhus", re::query_syntax::regex, in("da")), text));
}

// Every toggle combines with a locale.
TEST(SearchLocale, CombinesWithEveryToggle) {
  re::search_options options = in("da");
  options.match_case = true;
  // "Aa" is a capital and a small letter; the case level tells it from "\u00c5".
  EXPECT_TRUE(re::search_pattern(u"\u00c5rhus", re::query_syntax::literal, options)
                  .found_in(u"\u00c5RHUS \u00c5rhus"));
  EXPECT_FALSE(
      re::search_pattern(u"aarhus", re::query_syntax::literal, options).found_in(u"\u00c5rhus"));
  options.match_case = false;
  options.whole_words = true;
  EXPECT_FALSE(re::search_pattern(u"rhus", re::query_syntax::literal, options).found_in(u"Aarhus"));
  options.whole_words = false;
  options.ignore_punctuation = true;
  // Punctuation between two a's parts them: no contraction.
  EXPECT_FALSE(
      re::search_pattern(u"aarhus", re::query_syntax::literal, options).found_in(u"A-a-rhus"));
  EXPECT_TRUE(
      re::search_pattern(u"aarhus", re::query_syntax::literal, options).found_in(u"\u00c5-rhus"));
  options.ignore_punctuation = false;
  options.diacritics = re::diacritics_rule::match;
  EXPECT_TRUE(
      re::search_pattern(u"aarhus", re::query_syntax::literal, options).found_in(u"\u00c5rhus"));
}

}  // namespace
