// search_fold with options, checked against ICU's root collator set up the
// same way: the fold of every code point is equal to it, folding twice
// changes nothing, and two texts fold alike exactly when the collator calls
// them equal.
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <scl/regex/search_pattern.h>

#include "support/hex.h"
#include "support/search_support.h"

namespace {

namespace re = scl::regex;

using collator_ptr = std::unique_ptr<UCollator, decltype(&ucol_close)>;

struct fold_case {
  std::string name;
  re::search_options options;
};

void PrintTo(const fold_case& c, std::ostream* out) { *out << c.name; }

// The collator of the options' locale (the root's if none) set up as
// `options` say: secondary strength where
// diacritics count, the case level, "shifted". Normalisation is on so that
// the comparison is exact for any input (some folds are not in NFC).
collator_ptr collator_for(const re::search_options& options) {
  UErrorCode status = U_ZERO_ERROR;
  collator_ptr collator(ucol_open(scl_regex_test::collator_locale(options.locale).c_str(), &status),
                        &ucol_close);
  if (U_FAILURE(status)) return collator_ptr(nullptr, &ucol_close);
  ucol_setStrength(collator.get(), options.diacritics == re::diacritics_rule::ignore
                                       ? UCOL_PRIMARY
                                       : UCOL_SECONDARY);
  ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  if (options.match_case) ucol_setAttribute(collator.get(), UCOL_CASE_LEVEL, UCOL_ON, &status);
  if (options.ignore_punctuation) {
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
  }
  if (U_FAILURE(status)) return collator_ptr(nullptr, &ucol_close);
  return collator;
}

bool equal(const UCollator* collator, const std::u16string& a, const std::u16string& b) {
  return ucol_strcoll(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                      static_cast<int32_t>(b.size())) == UCOL_EQUAL;
}

using scl_regex_test::from_code_point;
using scl_regex_test::nfc;

// Pairs of texts: search_fold must fold them alike exactly when the collator
// calls them equal. The first ten failures are reported in full.
class fold_agreement {
 public:
  fold_agreement(const re::search_options& options, const UCollator* collator)
      : options_(options), collator_(collator) {}

  // Whether the collator calls `a` and `b` equal.
  bool check(const std::u16string& a, const std::u16string& b) {
    const bool collator_equal = equal(collator_, a, b);
    const bool folds_alike =
        re::search_fold(a, options_).text() == re::search_fold(b, options_).text();
    if (collator_equal != folds_alike && ++failures_ <= 10) {
      ADD_FAILURE() << scl_regex_test::hex(a) << "and " << scl_regex_test::hex(b)
                    << (collator_equal ? "are equal to the collator but fold apart"
                                       : "fold alike but the collator tells them apart");
    }
    return collator_equal;
  }

  long failures() const { return failures_; }

 private:
  const re::search_options& options_;
  const UCollator* collator_;
  long failures_ = 0;
};

// Every option set that changes the fold (diacritics matched where typed
// folds as diacritics matched; whole words change no fold).
std::vector<fold_case> fold_cases() {
  std::vector<fold_case> cases;
  for (const bool match_case : {false, true}) {
    for (const bool accents : {false, true}) {
      for (const bool punctuation : {false, true}) {
        re::search_options options;
        options.match_case = match_case;
        options.diacritics = accents ? re::diacritics_rule::match : re::diacritics_rule::ignore;
        options.ignore_punctuation = punctuation;
        cases.push_back({std::string(match_case ? "case" : "nocase") + (accents ? "_accents" : "") +
                             (punctuation ? "_punctuation" : ""),
                         options});
      }
    }
  }
  return cases;
}

class FoldWithOptions : public testing::TestWithParam<fold_case> {};

TEST_P(FoldWithOptions, EveryAssignedCodePointFoldsToTextTheCollatorFindsEqual) {
  const re::search_options& options = GetParam().options;
  const collator_ptr collator = collator_for(options);
  ASSERT_NE(collator, nullptr);
  long checked = 0;
  long failures = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (U_IS_SURROGATE(c) || u_charType(c) == U_UNASSIGNED) continue;
    ++checked;
    const std::u16string text = from_code_point(c);
    const std::u16string folded = re::search_fold(text, options).text();
    if (!equal(collator.get(), folded, text) && ++failures <= 10) {
      ADD_FAILURE() << scl_regex_test::hex(text) << "folds to " << scl_regex_test::hex(folded)
                    << ", which the collator does not find equal";
    }
  }
  EXPECT_EQ(failures, 0) << "of " << checked << " assigned code points";
  EXPECT_GT(checked, 280000);
}

TEST_P(FoldWithOptions, FoldingTheFoldOfAnyCodePointChangesNothing) {
  const re::search_options& options = GetParam().options;
  long failures = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    const std::u16string once = re::search_fold(from_code_point(c), options).text();
    const std::u16string twice = re::search_fold(once, options).text();
    if (twice != once && ++failures <= 10) {
      ADD_FAILURE() << "U+" << std::hex << c << " folds to " << scl_regex_test::hex(once)
                    << ", which folds to " << scl_regex_test::hex(twice);
    }
  }
  EXPECT_EQ(failures, 0);
}

// Families of spellings that some options tell apart and others do not:
// case, accents (precomposed and as marks), ligatures and expansions, width,
// kana, digits, spaces and punctuation, the Catalan middle dot, Turkish i.
const std::vector<std::vector<std::u16string>> kFamilies = {
    {u"a", u"A", u"\u00e1", u"\u00c1", u"a\u0301", u"\u00e4", u"\u00e0", u"\uff21", u"\u00aa"},
    {u"e", u"E", u"\u00e9", u"\u00c9", u"e\u0301", u"\u00e8", u"\u0117"},
    {u"ss", u"SS", u"Ss", u"\u00df", u"\u1e9e", u"s\u00ad s"},
    {u"ae", u"AE", u"\u00e6", u"\u00c6", u"a e", u"a-e"},
    {u"oe", u"\u0153", u"\u0152", u"o.e"},
    {u"l", u"L", u"\u0142", u"\u0141", u"l\u0335"},
    {u"l\u00b7l", u"\u0140l", u"\u013fL", u"ll", u"l.l", u"l l"},
    {u"\u0131", u"i", u"I", u"\u0130", u"\u00ed"},
    {u"\u3042", u"\u30a2", u"\u3041", u"\uff71", u"\u304b\u3099", u"\u304c"},
    {u"fi", u"\ufb01", u"FI", u"f i"},
    {u"1", u"\u0661", u"\u2474", u"(1)", u"\u2488", u"1."},
    {u"o", u"\u00f8", u"\u00d8", u"\u01fe", u"\u00f3\u0338", u"\u00f3", u"o\u0338\u0301"},
    {u"d", u"\u00f0", u"\u0110", u"D"},
    {u"\u00e5", u"\u212b", u"\u00c5", u"a\u030a", u"aa"},
    {u"n", u"\u00f1", u"N", u"\u00d1"},
    {u" ", u"-", u".", u"\u00ad", u"", u"\u0327", u"\u0301", u"\u0308"},
};

// Pairs of texts made of spellings from `families` (two of a family, and a
// family of its own here and there), 6000 of them from `seed`: they fold
// alike exactly when the collator for `options` calls them equal, and the
// pairs test both ways.
void expect_families_fold_as_the_collator_says(
    const re::search_options& options, const std::vector<std::vector<std::u16string>>& families,
    const std::string& name) {
  const collator_ptr collator = collator_for(options);
  ASSERT_NE(collator, nullptr);
  std::mt19937 random(2026);
  auto pick = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  fold_agreement agreement(options, collator.get());
  long pairs = 0;
  long equal_pairs = 0;
  for (int i = 0; i < 6000; ++i) {
    std::u16string a;
    std::u16string b;
    const std::size_t parts = 1 + pick(4);
    for (std::size_t k = 0; k < parts; ++k) {
      const auto& family = families[pick(families.size())];
      a += family[pick(family.size())];
      const auto& other = pick(8) == 0 ? families[pick(families.size())] : family;
      b += other[pick(other.size())];
    }
    a = nfc(a);
    b = nfc(b);
    ++pairs;
    equal_pairs += agreement.check(a, b) ? 1 : 0;
  }
  std::printf("%s: %ld pairs, %ld equal, %ld failures\n", name.c_str(), pairs, equal_pairs,
              agreement.failures());
  EXPECT_EQ(agreement.failures(), 0);
  EXPECT_GT(equal_pairs, pairs / 20);
  EXPECT_LT(equal_pairs, pairs * 19 / 20);
}

TEST_P(FoldWithOptions, TextsFoldAlikeExactlyWhenTheCollatorCallsThemEqual) {
  expect_families_fold_as_the_collator_says(GetParam().options, kFamilies, GetParam().name);
}

// Two marks on a letter, among them marks whose representative has another
// combining class (U+035C, class 233, folds to U+0316, class 220): the fold
// keeps them in the order the collator reads them, so texts fold alike
// exactly when the collator calls them equal.
TEST_P(FoldWithOptions, MarksFoldInTheOrderTheCollatorReadsThem) {
  const re::search_options& options = GetParam().options;
  const collator_ptr collator = collator_for(options);
  ASSERT_NE(collator, nullptr);
  const std::u16string marks =
      u"\u0301\u0300\u030d\u0316\u0315\u031a\u0328\u0327\u0338"
      u"\u0352\u035c\u035d\u035f\u0362\u0323\u0308\u05b0\u0e48";
  std::vector<std::u16string> texts;
  for (const char16_t first : marks) {
    for (const char16_t second : marks) texts.push_back(nfc(std::u16string{u'a', first, second}));
  }
  fold_agreement agreement(options, collator.get());
  for (const std::u16string& a : texts) {
    for (const std::u16string& b : texts) agreement.check(a, b);
  }
  EXPECT_EQ(agreement.failures(), 0);
}

// A starter that folds to nothing between two marks (U+034F COMBINING
// GRAPHEME JOINER) keeps them in the order written: canonical order does not
// pass it, and the collator reads them so.
TEST_P(FoldWithOptions, MarksKeepTheirOrderAcrossAGraphemeJoiner) {
  const re::search_options& options = GetParam().options;
  const collator_ptr collator = collator_for(options);
  ASSERT_NE(collator, nullptr);
  const std::u16string marks = u"\u0301\u0323\u0316\u0308\u0327";
  fold_agreement agreement(options, collator.get());
  long apart = 0;
  for (const char16_t first : marks) {
    for (const char16_t second : marks) {
      for (const char16_t third : marks) {
        const std::u16string a = nfc(std::u16string{u'a', first, u'\u034f', second, third});
        const std::u16string b = nfc(std::u16string{u'a', second, u'\u034f', first, third});
        apart += agreement.check(a, b) ? 0 : 1;
      }
    }
  }
  EXPECT_EQ(agreement.failures(), 0);
  // With accents, the joiner keeps the marks apart where they differ.
  if (options.diacritics != re::diacritics_rule::ignore) {
    EXPECT_GT(apart, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Options, FoldWithOptions, testing::ValuesIn(fold_cases()),
                         [](const testing::TestParamInfo<fold_case>& info) {
                           return info.param.name;
                         });

// Spellings that languages' search rules read in their own way: Danish "aa",
// Nordic letters, Turkish i, German umlauts, Spanish n, Arabic alef and teh
// marbuta, Slovak and Hungarian digraphs.
const std::vector<std::vector<std::u16string>> kLanguageFamilies = {
    {u"aa", u"Aa", u"AA", u"aA", u"\u00e5", u"\u00c5", u"a\u030a", u"a", u"A", u"a-a"},
    {u"\u00f6", u"\u00d6", u"\u00f8", u"\u00d8", u"o", u"O", u"\u0151", u"oe"},
    {u"\u00e4", u"\u00c4", u"ae", u"AE", u"\u00e6", u"\u00c6", u"a", u"e"},
    {u"\u0131", u"I", u"i", u"\u0130", u"\u00ed"},
    {u"\u00fc", u"ue", u"u", u"y", u"\u00dc"},
    {u"n", u"\u00f1", u"N", u"\u00d1"},
    {u"\u0627", u"\u0623", u"\u0625", u"\u0622", u"\u0629", u"\u0647", u"\u064a", u"\u0649"},
    {u"ch", u"Ch", u"CH", u"c", u"h", u"cs", u"dzs", u"gy", u"ly", u"ccs"},
    {u" ", u"-", u"\u0301", u"\u0308", u"\u00ad"},
};

// Two texts fold alike exactly when the language's collator calls them equal,
// contractions included.
class FoldInALanguage : public testing::TestWithParam<fold_case> {};

TEST_P(FoldInALanguage, TextsFoldAlikeExactlyWhenTheLanguagesCollatorCallsThemEqual) {
  expect_families_fold_as_the_collator_says(GetParam().options, kLanguageFamilies, GetParam().name);
}

std::vector<fold_case> language_cases() {
  std::vector<fold_case> cases;
  for (const char* locale : {"sv", "da", "tr", "de", "es", "ar", "sk", "hu"}) {
    cases.push_back({locale, scl_regex_test::options_with(false, re::diacritics_rule::ignore, false,
                                                          false, locale)});
    cases.push_back(
        {std::string(locale) + "_case_accents_punctuation",
         scl_regex_test::options_with(true, re::diacritics_rule::match, false, true, locale)});
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Languages, FoldInALanguage, testing::ValuesIn(language_cases()),
                         [](const testing::TestParamInfo<fold_case>& info) {
                           return info.param.name;
                         });

}  // namespace
