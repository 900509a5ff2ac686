// Escaping text so it matches itself when used as a pattern.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <scl/regex.h>

namespace {

using scl::regex::regex_escape;
using namespace std::string_literals;

TEST(RegexEscape, EscapesSpecialCharactersAndWhiteSpace) {
  EXPECT_EQ(regex_escape(u"a.b*c"), u"a\\.b\\*c");
  EXPECT_EQ(regex_escape(u"1, 2"), u"1\\,\\ 2");
  EXPECT_EQ(regex_escape(u"C:/x"), u"C:/x");
}

TEST(RegexEscape, EmptyTextGivesEmptyText) { EXPECT_EQ(regex_escape(u""), u""); }

TEST(RegexEscape, TextEndsAtFirstNul) { EXPECT_EQ(regex_escape(u"a.b\0c.d"s), u"a\\.b"); }

TEST(RegexEscape, EachSpecialCharacterGetsOneBackslash) {
  for (const char16_t c : std::u16string(u"-[]{}()*+?.,\\^$|#")) {
    const std::u16string escaped = {u'\\', c};
    EXPECT_EQ(regex_escape(std::u16string(1, c)), escaped) << static_cast<int>(c);
  }
}

TEST(RegexEscape, EveryIcuWhiteSpaceCharacterGetsOneBackslash) {
  int count = 0;
  for (UChar32 c = 0; c <= 0xFFFF; ++c) {
    if (!u_hasBinaryProperty(c, UCHAR_WHITE_SPACE)) continue;
    ++count;
    const std::u16string text(1, static_cast<char16_t>(c));
    EXPECT_EQ(regex_escape(text), u"\\" + text) << std::hex << c;
  }
  EXPECT_EQ(count,
            25);  // U+0009..000D, 0020, 0085, 00A0, 1680, 2000..200A, 2028, 2029, 202F, 205F, 3000
}

TEST(RegexEscape, OtherCharactersAreCopiedUnchanged) {
  const std::u16string plain = u"/:=!<>&'%~_\"@;`azAZ09\u00e9\u4e2d\U0001F600";
  EXPECT_EQ(regex_escape(plain), plain);
}

// Characters the generated texts are made of.
std::vector<std::u16string> alphabet() {
  std::vector<std::u16string> units;
  for (char16_t c : std::u16string(u"azAZmq09-[]{}()*+?.,\\^$|#/:=!<>&'%~\"")) units.push_back({c});
  for (UChar32 c = 1; c <= 0xFFFF; ++c) {
    if (u_hasBinaryProperty(c, UCHAR_WHITE_SPACE)) units.push_back({static_cast<char16_t>(c)});
  }
  for (const char16_t* s :
       {u"\u00e9", u"\u0301", u"\u4e2d", u"\U0001F600", u"\U00010400", u"\U0010FFFD"}) {
    units.emplace_back(s);
  }
  return units;
}

TEST(RegexEscape, EscapedTextMatchesItselfWholeAndNothingElseOfItsLength) {
  const std::vector<std::u16string> pieces = alphabet();
  std::mt19937 random(20261121);
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(1, 12);
  for (int round = 0; round < 1500; ++round) {
    std::vector<std::u16string> chars;
    std::u16string text;
    for (int n = length(random); n > 0; --n) {
      chars.push_back(pieces[pick(random)]);
      text += chars.back();
    }
    const std::u16string escaped = regex_escape(text);
    const scl::regex::matcher_ptr handle = scl::regex::createMatcher(escaped, 0);
    ASSERT_TRUE(scl::regex::regex_search(handle, text, true)) << "round " << round;
    // Change one character to another of the same length: no match any more.
    const std::size_t at = static_cast<std::size_t>(round) % chars.size();
    for (int tries = 0; tries < 3; ++tries) {
      const std::u16string& other = pieces[pick(random)];
      if (other == chars[at] || other.size() != chars[at].size()) continue;
      std::u16string changed;
      for (std::size_t i = 0; i < chars.size(); ++i) changed += i == at ? other : chars[i];
      EXPECT_FALSE(scl::regex::regex_search(handle, changed, true)) << "round " << round;
    }
  }
}

TEST(RegexEscape, EscapedUserTextWorksInsideALargerPattern) {
  const std::u16string user = u"1+1=2? (yes)";
  const std::u16string pattern = u"^Q: " + regex_escape(user) + u"$";
  EXPECT_TRUE(scl::regex::regex_search(u"Q: 1+1=2? (yes)", pattern.c_str(), false, 0));
  EXPECT_FALSE(scl::regex::regex_search(u"Q: 11=2 yes", pattern.c_str(), false, 0));
}

TEST(RegexEscape, EscapesMakeDollarAndBackslashLiteralInReplacements) {
  const scl::regex::matcher_ptr handle = scl::regex::createMatcher(u"x", 0);
  const std::u16string literal = u"cost: $1 \\ more";
  EXPECT_EQ(scl::regex::regex_replace(handle, u"x", regex_escape(literal)), literal);
}

}  // namespace
