// Where preparation changes nothing, replacing in the caller's text is ICU's
// replaceAll: generated subjects, patterns and replacements, with ICU as the
// oracle. The replacements mix every form ICU's replacement syntax reads,
// valid and invalid. Where preparation changes the text, the oracle is built
// from the matches a regex_iterator visits, mapped back to the caller's text
// through prepare_text_mapped.
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
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

// Puts `re` somewhere in the middle of another walk, or leaves it where the
// previous call left it: the regex form must not depend on that.
void disturb(std::mt19937& random, re::regex& re, const std::vector<std::u16string>& units) {
  switch (std::uniform_int_distribution<int>(0, 2)(random)) {
    case 0:
      break;
    case 1:
      re.reset(pick(random, units, 6));
      break;
    default:
      re.reset(pick(random, units, 6));
      (void)re.match();
      break;
  }
}

TEST(ReplacePreservingIdentity, RegexFormOnAReusedRegexIsICUsReplaceAll) {
  std::mt19937 random(7);
  constexpr std::uint32_t kOptions[] = {0, re::constants::case_insensitive};
  std::map<std::pair<std::u16string, std::uint32_t>, re::regex> compiled;
  int failures = 0;
  for (int i = 0; i < 4000; ++i) {
    const std::uint32_t options = kOptions[i % 2];
    const std::u16string subject = pick(random, kSubjectUnits, 10);
    const std::u16string& pattern =
        kPatterns[std::uniform_int_distribution<std::size_t>(0, kPatterns.size() - 1)(random)];
    if (pattern == u"(") continue;
    const std::u16string replacement = pick(random, kReplacementPieces, 3);
    re::regex& reused = compiled.try_emplace({pattern, options}, pattern, options).first->second;
    disturb(random, reused, kSubjectUnits);
    const std::u16string result = re::regex_replace_preserving(reused, subject, replacement);
    const std::u16string expected = icu_replace_all(subject, pattern, replacement, options);
    if (result != expected && ++failures <= 10) {
      ADD_FAILURE() << "options " << options << "\n subject     " << hex(subject)
                    << "\n pattern     " << hex(pattern) << "\n replacement " << hex(replacement)
                    << "\n expected    " << hex(expected) << "\n got         " << hex(result);
    }
    // The regex is left reset onto the subject, past its last match.
    EXPECT_EQ(reused.match().start, re::npos) << hex(subject) << " / " << hex(pattern);
  }
  EXPECT_EQ(failures, 0);
}

// Subjects that preparation changes, pieced together from these.
const std::vector<std::u16string> kPreparedUnits = {
    // Letters and a space that preparation keeps.
    u"a", u"e", u"E", u"c", u" ",
    // Accents precomposed and decomposed, marks with no letter before them,
    // and "c" with a cedilla and an acute in one character.
    u"\u00e9", u"e\u0301", u"E\u0300", u"\u0301", u"\u0300", u"\u1e09",
    // A character that NFC decomposes into two units, a supplementary
    // character, and U+0000 (where removing diacritics stops).
    u"\u0958", u"\U0001F600", std::u16string(1, u'\0')};

const std::vector<std::u16string> kPreparedPatterns = {
    // Letters, groups, and groups that can take no part.
    u"e", u"E", u"(e)", u"(e)|(a)", u"(c)(\u00e9)?", u"(.)(.)", u".", u"[^e ]",
    // Empty matches.
    u"", u"e*", u"a|", u"\\b", u"(?=e)", u"$",
    // Patterns that preparation changes too.
    u"\u00e9", u"e\u0301", u"\u0958", u"\u0301"};

// A replacement as pieces: literal text, or a group reference "$n".
struct replacement_piece {
  std::u16string text;
  int group = -1;  // the group referred to; -1 for literal text
};

// Literal text, accents and a lone mark included, with no "$", "\" or digit so
// that it reads as itself.
const std::vector<std::u16string> kLiteralPieces = {u"x",      u"",        u"<",     u">",
                                                    u"\u00e9", u"e\u0301", u"\u0301"};
// References go up to "$3", one group more than any pattern here has.
constexpr int kHighestGroupReferred = 3;

std::vector<replacement_piece> pick_pieces(std::mt19937& random) {
  std::vector<replacement_piece> pieces;
  const int literals = static_cast<int>(kLiteralPieces.size());
  for (int n = std::uniform_int_distribution<int>(0, 4)(random); n > 0; --n) {
    const int which =
        std::uniform_int_distribution<int>(0, literals + kHighestGroupReferred)(random);
    if (which < literals) {
      pieces.push_back({kLiteralPieces[static_cast<std::size_t>(which)]});
    } else {
      pieces.push_back({u"", which - literals});
    }
  }
  return pieces;
}

std::u16string replacement_text(const std::vector<replacement_piece>& pieces) {
  std::u16string text;
  for (const replacement_piece& piece : pieces) {
    if (piece.group < 0) {
      text += piece.text;
    } else {
      text += u'$';
      text += static_cast<char16_t>(u'0' + piece.group);
    }
  }
  return text;
}

// Every match that a regex_iterator over `subject` visits, mapped to the
// caller's text with prepare_text_mapped, replaced by the pieces; a match
// that starts inside the previous replaced range is left alone. Returns the
// subject whole if there is a match and a piece refers to a group the pattern
// does not have.
std::u16string mapped_replace_all(const std::u16string& subject, re::regex& walked,
                                  const std::vector<replacement_piece>& pieces) {
  const re::prepared_text prepared = re::prepare_text_mapped(subject, walked.options());
  std::u16string result;
  std::size_t copied = 0;
  for (re::regex_iterator it(subject, walked); !it.at_end(); ++it) {
    for (const replacement_piece& piece : pieces) {
      if (piece.group > walked.getGroupsCount()) return subject;
    }
    const auto [start, end] = prepared.source_range(it->start, it->end);
    if (start < copied) continue;
    result.append(subject, copied, start - copied);
    for (const replacement_piece& piece : pieces) {
      if (piece.group < 0) {
        result += piece.text;
        continue;
      }
      const re::group_result& group = it->groups[static_cast<std::size_t>(piece.group)];
      if (group.start == re::npos) continue;
      const auto [group_start, group_end] = prepared.source_range(group.start, group.end);
      result.append(subject, group_start, group_end - group_start);
    }
    copied = end;
  }
  result.append(subject, copied, std::u16string::npos);
  return result;
}

TEST(ReplacePreservingIdentity, RegexFormOnPreparedTextReplacesTheMappedMatches) {
  std::mt19937 random(11);
  constexpr std::uint32_t kOptions[] = {0x2, 0x3, 0x4, 0x5, 0x6, 0x7};
  std::map<std::pair<std::u16string, std::uint32_t>, re::regex> compiled;
  int failures = 0;
  int changed_by_preparation = 0;
  for (int i = 0; i < 6000; ++i) {
    const std::uint32_t options = kOptions[i % 6];
    const std::u16string subject = pick(random, kPreparedUnits, 8);
    const std::u16string& pattern = kPreparedPatterns[std::uniform_int_distribution<std::size_t>(
        0, kPreparedPatterns.size() - 1)(random)];
    const std::vector<replacement_piece> pieces = pick_pieces(random);
    re::regex& reused = compiled.try_emplace({pattern, options}, pattern, options).first->second;
    disturb(random, reused, kPreparedUnits);
    const std::u16string result =
        re::regex_replace_preserving(reused, subject, replacement_text(pieces));
    re::regex oracle(pattern, options);
    const std::u16string expected = mapped_replace_all(subject, oracle, pieces);
    if (re::prepare_text(subject, options) != subject) ++changed_by_preparation;
    if (result != expected && ++failures <= 10) {
      ADD_FAILURE() << "options " << options << "\n subject     " << hex(subject)
                    << "\n pattern     " << hex(pattern) << "\n replacement "
                    << hex(replacement_text(pieces)) << "\n expected    " << hex(expected)
                    << "\n got         " << hex(result);
    }
    EXPECT_EQ(reused.match().start, re::npos) << hex(subject) << " / " << hex(pattern);
  }
  EXPECT_EQ(failures, 0);
  EXPECT_GE(changed_by_preparation, 3000);  // the map is not the identity most of the time
}

}  // namespace
