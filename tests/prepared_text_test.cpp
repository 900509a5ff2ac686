// prepare_text_mapped: the prepared text and its map back to the source.
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/hex.h"
#include "support/map_properties.h"

namespace {

namespace re = scl::regex;
using range = std::pair<std::size_t, std::size_t>;
using scl_regex_test::broken_map_rule;

using scl_regex_test::hex;

constexpr std::uint32_t kNfc = re::constants::normalize_nfc;
constexpr std::uint32_t kMarks = re::constants::ignore_diacritics;

TEST(PreparedText, NposIsAllBitsSet) {
  EXPECT_EQ(re::npos, static_cast<std::size_t>(-1));
  EXPECT_EQ(re::npos, ~std::size_t{0});
}

TEST(PreparedText, DefaultConstructedIsEmpty) {
  const re::prepared_text empty;
  EXPECT_EQ(empty.text(), u"");
  EXPECT_EQ(empty.source_size(), 0u);
  EXPECT_EQ(empty.source_range(0, 0), range(0, 0));
  EXPECT_THROW((void)empty.source_range(0, 1), std::out_of_range);
}

TEST(PreparedText, RangesOutsideTheTextThrowOutOfRange) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"Cre\u0300me", kMarks);
  EXPECT_THROW((void)mapped.source_range(0, 6), std::out_of_range);
  EXPECT_THROW((void)mapped.source_range(3, 2), std::out_of_range);
  EXPECT_THROW((void)mapped.source_range(re::npos, re::npos), std::out_of_range);
  EXPECT_THROW((void)mapped.source_range(6, 6), std::out_of_range);
  EXPECT_NO_THROW((void)mapped.source_range(5, 5));
}

// The examples of the map, one per row.
TEST(PreparedText, DecomposedAccentRemoved) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"Cre\u0300me", kMarks);
  EXPECT_EQ(mapped.text(), u"Creme");
  EXPECT_EQ(mapped.source_size(), 6u);
  EXPECT_EQ(mapped.source_range(2, 3), range(2, 4));
  EXPECT_EQ(mapped.source_range(3, 5), range(4, 6));
  EXPECT_EQ(mapped.source_range(0, 5), range(0, 6));
  EXPECT_EQ(mapped.source_range(5, 5), range(6, 6));
}

TEST(PreparedText, ComposedByNfc) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"e\u0301", kNfc);
  EXPECT_EQ(mapped.text(), u"\u00e9");
  EXPECT_EQ(mapped.source_range(0, 1), range(0, 2));
}

TEST(PreparedText, CompositionExclusionDecomposedByNfc) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"\u0958", kNfc);
  EXPECT_EQ(mapped.text(), u"\u0915\u093c");
  EXPECT_EQ(mapped.source_range(0, 1), range(0, 1));
  EXPECT_EQ(mapped.source_range(1, 2), range(0, 1));
  EXPECT_EQ(mapped.source_range(1, 1), range(0, 0));
}

TEST(PreparedText, MarkAtTheStartBelongsToTheFirstPiece) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"\u0301abc", kMarks);
  EXPECT_EQ(mapped.text(), u"abc");
  EXPECT_EQ(mapped.source_range(0, 1), range(0, 2));
  EXPECT_EQ(mapped.source_range(1, 3), range(2, 4));
}

TEST(PreparedText, RemovingDiacriticsReadsUpToTheFirstNul) {
  const std::u16string source(u"ab\0cd", 5);
  const re::prepared_text mapped = re::prepare_text_mapped(source, kMarks);
  EXPECT_EQ(mapped.text(), u"ab");
  EXPECT_EQ(mapped.source_size(), 2u);
  EXPECT_EQ(mapped.source_range(0, 2), range(0, 2));
  EXPECT_EQ(mapped.source_range(2, 2), range(2, 2));
}

TEST(PreparedText, NfcAloneKeepsNulAndMapsEveryUnitToItself) {
  const std::u16string source(u"ab\0cd", 5);
  const re::prepared_text mapped = re::prepare_text_mapped(source, kNfc);
  EXPECT_EQ(mapped.text(), source);
  EXPECT_EQ(mapped.source_size(), 5u);
  for (std::size_t start = 0; start <= 5; ++start) {
    for (std::size_t end = start; end <= 5; ++end) {
      EXPECT_EQ(mapped.source_range(start, end), range(start, end)) << start << "," << end;
    }
  }
}

TEST(PreparedText, MarkAfterASupplementaryCharacter) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"\U0001D400\u0301x", kMarks);
  EXPECT_EQ(mapped.text(), u"\U0001D400x");
  EXPECT_EQ(mapped.source_range(0, 2), range(0, 3));
  EXPECT_EQ(mapped.source_range(2, 3), range(3, 4));
}

TEST(PreparedText, DecomposedFrenchMatchFoundWhereTheUserSeesIt) {
  // "Crème brûlée et crème", decomposed; "creme" is found at [16, 21) of the
  // prepared text, "et cr" in the source; the map gives the second "Crème".
  const std::u16string source = u"Cre\u0300me bru\u0302le\u0301e et cre\u0300me";
  const re::prepared_text mapped =
      re::prepare_text_mapped(source, kMarks | re::constants::case_insensitive);
  EXPECT_EQ(mapped.text(), u"Creme brulee et creme");
  EXPECT_EQ(mapped.text().substr(16, 5), u"creme");
  EXPECT_EQ(source.substr(16, 5), u"et cr");
  EXPECT_EQ(mapped.source_range(16, 21), range(19, 25));
  EXPECT_EQ(source.substr(19, 6), u"cre\u0300me");
  EXPECT_EQ(mapped.source_range(0, 5), range(0, 6));
}

TEST(PreparedText, WithoutPreparationBitsTheMapIsTheIdentityAndWidensSurrogatePairs) {
  const std::u16string source = u"a\U0001F600b";
  for (std::uint32_t options : {0u, 1u}) {
    const re::prepared_text mapped = re::prepare_text_mapped(source, options);
    EXPECT_EQ(mapped.text(), source);
    EXPECT_EQ(mapped.source_size(), 4u);
    EXPECT_EQ(mapped.source_range(0, 1), range(0, 1));
    EXPECT_EQ(mapped.source_range(1, 3), range(1, 3));
    EXPECT_EQ(mapped.source_range(1, 2), range(1, 3));  // half a pair widens to the whole pair
    EXPECT_EQ(mapped.source_range(2, 3), range(1, 3));
    EXPECT_EQ(mapped.source_range(2, 2), range(1, 1));
    EXPECT_EQ(mapped.source_range(3, 4), range(3, 4));
  }
}

TEST(PreparedText, TextThatTheStepsKeepMapsToItself) {
  const std::vector<std::pair<std::u16string, std::uint32_t>> kept = {
      {u"plain ASCII", kNfc},
      {u"plain ASCII", kMarks | kNfc},
      {u"d\u00e9j\u00e0 NFC", kNfc},
      {u"\u4e2d\u6587 \U0001F600", kNfc},
      {u"\u4e2d\u6587 \U0001F600", kMarks},
      {u"a\u0B3E", kMarks | kNfc}};
  for (const auto& [source, options] : kept) {
    const re::prepared_text mapped = re::prepare_text_mapped(source, options);
    ASSERT_EQ(mapped.text(), source);
    EXPECT_EQ(mapped.source_range(0, source.size()), range(0, source.size()));
    EXPECT_EQ(broken_map_rule(source, options), "");
  }
  EXPECT_EQ(re::prepare_text_mapped(u"a\u0B3E", kMarks).source_range(1, 2), range(1, 2));
}

TEST(PreparedText, OnlyMarksPrepareToNothing) {
  const re::prepared_text mapped = re::prepare_text_mapped(u"\u0301\u0302", kMarks);
  EXPECT_EQ(mapped.text(), u"");
  EXPECT_EQ(mapped.source_size(), 2u);
  EXPECT_EQ(mapped.source_range(0, 0), range(2, 2));
}

TEST(PreparedText, MarksThatSurviveAreTheirOwnPieces) {
  // NFC composes the first acute only; the second stays a piece of its own.
  const re::prepared_text mapped = re::prepare_text_mapped(u"a\u0301\u0301", kNfc);
  EXPECT_EQ(mapped.text(), u"\u00e1\u0301");
  EXPECT_EQ(mapped.source_range(0, 1), range(0, 2));
  EXPECT_EQ(mapped.source_range(1, 2), range(2, 3));
}

TEST(PreparedText, SplitVowelAndJamoComposeIntoOnePiece) {
  const re::prepared_text oriya = re::prepare_text_mapped(u"x\u0B47\u0B3Ey", kNfc | kMarks);
  EXPECT_EQ(oriya.text(), u"x\u0B4By");
  EXPECT_EQ(oriya.source_range(1, 2), range(1, 3));
  EXPECT_EQ(oriya.source_range(2, 3), range(3, 4));
  const re::prepared_text hangul = re::prepare_text_mapped(u"\u1100\u1161\u11A8!", kNfc);
  EXPECT_EQ(hangul.text(), u"\uAC01!");
  EXPECT_EQ(hangul.source_range(0, 1), range(0, 3));
  EXPECT_EQ(hangul.source_range(1, 2), range(3, 4));
}

TEST(PreparedText, JoinedUnpairedSurrogatesAreOnePieceAndKeepTheTransliteratorsResult) {
  // Removing U+0301 brings a lead and a trail together; the transliterator
  // then keeps the mark after them.
  const std::u16string source = u"a\xD800\u0301\xDC00\u0301b";
  const re::prepared_text mapped = re::prepare_text_mapped(source, kMarks);
  EXPECT_EQ(mapped.text(), re::prepare_text(source, kMarks));
  EXPECT_EQ(mapped.text(), std::u16string(u"a\xD800\xDC00\u0301"
                                          u"b"));
  EXPECT_EQ(mapped.source_range(0, 1), range(0, 1));
  EXPECT_EQ(mapped.source_range(1, 2), range(1, 5));
  EXPECT_EQ(mapped.source_range(4, 5), range(5, 6));
  EXPECT_EQ(broken_map_rule(source, kMarks), "");
}

// Texts of every kind the preparation treats differently.
const std::vector<std::u16string>& samples() {
  static const std::vector<std::u16string> texts = {
      u"",
      u"Caf\u00e9 cr\u00e8me, \u00e9t\u00e9",
      u"Cafe\u0301 cre\u0300me, e\u0301te\u0301",
      u"Ti\u1EBFng Vi\u1EC7t c\u00f3 d\u1EA5u",                         // Vietnamese, precomposed
      u"Tie\u0302\u0301ng Vie\u0323\u0302t co\u0301 da\u0302\u0301u",   // and decomposed
      u"\u0B15\u0B47\u0B3E \u0B95\u0BC6\u0BBE \u0D15\u0D46\u0D3E",      // split vowels
      u"\uD55C\uAD6D\uC5B4 \u1112\u1161\u11AB \u1100\u1173\u11AF",      // Hangul and jamo
      u"\u1F00\u03B8\u03C1\u03C9\u0301\u03C0\u1FF3 \u1F04\u0345",       // Greek polytonic
      u"\u2764\uFE0F \U0001F44D\U0001F3FD \U0001F468\u200D\U0001F469",  // emoji
      u"\u0958\u0959 \u212B \u2126 \u0344",                             // exclusions, singletons
      u"x\U0001D165\U0001D16D y",                                       // marks with a class, kept
      u"\u0301\u0302start",
      std::u16string(u"ab\0c\u0301d", 6),
      u"lone \xD800 and \xDC00 and \xD800\u0301\xDC00\u0302x",
  };
  return texts;
}

class PreparedTextRules : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(PreparedTextRules, HoldForEveryKindOfText) {
  for (const std::u16string& text : samples()) {
    EXPECT_EQ(broken_map_rule(text, GetParam()), "") << "sample of " << text.size() << " units";
  }
}

TEST_P(PreparedTextRules, HoldForRandomMixtures) {
  const std::vector<std::u16string> pieces = {u"a",
                                              u"E",
                                              u"\u03B1",
                                              u"\u0416",
                                              u"\u00e9",
                                              u"\u1EC7",
                                              u"\u0301",
                                              u"\u0323",
                                              u"\u0302",
                                              u"\u0B47",
                                              u"\u0B3E",
                                              u"\u1100",
                                              u"\u1161",
                                              u"\u11A8",
                                              u"\uAC00",
                                              u"\u0958",
                                              u"\u093C",
                                              u"\U0001D165",
                                              u"\U0001D400",
                                              u"\U0001F600",
                                              u"\u212B",
                                              u"\u0344",
                                              u"\u0345",
                                              u"\u05B4",
                                              u" ",
                                              std::u16string(1, u'\xD800'),
                                              std::u16string(1, u'\xDC00'),
                                              std::u16string(1, u'\0')};
  std::mt19937 random(GetParam() + 11);
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> count(0, 12);
  for (int i = 0; i < 5000; ++i) {
    std::u16string text;
    for (int n = count(random); n > 0; --n) text += pieces[pick(random)];
    const std::string broken = broken_map_rule(text, GetParam());
    ASSERT_EQ(broken, "") << "mixture #" << i << ": " << hex(text);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryOptionCombination, PreparedTextRules, ::testing::Range(0u, 8u));

}  // namespace
