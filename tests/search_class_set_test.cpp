// Character classes as search folding reads them, against ICU's regex engine:
// the shorthands, "[...]" sets and "\p{...}" must stand for the code points
// that ICU matches, and the lexer must stop just past the class. Then the
// structure that fold_pattern keeps: groups, their count, the origin map.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/regex.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include "search/class_set.h"
#include "search/fold_table.h"
#include "search/pattern_fold.h"
#include "search/pattern_lexer.h"
#include "support/hex.h"

namespace {

namespace detail = scl::regex::detail;

// Every code point but the surrogates, in order.
const icu::UnicodeString& every_code_point() {
  static const icu::UnicodeString every = [] {
    icu::UnicodeString text;
    for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
      if (!U_IS_SURROGATE(c)) text.append(c);
    }
    return text;
  }();
  return every;
}

// The code points that ICU's regex `expression`, which must match exactly one
// code point, matches. Runs of matches are found at once through "...+".
icu::UnicodeSet icu_members(const std::u16string& expression, uint32_t flags) {
  const icu::UnicodeString pattern =
      icu::UnicodeString(expression.data(), static_cast<int32_t>(expression.size())) + u"+";
  UErrorCode status = U_ZERO_ERROR;
  UParseError where{};
  const std::unique_ptr<icu::RegexPattern> compiled(
      icu::RegexPattern::compile(pattern, flags | UREGEX_DOTALL, where, status));
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status) << " at " << where.offset << " in "
                                  << scl_regex_test::hex(expression);
  icu::UnicodeSet members;
  if (U_FAILURE(status)) return members;
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(status));
  matcher->setStackLimit(0, status);  // a run can be the whole text
  const icu::UnicodeString& every = every_code_point();
  matcher->reset(every);
  while (matcher->find(status)) {
    const int32_t start = matcher->start(status);
    const int32_t end = matcher->end(status);
    members.add(every.char32At(start), every.char32At(end - 1));
  }
  // A run may span the surrogates' gap in the text: they are asked one by one.
  members.remove(0xD800, 0xDFFF);
  for (UChar32 c = 0xD800; c <= 0xDFFF; ++c) {
    const icu::UnicodeString one(static_cast<char16_t>(c));
    matcher->reset(one);
    if (matcher->matches(status)) members.add(c);
  }
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status);
  return members;
}

// The code points a class stands for.
icu::UnicodeSet effective(const detail::class_set& set) {
  icu::UnicodeSet members = set.members;
  if (set.negated) members.complement();
  return members;
}

// The first ranges of `set`, for failure messages.
std::string ranges(const icu::UnicodeSet& set) {
  std::string out;
  char buffer[32];
  const int32_t count = set.getRangeCount();
  for (int32_t i = 0; i < count && i < 8; ++i) {
    std::snprintf(buffer, sizeof buffer, "%04X-%04X ", static_cast<unsigned>(set.getRangeStart(i)),
                  static_cast<unsigned>(set.getRangeEnd(i)));
    out += buffer;
  }
  if (count > 8) out += "...";
  return out.empty() ? "none" : out;
}

// Expects `ours` and ICU's set to be equal, and names the code points that differ.
void expect_same(const icu::UnicodeSet& ours, const icu::UnicodeSet& icu,
                 const std::u16string& expression) {
  icu::UnicodeSet only_ours = ours;
  only_ours.removeAll(icu);
  icu::UnicodeSet only_icu = icu;
  only_icu.removeAll(ours);
  EXPECT_TRUE(only_ours.isEmpty() && only_icu.isEmpty())
      << scl_regex_test::hex(expression) << "\n  only ours: " << ranges(only_ours)
      << "\n  only ICU's: " << ranges(only_icu);
}

TEST(ClassSet, ShorthandsMatchWhatIcuMatches) {
  for (const char16_t letter : std::u16string(u"dDwWsShHvV")) {
    const std::u16string expression = std::u16string(u"\\") + letter;
    const detail::class_set set = detail::shorthand_set(letter);
    EXPECT_EQ(set.negated, letter >= u'A' && letter <= u'Z') << static_cast<char>(letter);
    expect_same(effective(set), icu_members(expression, 0), expression);
  }
}

struct set_case {
  std::u16string pattern;  // starts with the set
  int32_t end;             // the offset just past the set's ']'
  uint32_t flags = 0;      // UREGEX_CASE_INSENSITIVE, UREGEX_COMMENTS
};

const std::vector<set_case>& set_cases() {
  static const std::vector<set_case> cases = {
      // Members and ranges.
      {u"[abc]", 5},
      {u"[a-z]+", 5},
      {u"[a-zA-Z0-9_]x", 12},
      {u"[\u00e9\\x{1F600}-\\x{1F64F}\U00010400]", 24},
      {u"[z-z\u00e0-\u00ff]", 8},
      // Escapes.
      {u"[\\x{41}-\\x{5A}\\x61]", 19},
      {u"[\\u0041-\\u005a\\U0001F600]", 25},
      {u"[\\N{LATIN SMALL LETTER A}-\\N{LATIN SMALL LETTER F}\\N{SNOWMAN}]", 62},
      {u"[\\t\\n\\r\\f\\a\\e]", 14},
      {u"[\\0101\\0102-\\0132]", 18},
      {u"[\\cA-\\cZ]", 9},
      {u"[\\]\\-\\[\\&\\^]", 12},
      {u"[a\\-z]", 6},
      {u"[\\.\\*\\$]", 8},
      // A leading ']', leading and trailing '-', literal '&' and '-'.
      {u"[]a]]", 4},
      {u"[^]a]", 5},
      {u"[-a]", 4},
      {u"[a-]", 4},
      {u"[-]", 3},
      {u"[a-c-]", 6},
      {u"[a-c-x]", 7},
      {u"[a&b]", 5},
      {u"[&a]", 4},
      {u"[a&]", 4},
      {u"[\\w-a]", 6},
      {u"[a-[bc]]", 8},
      // Nesting.
      {u"[[a-c][x-z]]", 12},
      {u"[[a-c]m[x-z]]", 13},
      {u"[a-c[x-z]]", 10},
      {u"[[[a]]b]", 8},
      // && and --, with sets and with literals after the operator.
      {u"[[a-z]&&[aeiou]]", 16},
      {u"[\\p{L}&&[a-z]]", 14},
      {u"[a-z&&aeiou]", 12},
      {u"[[a-z]--[aeiou]]", 16},
      {u"[a-z--aeiou]", 12},
      {u"[a-z--[aeiou]]", 14},
      {u"[a-z&&[^aeiou]--xy]", 19},
      {u"[\\p{L}--\\p{Lu}&&[a-f]]", 22},
      // The old single '&' and '-' between sets.
      {u"[[a-z]&[aeiou]]", 15},
      {u"[[a-z]-[aeiou]]", 15},
      {u"[[a-z]-[a-m]&[c-f]]", 19},
      {u"[[a-z]-[aeiou]x]", 16},
      {u"[[a-z]-[aeiou]1]", 16},
      {u"[1[a-z]&[aeiou]]", 16},
      {u"[a[b]-[ab]]", 11},
      {u"[[a-c][x-z]-[ay]]", 17},
      {u"[[a-z]&&[a-f][x-z]-[aeiou]]", 27},
      // A literal after the old operators' right operand joins the result; a
      // class, or a "-" or "&" that is no operator, joins the operand.
      {u"[[a-c]-[b]x]", 12},
      {u"[[0-9a]-[a]\\d]", 14},
      {u"[[a-c]-[b]\\-]", 13},
      {u"[[a-c]-[b]\\Q-\\E]", 16},
      {u"[[a-c]-[b]-x]", 13},
      {u"[[a-c]-[b]&x]", 13},
      {u"[[a-z0-9]-[aeiou]\\d]", 20},
      // A range starts at the last literal character before its "-".
      {u"[a-c&-d]", 8},
      {u"[c-e&-d]", 8},
      {u"[[a]&-d]", 8},
      {u"[a\\d&-d]", 8},
      {u"[c&-d]", 6},
      // Negation, at the top and nested.
      {u"[^a-z]", 6},
      {u"[^[a-z][0-9]]", 13},
      {u"[[^a-z]&&\\p{L}]", 15},
      {u"[[^a-z][^0-9]]", 14},
      // POSIX sets.
      {u"[:alpha:]", 9},
      {u"[:^alpha:]", 10},
      {u"[[:^digit:]]", 12},
      {u"[[:alpha:][:digit:]]", 20},
      {u"[[:alpha:]&&[:lower:]]", 22},
      // Properties.
      {u"[\\p{L}]", 7},
      {u"[\\P{L}]", 7},
      {u"[^\\P{L}]", 8},
      {u"[\\p{Script=Greek}]", 18},
      {u"[\\p{javaLowerCase}]", 19},
      {u"[\\p{InBasicLatin}]", 18},
      {u"[\\p{IsL}]", 9},
      {u"[\\P{IsL}x]", 10},
      {u"[\\p{Lu}\\p{Nd}]", 14},
      // Shorthands.
      {u"[\\d\\s]", 6},
      {u"[\\D&&[\\x00-\\x7f]]", 17},
      {u"[\\W\\h]", 6},
      {u"[^\\S\\v]", 7},
      // Quoting.
      {u"[\\Qa-c\\E]", 9},
      {u"[\\Q]\\E]", 7},
      {u"[x\\Q^[\\E]", 9},
      // Free spacing.
      {u"[ a - c ]", 9, UREGEX_COMMENTS},
      {u"[ a b\n c ]", 10, UREGEX_COMMENTS},
      {u"[ [a-c] && [b-d] ]", 18, UREGEX_COMMENTS},
      {u"[ ^ a ]", 7, UREGEX_COMMENTS},
      {u"[ : & - \u017f ]", 11, UREGEX_COMMENTS},
      {u"[ [a-c] - [b] x ]", 17, UREGEX_COMMENTS},
      // Case-insensitive, with and without negation.
      {u"[a-c]", 5, UREGEX_CASE_INSENSITIVE},
      {u"[^a-c]", 6, UREGEX_CASE_INSENSITIVE},
      {u"[\u017f\u212a]", 4, UREGEX_CASE_INSENSITIVE},
      {u"[^\u00df]", 4, UREGEX_CASE_INSENSITIVE},
      {u"[[^k]&&\\p{L}]", 13, UREGEX_CASE_INSENSITIVE},
      {u"[\\p{Lu}]", 8, UREGEX_CASE_INSENSITIVE},
      {u"[^\\p{Lu}]", 9, UREGEX_CASE_INSENSITIVE},
      {u"[[:lower:]]", 11, UREGEX_CASE_INSENSITIVE},
      {u"[\\p{javaLowerCase}]", 19, UREGEX_CASE_INSENSITIVE},
      {u"[[a-z]--[aeiou]]", 16, UREGEX_CASE_INSENSITIVE},
      {u"[ ^ A - C ]", 11, UREGEX_CASE_INSENSITIVE | UREGEX_COMMENTS},
  };
  return cases;
}

TEST(ClassSet, BracketSetsMatchWhatIcuMatches) {
  for (const set_case& test : set_cases()) {
    SCOPED_TRACE(scl_regex_test::hex(test.pattern));
    detail::pattern_lexer lexer(test.pattern);
    lexer.set_free_spacing((test.flags & UREGEX_COMMENTS) != 0);
    ASSERT_TRUE(lexer.next().is(u'['));
    const detail::class_set set =
        detail::read_bracket_set(lexer, (test.flags & UREGEX_CASE_INSENSITIVE) != 0);
    EXPECT_EQ(lexer.position(), test.end);
    const std::u16string expression = test.pattern.substr(0, static_cast<std::size_t>(test.end));
    expect_same(effective(set), icu_members(expression, test.flags), expression);
  }
}

// A random set expression: literals, ranges, classes, nested sets and the
// operators, in any order; many are not sets that ICU compiles. Closing a set
// over case takes time for each member, so a set for the i flag takes small
// classes and is negated only at the top.
std::u16string random_set(std::mt19937& random, bool case_insensitive, int depth) {
  static const std::vector<std::u16string> literals = {
      u"a",      u"b",       u"c",       u"x",      u"1",         u"-",        u"&",
      u"^",      u"]",       u":",       u"\\-",    u"\\]",       u"\\[",      u"\\&",
      u"\\^",    u"\\x{62}", u"\\u0026", u"\\0142", u"\\Q]\\E",   u"\\Qb-\\E", u"\\N{DIGIT ONE}",
      u"\u00e9", u"K",       u"k",       u"\u017f", u"\U00010400"};
  static const std::vector<std::u16string> small_classes = {
      u"\\d", u"\\s", u"\\h", u"\\v", u"\\p{Lu}", u"\\p{Greek}", u"[:digit:]", u"[:lower:]"};
  static const std::vector<std::u16string> large_classes = {
      u"\\D",      u"\\w",      u"\\W",       u"\\V",        u"\\P{Ll}",
      u"\\p{IsL}", u"\\p{all}", u"\\p{word}", u"[:^alpha:]", u"\\P{InBasicLatin}"};
  static const std::vector<std::u16string> operators = {u"&&", u"--", u"&", u"-"};
  const auto pick = [&random](const std::vector<std::u16string>& from) {
    return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
  };
  const auto below = [&random](int limit, int range) {
    return std::uniform_int_distribution<int>(0, range - 1)(random) < limit;
  };
  std::u16string set = u"[";
  if (below(1, 4) && !(case_insensitive && depth > 0)) set += u'^';
  const int items = std::uniform_int_distribution<int>(1, 5)(random);
  for (int i = 0; i < items; ++i) {
    const int kind = std::uniform_int_distribution<int>(0, 9)(random);
    if (kind < 3) {
      set += pick(literals);
    } else if (kind < 4) {
      set += pick(literals) + u"-" + pick(literals);
    } else if (kind < 6 && depth < 3) {
      set += random_set(random, case_insensitive, depth + 1);
    } else if (kind < 8) {
      set += pick(case_insensitive || below(1, 2) ? small_classes : large_classes);
    } else {
      set += pick(operators);
    }
  }
  return set + u"]";
}

// The code points a random set is compared on.
const icu::UnicodeSet& sample() {
  static const icu::UnicodeSet set = [] {
    icu::UnicodeSet sample(0, 0x24F);
    for (const UChar32 c : {0x391, 0x3B1, 0x660, 0x1E9E, 0x212A, 0xD800, 0x10400, 0x10428}) {
      sample.add(c);
    }
    return sample;
  }();
  return set;
}

// What ICU's `pattern` matches of the sample, one code point at a time; false
// if ICU rejects the pattern.
bool icu_sample_members(const std::u16string& pattern, uint32_t flags, icu::UnicodeSet& members) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError where{};
  const std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
      icu::UnicodeString(pattern.data(), static_cast<int32_t>(pattern.size())),
      flags | UREGEX_DOTALL, where, status));
  if (U_FAILURE(status)) return false;
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(status));
  members.clear();
  const icu::UnicodeSet& of = sample();
  for (int32_t i = 0; i < of.getRangeCount(); ++i) {
    for (UChar32 c = of.getRangeStart(i); c <= of.getRangeEnd(i); ++c) {
      const icu::UnicodeString one(c);
      matcher->reset(one);
      if (matcher->matches(status)) members.add(c);
    }
  }
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status);
  return true;
}

TEST(ClassSet, RandomBracketSetsMatchWhatIcuMatches) {
  std::mt19937 random(41);
  int compared = 0;
  for (int round = 0; round < 6000; ++round) {
    const bool case_insensitive = std::uniform_int_distribution<int>(0, 3)(random) == 0;
    std::u16string pattern = random_set(random, case_insensitive, 0);
    uint32_t flags = case_insensitive ? UREGEX_CASE_INSENSITIVE : 0;
    if (std::uniform_int_distribution<int>(0, 4)(random) == 0) {
      flags |= UREGEX_COMMENTS;
      std::u16string spaced;
      for (const char16_t unit : pattern) {
        spaced += unit;
        const int space = std::uniform_int_distribution<int>(0, 7)(random);
        if (unit != u'\\' && space < 2) spaced += space == 0 ? u' ' : u'\n';
      }
      pattern = spaced;
    }
    icu::UnicodeSet icu;
    if (!icu_sample_members(pattern, flags, icu)) continue;
    SCOPED_TRACE(scl_regex_test::hex(pattern));
    detail::pattern_lexer lexer(pattern);
    lexer.set_free_spacing((flags & UREGEX_COMMENTS) != 0);
    ASSERT_TRUE(lexer.next().is(u'['));
    const detail::class_set set =
        detail::read_bracket_set(lexer, (flags & UREGEX_CASE_INSENSITIVE) != 0);
    // "[a]]" is a set and a "]": ICU must then take the text read as a set.
    if (lexer.position() < static_cast<int32_t>(pattern.size())) {
      ASSERT_TRUE(icu_sample_members(pattern.substr(0, static_cast<std::size_t>(lexer.position())),
                                     flags, icu));
    }
    icu::UnicodeSet ours = effective(set);
    ours.retainAll(sample());
    expect_same(ours, icu, pattern);
    ++compared;
  }
  EXPECT_GT(compared, 2000);
}

TEST(ClassSet, PropertiesMatchWhatIcuMatches) {
  const std::vector<set_case> cases = {
      {u"\\p{L}", 5},
      {u"\\P{L}+", 5},
      {u"\\p{Script=Greek}", 16},
      {u"\\p{sc=Grek}", 11},
      {u"\\p{javaLowerCase}", 17},
      {u"\\P{javaLowerCase}", 17},
      {u"\\p{InBasicLatin}", 16},
      {u"\\p{IsL}", 7},
      {u"\\p{ L }", 7},
      {u"\\p{word}", 8},
      {u"\\p{all}", 7},
      {u"\\p{Lu}", 6, UREGEX_CASE_INSENSITIVE},
      {u"\\P{Lu}", 6, UREGEX_CASE_INSENSITIVE},
  };
  for (const set_case& test : cases) {
    SCOPED_TRACE(scl_regex_test::hex(test.pattern));
    detail::pattern_lexer lexer(test.pattern);
    ASSERT_TRUE(lexer.next().is(u'\\'));
    const UChar32 letter = lexer.next_raw().c;
    ASSERT_TRUE(letter == u'p' || letter == u'P');
    const detail::class_set set =
        detail::read_property(lexer, letter == u'P', (test.flags & UREGEX_CASE_INSENSITIVE) != 0);
    EXPECT_EQ(set.negated, letter == u'P');
    EXPECT_EQ(lexer.position(), test.end);
    const std::u16string expression = test.pattern.substr(0, static_cast<std::size_t>(test.end));
    expect_same(effective(set), icu_members(expression, test.flags), expression);
  }
}

// The number of capturing groups ICU finds in `pattern`, or -1 if it rejects it.
int32_t icu_group_count(const std::u16string& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError where{};
  const std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
      icu::UnicodeString(pattern.data(), static_cast<int32_t>(pattern.size())), UREGEX_DOTALL,
      where, status));
  if (U_FAILURE(status)) return -1;
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(status));
  return U_SUCCESS(status) ? matcher->groupCount() : -1;
}

TEST(FoldPattern, QuantifiedSharpSIsOneGroup) {
  const detail::fold_table& table = detail::fold_table::get();
  EXPECT_EQ(detail::fold_pattern(table, u"\u00df+").text, u"(?:ss)+");
}

TEST(FoldPattern, KeepsTheCapturingGroups) {
  const detail::fold_table& table = detail::fold_table::get();
  EXPECT_EQ(icu_group_count(detail::fold_pattern(table, u"(a)(?<n>b)\\1").text), 2);
  const std::vector<std::u16string> patterns = {
      u"(a)(?<n>b)\\1",
      u"(a)(b)(c)\\3\\2\\1",
      u"(?<first>x)(?<second>\u00df+)\\k<first>",
      u"(?:a)(b)",
      u"(?<=\u00e9)(c)",
      u"(?<!a(?:b))(d)",
      u"(?=(e))f",
      u"(?!g)(h)",
      u"(?i)(A)(?-i:(B))",
      u"(?x) ( a ) # (not a group)\n (b)",
      u"(?x: (c) [ ( ] )(d)",
      u"(?#comment)(a)",
      u"(?#[x)(a)",
      u"\\Q(a)\\E(b)",
      u"[(](\\()",
      u"(?>(a+))b",
      u"((a)|(b))*\\3",
      u"(?<n>\u00df)(?<m>\u00c6)\\k<n>\\k<m>",
      u"(a)\\10",
      u"(\\p{L}+)\\s(\\d+)",
      u"(?s)(.)(?m)(^$)",
      u"((((((((((a))))))))))\\10",
  };
  for (const std::u16string& pattern : patterns) {
    SCOPED_TRACE(scl_regex_test::hex(pattern));
    const int32_t groups = icu_group_count(pattern);
    ASSERT_GT(groups, 0);
    const detail::folded_pattern folded = detail::fold_pattern(table, pattern);
    EXPECT_EQ(icu_group_count(folded.text), groups) << scl_regex_test::hex(folded.text);
  }
}

TEST(FoldPattern, OriginsPointIntoThePattern) {
  const detail::fold_table& table = detail::fold_table::get();
  const std::u16string pattern = u"stra\u00dfe(";
  const detail::folded_pattern folded = detail::fold_pattern(table, pattern);
  EXPECT_EQ(folded.text, u"strasse(");
  ASSERT_EQ(folded.origin.size(), folded.text.size() + 1);
  for (const int32_t origin : folded.origin) {
    EXPECT_GE(origin, 0);
    EXPECT_LE(origin, static_cast<int32_t>(pattern.size()));
  }
  EXPECT_EQ(folded.origin[folded.text.size() - 1], 6);
  EXPECT_EQ(folded.origin.back(), static_cast<int32_t>(pattern.size()));
  EXPECT_EQ(folded.source_offset(folded.text.size() - 1), 6);
}

}  // namespace
