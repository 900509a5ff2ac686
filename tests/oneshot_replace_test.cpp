// One-shot replace and replace-first, UTF-16 and UTF-8.
#include <string>

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <scl/regex.h>

namespace {

namespace constants = scl::regex::constants;
using scl::regex::regex_replace;
using scl::regex::regex_replace_first;
using namespace std::string_literals;

TEST(OneShotReplace, ReplacesEveryOrFirstMatch) {
  EXPECT_EQ(regex_replace_first(u"aaa", u"a", u"b", 0), u"baa");
  EXPECT_EQ(regex_replace(u"aaa", u"a", u"b", 0), u"bbb");
}

TEST(OneShotReplace, UsesIcuReplacementSyntax) {
  EXPECT_EQ(regex_replace(u"2026-11", u"(\\d+)-(?<m>\\d+)", u"${m}/$1", 0), u"11/2026");
  EXPECT_EQ(regex_replace(u"a", u"a", u"\\$", 0), u"$");
}

TEST(OneShotReplace, NfcLetsComposedPatternReplaceDecomposedSubject) {
  EXPECT_EQ(regex_replace(u"e\u0301", u"\u00e9", u"x", constants::normalize_nfc), u"x");
  EXPECT_EQ(regex_replace(u"e\u0301", u"\u00e9", u"x", 0), u"e\u0301");
  EXPECT_EQ(regex_replace_first(u"e\u0301e\u0301", u"\u00e9", u"x", constants::normalize_nfc),
            u"x\u00e9");
}

TEST(OneShotReplace, AccentInsensitiveReplaceWorksOnPreparedSubject) {
  EXPECT_EQ(regex_replace(u"Caf\u00e9 au lait", u"cafe", u"tea", 0x5), u"tea au lait");
  // The rest of the result is the prepared subject: its accents are gone too.
  EXPECT_EQ(regex_replace(u"cr\u00e8me caf\u00e9", u"cafe", u"tea", constants::ignore_diacritics),
            u"creme tea");
}

TEST(OneShotReplace, UncompilablePatternReturnsPreparedSubject) {
  EXPECT_EQ(regex_replace(u"caf\u00e9", u"(", u"x", constants::ignore_diacritics), u"cafe");
  EXPECT_EQ(regex_replace_first(u"caf\u00e9", u"(", u"x", constants::ignore_diacritics), u"cafe");
  EXPECT_EQ(regex_replace(u"e\u0301", u"(", u"x", constants::normalize_nfc), u"\u00e9");
  // With nothing to prepare, the subject comes back whole, past any U+0000.
  EXPECT_EQ(regex_replace(u"a\0b"s, u"(", u"x", 0), u"a\0b"s);
}

TEST(OneShotReplace, InvalidReplacementReturnsPreparedSubject) {
  EXPECT_EQ(regex_replace(u"ab", u"(a)", u"$2", 0), u"ab");
  EXPECT_EQ(regex_replace(u"\u00e1b", u"(a)", u"$2", constants::ignore_diacritics), u"ab");
  EXPECT_EQ(regex_replace_first(u"ab", u"a", u"$x", 0), u"ab");
  EXPECT_EQ(regex_replace(u"ab", u"a", u"${nope}", 0), u"ab");
}

TEST(OneShotReplace, NoMatchReturnsPreparedSubjectCutAtFirstNul) {
  EXPECT_EQ(regex_replace(u"ab\0cd"s, u"z", u"x", 0), u"ab");
  EXPECT_EQ(regex_replace_first(u"ab\0cd"s, u"z", u"x", 0), u"ab");
  EXPECT_EQ(regex_replace(u"e\u0301", u"z", u"x", constants::normalize_nfc), u"\u00e9");
}

TEST(OneShotReplace, SubjectIsSearchedOnlyUpToFirstNul) {
  EXPECT_EQ(regex_replace(u"a\0a"s, u"a", u"b", 0), u"b");
}

TEST(OneShotReplace, PatternAndReplacementEndAtFirstNul) {
  EXPECT_EQ(regex_replace(u"abc", u"b\0c"s, u"x", 0), u"axc");
  EXPECT_EQ(regex_replace(u"abc", u"b", u"x\0y"s, 0), u"axc");
}

TEST(OneShotReplace, ReplacementIsNotPrepared) {
  EXPECT_EQ(regex_replace(u"abc", u"b", u"\u00e9", constants::ignore_diacritics), u"a\u00e9c");
  EXPECT_EQ(regex_replace(u"abc", u"b", u"e\u0301", constants::normalize_nfc), u"ae\u0301c");
}

TEST(OneShotReplace, CaseInsensitiveOption) {
  EXPECT_EQ(regex_replace(u"xABCx", u"abc", u"-", constants::case_insensitive), u"x-x");
  EXPECT_EQ(regex_replace(u"xABCx", u"abc", u"-", 0), u"xABCx");
}

TEST(OneShotReplace, DotMatchesLineEnds) {
  EXPECT_EQ(regex_replace(u"a\nb", u"a.b", u"x", 0), u"x");
}

TEST(Utf8Replace, ReplacesInUtf8) {
  EXPECT_EQ(regex_replace("caf\xC3\xA9 cr\xC3\xA8me"s, "\xC3\xA9"s, "e"s, 0), "cafe cr\xC3\xA8me");
  EXPECT_EQ(regex_replace("a1b22"s, "(\\d+)"s, "<$1>"s, 0), "a<1>b<22>");
}

TEST(Utf8Replace, CaseInsensitiveMatchesOtherCase) {
  EXPECT_EQ(regex_replace("ABC"s, "abc"s, "x"s, constants::case_insensitive), "x");
  EXPECT_EQ(regex_replace("ABC"s, "abc"s, "x"s, 0), "ABC");
}

TEST(Utf8Replace, DoesNotNormaliseOrStripDiacritics) {
  const std::string decomposed = "e\xCC\x81";  // "e" U+0301
  EXPECT_EQ(regex_replace(decomposed, "\xC3\xA9"s, "x"s, constants::normalize_nfc), decomposed);
  EXPECT_EQ(regex_replace("caf\xC3\xA9"s, "cafe"s, "x"s, constants::ignore_diacritics),
            "caf\xC3\xA9");
}

TEST(Utf8Replace, FailuresReturnSubjectAsPassedIn) {
  EXPECT_EQ(regex_replace("a(b"s, "("s, "x"s, 0), "a(b");
  EXPECT_EQ(regex_replace("ab"s, "(a)"s, "$2"s, 0), "ab");
  // Even past a zero byte, the subject comes back as passed in.
  EXPECT_EQ(regex_replace("a\0b"s, "("s, "x"s, 0), "a\0b"s);
}

TEST(Utf8Replace, NoMatchReturnsSubjectCutAtFirstZeroCharacter) {
  EXPECT_EQ(regex_replace("ab\0cd"s, "z"s, "x"s, 0), "ab");
  EXPECT_EQ(regex_replace("ab"s, "z"s, "x"s, 0), "ab");
}

TEST(Utf8Replace, PatternAndReplacementEndAtFirstZeroByte) {
  EXPECT_EQ(regex_replace("abc"s, "b\0c"s, "x"s, 0), "axc");
  EXPECT_EQ(regex_replace("abc"s, "b"s, "x\0y"s, 0), "axc");
}

TEST(Utf8Replace, NonAsciiPatternAndReplacementDecodeAsUtf8) {
  EXPECT_EQ(regex_replace("\xC3\xA9t\xC3\xA9"s, "\xC3\xA9"s, "\xC3\xA8"s, 0), "\xC3\xA8t\xC3\xA8");
  EXPECT_EQ(regex_replace("x\xF0\x9F\x98\x80y"s, "\xF0\x9F\x98\x80"s, "!"s, 0), "x!y");
}

bool is_valid_utf8(const std::string& s) {
  int32_t i = 0;
  const auto length = static_cast<int32_t>(s.size());
  while (i < length) {
    UChar32 c;
    U8_NEXT(s.data(), i, length, c);
    if (c < 0) return false;
  }
  return true;
}

TEST(Utf8Replace, IllFormedSubjectReadsAsReplacementCharacters) {
  // No match: the decoded subject comes back, with U+FFFD for the bad bytes.
  EXPECT_EQ(regex_replace("a\xFF"
                          "b"s,
                          "z"s, "x"s, 0),
            "a\xEF\xBF\xBD"
            "b");
  // Truncated and overlong sequences and encoded surrogates never crash.
  for (const std::string& bad : {"abc\xE2\x82"s, "\xC0\xAF"s, "\xED\xA0\x80"s, "\x80\x80\x80"s,
                                 "\xF4\x90\x80\x80"s, "\xF0"s}) {
    const std::string result = regex_replace(bad, "."s, "[$0]"s, 0);
    EXPECT_TRUE(is_valid_utf8(result));
    EXPECT_NE(result.find("\xEF\xBF\xBD"), std::string::npos);
  }
}

TEST(Utf8Replace, IllFormedPatternAndReplacementReadAsReplacementCharacters) {
  // The bad pattern byte decodes to U+FFFD and so matches the bad subject byte.
  EXPECT_EQ(regex_replace("a\xFF"
                          "b"s,
                          "\xFF"s, "-"s, 0),
            "a-b");
  EXPECT_EQ(regex_replace("ab"s, "b"s, "\xC3"s, 0), "a\xEF\xBF\xBD");
  EXPECT_EQ(regex_replace("ab"s, "\xE2\x82"s, "x"s, 0), "ab");
}

TEST(Utf8Replace, EmptyInputs) {
  EXPECT_EQ(regex_replace(""s, "a"s, "b"s, 0), "");
  EXPECT_EQ(regex_replace("ab"s, ""s, "-"s, 0), "-a-b-");
}

}  // namespace
