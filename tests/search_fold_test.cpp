// search_fold: what it gives for every code point, checked against ICU's root
// collator at primary strength, and the map back to the caller's text on the
// cases the header describes.
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/utf16.h>

#include <scl/regex/search_pattern.h>

namespace {

namespace re = scl::regex;

using range = std::pair<std::size_t, std::size_t>;

std::u16string from_code_point(UChar32 c) {
  std::u16string text;
  if (c <= 0xFFFF) {
    text += static_cast<char16_t>(c);  // surrogate code points stay lone surrogates
  } else {
    text += U16_LEAD(c);
    text += U16_TRAIL(c);
  }
  return text;
}

// Code points as "U+XXXX" separated by spaces; lone surrogates as themselves.
std::string code_points(std::u16string_view text) {
  std::string out;
  char buffer[16];
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    std::snprintf(buffer, sizeof buffer, out.empty() ? "U+%04X" : " U+%04X",
                  static_cast<unsigned>(c));
    out += buffer;
  }
  return out.empty() ? "(nothing)" : out;
}

using collator_ptr = std::unique_ptr<UCollator, decltype(&ucol_close)>;

// The root collator at primary strength. Normalisation is on so that the
// comparison is exact for any input: some folds are not in NFC (U+2329).
collator_ptr root_primary_collator() {
  UErrorCode status = U_ZERO_ERROR;
  collator_ptr collator(ucol_open("", &status), &ucol_close);
  if (U_FAILURE(status)) return collator_ptr(nullptr, &ucol_close);
  ucol_setStrength(collator.get(), UCOL_PRIMARY);
  ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  if (U_FAILURE(status)) return collator_ptr(nullptr, &ucol_close);
  return collator;
}

bool primary_equal(const UCollator* collator, std::u16string_view a, std::u16string_view b) {
  return ucol_strcoll(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                      static_cast<int32_t>(b.size())) == UCOL_EQUAL;
}

std::u16string fold(std::u16string_view text) { return re::search_fold(text).text(); }

TEST(SearchFold, EveryAssignedCodePointFoldsToTextTheRootCollatorFindsEqual) {
  const collator_ptr collator = root_primary_collator();
  ASSERT_NE(collator, nullptr);
  long checked = 0;
  long failures = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (U_IS_SURROGATE(c) || u_charType(c) == U_UNASSIGNED) continue;
    ++checked;
    const std::u16string text = from_code_point(c);
    const std::u16string folded = fold(text);
    if (!primary_equal(collator.get(), folded, text) && ++failures <= 10) {
      ADD_FAILURE() << code_points(text) << " folds to " << code_points(folded)
                    << ", which the root collator does not find equal at primary strength";
    }
  }
  EXPECT_EQ(failures, 0) << "of " << checked << " assigned code points";
  // Unicode 15 assigns 286,719 code points outside the surrogates.
  EXPECT_GT(checked, 280000);
  std::printf("primary equality: %ld assigned code points, %ld failures\n", checked, failures);
}

TEST(SearchFold, FoldingTheFoldOfAnyCodePointChangesNothing) {
  long failures = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    const std::u16string text = from_code_point(c);
    const std::u16string once = fold(text);
    const std::u16string twice = fold(once);
    if (twice != once && ++failures <= 10) {
      ADD_FAILURE() << code_points(text) << " folds to " << code_points(once) << ", which folds to "
                    << code_points(twice);
    }
  }
  EXPECT_EQ(failures, 0);
}

// One code point (or lone surrogate) is one piece: every folded unit comes from
// all of it, and a code point that folds to nothing leaves an empty text whose
// end is the end of the source.
TEST(SearchFold, TheFoldOfOneCodePointMapsBackToAllOfIt) {
  long failures = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    const std::u16string text = from_code_point(c);
    const re::prepared_text folded = re::search_fold(text);
    const std::size_t size = folded.text().size();
    const range whole{0, text.size()};
    bool ok = folded.source_size() == text.size();
    if (size == 0) {
      ok = ok && folded.source_range(0, 0) == range{text.size(), text.size()};
    } else {
      ok = ok && folded.source_range(0, size) == whole;
      for (std::size_t i = 0; ok && i < size; ++i) ok = folded.source_range(i, i + 1) == whole;
    }
    if (!ok && ++failures <= 10) {
      ADD_FAILURE() << code_points(text) << " folds to " << code_points(folded.text())
                    << " with source_size " << folded.source_size()
                    << " and a unit that does not map back to the whole code point";
    }
  }
  EXPECT_EQ(failures, 0);
}

TEST(SearchFold, LoneSurrogatesFoldToThemselves) {
  for (const char16_t unit : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xDFFF'}) {
    const std::u16string text(1, unit);
    const re::prepared_text folded = re::search_fold(text);
    EXPECT_EQ(folded.text(), text) << code_points(text);
    EXPECT_EQ(folded.source_range(0, 1), (range{0, 1})) << code_points(text);
  }
  // Two lone surrogates in the wrong order are two pieces, each itself.
  const std::u16string reversed = u"\xDC00\xD800";
  const re::prepared_text folded = re::search_fold(reversed);
  EXPECT_EQ(folded.text(), reversed);
  EXPECT_EQ(folded.source_range(1, 2), (range{1, 2}));
}

TEST(SearchFold, PrimaryIgnorableCharactersFoldToNothing) {
  for (const std::u16string& text : {std::u16string(1, u'\0'), std::u16string(u"\u00AD"),
                                     std::u16string(u"\u200D"), std::u16string(u"\u0301")}) {
    const re::prepared_text folded = re::search_fold(text);
    EXPECT_EQ(folded.text(), u"") << code_points(text);
    EXPECT_EQ(folded.source_size(), 1U) << code_points(text);
  }
  const re::prepared_text empty = re::search_fold(u"");
  EXPECT_EQ(empty.text(), u"");
  EXPECT_EQ(empty.source_size(), 0U);
}

TEST(SearchFold, FoldsCaseAccentsWidthLigaturesAndDigits) {
  const std::pair<std::u16string, std::u16string> examples[] = {
      {u"A", u"a"},
      {u"\u0141", u"l"},                  // Ł
      {u"\u00F8", u"o"},                  // ø
      {u"\u00DF", u"ss"},                 // ß
      {u"\u00E6", u"ae"},                 // æ
      {u"\uFB01", u"fi"},                 // ﬁ
      {u"\uFF35\uFF33\uFF22", u"usb"},    // ＵＳＢ
      {u"\u2122", u"tm"},                 // ™
      {u"\u0661", u"1"},                  // ARABIC-INDIC DIGIT ONE
      {u"\uAC00", u"\u1100\u1161"},       // 가: its jamo
      {u"\u4E00", u"\u4E00"},             // 一 is its own fold
      {u"Stra\u00DFe", u"strasse"},       // Straße
      {u"\u0141\u00F3d\u017A", u"lodz"},  // Łódź
      {u"\U0001D400", u"a"},              // MATHEMATICAL BOLD CAPITAL A
  };
  for (const auto& [text, expected] : examples) {
    EXPECT_EQ(fold(text), expected) << code_points(text) << " folds to " << code_points(fold(text));
  }
}

TEST(SearchFold, KeepsLettersThatAreNotVariantsOfAnother) {
  // ı is not i, й is not и, a virama is not its absence, þ is not th.
  for (const std::u16string& text : {std::u16string(u"\u0131"), std::u16string(u"\u0439"),
                                     std::u16string(u"\u094D"), std::u16string(u"\u00FE")}) {
    EXPECT_EQ(fold(text), text) << code_points(text) << " folds to " << code_points(fold(text));
  }
}

TEST(SearchFold, KanaFoldToTheSmallHiraganaElseTheHiragana) {
  // ア, ｱ, あ, ぁ → ぁ
  for (const std::u16string& text : {std::u16string(u"\u30A2"), std::u16string(u"\uFF71"),
                                     std::u16string(u"\u3042"), std::u16string(u"\u3041")}) {
    EXPECT_EQ(fold(text), u"\u3041")
        << code_points(text) << " folds to " << code_points(fold(text));
  }
  // カ, が, か → か
  for (const std::u16string& text :
       {std::u16string(u"\u30AB"), std::u16string(u"\u304C"), std::u16string(u"\u304B")}) {
    EXPECT_EQ(fold(text), u"\u304B")
        << code_points(text) << " folds to " << code_points(fold(text));
  }
}

TEST(SearchFold, MiddleDotFoldsToNothingOnlyAfterL) {
  const re::prepared_text catalan = re::search_fold(u"l\u00B7l");
  EXPECT_EQ(catalan.text(), u"ll");
  EXPECT_EQ(catalan.source_range(0, 1), (range{0, 1}));  // the dot is not part of the first l
  EXPECT_EQ(catalan.source_range(1, 2), (range{2, 3}));  // nor of the second
  EXPECT_EQ(catalan.source_range(0, 2), (range{0, 3}));
  EXPECT_EQ(fold(u"L\u00B7L"), u"ll");
  EXPECT_EQ(fold(u"\u00B7"), u"\u00B7");
  EXPECT_EQ(fold(u"a\u00B7b"), u"a\u00B7b");
}

TEST(SearchFold, MapsEachFoldedUnitToWhereItCameFrom) {
  // A mark joins the character before it.
  const re::prepared_text accent = re::search_fold(u"e\u0301x");
  EXPECT_EQ(accent.text(), u"ex");
  EXPECT_EQ(accent.source_size(), 3U);
  EXPECT_EQ(accent.source_range(0, 1), (range{0, 2}));
  EXPECT_EQ(accent.source_range(1, 2), (range{2, 3}));

  // A soft hyphen is an empty piece of its own, before the "a".
  const re::prepared_text hyphen = re::search_fold(u"\u00ADa");
  EXPECT_EQ(hyphen.text(), u"a");
  EXPECT_EQ(hyphen.source_size(), 2U);
  EXPECT_EQ(hyphen.source_range(0, 1), (range{1, 2}));
  EXPECT_EQ(hyphen.source_range(0, 0), (range{1, 1}));

  // A mark after a line feed does not join it.
  const re::prepared_text line = re::search_fold(u"\n\u0327");
  EXPECT_EQ(line.text(), u"\n");
  EXPECT_EQ(line.source_size(), 2U);
  EXPECT_EQ(line.source_range(0, 1), (range{0, 1}));

  // Text that is not in NFC: "e" U+0301 composes first, then folds to "e".
  const re::prepared_text cafe = re::search_fold(u"cafe\u0301");
  EXPECT_EQ(cafe.text(), u"cafe");
  EXPECT_EQ(cafe.source_size(), 5U);
  EXPECT_EQ(cafe.source_range(0, 3), (range{0, 3}));
  EXPECT_EQ(cafe.source_range(3, 4), (range{3, 5}));

  // A character that folds to several units is one piece.
  const re::prepared_text strasse = re::search_fold(u"Stra\u00DFe");
  EXPECT_EQ(strasse.text(), u"strasse");
  EXPECT_EQ(strasse.source_size(), 6U);
  EXPECT_EQ(strasse.source_range(4, 5), (range{4, 5}));
  EXPECT_EQ(strasse.source_range(5, 6), (range{4, 5}));
  EXPECT_EQ(strasse.source_range(6, 7), (range{5, 6}));

  // A supplementary character is two units of the source.
  const re::prepared_text bold = re::search_fold(u"x\U0001D400y");
  EXPECT_EQ(bold.text(), u"xay");
  EXPECT_EQ(bold.source_size(), 4U);
  EXPECT_EQ(bold.source_range(1, 2), (range{1, 3}));
  EXPECT_EQ(bold.source_range(2, 3), (range{3, 4}));
}

TEST(SearchFold, SourceSizeIsTheWholeText) {
  // U+0000 does not stop folding.
  const std::u16string texts[] = {u"abc", std::u16string(u"a\0b", 3), u"\u00AD\u00AD",
                                  u"\U0001F469\u200D\U0001F4BB", u"\xD800"};
  for (const std::u16string& text : texts) {
    EXPECT_EQ(re::search_fold(text).source_size(), text.size()) << code_points(text);
  }
  const re::prepared_text with_null = re::search_fold(std::u16string(u"a\0b", 3));
  EXPECT_EQ(with_null.text(), u"ab");
  EXPECT_EQ(with_null.source_range(1, 2), (range{2, 3}));
}

}  // namespace
