// The library's text services: NFC into a caller's buffer and UTF-8 conversions.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "i18n/host_i18n.h"

namespace {

namespace i18n = scl::regex::detail::i18n;
using namespace std::string_literals;

TEST(ToNfc, WritesNfcFormAndReturnsItsLength) {
  const std::u16string input = u"e\u0301x";
  std::vector<char16_t> buffer(8, u'#');
  EXPECT_EQ(i18n::to_nfc(buffer.data(), buffer.size(), input.data(), input.size()), 2u);
  EXPECT_EQ(std::u16string(buffer.data(), 2), u"\u00e9x");
}

TEST(ToNfc, ReportsFullLengthWhenCapacityIsTooSmall) {
  const std::u16string input(10, u'a');
  std::vector<char16_t> buffer(4, u'#');
  EXPECT_EQ(i18n::to_nfc(buffer.data(), buffer.size(), input.data(), input.size()), 10u);
  EXPECT_EQ(i18n::to_nfc(nullptr, 0, input.data(), input.size()), 10u);
}

TEST(ToNfc, EmptyInputNeedsZeroUnits) {
  char16_t buffer[4] = {u'#', u'#', u'#', u'#'};
  EXPECT_EQ(i18n::to_nfc(buffer, 4, u"", 0), 0u);
}

TEST(ToNfc, ExplicitLengthKeepsEmbeddedNul) {
  const std::u16string input = u"a\0e\u0301"s;
  std::vector<char16_t> buffer(8);
  ASSERT_EQ(i18n::to_nfc(buffer.data(), buffer.size(), input.data(), input.size()), 3u);
  EXPECT_EQ(std::u16string(buffer.data(), 3), u"a\0\u00e9"s);
}

TEST(Utf8ToUstring, DecodesAllBytesIncludingZeroBytes) {
  EXPECT_EQ(i18n::utf8_to_ustring("caf\xC3\xA9"), u"caf\u00e9");
  EXPECT_EQ(i18n::utf8_to_ustring("a\0b"s), u"a\0b"s);
  EXPECT_EQ(i18n::utf8_to_ustring("\xF0\x9F\x98\x80"), u"\U0001F600");
  EXPECT_EQ(i18n::utf8_to_ustring(""), u"");
}

TEST(Utf8ToUstring, IllFormedSequencesBecomeReplacementCharacters) {
  EXPECT_EQ(i18n::utf8_to_ustring("a\xFF"
                                  "b"),
            u"a\uFFFDb");
  EXPECT_EQ(i18n::utf8_to_ustring("\xC3"), u"\uFFFD");                      // truncated sequence
  EXPECT_EQ(i18n::utf8_to_ustring("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");  // encoded surrogate
}

TEST(UstringToUtf8, ReadsUpToFirstNul) {
  const std::u16string text = u"\u00e9t\u00e9\0rest"s;
  EXPECT_EQ(i18n::ustring_to_utf8(text.c_str()), "\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(i18n::ustring_to_utf8(u""), "");
  EXPECT_EQ(i18n::ustring_to_utf8(nullptr), "");
}

TEST(ToString, EncodesWholeTextAndReplacesLoneSurrogates) {
  EXPECT_EQ(i18n::to_string(u"year"), "year");
  EXPECT_EQ(i18n::to_string(u"a\0b"s), "a\0b"s);
  EXPECT_EQ(i18n::to_string(u"\U0001F600"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(i18n::to_string(u"x\xD800"), "x\xEF\xBF\xBD");
}

}  // namespace
