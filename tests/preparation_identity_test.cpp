// The library's text preparation and escaping give exactly the results of the
// literal mechanisms (transliterator, normaliser into a buffer, escaping regex)
// for every code point alone, for every letter with every combining mark, for
// pairs of marks, for lone surrogates and for random mixtures.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <scl/regex.h>

#include "support/hex.h"
#include "support/literal_mechanisms.h"

namespace {

using scl_regex_test::literal_nfc;
using scl_regex_test::literal_prepare;
using scl_regex_test::LiteralEscape;
using scl_regex_test::LiteralMarkRemoval;

std::u16string from_code_point(UChar32 c) {
  std::u16string text;
  if (c <= 0xFFFF) {
    text += static_cast<char16_t>(c);  // surrogate code points become lone surrogates
  } else {
    text += U16_LEAD(c);
    text += U16_TRAIL(c);
  }
  return text;
}

using scl_regex_test::hex;

// Compares every preparation (0x2, 0x4, 0x6) and escaping with the oracles;
// returns the number of differences, reporting the first few.
class Identity {
 public:
  int check(const std::u16string& text) {
    int differences = check_preparation(text);
    // A handle search copies text that preparation would keep straight in, and
    // prepares the rest: either way it must search exactly the prepared text.
    for (std::size_t i = 0; i < 4; ++i) {
      const std::u16string expected = scl::regex::prepare_text(text, kSearchOptions[i]);
      const std::u16string searched = scl::regex::regex_search(everything_[i], text, false)
                                          ? scl::regex::get_group(everything_[i], 0)
                                          : u"?";
      if (searched != expected.substr(0, expected.find(u'\0'))) {
        differences += report("regex_search", kSearchOptions[i], text, expected, searched);
      }
    }
    const std::u16string stripped = scl::regex::strip_diacritics(text);
    if (stripped != strip_(text))
      differences += report("strip_diacritics", 0, text, strip_(text), stripped);
    const std::u16string escaped = scl::regex::regex_escape(text);
    if (escaped != escape_(text))
      differences += report("regex_escape", 0, text, escape_(text), escaped);
    return differences;
  }
  bool ready() const { return strip_.ready(); }

  // Only the preparations (0x2, 0x4, 0x6, mapped or not), for long texts.
  int check_preparation(const std::u16string& text) {
    int differences = 0;
    for (uint32_t options : {0x2u, 0x4u, 0x6u}) {
      const std::u16string expected = literal_prepare(text, options, strip_);
      const std::u16string actual = scl::regex::prepare_text(text, options);
      if (actual != expected)
        differences += report("prepare_text", options, text, expected, actual);
      const std::u16string mapped = scl::regex::prepare_text_mapped(text, options).text();
      if (mapped != expected)
        differences += report("prepare_text_mapped", options, text, expected, mapped);
    }
    return differences;
  }

 private:
  int report(const char* what, uint32_t options, const std::u16string& text,
             const std::u16string& expected, const std::u16string& actual) {
    if (++reported_ <= 10) {
      ADD_FAILURE() << what << " options " << options << " of [" << hex(text) << "]: expected ["
                    << hex(expected) << "], got [" << hex(actual) << "]";
    }
    return 1;
  }
  static constexpr uint32_t kSearchOptions[4] = {0x0, 0x2, 0x4, 0x6};
  LiteralMarkRemoval strip_;
  LiteralEscape escape_;
  // ".*" (with "." matching line ends) takes the whole searched text as its match.
  const scl::regex::matcher_ptr everything_[4] = {
      scl::regex::createMatcher(u".*", 0x0), scl::regex::createMatcher(u".*", 0x2),
      scl::regex::createMatcher(u".*", 0x4), scl::regex::createMatcher(u".*", 0x6)};
  int reported_ = 0;
};

TEST(PreparationIdentity, EveryCodePointAlone) {
  Identity identity;
  ASSERT_TRUE(identity.ready());
  int differences = 0;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) differences += identity.check(from_code_point(c));
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, EveryCodePointAfterEachOfFourBases) {
  // Each code point right after "a", KA, the jamo KIYEOK and alpha; 256 such
  // pairs to a text, so that the oracle's cost per call is shared.
  Identity identity;
  int differences = 0;
  for (UChar32 base : {0x61, 0x915, 0x1100, 0x3B1}) {
    std::u16string text;
    for (UChar32 c = 1; c <= 0x10FFFF; ++c) {
      text += from_code_point(base) + from_code_point(c);
      if ((c & 0xFF) == 0xFF) {
        differences += identity.check_preparation(text);
        text.clear();
      }
    }
    differences += identity.check(from_code_point(base) + std::u16string(1, u'\0'));
  }
  EXPECT_EQ(differences, 0);
}

// Every letter of the Latin, Greek and Cyrillic scripts.
std::vector<UChar32> latin_greek_cyrillic_letters() {
  std::vector<UChar32> letters;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(c, &status);
    if (u_isalpha(c) &&
        (script == USCRIPT_LATIN || script == USCRIPT_GREEK || script == USCRIPT_CYRILLIC)) {
      letters.push_back(c);
    }
  }
  return letters;
}

TEST(PreparationIdentity, EveryLatinGreekCyrillicLetterWithEveryCombiningMark) {
  Identity identity;
  int differences = 0;
  const std::vector<UChar32> letters = latin_greek_cyrillic_letters();
  for (UChar32 base : letters) {
    for (UChar32 mark = 0x300; mark <= 0x36F; ++mark) {
      differences += identity.check(from_code_point(base) + from_code_point(mark));
    }
  }
  EXPECT_GT(letters.size(), 2000u);
  EXPECT_EQ(differences, 0);
}

std::vector<UChar32> nonspacing_marks() {
  std::vector<UChar32> marks;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (u_charType(c) == U_NON_SPACING_MARK) marks.push_back(c);
  }
  return marks;
}

TEST(PreparationIdentity, EveryMnAndMcCharacterAfterEveryLatinGreekCyrillicLetter) {
  std::vector<UChar32> marks = nonspacing_marks();
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (u_charType(c) == U_COMBINING_SPACING_MARK) marks.push_back(c);
  }
  ASSERT_GT(marks.size(), 2000u);
  Identity identity;
  int differences = 0;
  const std::vector<UChar32> letters = latin_greek_cyrillic_letters();
  for (UChar32 base : letters) {
    // One text a letter: the letter before each mark in turn.
    std::u16string text;
    for (UChar32 mark : marks) text += from_code_point(base) + from_code_point(mark);
    differences += identity.check_preparation(text);
  }
  EXPECT_GT(letters.size(), 2000u);
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, ScriptsWithStackedSplitAndJoinedCharacters) {
  Identity identity;
  int differences = 0;
  const std::vector<std::u16string> texts = {
      // Vietnamese with stacked marks, precomposed and decomposed.
      u"Ti\u1EBFng Vi\u1EC7t l\u00e0 ng\u00f4n ng\u1EEF c\u1EE7a ng\u01B0\u1EDDi Vi\u1EC7t; "
      u"\u1EA4\u1EA6\u1EA8\u1EAA\u1EAC \u1EC6\u1ED8\u1EE2\u1EF0",
      u"Tie\u0302\u0301ng Vie\u0323\u0302t la\u0300 ngo\u0302n ngu\u031B\u0303 cu\u0309a "
      u"A\u0302\u0301 A\u0323\u0302 o\u031B\u0323 U\u031B\u0300 e\u0302\u0323",
      // Indic split vowels, composed and in two parts, with nukta and virama.
      u"\u0B15\u0B4B \u0B15\u0B47\u0B3E \u0B15\u0B48 \u0B15\u0B47\u0B56 \u0B15\u0B4C "
      u"\u0B15\u0B47\u0B57 \u0B95\u0BCA \u0B95\u0BC6\u0BBE \u0B95\u0BCB \u0B95\u0BC7\u0BBE "
      u"\u0B95\u0BCC \u0B95\u0BC6\u0BD7 \u0D15\u0D4A \u0D15\u0D46\u0D3E \u0CC0 \u0CBF\u0CD5 "
      u"\u09CB \u09C7\u09BE \u0958 \u0915\u093C \u0915\u094D\u0937",
      // Hangul syllables and jamo sequences, L V, L V T, LV T, and stray jamo.
      u"\uD55C\uAD6D\uC5B4 \u1112\u1161\u11AB\u1100\u116E\u11A8 \uAC00\u11A8 "
      u"\u1100\u1161 \u1161\u11A8 \u11A8 \u1100 \uD7A3 \u3131\u314F",
      // Greek polytonic, precomposed and decomposed.
      u"\u1F00\u03BD\u03B8\u03C1\u03C9\u0301\u03C0\u1FF3 \u1F08\u03C1\u03C7\u1F74 "
      u"\u1F04\u0345 \u03B1\u0313\u0301\u0345 \u1FB7 \u03C9\u0342\u0345 \u0391\u0314\u0300",
      // Emoji with variation selectors, skin tones, joiners and keycaps.
      u"\u2764\uFE0F \u263A\uFE0E \U0001F44D\U0001F3FD \U0001F468\U0001F3FF\u200D\U0001F4BB "
      u"\U0001F469\u200D\U0001F469\u200D\U0001F467 1\uFE0F\u20E3 \U0001F1EB\U0001F1F7"};
  for (const std::u16string& text : texts) {
    differences += identity.check(text);
    // Each character alone and each pair of neighbours, too.
    for (std::size_t at = 0; at < text.size(); ++at) {
      differences += identity.check_preparation(text.substr(at, 2));
      differences += identity.check_preparation(text.substr(at, 4));
    }
  }
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, PairsOfNonSpacingMarks) {
  Identity identity;
  int differences = 0;
  // Every pair of the combining diacritical marks block, alone and after a letter.
  for (UChar32 first = 0x300; first <= 0x36F; ++first) {
    for (UChar32 second = 0x300; second <= 0x36F; ++second) {
      const std::u16string pair = from_code_point(first) + from_code_point(second);
      differences += identity.check(pair);
      differences += identity.check(u"o" + pair);
    }
  }
  // Random pairs from every non-spacing mark there is, BMP and beyond.
  const std::vector<UChar32> marks = nonspacing_marks();
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> pick(0, marks.size() - 1);
  for (int i = 0; i < 20000; ++i) {
    differences += identity.check(u"e" + from_code_point(marks[pick(random)]) +
                                  from_code_point(marks[pick(random)]));
  }
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, LoneSurrogatesAmongOtherText) {
  Identity identity;
  int differences = 0;
  for (char16_t unit : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xDFFF', u'\xD83D'}) {
    for (const std::u16string& around : {std::u16string(u"e\u0301"), std::u16string(u"\u00e9"),
                                         std::u16string(u"a"), std::u16string(u"\u0301")}) {
      differences += identity.check(std::u16string(1, unit) + around);
      differences += identity.check(around + std::u16string(1, unit));
      differences += identity.check(around + std::u16string(1, unit) + around);
    }
  }
  EXPECT_EQ(differences, 0);
}

// Pieces the random texts are made of: letters of three scripts, precomposed
// letters, marks of every kind, lone surrogates, non-BMP text, Hangul, characters
// excluded from composition, white space, syntax characters, U+0000.
std::vector<std::u16string> mixture() {
  std::vector<std::u16string> pieces;
  for (UChar32 c :
       {0x61,   0x45,   0x6F,   0x3B1,  0x3A9,   0x430,   0x416,   0xE9,    0xC5,  0x1E69, 0x3AC,
        0x439,  0x212B, 0x2260, 0xFB01, 0x958,   0x915,   0x93C,   0x903,   0xB47, 0xB3E,  0x1100,
        0x1161, 0x11A8, 0xAC00, 0x4E2D, 0x1F600, 0x1D15E, 0x1D167, 0x10400, 0x20,  0x9,    0x3000,
        0x85,   0x2E,   0x2A,   0x24,   0x5C,    0x28,    0x23,    0x301,   0x308, 0x327,  0x323,
        0x307,  0x20DD, 0x5B4,  0x64B,  0xE31,   0x302,   0x342,   0x345}) {
    pieces.push_back(from_code_point(c));
  }
  for (char16_t unit : {u'\xD800', u'\xDC00', u'\xDBFF'}) pieces.emplace_back(1, unit);
  pieces.emplace_back(1, u'\0');
  const std::vector<UChar32> marks = nonspacing_marks();
  for (std::size_t i = 0; i < marks.size(); i += 37) pieces.push_back(from_code_point(marks[i]));
  return pieces;
}

TEST(PreparationIdentity, HundredThousandRandomMixtures) {
  Identity identity;
  const std::vector<std::u16string> pieces = mixture();
  std::mt19937 random(20261121);
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(1, 16);
  int differences = 0;
  for (int i = 0; i < 100000; ++i) {
    std::u16string text;
    for (int n = length(random); n > 0; --n) text += pieces[pick(random)];
    differences += identity.check(text);
  }
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, LongTextsWhoseNfcOrDecompositionStartsLate) {
  Identity identity;
  int differences = 0;
  for (std::size_t prefix : {0u, 1u, 500u, 1023u, 1024u, 1025u, 3000u}) {
    for (const char16_t* tail : {u"e\u0301", u"\u0958\u0958", u"\u00e9x", u"\u1100\u1161", u"a"}) {
      std::u16string text(prefix, u'q');
      for (int i = 0; i < 600; ++i) text += tail;
      differences += identity.check(text);
    }
  }
  EXPECT_EQ(differences, 0);
}

TEST(PreparationIdentity, TransliteratorCreatedPerCallAgreesToo) {
  const std::vector<std::u16string> samples = {
      u"caf\u00e9", u"e\u0301\u0302", u"\u1E69", u"\u212B", u"A\u030A", u"\u03AC",
      u"\u0439",    u"x\xD800y",      u"\u0958", u"ab",     u"",        u"\u0301"};
  for (const auto& text : samples) {
    EXPECT_EQ(scl::regex::strip_diacritics(text), scl_regex_test::literal_strip_per_call(text))
        << hex(text);
  }
}

}  // namespace
