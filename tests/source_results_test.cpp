// Matches located in the caller's subject: regex_find_all.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/hex.h"

#include <scl/regex.h>
#include <scl/regex/regex_impl_icu.h>

namespace {

namespace re = scl::regex;
using re::npos;
using range = std::pair<std::size_t, std::size_t>;
using scl_regex_test::hex;

constexpr std::uint32_t kCaseAndMarks =
    re::constants::case_insensitive | re::constants::ignore_diacritics;

constexpr std::uint32_t kNfc = re::constants::normalize_nfc;

// "ac", then a run that overflows ICU's backtrack stack under "(a|aa)+c".
std::u16string overflowing_subject() { return u"ac " + std::u16string(400000, u'a') + u"b"; }

// "Crème brûlée et crème", decomposed.
const std::u16string kDecomposed = u"Cre\u0300me bru\u0302le\u0301e et cre\u0300me";

TEST(FindAll, DecomposedTextGivesTheCallersPositions) {
  // By hand: C0 r1 e2 U+0300 3 m4 e5 | space 6 | b7 r8 u9 U+0302 10 l11 e12 U+0301 13 e14 |
  // space 15 | e16 t17 | space 18 | c19 r20 e21 U+0300 22 m23 e24.
  const std::vector<re::source_match> found =
      re::regex_find_all(kDecomposed, u"creme", kCaseAndMarks);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(0, 6));
  EXPECT_EQ(range(found[1].start, found[1].end), range(19, 25));
  EXPECT_EQ(kDecomposed.substr(19, 6), u"cre\u0300me");
  // The prepared positions would have been [0, 5) and [16, 21).
  std::vector<re::match_tuple> prepared;
  re::regex_search(kDecomposed, u"creme", prepared, kCaseAndMarks);
  ASSERT_EQ(prepared.size(), 2u);
}

TEST(FindAll, GroupsAreMappedAndCountedForEveryMatch) {
  const std::vector<re::source_match> found =
      re::regex_find_all(kDecomposed, u"(cr)(x)?(e)me", kCaseAndMarks);
  ASSERT_EQ(found.size(), 2u);
  for (const re::source_match& m : found) {
    ASSERT_EQ(m.groups.size(), 4u);  // three groups and the whole match
    EXPECT_EQ(m.groups[0], range(m.start, m.end));
    EXPECT_EQ(m.groups[2], range(npos, npos));  // took no part
  }
  EXPECT_EQ(found[0].groups[1], range(0, 2));
  EXPECT_EQ(found[0].groups[3], range(2, 4));  // the "e" with its accent
  EXPECT_EQ(found[1].groups[3], range(21, 23));
}

TEST(FindAll, EmptyMatchesComeAsEmptyRangesInSubjectOrder) {
  const std::vector<re::source_match> found = re::regex_find_all(u"ab", u"x*", 0);
  ASSERT_EQ(found.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(range(found[i].start, found[i].end), range(i, i));
    EXPECT_EQ(found[i].groups, (std::vector<range>{{i, i}}));
  }
}

TEST(FindAll, EmptyMatchAfterARemovedMarkSitsAtTheEnd) {
  // "e" U+0301 prepares to "e"; the empty match at the end maps to the end of the source.
  const std::vector<re::source_match> found =
      re::regex_find_all(u"e\u0301", u"$", re::constants::ignore_diacritics);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(2, 2));
}

TEST(FindAll, WithoutPreparationPositionsAreICUsOwn) {
  const std::u16string subject = u"a1b22 \U0001F600 c333";
  const std::vector<re::source_match> found = re::regex_find_all(subject, u"\\d+", 0);
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(1, 2));
  EXPECT_EQ(range(found[1].start, found[1].end), range(3, 5));
  EXPECT_EQ(range(found[2].start, found[2].end), range(10, 13));
}

TEST(FindAll, NoMatchGivesNothing) {
  EXPECT_TRUE(re::regex_find_all(u"abc", u"x", 0).empty());
  EXPECT_TRUE(re::regex_find_all(u"", u"x", 0).empty());
}

TEST(FindAll, RegexFormLeavesTheRegexResetOntoTheSubjectPastItsLastMatch) {
  re::regex word(u"cr\\w+", kCaseAndMarks);
  const std::vector<re::source_match> found = re::regex_find_all(word, kDecomposed);
  EXPECT_EQ(found.size(), 2u);
  EXPECT_EQ(word.match().start, npos);   // past the last match
  EXPECT_EQ(word.str(0, 6), u"Creme ");  // the prepared subject
  // The same walk as regex_iterator: the same number of matches, the same order.
  std::size_t walked = 0;
  for (re::regex_iterator it(kDecomposed, word); it->start != npos; ++it) ++walked;
  EXPECT_EQ(walked, found.size());
}

TEST(FindAll, StringFormThrowsForARejectedPattern) {
  EXPECT_THROW(re::regex_find_all(u"abc", u"(", 0), re::regex_exception);
  try {
    re::regex_find_all(u"abc", u"(", 0);
  } catch (const re::regex_exception& e) {
    EXPECT_STREQ(e.what(), "Incorrectly nested parentheses in regexp pattern.");
  }
}

TEST(FindAll, NfcPositionsCoverTheComposedCharacters) {
  const std::vector<re::source_match> found =
      re::regex_find_all(u"cafe\u0301 cafe\u0301", u"caf\u00e9", re::constants::normalize_nfc);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(0, 5));
  EXPECT_EQ(range(found[1].start, found[1].end), range(6, 11));
}

// An engine that hands out scripted matches, then the end of the walk.
class ScriptedEngine : public re::regex_impl_abstract {
 public:
  // With `fail_at_end`, match_ex reports an error once the script is spent.
  explicit ScriptedEngine(std::vector<range> script, bool fail_at_end = false)
      : script_(std::move(script)), fail_at_end_(fail_at_end) {}
  void init(const std::u16string& p, re::constants::syntax_option_type) override { pattern_ = p; }
  void init(const char16_t* f, const char16_t* l, re::constants::syntax_option_type) override {
    pattern_.assign(f, l);
  }
  void init(const std::u16string_view& p, re::constants::syntax_option_type) override {
    pattern_ = p;
  }
  const std::u16string& getPattern() const override { return pattern_; }
  void reset(const std::u16string& s, re::constants::syntax_option_type) override { rewind(s); }
  void reset(const char16_t* f, const char16_t* l, re::constants::syntax_option_type) override {
    rewind(std::u16string(f, l));
  }
  void reset(const std::u16string_view& s, re::constants::syntax_option_type) override {
    rewind(std::u16string(s));
  }
  std::u16string str(std::size_t start, std::size_t length) const override {
    return subject_.substr(std::min(start, subject_.size()), length);
  }
  re::regex_result match(std::uint32_t) override {
    if (next_ == script_.size()) return re::regex_result(npos, npos, nullptr);
    current_ = script_[next_++];
    return re::regex_result(current_.first, current_.second, this);
  }
  void getGroups(std::vector<re::group_result>& groups) const override {
    groups.assign(1, re::group_result{current_.first, current_.second, this});
  }
  std::u16string replace(const std::u16string& s, const std::u16string&) override { return s; }
  re::expected_result<std::u16string> replace_ex(const std::u16string& s,
                                                 const std::u16string&) override {
    return s;
  }
  std::u16string getGroupReference(const std::u16string& n) const override { return n; }
  int getGroupNumber(const std::string&) const override { return 0; }
  int getGroupsCount() const override { return 0; }
  re::expected_result<re::regex_result> match_ex(std::uint32_t flags) override {
    if (fail_at_end_ && next_ == script_.size()) return re::regex_exception(66306);
    return match(flags);
  }

 private:
  void rewind(std::u16string subject) {
    subject_ = std::move(subject);
    next_ = 0;
  }
  std::vector<range> script_;
  bool fail_at_end_ = false;
  std::size_t next_ = 0;
  range current_{npos, npos};
  std::u16string pattern_;
  std::u16string subject_;
};

TEST(FindAll, CallersEngineIsMappedAsIfItPreparedAsPrepareTextDoes) {
  // The engine reports prepared positions of "Creme" ("e" U+0300 is one piece);
  // a position past the prepared text counts as its end.
  re::regex custom(u"ignored", re::constants::ignore_diacritics,
                   std::make_unique<ScriptedEngine>(std::vector<range>{{2, 3}, {4, 5}, {5, 99}}));
  const std::vector<re::source_match> found = re::regex_find_all(custom, u"Cre\u0300me");
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(2, 4));
  EXPECT_EQ(range(found[1].start, found[1].end), range(5, 6));
  EXPECT_EQ(range(found[2].start, found[2].end), range(6, 6));
  EXPECT_EQ(found[0].groups.size(), 1u);
}

TEST(FindAll, AFailedSearchStepEndsTheWalkWithTheMatchesFoundSoFar) {
  // The scripted engine's walk ends after two matches, as a failing step does.
  re::regex custom(u"ignored", 0,
                   std::make_unique<ScriptedEngine>(std::vector<range>{{0, 1}, {2, 3}}));
  EXPECT_EQ(re::regex_find_all(custom, u"abcdef").size(), 2u);
  // With ICU: a backtrack-stack overflow in the first step gives no match at all.
  // With ICU: the first step finds "ac", the second overflows the backtrack stack.
  EXPECT_EQ(re::regex_find_all(overflowing_subject(), u"(a|aa)+c", 0).size(), 1u);
}

TEST(FindAll, OneSourceCharacterPreparedIntoTwoUnitsGivesOverlappingRanges) {
  // NFC decomposes U+0958 into U+0915 U+093C; both units map back to it.
  const std::vector<re::source_match> found = re::regex_find_all(u"\u0958", u".", kNfc);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(range(found[0].start, found[0].end), range(0, 1));
  EXPECT_EQ(range(found[1].start, found[1].end), range(0, 1));
}

// ---- regex_replace_preserving ----

TEST(ReplacePreserving, OnlyTheMatchChanges) {
  EXPECT_EQ(
      re::regex_replace_preserving(u"Caf\u00e9 cr\u00e8me, \u00e9t\u00e9", u"cafe", u"tea", 0x5),
      u"tea cr\u00e8me, \u00e9t\u00e9");
  // The prepared-text replacement loses every accent.
  EXPECT_EQ(re::regex_replace(u"Caf\u00e9 cr\u00e8me, \u00e9t\u00e9", u"cafe", u"tea", 0x5),
            u"tea creme, ete");
}

TEST(ReplacePreserving, GroupsComeFromTheCallersText) {
  EXPECT_EQ(re::regex_replace_preserving(u"Cre\u0300me br\u00fbl\u00e9e", u"(cr)eme", u"[$1]", 0x5),
            u"[Cr] br\u00fbl\u00e9e");
  // A group keeps the caller's decomposed accent, and names work as numbers do.
  EXPECT_EQ(re::regex_replace_preserving(kDecomposed, u"(?<word>cr(e)me)", u"<${word}|$2>",
                                         kCaseAndMarks),
            u"<Cre\u0300me|e\u0300> bru\u0302le\u0301e et <cre\u0300me|e\u0300>");
}

TEST(ReplacePreserving, DecomposedMarksOutsideTheMatchesAreKept) {
  EXPECT_EQ(re::regex_replace_preserving(kDecomposed, u"et", u"and", kCaseAndMarks),
            u"Cre\u0300me bru\u0302le\u0301e and cre\u0300me");
}

TEST(ReplacePreserving, AGroupThatTookNoPartInsertsNothing) {
  EXPECT_EQ(re::regex_replace_preserving(kDecomposed, u"(x)?(cr)eme", u"[$1$2]", kCaseAndMarks),
            u"[Cr] bru\u0302le\u0301e et [cr]");
}

TEST(ReplacePreserving, NulUnitsAreKept) {
  // NFC alone searches the whole text, U+0000 units included, and keeps them.
  const std::u16string subject(u"cafe\u0301\0x cafe\u0301", 13);
  EXPECT_EQ(re::regex_replace_preserving(subject, u"caf\u00e9", u"tea", kNfc),
            std::u16string(u"tea\0x tea", 9));
}

TEST(ReplacePreserving, TextAfterTheNulThatRemovalStoppedAtIsKeptUnsearched) {
  const std::u16string subject(u"caf\u00e9\0caf\u00e9!", 10);
  EXPECT_EQ(re::regex_replace_preserving(subject, u"cafe", u"tea", kCaseAndMarks),
            std::u16string(u"tea\0caf\u00e9!", 9));
}

TEST(ReplacePreserving, BackslashMakesTheNextCharacterLiteral) {
  EXPECT_EQ(
      re::regex_replace_preserving(u"caf\u00e9", u"(cafe)", u"\\$1=$1\\\\\\u0041", kCaseAndMarks),
      u"$1=caf\u00e9\\A");
}

TEST(ReplacePreserving, EscapesAreReadAsICUReadsThem) {
  // A failed escape drops what ICU read of it; a lead surrogate escape at the
  // end reads past it and leaves ICU one unit back, so its last digit comes again.
  EXPECT_EQ(re::regex_replace_preserving(u"x", u"x", u"\\uZy|\\U0041xy|\\uD800", 0),
            u"y|y|\xD800"
            u"0");
  EXPECT_EQ(re::regex_replace(u"x", u"x", u"\\uZy|\\U0041xy|\\uD800", 0),
            u"y|y|\xD800"
            u"0");
}

TEST(ReplacePreserving, ReplacementEndsAtItsFirstNul) {
  EXPECT_EQ(re::regex_replace_preserving(u"caf\u00e9!", u"cafe", std::u16string(u"tea\0junk", 8),
                                         kCaseAndMarks),
            u"tea!");
}

TEST(ReplacePreserving, InvalidReplacementGivesTheSubjectWhole) {
  for (const std::u16string replacement :
       {u"$", u"x$", u"$x", u"${nope}", u"${word", u"${}", u"${1}", u"$2", u"${w!}"}) {
    std::u16string result;
    EXPECT_NO_THROW(result = re::regex_replace_preserving(kDecomposed, u"(?<word>cr)eme",
                                                          replacement, kCaseAndMarks));
    EXPECT_EQ(result, kDecomposed) << hex(replacement);
  }
}

TEST(ReplacePreserving, RejectedPatternGivesTheSubjectWhole) {
  std::u16string result;
  EXPECT_NO_THROW(result = re::regex_replace_preserving(kDecomposed, u"(", u"x", kCaseAndMarks));
  EXPECT_EQ(result, kDecomposed);
}

TEST(ReplacePreserving, FailedSearchGivesTheSubjectWhole) {
  // The first match is found; the second step overflows ICU's backtrack stack.
  const std::u16string subject = overflowing_subject();
  EXPECT_EQ(re::regex_replace_preserving(subject, u"(a|aa)+c", u"x", 0), subject);
  // A failing step of an engine of the caller's own, after two matches.
  re::regex custom(u"ignored", 0,
                   std::make_unique<ScriptedEngine>(std::vector<range>{{0, 1}, {2, 3}}, true));
  EXPECT_EQ(re::regex_replace_preserving(custom, u"abcdef", u"x"), u"abcdef");
  re::regex ending(u"ignored", 0,
                   std::make_unique<ScriptedEngine>(std::vector<range>{{0, 1}, {2, 3}}));
  EXPECT_EQ(re::regex_replace_preserving(ending, u"abcdef", u"x"), u"xbxdef");
}

TEST(ReplacePreserving, LaterOfTwoOverlappingMatchesIsNotReplaced) {
  // U+0958 prepares into two units; "." matches each, and both map onto it.
  EXPECT_EQ(re::regex_replace_preserving(u"\u0958z", u".", u"<$0>", kNfc), u"<\u0958><z>");
}

TEST(ReplacePreserving, WithoutPreparationItIsICUsReplaceAll) {
  EXPECT_EQ(re::regex_replace_preserving(u"baaac", u"a*", u"X", 0), u"XbXXcX");
  EXPECT_EQ(re::regex_replace(u"baaac", u"a*", u"X", 0), u"XbXXcX");
  EXPECT_EQ(re::regex_replace_preserving(u"Abc abc", u"(a)(b)", u"$2$1$12",
                                         re::constants::case_insensitive),
            u"bAA2c baa2c");
}

TEST(ReplacePreserving, RegexFormLeavesTheRegexPastItsLastMatch) {
  re::regex word(u"cr(\\w)", kCaseAndMarks);
  EXPECT_EQ(re::regex_replace_preserving(word, kDecomposed, u"$1"),
            u"e\u0300me bru\u0302le\u0301e et e\u0300me");
  EXPECT_EQ(word.match().start, npos);
  EXPECT_EQ(word.str(0, 5), u"Creme");
}

}  // namespace

// Preparing this text twice is not preparing it once: removing the first mark
// joins the unpaired surrogates, and the mark after them stays; preparing the
// result again removes that mark too.
const std::u16string kPreparedTwiceDiffers = u"\xD800\u0301\xDC00\u0301x";

TEST(PreparedOnce, TheTextPreparesDifferentlyTwice) {
  const std::u16string once = re::prepare_text(kPreparedTwiceDiffers, 0x4);
  EXPECT_NE(re::prepare_text(once, 0x4), once);
  EXPECT_NE(once.find(u'\u0301'), std::u16string::npos);
}

TEST(PreparedOnce, FindAllSearchesTheSubjectPreparedOnce) {
  // The mark that survives one preparation is found. The transliterated
  // stretch it belongs to is one piece of the map: [0, 4).
  // The pattern names the mark by an escape: a mark typed in the pattern would be removed.
  re::regex re(u"\\u0301", 0x4);
  const std::vector<re::source_match> found = re::regex_find_all(re, kPreparedTwiceDiffers);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].start, 0u);
  EXPECT_EQ(found[0].end, 4u);
  // The regex is left reset onto the caller's subject, as a reset would leave it.
  EXPECT_EQ(re.str(0, 100), re::prepare_text(kPreparedTwiceDiffers, 0x4));
  EXPECT_EQ(re::regex_find_all(kPreparedTwiceDiffers, u"\\u0301", 0x4).size(), 1u);
  EXPECT_EQ(re::regex_replace_preserving(kPreparedTwiceDiffers, u"\\u0301", u"!", 0x4), u"!x");
}

TEST(PreparedOnce, TupleSearchStillPreparesTwice) {
  // The tuple search resets the regex onto the prepared subject, which the
  // regex prepares again: the mark is gone by then.
  std::vector<re::match_tuple> out;
  re::regex_search(kPreparedTwiceDiffers, u"\\u0301", out, 0x4);
  EXPECT_TRUE(out.empty());
  re::regex re(u"x", 0x4);
  re::regex_search(re, kPreparedTwiceDiffers, out);
  ASSERT_EQ(out.size(), 1u);
  EXPECT_EQ(re.str(0, 100), u"\xD800\xDC00x");  // prepared twice
}

// An engine derived from the library's own, which sees every subject it is reset onto.
class watching_engine : public re::detail::regex_impl_icu {
 public:
  explicit watching_engine(std::vector<std::u16string>& seen) : seen_(seen) {}
  void reset(const std::u16string& subject, re::constants::syntax_option_type options) override {
    seen_.push_back(subject);
    regex_impl_icu::reset(subject, options);
  }

 private:
  std::vector<std::u16string>& seen_;
};

TEST(PreparedOnce, AnEngineDerivedFromTheLibrarysIsResetThroughItsInterface) {
  // Only the library's own engine takes the prepared subject directly; an
  // override of reset must still see the caller's subject.
  std::vector<std::u16string> seen;
  re::regex re(u"cafe", 0x5, std::make_unique<watching_engine>(seen));
  const std::u16string subject = u"Un CAFE\u0301, un caf\u00e9.";
  const std::vector<re::source_match> found = re::regex_find_all(re, subject);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].start, 3u);
  EXPECT_EQ(found[0].end, 8u);
  EXPECT_EQ(re::regex_replace_preserving(re, subject, u"th\u00e9"), u"Un th\u00e9, un th\u00e9.");
  EXPECT_EQ(seen, (std::vector<std::u16string>{subject, subject}));
}
