// Where preparation changes nothing, replacing in the caller's text is ICU's
// replaceAll: generated subjects, patterns and replacements, with ICU as the
// oracle. The replacements mix every form ICU's replacement syntax reads,
// valid and invalid.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <scl/regex.h>

#include "support/hex.h"

namespace {

namespace re = scl::regex;
using scl_regex_test::hex;

// ICU's replaceAll on the whole subject, the replacement read up to its first
// U+0000; the subject itself when ICU reports an error.
std::u16string icu_replace_all(const std::u16string& subject, const std::u16string& pattern,
                               const std::u16string& replacement, std::uint32_t options) {
  const std::uint32_t flags =
      UREGEX_DOTALL |
      ((options & re::constants::case_insensitive) != 0 ? UREGEX_CASE_INSENSITIVE : 0);
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(
      icu::UnicodeString(pattern.data(), static_cast<int32_t>(pattern.size())), flags, status);
  if (U_FAILURE(status)) return subject;
  const icu::UnicodeString input(subject.data(), static_cast<int32_t>(subject.size()));
  matcher.reset(input);
  const icu::UnicodeString output =
      matcher.replaceAll(icu::UnicodeString(replacement.c_str()), status);
  if (U_FAILURE(status)) return subject;
  return std::u16string(output.getBuffer(), static_cast<std::size_t>(output.length()));
}

const std::vector<std::u16string> kPatterns = {u"a",
                                               u"a+",
                                               u"b*",
                                               u"(a)(b)?",
                                               u"(a|b)+",
                                               u"(?<x>a)(?<y>b)?c?",
                                               u"",
                                               u"x*",
                                               u".",
                                               u"\\d",
                                               u"A",
                                               u"(?=a)",
                                               u"\\b",
                                               u"[^a]",
                                               u"$",
                                               u"^",
                                               u"(",
                                               u"(?<first>[ab])(?<s2>\\d)?",
                                               u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)?",
                                               u"(?:(a)|(b))+",
                                               u"\\$",
                                               u"\\\\"};

// Pieces of replacements: literal text, group references of every form,
// backslash escapes, valid and not.
const std::vector<std::u16string> kReplacementPieces = {
    u"x", u"", u"$", u"$0", u"$1", u"$2", u"$3", u"$9", u"$10", u"$11", u"$12", u"$01", u"${x}",
    u"${y}", u"${first}", u"${s2}", u"${nope}", u"${", u"${x", u"${1}", u"${}", u"${x!}", u"\\",
    u"\\$", u"\\\\", u"\\u0041", u"\\U0001F600", u"\\uD83D\\uDE00", u"\\uZ", u"\\u12", u"\\U0041xy",
    u"\\UFFFFFFFF", u"\\x41", u"\\n", u"\\\u00e9", u"\u00e9", u"\U0001F600", u"$\U0001D7CF", u"$a",
    u"$$", u"}", u"{", u"\\u004", u"\\U\U0001F600z", u"\\uD83Dz", std::u16string(u"\0z", 2),
    // A lead surrogate escape looks ahead for a trail; at the end it reads past it.
    u"\\uD800", u"\\uD800\\", u"\\uD800\\u", u"\\uD800\\uDC0", u"\\uD800\\x", u"\\U0000D800",
    u"\\uDC00", u"\xDC00", u"\xD800", u"\\\xD800"};

// Subjects without preparation: anything, U+0000 and lone surrogates included.
const std::vector<std::u16string> kSubjectUnits = {
    u"a",      u"b", u"c",  u"A",          u"B",      u"1",      u"2",
    u" ",      u"$", u"\\", u"\U0001F600", u"\xD800", u"\xDC00", std::u16string(1, u'\0'),
    u"\u00e9", u"\n"};

// Subjects that ignore_diacritics and NFC keep as they are.
const std::vector<std::u16string> kKeptUnits = {
    u"a", u"b", u"c", u"A", u"B", u"1", u"2", u" ", u"$", u"\\", u"\U0001F600", u"\n", u"\u4e2d"};

std::u16string pick(std::mt19937& random, const std::vector<std::u16string>& from, int most) {
  std::u16string text;
  for (int n = std::uniform_int_distribution<int>(0, most)(random); n > 0; --n) {
    text += from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
  }
  return text;
}

TEST(ReplacePreservingIdentity, IsICUsReplaceAllWherePreparationChangesNothing) {
  std::mt19937 random(20261122);
  constexpr std::uint32_t kOptions[] = {0, 1, 0x4, 0x5, 0x6, 0x7};
  int checked = 0;
  int failures = 0;
  for (int i = 0; i < 12000; ++i) {
    const std::uint32_t options = kOptions[i % 6];
    const bool prepared = options > 1;
    const std::u16string subject = pick(random, prepared ? kKeptUnits : kSubjectUnits, 12);
    ASSERT_TRUE(!prepared || re::prepare_text(subject, options) == subject);
    const std::u16string& pattern =
        kPatterns[std::uniform_int_distribution<std::size_t>(0, kPatterns.size() - 1)(random)];
    const std::u16string replacement = pick(random, kReplacementPieces, 4);
    const std::u16string expected = icu_replace_all(subject, pattern, replacement, options);
    const std::u16string result =
        re::regex_replace_preserving(subject, pattern, replacement, options);
    ++checked;
    if (result != expected && ++failures <= 10) {
      ADD_FAILURE() << "options " << options << "\n subject     " << hex(subject)
                    << "\n pattern     " << hex(pattern) << "\n replacement " << hex(replacement)
                    << "\n expected    " << hex(expected) << "\n got         " << hex(result);
    }
    // Without U+0000 in the subject, the one-shot replacement on prepared text agrees.
    if (subject.find(u'\0') == std::u16string::npos) {
      EXPECT_EQ(re::regex_replace(subject, pattern, replacement, options), result)
          << hex(subject) << " / " << hex(pattern) << " / " << hex(replacement);
    }
  }
  EXPECT_EQ(failures, 0);
  EXPECT_GE(checked, 10000);
}

TEST(ReplacePreservingIdentity, RegexFormAgreesWithTheStringForm) {
  std::mt19937 random(7);
  for (int i = 0; i < 2000; ++i) {
    const std::u16string subject = pick(random, kSubjectUnits, 10);
    const std::u16string& pattern =
        kPatterns[std::uniform_int_distribution<std::size_t>(0, kPatterns.size() - 1)(random)];
    if (pattern == u"(") continue;
    const std::u16string replacement = pick(random, kReplacementPieces, 3);
    re::regex compiled(pattern, 1);
    EXPECT_EQ(re::regex_replace_preserving(compiled, subject, replacement),
              re::regex_replace_preserving(subject, pattern, replacement, 1));
  }
}

}  // namespace
