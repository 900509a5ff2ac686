// search_pattern with search options against ICU's usearch set up the same way
// (support/search_differential.h): each toggle of a search box alone, and
// every combination of them.
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex/search_pattern.h>

#include "support/search_differential.h"

namespace {

using namespace scl_regex_test::search_differential;

struct option_set {
  std::string name;
  re::search_options options;
};

void PrintTo(const option_set& set, std::ostream* out) { *out << set.name; }

using scl_regex_test::options_with;

class EachOption : public testing::TestWithParam<option_set> {};

// Each toggle alone: 2,500 texts, 4 queries each.
TEST_P(EachOption, FindsWhatUsearchFindsOnRandomTextInManyScripts) {
  failure_log log;
  const differential_counts counts = run_differential(GetParam().options, 20261125, 2500, 4, log);
  std::printf("%s: %s\n", GetParam().name.c_str(), counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(counts.compared, counts.pairs * 6 / 10);
  // (Few queries cut from a text are whole words.)
  EXPECT_GT(counts.usearch_found * 10, counts.compared);
}

INSTANTIATE_TEST_SUITE_P(
    Options, EachOption,
    testing::Values(
        option_set{"match_case", options_with(true, re::diacritics_rule::ignore, false, false)},
        option_set{"diacritics_match",
                   options_with(false, re::diacritics_rule::match, false, false)},
        option_set{"diacritics_match_typed",
                   options_with(false, re::diacritics_rule::match_typed, false, false)},
        option_set{"whole_words", options_with(false, re::diacritics_rule::ignore, true, false)},
        option_set{"ignore_punctuation",
                   options_with(false, re::diacritics_rule::ignore, false, true)}),
    [](const testing::TestParamInfo<option_set>& info) { return info.param.name; });

// Every combination of the toggles.
std::vector<option_set> every_combination() {
  std::vector<option_set> sets;
  const std::pair<re::diacritics_rule, const char*> rules[] = {
      {re::diacritics_rule::ignore, "ignore"},
      {re::diacritics_rule::match, "match"},
      {re::diacritics_rule::match_typed, "typed"}};
  for (const bool match_case : {false, true}) {
    for (const auto& [rule, rule_name] : rules) {
      for (const bool whole_words : {false, true}) {
        for (const bool ignore_punctuation : {false, true}) {
          sets.push_back({std::string(match_case ? "case" : "nocase") + "_" + rule_name +
                              (whole_words ? "_words" : "") +
                              (ignore_punctuation ? "_punctuation" : ""),
                          options_with(match_case, rule, whole_words, ignore_punctuation)});
        }
      }
    }
  }
  return sets;
}

class EveryCombination : public testing::TestWithParam<option_set> {};

// 500 texts, 4 queries each, for each combination.
TEST_P(EveryCombination, FindsWhatUsearchFinds) {
  failure_log log;
  const differential_counts counts = run_differential(GetParam().options, 31, 500, 4, log);
  std::printf("%s: %s\n", GetParam().name.c_str(), counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(counts.compared, counts.pairs / 2);
}

INSTANTIATE_TEST_SUITE_P(Options, EveryCombination, testing::ValuesIn(every_combination()),
                         [](const testing::TestParamInfo<option_set>& info) {
                           return info.param.name;
                         });

// The difference the header lists: with "shifted", usearch reads the second
// half of a long primary weight as punctuation where it falls below the
// variable top, and as a letter where it does not but the first half does;
// search folding follows the collator.
TEST(OptionsDocumentedDifferences, UsearchReadsHalfALongWeightAsPunctuation) {
  const re::search_options punctuation =
      options_with(false, re::diacritics_rule::ignore, false, true);
  usearch_oracle oracle(punctuation);
  ASSERT_TRUE(oracle.ready());
  bool failed = false;
  // U+4E00 in U+4E01: usearch finds it, the collator calls them apart.
  EXPECT_EQ(oracle.find_all(u"\u4e00", u"\u4e01", failed), (ranges{{0, 1}}));
  EXPECT_FALSE(
      re::search_pattern(u"\u4e00", re::query_syntax::literal, punctuation).found_in(u"\u4e01"));
  EXPECT_NE(re::search_fold(u"\u4e00", punctuation).text(),
            re::search_fold(u"\u4e01", punctuation).text());
  EXPECT_TRUE(continuation_read_as_punctuation(0x4E00));
  EXPECT_FALSE(continuation_read_as_punctuation(u'a'));
  // Punctuation whose second half usearch reads as a letter: it looks for
  // that half.
  EXPECT_EQ(oracle.find_all(u"1\u0707", u"1", failed), ranges{});
  EXPECT_EQ(oracle.find_all(u"1.", u"1", failed), (ranges{{0, 1}}));
  EXPECT_EQ(
      ranges_of(
          re::search_pattern(u"1\u0707", re::query_syntax::literal, punctuation).find_all(u"1")),
      (ranges{{0, 1}}));
  EXPECT_TRUE(punctuation_half_read_as_letter(0x0707));
  EXPECT_FALSE(punctuation_half_read_as_letter(u'.'));
  EXPECT_FALSE(punctuation_half_read_as_letter(0x4E00));
  EXPECT_EQ(excluded(oracle, punctuation, u"1\u0707", u"1"), exclusion::punctuation_half_as_letter);
  // With accents, usearch ignores the accent after such a character.
  const re::search_options accents = options_with(false, re::diacritics_rule::match, false, true);
  usearch_oracle accent_oracle(accents);
  EXPECT_EQ(accent_oracle.find_all(u"\u4e00\u0301", u"\u4e00", failed), (ranges{{0, 1}}));
  EXPECT_FALSE(
      re::search_pattern(u"\u4e00\u0301", re::query_syntax::literal, accents).found_in(u"\u4e00"));
  EXPECT_FALSE(failed);
}

// The same in a language: its collation gives long weights of its own, to
// contractions too. In Danish, usearch finds "Aa" (one letter, "\u00e5") in
// "\u00c4" (a form of "\u00e6"), which the collator calls apart.
TEST(OptionsDocumentedDifferences, UsearchReadsHalfALanguagesLongWeightAsPunctuation) {
  const re::search_options danish =
      options_with(false, re::diacritics_rule::ignore, false, true, "da");
  usearch_oracle oracle(danish);
  ASSERT_TRUE(oracle.ready());
  bool failed = false;
  EXPECT_EQ(oracle.find_all(u"Aa", u"x\u00c4", failed), (ranges{{1, 2}}));
  EXPECT_FALSE(failed);
  EXPECT_NE(ucol_strcoll(oracle.collator(), u"Aa", 2, u"\u00c4", 1), UCOL_EQUAL);
  const re::search_pattern pattern(u"Aa", re::query_syntax::literal, danish);
  EXPECT_FALSE(pattern.found_in(u"x\u00c4"));
  EXPECT_EQ(ranges_of(pattern.find_all(u"x\u00c5 aa")), (ranges{{1, 2}, {3, 5}}));
  EXPECT_NE(re::search_fold(u"Aa", danish).text(), re::search_fold(u"\u00c4", danish).text());
  // The differential leaves such queries out.
  EXPECT_EQ(excluded(oracle, danish, u"Aa", u"x\u00c4"), exclusion::continuation_as_punctuation);
  EXPECT_EQ(excluded(oracle, danish, u"b", u"x\u00c4"), exclusion::none);
}

// The other difference the header lists: with diacritics matched where typed,
// usearch's buffer of collation elements overflows where many accents follow a
// match. Search folding ends the match where it does before a few.
TEST(OptionsDocumentedDifferences, UsearchOverflowsOnManyAccentsAfterATypedMatch) {
  const re::search_options typed =
      options_with(false, re::diacritics_rule::match_typed, false, false);
  usearch_oracle oracle(typed);
  ASSERT_TRUE(oracle.ready());
  const re::search_pattern s(u"s", re::query_syntax::literal, typed);
  for (const int accents : {1, 30, 40}) {
    const std::u16string text =
        u"s " + std::u16string(static_cast<std::size_t>(accents), u'\u0322') + u"t";
    bool failed = false;
    const ranges expected = oracle.find_all(u"s", text, failed);
    EXPECT_EQ(failed, accents == 40) << accents;
    EXPECT_EQ(expected, (ranges{{0, 1}})) << accents;
    EXPECT_EQ(ranges_of(s.find_all(text)), (ranges{{0, 1}})) << accents;
    EXPECT_EQ(has_long_run_without_primary(oracle, text), accents >= 32) << accents;
  }
  // Where controls sit among the accents, usearch ends the match after them.
  const std::u16string nul(2, u'\0');
  const std::u16string text =
      u"ts" + nul + u"\u034a" + nul + std::u16string(71, u'\u0322') + nul + u"t";
  bool failed = false;
  EXPECT_EQ(oracle.find_all(u"s", text, failed), (ranges{{1, 80}}));
  EXPECT_FALSE(failed);
  EXPECT_EQ(ranges_of(s.find_all(text)), (ranges{{1, 2}}));
}

// What search folding does as usearch does, though the collator alone would
// say otherwise: with "shifted", a match neither starts at nor ends right
// before a character whose elements start with punctuation ("\u2474" is
// "(1)"), and accents alone find nothing.
TEST(OptionsAsUsearch, CharactersThatStartWithPunctuationAndAccentsAlone) {
  const re::search_options punctuation =
      options_with(false, re::diacritics_rule::ignore, false, true);
  usearch_oracle oracle(punctuation);
  bool failed = false;
  for (const auto& [query, text] : {std::pair<std::u16string, std::u16string>{u"a", u"a\u2474"},
                                    {u"a", u"a \u2474"},
                                    {u"1", u"\u2474"},
                                    {u"\u2474", u"1"},
                                    {u"1", u"\u2488b"}}) {
    EXPECT_EQ(
        ranges_of(re::search_pattern(query, re::query_syntax::literal, punctuation).find_all(text)),
        oracle.find_all(query, text, failed))
        << hex(query) << " in " << hex(text);
  }
  EXPECT_FALSE(
      re::search_pattern(u"a", re::query_syntax::literal, punctuation).found_in(u"a\u2474"));
  const re::search_options accents = options_with(false, re::diacritics_rule::match, false, true);
  EXPECT_FALSE(
      re::search_pattern(u"\u0301", re::query_syntax::literal, accents).found_in(u"\n\u0301"));
  EXPECT_FALSE(failed);
}

}  // namespace
