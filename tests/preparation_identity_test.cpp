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

#include "support/literal_mechanisms.h"

namespace {

using scl_regex_test::LiteralEscape;
using scl_regex_test::LiteralMarkRemoval;
using scl_regex_test::literal_nfc;
using scl_regex_test::literal_prepare;

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

std::string hex(const std::u16string& text) {
  std::string out;
  char buffer[8];
  for (char16_t unit : text) {
    std::snprintf(buffer, sizeof buffer, "%04X ", static_cast<unsigned>(unit));
    out += buffer;
  }
  return out;
}

// Compares every preparation (0x2, 0x4, 0x6) and escaping with the oracles;
// returns the number of differences, reporting the first few.
class Identity {
 public:
  int check(const std::u16string& text) {
    int differences = 0;
    for (uint32_t options : {0x2u, 0x4u, 0x6u}) {
      const std::u16string expected = literal_prepare(text, options, strip_);
      const std::u16string actual = scl::regex::prepare_text(text, options);
      if (actual != expected) differences += report("prepare_text", options, text, expected, actual);
    }
    // A handle search copies text that preparation would keep straight in, and
    // prepares the rest: either way it must search exactly the prepared text.
    for (std::size_t i = 0; i < 4; ++i) {
      const std::u16string expected = scl::regex::prepare_text(text, kSearchOptions[i]);
      const std::u16string searched =
          scl::regex::regex_search(everything_[i], text, false) ? scl::regex::get_group(everything_[i], 0) : u"?";
      if (searched != expected.substr(0, expected.find(u'\0'))) {
        differences += report("regex_search", kSearchOptions[i], text, expected, searched);
      }
    }
    const std::u16string stripped = scl::regex::strip_diacritics(text);
    if (stripped != strip_(text)) differences += report("strip_diacritics", 0, text, strip_(text), stripped);
    const std::u16string escaped = scl::regex::regex_escape(text);
    if (escaped != escape_(text)) differences += report("regex_escape", 0, text, escape_(text), escaped);
    return differences;
  }
  bool ready() const { return strip_.ready(); }

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

std::vector<UChar32> letters_of(UScriptCode script) {
  std::vector<UChar32> letters;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    UErrorCode status = U_ZERO_ERROR;
    if (u_isalpha(c) && uscript_getScript(c, &status) == script) letters.push_back(c);
  }
  return letters;
}

TEST(PreparationIdentity, EveryLatinGreekCyrillicLetterWithEveryCombiningMark) {
  Identity identity;
  int differences = 0;
  std::size_t letters = 0;
  for (UScriptCode script : {USCRIPT_LATIN, USCRIPT_GREEK, USCRIPT_CYRILLIC}) {
    for (UChar32 base : letters_of(script)) {
      ++letters;
      for (UChar32 mark = 0x300; mark <= 0x36F; ++mark) {
        differences += identity.check(from_code_point(base) + from_code_point(mark));
      }
    }
  }
  EXPECT_GT(letters, 2000u);
  EXPECT_EQ(differences, 0);
}

std::vector<UChar32> nonspacing_marks() {
  std::vector<UChar32> marks;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (u_charType(c) == U_NON_SPACING_MARK) marks.push_back(c);
  }
  return marks;
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
  for (UChar32 c : {0x61, 0x45, 0x6F, 0x3B1, 0x3A9, 0x430, 0x416, 0xE9, 0xC5, 0x1E69, 0x3AC,
                    0x439, 0x212B, 0x2260, 0xFB01, 0x958, 0x915, 0x93C, 0x903, 0xB47, 0xB3E,
                    0x1100, 0x1161, 0x11A8, 0xAC00, 0x4E2D, 0x1F600, 0x1D15E, 0x1D167, 0x10400,
                    0x20, 0x9, 0x3000, 0x85, 0x2E, 0x2A, 0x24, 0x5C, 0x28, 0x23, 0x301, 0x308,
                    0x327, 0x323, 0x307, 0x20DD, 0x5B4, 0x64B, 0xE31, 0x302, 0x342, 0x345}) {
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
      u"\u0439", u"x\xD800y", u"\u0958", u"ab", u"", u"\u0301"};
  for (const auto& text : samples) {
    EXPECT_EQ(scl::regex::strip_diacritics(text), scl_regex_test::literal_strip_per_call(text))
        << hex(text);
  }
}

}  // namespace
