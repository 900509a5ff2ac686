// search_pattern and search_fold with search options: what each toggle finds
// and keeps apart, how they combine, regex queries under them, errors, and
// that every other promise of search folding still holds.
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/utypes.h>

#include <scl/regex.h>

#include "support/search_support.h"

namespace {

namespace re = scl::regex;
using scl_regex_test::find;
using scl_regex_test::options_with;
using scl_regex_test::ranges;

const re::search_options kMatchCase = options_with(true, re::diacritics_rule::ignore);
const re::search_options kMatch = options_with(false, re::diacritics_rule::match);
const re::search_options kTyped = options_with(false, re::diacritics_rule::match_typed);
const re::search_options kWords = options_with(false, re::diacritics_rule::ignore, true);
const re::search_options kPunctuation =
    options_with(false, re::diacritics_rule::ignore, false, true);

bool finds(std::u16string_view query, std::u16string_view text, const re::search_options& options,
           re::query_syntax syntax = re::query_syntax::literal) {
  return re::search_pattern(query, syntax, options).found_in(text);
}

ranges find(std::u16string_view query, std::u16string_view text, const re::search_options& options,
            re::query_syntax syntax = re::query_syntax::literal) {
  return find(re::search_pattern(query, syntax, options), text);
}

// ---------------------------------------------------------------------------
// The API

TEST(SearchOptions, DefaultsAreTheDefaultSearch) {
  const re::search_options options;
  EXPECT_FALSE(options.match_case);
  EXPECT_EQ(options.diacritics, re::diacritics_rule::ignore);
  EXPECT_FALSE(options.whole_words);
  EXPECT_FALSE(options.ignore_punctuation);
  EXPECT_TRUE(options.locale.empty());
  EXPECT_EQ(options, re::search_options{});
  EXPECT_NE(options, kMatchCase);
}

TEST(SearchOptions, ThePatternKeepsItsOptions) {
  EXPECT_EQ(re::search_pattern().options(), re::search_options{});
  EXPECT_EQ(re::search_pattern(u"x").options(), re::search_options{});
  const re::search_options options =
      options_with(true, re::diacritics_rule::match_typed, true, true);
  const re::search_pattern pattern(u"x", re::query_syntax::literal, options);
  EXPECT_EQ(pattern.options(), options);
  const re::search_pattern copy = pattern;
  EXPECT_EQ(copy.options(), options);
  EXPECT_EQ(re::search_pattern("x", re::query_syntax::regex, options).options(), options);
}

// Every existing constructor, check and search_fold means default options.
TEST(SearchOptions, TheFormsWithoutOptionsSearchWithDefaultOnes) {
  const std::u16string text = u"R\u00e9sum\u00e9, RESUME; e-mail \u0141\u00f3d\u017a";
  for (const std::u16string_view query : {u"resume", u"lodz", u"email", u"e-mail"}) {
    EXPECT_EQ(find(re::search_pattern(query), text), find(query, text, re::search_options{}));
  }
  EXPECT_EQ(find(re::search_pattern(u"r.sum", re::query_syntax::regex), text),
            find(u"r.sum", text, re::search_options{}, re::query_syntax::regex));
  EXPECT_EQ(re::search_fold(text).text(), re::search_fold(text, re::search_options{}).text());
  EXPECT_EQ(
      re::search_pattern::check(u"(", re::query_syntax::regex)->description,
      re::search_pattern::check(u"(", re::query_syntax::regex, re::search_options{})->description);
}

// An options value out of range (a cast enumerator) throws regex_exception
// with U_ILLEGAL_ARGUMENT_ERROR, and check reports it.
TEST(SearchOptions, AnOptionsValueOutOfRangeIsAnError) {
  re::search_options bad;
  bad.diacritics = static_cast<re::diacritics_rule>(3);
  for (const re::query_syntax syntax : {re::query_syntax::literal, re::query_syntax::regex}) {
    try {
      const re::search_pattern pattern(u"x", syntax, bad);
      FAIL() << "accepted";
    } catch (const re::regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
    }
    EXPECT_THROW(re::search_pattern("x", syntax, bad), re::regex_exception);
    for (const std::optional<re::pattern_error>& error :
         {re::search_pattern::check(u"x", syntax, bad),
          re::search_pattern::check("x", syntax, bad)}) {
      ASSERT_TRUE(error.has_value());
      EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
      EXPECT_EQ(error->offset, re::npos);
      EXPECT_NE(error->description.find("diacritics"), std::string::npos);
    }
  }
  // Even a query that is wrong itself: the options are read first.
  EXPECT_EQ(
      re::search_pattern::check(u"(", re::query_syntax::regex, bad)->error.getErrorCodeMnemonic(),
      "U_ILLEGAL_ARGUMENT_ERROR");
  try {
    static_cast<void>(re::search_fold(u"x", bad));
    FAIL() << "search_fold accepted it";
  } catch (const re::regex_exception& e) {
    EXPECT_EQ(e.getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
  }
}

// The locale is a BCP 47 tag: an ill-formed one is rejected before the query
// is read, with offset npos.
TEST(SearchOptions, AnIllFormedLocaleTagIsAnIllegalArgument) {
  for (const char* tag : {"sv!", "en--US", "a b", "-", "sv-", "toolongsubtag"}) {
    SCOPED_TRACE(tag);
    re::search_options options;
    options.locale = tag;
    try {
      const re::search_pattern pattern(u"(", re::query_syntax::regex, options);
      FAIL() << "accepted";
    } catch (const re::regex_exception& e) {
      EXPECT_EQ(e.getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
    }
    EXPECT_THROW((void)re::search_fold(u"x", options), re::regex_exception);
    const std::optional<re::pattern_error> error =
        re::search_pattern::check("x", re::query_syntax::literal, options);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->error.getErrorCodeMnemonic(), "U_ILLEGAL_ARGUMENT_ERROR");
    EXPECT_EQ(error->offset, re::npos);
    EXPECT_NE(error->description.find("locale"), std::string::npos);
  }
}
TEST(SearchOptions, CheckAcceptsGoodOptionsAsTheConstructorDoes) {
  const re::search_options options = options_with(true, re::diacritics_rule::match, true, true);
  EXPECT_FALSE(re::search_pattern::check(u"x", re::query_syntax::literal, options));
  EXPECT_FALSE(re::search_pattern::check(u"[a-z]+", re::query_syntax::regex, options));
  const std::optional<re::pattern_error> error = re::search_pattern::check(
      "stra\xc3\x9f"
      "e(",
      re::query_syntax::regex, options);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->offset, 8U);  // bytes, as without options
}

// ---------------------------------------------------------------------------
// What each toggle finds and does not find (the rows of the table)

TEST(Default, FindsEverySpelling) {
  for (const std::u16string_view text :
       {u"R\u00e9sum\u00e9", u"RESUME", u"\uff32\uff25\uff33\uff35\uff2d\uff25"}) {
    EXPECT_TRUE(finds(u"resume", text, re::search_options{}));
  }
}

TEST(DiacriticsMatch, AccentsCount) {
  EXPECT_TRUE(finds(u"resume", u"RESUME", kMatch));
  EXPECT_TRUE(finds(u"resume", u"\uff32\uff25\uff33\uff35\uff2d\uff25", kMatch));
  EXPECT_TRUE(finds(u"\u0142\u00f3d\u017a", u"\u0141\u00d3D\u0179", kMatch));
  EXPECT_FALSE(finds(u"resume", u"r\u00e9sum\u00e9", kMatch));
  EXPECT_FALSE(finds(u"lodz", u"\u0141\u00f3d\u017a", kMatch));
  // "e" does not find "é", nor "é" "e".
  EXPECT_FALSE(finds(u"e", u"\u00e9", kMatch));
  EXPECT_FALSE(finds(u"\u00e9", u"e", kMatch));
  EXPECT_EQ(find(u"\u00e9", u"e\u0301 \u00e9", kMatch), (ranges{{0, 2}, {3, 4}}));
}

TEST(DiacriticsMatchTyped, AccentsCountWhereTyped) {
  for (const std::u16string_view text :
       {u"resume", u"R\u00e9sum\u00e9", u"RESUME", u"r\u00e8sum\u00eb"}) {
    EXPECT_TRUE(finds(u"resume", text, kTyped));
  }
  EXPECT_TRUE(finds(u"caf\u00e9", u"CAF\u00c9", kTyped));
  EXPECT_FALSE(finds(u"caf\u00e9", u"cafe", kTyped));
  EXPECT_FALSE(finds(u"caf\u00e9", u"caf\u00e8", kTyped));
  // "e" finds "é"; "é" finds "é" only.
  EXPECT_EQ(find(u"e", u"\u00e9", kTyped), (ranges{{0, 1}}));
  EXPECT_TRUE(finds(u"\u00e9", u"\u00e9", kTyped));
  EXPECT_FALSE(finds(u"\u00e9", u"e", kTyped));
  // ICU's asymmetric search: "ss" finds "ß", "ß" does not find "ss".
  EXPECT_TRUE(finds(u"strasse", u"Stra\u00dfe", kTyped));
  EXPECT_FALSE(finds(u"stra\u00dfe", u"strasse", kTyped));
}

TEST(DiacriticsMatchTyped, AQueryOfAccentsAloneEndsWhereItsLastAccentDoes) {
  // A match takes more of the last accent typed, but not from a later piece:
  // after a control character, the accents start again.
  const std::u16string accents(7, u'\u032f');
  const std::u16string text =
      std::u16string(9, u'\u032f') + u"\u0010\u0007" + std::u16string(7, u'\u032f');
  EXPECT_EQ(find(std::u16string_view(accents), text, kTyped), (ranges{{0, 9}, {11, 18}}));
  EXPECT_EQ(find(u"\u032f\u032f", u"\u032f\u032f\u032f\u0010\u032f\u032f", kTyped),
            (ranges{{0, 3}, {4, 6}}));
}

TEST(DiacriticsMatchTyped, AccentsTypedFirstLetTheTextsOtherAccentsComeBeforeTheLetter) {
  // The text's accents between typed ones and the next letter are skipped, as
  // after a letter; where an accent is typed, another one does not stand for
  // it.
  for (const re::query_syntax syntax : {re::query_syntax::literal, re::query_syntax::regex}) {
    const std::u16string_view group_open = syntax == re::query_syntax::regex ? u"(?:" : u"";
    const std::u16string_view group_close = syntax == re::query_syntax::regex ? u")" : u"";
    auto query = [&](std::u16string_view q) {
      return std::u16string(group_open) + std::u16string(q) + std::u16string(group_close);
    };
    EXPECT_EQ(find(query(u"\u0301r"), u"\u0301\u0301r", kTyped, syntax), (ranges{{0, 3}}));
    EXPECT_EQ(find(query(u"\u0301r"), u"\u0301\u0300r", kTyped, syntax), (ranges{{0, 3}}));
    EXPECT_EQ(find(query(u"\u0301\u0301r"), u"\u0301\u0300\u0301r", kTyped, syntax), ranges{});
    EXPECT_EQ(find(query(u"\u0301\u0301r"), u"\u0301\u0300r", kTyped, syntax), ranges{});
    EXPECT_EQ(
        find(query(u"\u0355\u0355\u0355r\u0321er"), u"\u0355\u0355\u0355\u0355@r\u0321er,(\u0321eY",
             options_with(true, re::diacritics_rule::match_typed, true, true), syntax),
        (ranges{{0, 9}}));
  }
}

TEST(DiacriticsMatchTyped, CanonicallyEquivalentTextsGiveTheSameMatches) {
  // "\u0368" is a mark that is a letter of its own; the accent after it comes
  // before it in canonical order, so right after the control, as in the NFC
  // text: after a typed accent, another accent ends the match.
  const std::u16string_view texts[] = {u"x\u035b\u007f\u0368\u034e", u"x\u035b\u007f\u034e\u0368"};
  for (const re::query_syntax syntax : {re::query_syntax::literal, re::query_syntax::regex}) {
    for (const std::u16string_view text : texts) {
      EXPECT_EQ(find(u"x\u035b", text, kTyped, syntax), ranges{});
      EXPECT_EQ(find(u"x", text, kTyped, syntax), (ranges{{0, 2}}));
    }
    EXPECT_EQ(find(u"(?:x\u035b)", texts[0], kTyped, re::query_syntax::regex), ranges{});
  }
  // The typed accent matches the text's first accent after the control, and
  // the letter after it ("\u0369" folds to "d") ends the match inside a piece:
  // no match, however the marks are written.
  const std::u16string nul(1, u'\0');
  for (const std::u16string& text :
       {u"c" + nul + u"\u0362\u0369\u0301\u0317.", u"c" + nul + u"\u0317\u0369\u0301\u0362."}) {
    EXPECT_EQ(find(u"c\u0362", text, kTyped), ranges{});
    EXPECT_EQ(find(u"(?:c\u0362)", text, kTyped, re::query_syntax::regex), ranges{});
  }
}

TEST(MatchCase, CaseCountsAtTheStrengthOfTheDiacriticsRule) {
  EXPECT_TRUE(finds(u"Resume", u"R\u00e9sum\u00e9", kMatchCase));
  EXPECT_TRUE(finds(u"Resume", u"Resume", kMatchCase));
  EXPECT_TRUE(finds(u"RESUME", u"\uff32\uff25\uff33\uff35\uff2d\uff25", kMatchCase));
  EXPECT_FALSE(finds(u"Resume", u"resume", kMatchCase));
  EXPECT_FALSE(finds(u"Resume", u"RESUME", kMatchCase));
  EXPECT_FALSE(finds(u"stra\u00dfe", u"Stra\u00dfe", kMatchCase));
  // With diacritics matched, at secondary strength; where typed, at primary.
  const re::search_options case_accents = options_with(true, re::diacritics_rule::match);
  EXPECT_FALSE(finds(u"Resume", u"R\u00e9sum\u00e9", case_accents));
  EXPECT_TRUE(finds(u"R\u00e9sum\u00e9", u"R\u00e9sum\u00e9", case_accents));
  const re::search_options case_typed = options_with(true, re::diacritics_rule::match_typed);
  EXPECT_TRUE(finds(u"Resume", u"R\u00e9sum\u00e9", case_typed));
  EXPECT_FALSE(finds(u"resume", u"R\u00e9sum\u00e9", case_typed));
}

TEST(WholeWords, MatchesStartAndEndOnWordBoundaries) {
  EXPECT_EQ(find(u"cat", u"a cat.", kWords), (ranges{{2, 5}}));
  for (const std::u16string_view text : {u"concat", u"cats", u"Cat's"}) {
    EXPECT_FALSE(finds(u"cat", text, kWords)) << "in one word";
  }
  // Thai is written without spaces: ICU's dictionary finds the words.
  EXPECT_EQ(find(u"\u0e41\u0e21\u0e27", u"\u0e41\u0e21\u0e27\u0e14\u0e33", kWords),
            (ranges{{0, 3}}));
  EXPECT_FALSE(finds(u"\u0e41\u0e21", u"\u0e41\u0e21\u0e27\u0e14\u0e33", kWords));
  // Chinese and Japanese too.
  EXPECT_TRUE(finds(u"\u4e2d\u6587", u"\u6211\u8bf4\u4e2d\u6587", kWords));
  // A match that would end before a soft hyphen takes it in, up to the boundary.
  EXPECT_EQ(find(u"cat", u"a cat\u00ad dog", kWords), (ranges{{2, 6}}));
  EXPECT_FALSE(finds(u"cat", u"a cat\u00ads", kWords));
}

TEST(IgnorePunctuation, SpacesAndPunctuationFoldToNothing) {
  for (const std::u16string_view text : {u"e-mail", u"E mail", u"e.mail"}) {
    EXPECT_TRUE(finds(u"email", text, kPunctuation));
  }
  EXPECT_EQ(find(u"newyork", u"New York", kPunctuation), (ranges{{0, 8}}));
  EXPECT_TRUE(finds(u"e-mail", u"email", kPunctuation));
  // A match neither starts nor ends with punctuation.
  EXPECT_EQ(find(u"mail", u" (mail) ", kPunctuation), (ranges{{2, 6}}));
  EXPECT_EQ(find(u"-mail-", u"e-mail.", kPunctuation), (ranges{{2, 6}}));
  // Punctuation alone finds nothing.
  EXPECT_FALSE(finds(u"-", u"a-b", kPunctuation));
  EXPECT_FALSE(finds(u"...", u"...", kPunctuation));
  // Without the toggle, punctuation counts.
  EXPECT_FALSE(finds(u"email", u"e-mail", re::search_options{}));
}

// ---------------------------------------------------------------------------
// Options combine freely

TEST(Combined, EveryToggleAtOnce) {
  const re::search_options all = options_with(true, re::diacritics_rule::match_typed, true, true);
  EXPECT_EQ(find(u"NewYork", u"in New-York.", all), (ranges{{3, 11}}));
  EXPECT_FALSE(finds(u"newyork", u"in New-York.", all));    // case
  EXPECT_FALSE(finds(u"NewYork", u"in New-Yorker.", all));  // whole words
  EXPECT_TRUE(finds(u"Cafe", u"Caf\u00e9!", all));          // typed: any accent
  EXPECT_FALSE(finds(u"Caf\u00e9", u"Cafe!", all));
  const re::search_options accents_punctuation =
      options_with(false, re::diacritics_rule::match, false, true);
  EXPECT_TRUE(finds(u"ecole", u"\u00e9-cole e-cole", accents_punctuation));
  EXPECT_EQ(find(u"ecole", u"\u00e9-cole e-cole", accents_punctuation), (ranges{{7, 13}}));
}

// ---------------------------------------------------------------------------
// search_fold with options

TEST(SearchFoldWithOptions, WholeTextsFoldAlikeExactlyWhenTheCollatorCallsThemEqual) {
  auto alike = [](std::u16string_view a, std::u16string_view b, const re::search_options& o) {
    return re::search_fold(a, o).text() == re::search_fold(b, o).text();
  };
  EXPECT_TRUE(alike(u"Stra\u00dfe", u"STRASSE", re::search_options{}));
  EXPECT_FALSE(alike(u"stra\u00dfe", u"Stra\u00dfe", kMatchCase));
  EXPECT_TRUE(alike(u"RESUME", u"\uff32\uff25\uff33\uff35\uff2d\uff25", kMatchCase));
  EXPECT_FALSE(alike(u"resume", u"r\u00e9sum\u00e9", kMatch));
  EXPECT_TRUE(alike(u"r\u00e9sum\u00e9", u"RE\u0301SUME\u0301", kMatch));
  EXPECT_TRUE(alike(u"e-mail", u"E mail", kPunctuation));
  // Diacritics matched where typed fold as diacritics matched; whole words
  // change no fold.
  EXPECT_EQ(re::search_fold(u"Caf\u00e9", kTyped).text(),
            re::search_fold(u"Caf\u00e9", kMatch).text());
  EXPECT_EQ(re::search_fold(u"a cat", kWords).text(), re::search_fold(u"a cat").text());
}

TEST(SearchFoldWithOptions, AccentsFoldApartFromTheirLetters) {
  const re::prepared_text folded = re::search_fold(u"Caf\u00e9", kMatch);
  EXPECT_EQ(folded.text(), u"cafe\u0301");
  EXPECT_EQ(folded.source_range(3, 5), (std::pair<std::size_t, std::size_t>{3, 4}));
  // Case keeps capitals.
  EXPECT_EQ(re::search_fold(u"Caf\u00e9", options_with(true, re::diacritics_rule::match)).text(),
            u"Cafe\u0301");
  EXPECT_EQ(re::search_fold(u"Caf\u00e9", kMatchCase).text(), u"Cafe");
  // Accents in the order the collator reads them, whatever class their
  // representatives have.
  EXPECT_EQ(re::search_fold(u"\u01fe", kMatch).text(), u"o\u0338\u0301");
  EXPECT_EQ(re::search_fold(u"a\u0352\u035c", kMatch).text(), u"a\u030d\u0316");
  EXPECT_EQ(re::search_fold(u"a\u030d\u0316", kMatch).text(), u"a\u0316\u030d");
  // Punctuation folds to nothing, an empty piece of its own.
  const re::prepared_text punctuation = re::search_fold(u"e-mail", kPunctuation);
  EXPECT_EQ(punctuation.text(), u"email");
  EXPECT_EQ(punctuation.source_range(0, 2), (std::pair<std::size_t, std::size_t>{0, 3}));
}

// ---------------------------------------------------------------------------
// Everything of search folding still holds

TEST(StillHolds, PositionsAreInTheCallersUnitsOrBytes) {
  const re::search_pattern pattern(u"cafe", re::query_syntax::literal, kMatchCase);
  EXPECT_EQ(find(pattern, std::u16string(u"Cafe caf\u00e9")), (ranges{{5, 9}}));
  EXPECT_EQ(find(pattern, std::string("Cafe caf\xc3\xa9")), (ranges{{5, 10}}));
  const re::search_pattern typed(u"cafe", re::query_syntax::literal, kTyped);
  EXPECT_EQ(find(typed, std::string("CAF\xc3\x89 cafe\xcc\x81")), (ranges{{0, 5}, {6, 12}}));
}

TEST(StillHolds, FoundInFindFirstAndReplaceAllAgreeWithFindAll) {
  const std::u16string text = u"e-mail, E mail, email!";
  const re::search_pattern pattern(u"email", re::query_syntax::literal, kPunctuation);
  EXPECT_TRUE(pattern.found_in(text));
  ASSERT_TRUE(pattern.find_first(text).has_value());
  EXPECT_EQ(pattern.find_first(text)->start, 0U);
  EXPECT_EQ(pattern.replace_all(text, u"mail"), u"mail, mail, mail!");
  EXPECT_EQ(pattern.replace_all(std::string("e-mail!"), std::string("x")), "x!");
  EXPECT_FALSE(pattern.found_in(std::u16string_view(u"e-mai")));
}

TEST(StillHolds, TheTimeLimitStopsSearchesWithOptions) {
  for (const re::search_options& options : {kMatchCase, kMatch, kTyped, kWords, kPunctuation}) {
    const re::search_pattern pattern(u"creme", re::query_syntax::literal, options);
    EXPECT_TRUE(scl_regex_test::times_out(pattern, std::u16string(1 << 16, u'c')));
  }
}

TEST(StillHolds, WholePiecesGraphemesAndPrevowels) {
  // Whole pieces: "s" is not in "ß", with any options.
  for (const re::search_options& options : {kMatchCase, kMatch, kTyped, kPunctuation}) {
    EXPECT_FALSE(finds(u"s", u"\u00df", options));
    EXPECT_FALSE(finds(u"\U0001F4BB", u"\U0001F469\u200D\U0001F4BB", options));
    EXPECT_FALSE(finds(u"\u0E01", u"\u0E40\u0E01", options));  // no edge inside a prevowel pair
  }
  // NFC text: decomposed and precomposed are one.
  EXPECT_EQ(find(u"\u00e9", u"e\u0301", kMatch), (ranges{{0, 2}}));
  EXPECT_EQ(find(u"e\u0301", u"\u00e9", kMatch), (ranges{{0, 1}}));
}

// ---------------------------------------------------------------------------
// Regex queries under options

TEST(RegexWithOptions, AClassMatchesTheFoldOfOneOfItsMembersUnderTheOptions) {
  const re::query_syntax regex = re::query_syntax::regex;
  // Under match_case, [A-Z] matches only capital folds.
  EXPECT_TRUE(finds(u"[A-Z]", u"\u0141", kMatchCase, regex));
  EXPECT_FALSE(finds(u"[A-Z]", u"\u0142", kMatchCase, regex));
  EXPECT_TRUE(finds(u"[A-Z]", u"\u0142", re::search_options{}, regex));
  // Under diacritics = match, caf[eé] finds "café" and "CAFÉ" but not "cafè".
  EXPECT_TRUE(finds(u"caf[e\u00e9]", u"caf\u00e9", kMatch, regex));
  EXPECT_TRUE(finds(u"caf[e\u00e9]", u"CAF\u00c9", kMatch, regex));
  EXPECT_FALSE(finds(u"caf[e\u00e9]", u"caf\u00e8", kMatch, regex));
  EXPECT_EQ(find(u"caf[e\u00e9]", u"caf\u00e9", kMatch, regex), (ranges{{0, 4}}));
  // A negated class matches any other letter with its accents; "." one.
  EXPECT_EQ(find(u"caf[^e]", u"caf\u00e9 cafe", kMatch, regex), (ranges{{0, 4}}));
  EXPECT_EQ(find(u"caf.", u"caf\u00e9", kMatch, regex), (ranges{{0, 4}}));
  EXPECT_EQ(find(u"\\w+", u"cr\u00e8me br\u00fbl\u00e9e", kMatch, regex),
            (ranges{{0, 5}, {6, 12}}));
  // Where typed, a letter of the class matches it with any accent.
  EXPECT_TRUE(finds(u"caf[e]", u"caf\u00e9", kTyped, regex));
  EXPECT_FALSE(finds(u"caf[\u00e9]", u"cafe", kTyped, regex));
}

TEST(RegexWithOptions, LiteralsFoldAsText) {
  const re::query_syntax regex = re::query_syntax::regex;
  EXPECT_TRUE(finds(u"(r)esume", u"R\u00c9SUM\u00c9", kTyped, regex));
  EXPECT_FALSE(finds(u"(r)\u00e9sum\u00e9", u"resume", kTyped, regex));
  EXPECT_TRUE(finds(u"Stra(ss|x)e", u"Stra\u00dfe", kMatchCase, regex));
  EXPECT_FALSE(finds(u"stra(ss|x)e", u"Stra\u00dfe", kMatchCase, regex));
  EXPECT_TRUE(finds(u"\u00e9+", u"\u00e9\u00c9", kMatch, regex));
}

// Every way to write `count` "s" with "\u00df" standing for two.
std::vector<std::u16string> spellings_of_s(std::size_t count) {
  if (count == 0) return {u""};
  std::vector<std::u16string> out;
  for (std::u16string& rest : spellings_of_s(count - 1)) out.push_back(u"s" + rest);
  if (count >= 2) {
    for (std::u16string& rest : spellings_of_s(count - 2)) out.push_back(u"\u00df" + rest);
  }
  return out;
}

TEST(RegexWithOptions, TypedLettersMatchALetterThatStandsForSeveralWhereverTheTextJoinsThem) {
  const re::query_syntax regex = re::query_syntax::regex;
  for (const std::size_t count : {2, 3, 5}) {
    const std::u16string letters(count, u's');
    const re::search_pattern literal(letters, re::query_syntax::literal, kTyped);
    const re::search_pattern quoted(u"(?:" + letters + u")", regex, kTyped);
    for (const std::u16string& text : spellings_of_s(count)) {
      const ranges whole{{0, text.size()}};
      EXPECT_EQ(find(literal, text), whole);
      EXPECT_EQ(find(quoted, text), whole);
    }
  }
  // "sss" in "s\u00df", with more around it.
  EXPECT_EQ(find(u"(?:schlosssee)", u"Schlos\u00dfee", kTyped, regex), (ranges{{0, 9}}));
  EXPECT_EQ(find(u"(?:schlosssee)", u"Schlo\u00dfsee", kTyped, regex), (ranges{{0, 9}}));
  // Past 1024 ways to join a run, the run is joined from the left.
  const std::u16string sixteen(16, u's');
  EXPECT_TRUE(finds(u"(?:" + sixteen + u")", std::u16string(8, u'\u00df'), kTyped, regex));
  const std::u16string inner = u"s" + std::u16string(7, u'\u00df') + u"s";
  EXPECT_FALSE(finds(u"(?:" + sixteen + u")", inner, kTyped, regex));
  EXPECT_TRUE(finds(sixteen, inner, kTyped));
  EXPECT_TRUE(finds(u"(?:" + std::u16string(15, u's') + u")", u"s" + std::u16string(7, u'\u00df'),
                    kTyped, regex));
}

TEST(RegexWithOptions, PunctuationInLiteralsFoldsToNothingAndClassesKeepNoSuchMember) {
  const re::query_syntax regex = re::query_syntax::regex;
  EXPECT_EQ(find(u"new ?york", u"New York", kPunctuation, regex), (ranges{{0, 8}}));
  EXPECT_TRUE(finds(u"e-mail", u"email", kPunctuation, regex));
  EXPECT_FALSE(finds(u"\\s", u"a b\tc", kPunctuation, regex));
  EXPECT_FALSE(finds(u"[ .,-]", u"a, b.", kPunctuation, regex));
  EXPECT_TRUE(finds(u"\\s", u"a b", re::search_options{}, regex));
}

TEST(RegexWithOptions, WholeWordsApplyToEachMatchsEdges) {
  const re::query_syntax regex = re::query_syntax::regex;
  EXPECT_EQ(find(u"cat\\w*", u"cats concat cat", kWords, regex), (ranges{{0, 4}, {12, 15}}));
  // A match that ICU finds but the rules reject is skipped: the search goes on.
  EXPECT_EQ(find(u"c.t", u"concat cut", kWords, regex), (ranges{{7, 10}}));
}

TEST(RegexWithOptions, GroupsNumberingAndNamesStayTheCallers) {
  const re::search_pattern pattern(u"(?<first>\\w+)-(\\w+)", re::query_syntax::regex,
                                   options_with(true, re::diacritics_rule::match, false, false));
  EXPECT_EQ(pattern.group_count(), 2);
  EXPECT_EQ(pattern.group_number("first"), 1);
  const std::vector<re::source_match> matches = pattern.find_all(u"Caf\u00e9-Cr\u00e8me");
  ASSERT_EQ(matches.size(), 1U);
  EXPECT_EQ(matches[0].groups[1], (std::pair<std::size_t, std::size_t>{0, 4}));
  EXPECT_EQ(matches[0].groups[2], (std::pair<std::size_t, std::size_t>{5, 10}));
  EXPECT_EQ(pattern.replace_all(u"Caf\u00e9-Cr\u00e8me", u"$2 ${first}"), u"Cr\u00e8me Caf\u00e9");
}

// The worked example at the top of the header.
TEST(HeaderExample, TheTogglesGiveWhatItSays) {
  re::search_options options;
  options.match_case = true;
  options.diacritics = re::diacritics_rule::match_typed;
  options.whole_words = true;
  options.ignore_punctuation = true;
  const re::search_pattern ny(u"NewYork", re::query_syntax::literal, options);
  EXPECT_EQ(find(ny, std::u16string_view(u"New York, New-York, newyork, NewYorker")),
            (ranges{{0, 8}, {10, 18}}));
  EXPECT_TRUE(
      re::search_pattern(u"Cafe", re::query_syntax::literal, options).found_in(u"Caf\u00e9"));
  EXPECT_FALSE(
      re::search_pattern(u"Caf\u00e9", re::query_syntax::literal, options).found_in(u"Cafe"));
  // And the fold the header describes.
  EXPECT_EQ(re::search_fold(u"\u00c9", kMatchCase).text(), u"E");
  EXPECT_EQ(re::search_fold(u"\u0142", kMatch).text(), u"l\u0335");
  EXPECT_EQ(re::search_fold(u"\u01fe", kMatch).text(), u"o\u0338\u0301");
  EXPECT_EQ(re::search_fold(u"\u00f3\u0338", kMatch).text(), u"o\u0338\u0301");
  EXPECT_EQ(re::search_fold(u"\u1e9e", kMatch).text(), u"\u00df");
  EXPECT_EQ(re::search_fold(u"l\u00b7l", kMatch).text(), u"l\u0387l");
  EXPECT_EQ(re::search_fold(u"\u0140", kMatch).text(), u"l\u0387");
  EXPECT_EQ(re::search_fold(u"l\u00b7l").text(), u"ll");
  EXPECT_EQ(find(u"cat", u"cat\u00ad ", kWords), (ranges{{0, 4}}));
  EXPECT_FALSE(finds(u"\u3042", u"\u3041", kMatchCase));
  EXPECT_FALSE(finds(u"ss", u"\u00df", kMatch));
  // An accent after punctuation is ignored with it; accents alone find nothing.
  const re::search_options accents_punctuation =
      options_with(false, re::diacritics_rule::match, false, true);
  EXPECT_TRUE(finds(u"ea", u"e-\u0301a", accents_punctuation));
  EXPECT_FALSE(finds(u"\u0301", u"e\u0301 \u0301", accents_punctuation));
  EXPECT_TRUE(finds(u"\u0301", u"\n\u0301", kMatch));
}

}  // namespace

namespace {

// Diacritics matched where typed: an accent typed before a letter is found
// only where it is the text's first accent there. A grapheme joiner keeps
// the text's accents in the order written, so "\u0301" stays first (as in
// ICU's usearch).
TEST(SearchOptions, TypedAccentsAreReadInTheOrderWrittenAcrossAGraphemeJoiner) {
  re::search_options options;
  options.diacritics = re::diacritics_rule::match_typed;
  const re::search_pattern pattern(u"\u0323\u304b", re::query_syntax::literal, options);
  EXPECT_FALSE(pattern.found_in(u"\u0301\u034f\u0323\u304b"));
  EXPECT_TRUE(pattern.found_in(u"\u0323\u034f\u0301\u304b"));
}

}  // namespace
