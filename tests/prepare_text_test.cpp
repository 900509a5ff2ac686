// Preparation of patterns and subjects: NFC, then removal of diacritics.
#include <string>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/icu_view.h"

namespace {

namespace constants = scl::regex::constants;
using scl::regex::prepare_text;
using scl::regex::strip_diacritics;
using namespace std::string_literals;

TEST(PrepareText, OptionsZeroReturnsTextUnchangedIncludingNulUnits) {
  const std::u16string text = u"a\0b\0\u00e9e\u0301"s;
  EXPECT_EQ(prepare_text(text, 0), text);
  EXPECT_EQ(prepare_text(text, 0).size(), 7u);
}

TEST(PrepareText, CaseInsensitiveBitAloneDoesNotChangeText) {
  EXPECT_EQ(prepare_text(u"AbC e\u0301", constants::case_insensitive), u"AbC e\u0301");
}

TEST(PrepareText, NfcComposesCombiningAcute) {
  EXPECT_EQ(prepare_text(u"e\u0301", constants::normalize_nfc), u"\u00e9");
}

TEST(PrepareText, NfcLetsComposedPatternFindDecomposedSubject) {
  const auto handle = scl::regex::createMatcher(u"\u00e9", constants::normalize_nfc);
  EXPECT_TRUE(scl_regex_test::icu_find(handle, prepare_text(u"caf"
                                                            u"e\u0301",
                                                            constants::normalize_nfc)));
  // Unprepared, the decomposed subject does not contain U+00E9.
  EXPECT_FALSE(scl_regex_test::icu_find(handle, u"cafe\u0301"));
}

TEST(PrepareText, IgnoreDiacriticsTurnsEAcuteIntoE) {
  EXPECT_EQ(prepare_text(u"\u00e9", constants::ignore_diacritics), u"e");
  EXPECT_EQ(prepare_text(u"caf\u00e9", constants::ignore_diacritics), u"cafe");
}

TEST(PrepareText, IgnoreDiacriticsLetsPlainPatternFindAccentedSubject) {
  const auto plain = scl::regex::createMatcher(u"cafe", constants::ignore_diacritics);
  EXPECT_TRUE(
      scl_regex_test::icu_find(plain, prepare_text(u"un caf\u00e9", constants::ignore_diacritics)));
  // The accented pattern is itself reduced to "cafe".
  const auto accented = scl::regex::createMatcher(u"caf\u00e9", constants::ignore_diacritics);
  EXPECT_EQ(scl_regex_test::compiled_pattern(accented), u"cafe");
}

TEST(PrepareText, IgnoreDiacriticsEndsTextAtFirstNul) {
  EXPECT_EQ(prepare_text(u"ab\0cd"s, constants::ignore_diacritics), u"ab");
  EXPECT_EQ(strip_diacritics(u"ab\0cd"s), u"ab");
}

TEST(PrepareText, NfcAloneKeepsLengthAcrossNul) {
  const std::u16string prepared = prepare_text(u"ab\0cd"s, constants::normalize_nfc);
  EXPECT_EQ(prepared, u"ab\0cd"s);
  EXPECT_EQ(prepared.size(), 5u);
  // Units after the U+0000 are normalised too.
  EXPECT_EQ(prepare_text(u"a\0e\u0301"s, constants::normalize_nfc), u"a\0\u00e9"s);
}

TEST(PrepareText, IgnoreDiacriticsRemovesOnlyNonSpacingMarks) {
  // U+0903 DEVANAGARI SIGN VISARGA is a spacing mark (Mc): kept.
  EXPECT_EQ(strip_diacritics(u"\u0915\u0903"), u"\u0915\u0903");
  // U+0338 on "=" composes to U+2260 under NFC; removing the mark leaves "=".
  EXPECT_EQ(strip_diacritics(u"\u2260"), u"=");
  // Several stacked marks, and a Greek letter with tonos.
  EXPECT_EQ(strip_diacritics(u"a\u0300\u0301\u0302"), u"a");
  EXPECT_EQ(strip_diacritics(u"\u03ac"), u"\u03b1");
  // Characters outside the BMP pass through.
  EXPECT_EQ(strip_diacritics(u"\U0001F600"), u"\U0001F600");
}

TEST(PrepareText, IgnoreDiacriticsReducesCombiningMarksOnlyToEmpty) {
  EXPECT_EQ(prepare_text(u"\u0301\u0308", constants::ignore_diacritics), u"");
}

TEST(PrepareText, NfcAndIgnoreDiacriticsTogetherEqualNfcThenMarkRemoval) {
  const std::u16string samples[] = {
      u"e\u0301",      u"A\u030a\u0301ngstr\u00f6m",
      u"\u1e69",       u"s\u0323\u0307",
      u"\u212b",       u"\uac00\u11a8",
      u"x\u0338y",     u"\u00c5\u0327",
      u"ab\0e\u0301"s,
  };
  for (const auto& text : samples) {
    const std::u16string stepwise = strip_diacritics(prepare_text(text, constants::normalize_nfc));
    EXPECT_EQ(prepare_text(text, constants::normalize_nfc | constants::ignore_diacritics),
              stepwise);
  }
}

TEST(PrepareText, OrderIsNfcFirstThenMarkRemoval) {
  // NFC rewrites U+212B ANGSTROM SIGN to U+00C5; mark removal then gives "A".
  EXPECT_EQ(prepare_text(u"\u212b", constants::normalize_nfc | constants::ignore_diacritics), u"A");
  // NFC keeps a full-length copy; mark removal then ends it at the U+0000.
  EXPECT_EQ(prepare_text(u"e\u0301\0x"s, constants::normalize_nfc | constants::ignore_diacritics),
            u"e");
}

class EmptyTextUnderEveryOption : public testing::TestWithParam<constants::syntax_option_type> {};

TEST_P(EmptyTextUnderEveryOption, YieldsEmptyResult) {
  EXPECT_EQ(prepare_text(u"", GetParam()), u"");
}

INSTANTIATE_TEST_SUITE_P(AllOptionCombinations, EmptyTextUnderEveryOption,
                         testing::Range<constants::syntax_option_type>(0, 8));

TEST(PrepareText, NfcResultLongerThan1024UnitsIsReturnedWhole) {
  std::u16string decomposed;
  for (int i = 0; i < 2000; ++i) decomposed += u"e\u0301";
  const std::u16string prepared = prepare_text(decomposed, constants::normalize_nfc);
  EXPECT_EQ(prepared, std::u16string(2000, u'\u00e9'));
}

TEST(PrepareText, NfcThatGrowsPast1024UnitsIsReturnedWhole) {
  // U+0958 is excluded from composition: its NFC form is two units, U+0915 U+093C.
  const std::u16string text(600, u'\u0958');
  std::u16string expected;
  for (int i = 0; i < 600; ++i) expected += u"\u0915\u093c";
  EXPECT_EQ(prepare_text(text, constants::normalize_nfc), expected);
}

TEST(PrepareText, NfcResultOfExactly1024UnitsFitsTheFirstPass) {
  std::u16string decomposed;
  for (int i = 0; i < 1024; ++i) decomposed += u"e\u0301";
  EXPECT_EQ(prepare_text(decomposed, constants::normalize_nfc), std::u16string(1024, u'\u00e9'));
}

TEST(PrepareText, PositionsInPreparedSubjectDifferFromCallersText) {
  const auto handle = scl::regex::createMatcher(u"x", constants::normalize_nfc);
  int start = -1;
  ASSERT_TRUE(scl_regex_test::icu_find(handle, prepare_text(u"e\u0301x", constants::normalize_nfc),
                                       &start));
  EXPECT_EQ(start, 1);  // 2 in the caller's text, 1 in the prepared one
  const auto stripped = scl::regex::createMatcher(u"x", constants::ignore_diacritics);
  ASSERT_TRUE(scl_regex_test::icu_find(
      stripped, prepare_text(u"a\u0300\u0301x", constants::ignore_diacritics), &start));
  EXPECT_EQ(start, 1);
}

TEST(PrepareText, CallersStringIsNotModified) {
  const std::u16string text = u"e\u0301";
  const std::u16string copy = text;
  (void)prepare_text(text, 0x7);
  EXPECT_EQ(text, copy);
}

TEST(PrepareText, MarkAfterSurrogatesJoinedByRemovalIsKeptAsTheTransliteratorKeepsIt) {
  // Found by fuzzing. Removing U+0301 brings U+D800 and U+DC00 together; ICU's
  // transliterator then reads them as one character and keeps the mark after them.
  const std::u16string text = u"\xD800\u0301\xDC00\u0301";
  const std::u16string once = prepare_text(text, constants::ignore_diacritics);
  EXPECT_EQ(once, u"\xD800\xDC00\u0301");
  // The result is well-formed now, so preparing it again removes that mark.
  EXPECT_EQ(prepare_text(once, constants::ignore_diacritics), u"\xD800\xDC00");
}

TEST(PrepareText, LoneSurrogatesPassThrough) {
  const std::u16string lone =
      u"a\xD800"
      u"b\xDC00";
  EXPECT_EQ(prepare_text(lone, constants::normalize_nfc), lone);
  EXPECT_EQ(prepare_text(lone, constants::ignore_diacritics), lone);
}

}  // namespace
