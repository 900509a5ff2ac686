// search_pattern with a locale against ICU's usearch on the same collator
// (support/search_differential.h): each language's search collation, alone
// and with the toggles of a search box.
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/coll.h>

#include <scl/regex/search_pattern.h>

#include "support/search_differential.h"

namespace {

using namespace scl_regex_test::search_differential;

struct locale_case {
  std::string locale;
  bool toggles;  // every toggle of a search box on (diacritics matched where typed)
};

void PrintTo(const locale_case& c, std::ostream* out) {
  *out << c.locale << (c.toggles ? " with every toggle" : "");
}

// The options of `locale`, with every toggle of a search box on if `toggles`
// (diacritics matched where typed).
re::search_options options_of(const std::string& locale, bool toggles) {
  re::search_options options;
  options.locale = locale;
  if (toggles) {
    options.match_case = true;
    options.diacritics = re::diacritics_rule::match_typed;
    options.whole_words = true;
    options.ignore_punctuation = true;
  }
  return options;
}

class EachLocale : public testing::TestWithParam<locale_case> {};

TEST_P(EachLocale, FindsWhatUsearchFindsWithTheLocalesCollator) {
  const re::search_options options = options_of(GetParam().locale, GetParam().toggles);
  failure_log log;
  const differential_counts counts = run_differential(options, 20261126, 300, 4, log);
  std::printf("%s: %s\n", GetParam().locale.c_str(), counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(counts.compared, counts.pairs / 2);
}

std::string name_of(const testing::TestParamInfo<locale_case>& info) {
  std::string name = info.param.locale;
  for (char& c : name) {
    if (c == '-') c = '_';
  }
  return name + (info.param.toggles ? "_toggles" : "");
}

INSTANTIATE_TEST_SUITE_P(
    Languages, EachLocale,
    testing::Values(locale_case{"sv", false}, locale_case{"da", false}, locale_case{"nb", false},
                    locale_case{"fi", false}, locale_case{"de", false}, locale_case{"tr", false},
                    locale_case{"es", false}, locale_case{"ar", false}, locale_case{"sk", false},
                    locale_case{"hu", false}, locale_case{"cy", false}, locale_case{"vi", false},
                    locale_case{"ja", false}, locale_case{"ko", false}, locale_case{"th", false},
                    locale_case{"de-u-co-phonebk", false}, locale_case{"sv", true},
                    locale_case{"da", true}, locale_case{"tr", true}),
    name_of);

}  // namespace

namespace {

std::vector<std::string> available_locales() {
  std::vector<std::string> out;
  int32_t count = 0;
  const icu::Locale* locales = icu::Collator::getAvailableLocales(count);
  for (int32_t i = 0; i < count; ++i) {
    UErrorCode status = U_ZERO_ERROR;
    const std::string tag = locales[i].toLanguageTag<std::string>(status);
    if (U_SUCCESS(status)) out.push_back(tag);
  }
  return out;
}

// Every locale ICU has collation data for (Collator::getAvailableLocales),
// with fewer texts each, without toggles and with every one of them. One
// test, so that locales sharing a collation share its tables.
TEST(EveryLocale, FindsWhatUsearchFindsWithTheLocalesCollator) {
  const std::vector<std::string> locales = available_locales();
  EXPECT_GT(locales.size(), 100U);
  for (const std::string& locale : locales) {
    for (const bool toggles : {false, true}) {
      SCOPED_TRACE(locale + (toggles ? " with every toggle" : ""));
      const re::search_options options = options_of(locale, toggles);
      failure_log log;
      const differential_counts counts = run_differential(options, 20261127, 40, 4, log);
      EXPECT_EQ(counts.disagreements, 0) << counts.summary();
      EXPECT_EQ(counts.usearch_errors, 0);
      EXPECT_EQ(log.total(), 0) << log.summary();
      EXPECT_GT(counts.compared, counts.pairs / 2);
    }
  }
}

}  // namespace

namespace {

// Where a match ends with a contraction of a language's collation, usearch
// in ICU 72 takes the characters the collator ignores after it into the
// match; the search ends it after the contraction, as after another letter.
TEST(UsearchDifference, UsearchTakesWhatItIgnoresAfterAFinalContraction) {
  re::search_options options;
  options.locale = "ca";
  const std::u16string text = u"l\u00b7\u00adx";
  const ranges library =
      ranges_of(re::search_pattern(u"l\u00b7", re::query_syntax::literal, options).find_all(text));
  EXPECT_EQ(library, (ranges{{0, 2}}));
  usearch_oracle oracle(options);
  bool failed = false;
  const ranges usearch = oracle.find_all(u"l\u00b7", text, failed);
  ASSERT_FALSE(failed);
  EXPECT_EQ(usearch, (ranges{{0, 3}}));
  EXPECT_TRUE(agrees(oracle, options, text, library, usearch));
  // Only what the collator ignores: a letter after the match is no such end.
  EXPECT_FALSE(agrees(oracle, options, u"l\u00b7xx", ranges{{0, 2}}, ranges{{0, 3}}));
  // And the root collator's matches are compared as they are.
  options.locale.clear();
  EXPECT_FALSE(agrees(usearch_oracle(options), options, text, ranges{{0, 1}}, ranges{{0, 3}}));

  // Danish "aa" with punctuation ignored, the same.
  options.locale = "da";
  options.ignore_punctuation = true;
  usearch_oracle danish(options);
  const std::u16string aa = u"aa\u007fx";
  const ranges found =
      ranges_of(re::search_pattern(u"aa", re::query_syntax::literal, options).find_all(aa));
  EXPECT_EQ(found, (ranges{{0, 2}}));
  EXPECT_EQ(danish.find_all(u"aa", aa, failed), (ranges{{0, 3}}));
  EXPECT_TRUE(agrees(danish, options, aa, found, danish.find_all(u"aa", aa, failed)));
}

}  // namespace
