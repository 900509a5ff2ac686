// search_pattern against ICU's usearch: the root collator at primary strength,
// going forward without overlap (the differential is in
// support/search_differential.h), prevowels against every character of their
// block, UTF-8 with ill-formed sequences, and the header's examples.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <scl/regex/search_pattern.h>

#include "support/search_differential.h"

namespace {

using namespace scl_regex_test::search_differential;

TEST(SearchPatternUsearch, FindsWhatUsearchFindsOnRandomTextInManyScripts) {
  // 10,000 texts of 4 to 43 tokens, 4 queries each: 40,000 query/text pairs.
  failure_log log;
  const differential_counts counts = run_differential({}, 20240611, 10000, 4, log);
  std::printf("search_pattern vs usearch: %s\n", counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  // The exclusions stay narrow, and the comparison has something to compare.
  const long skipped = counts.skipped_total();
  EXPECT_LT(skipped * 20, counts.pairs - counts.folds_to_nothing) << skipped << " pairs skipped";
  EXPECT_GT(counts.compared, counts.pairs * 8 / 10);
  EXPECT_GT(counts.usearch_found * 2, counts.compared);
  EXPECT_GT(counts.folds_to_nothing, 0);
  EXPECT_GT(counts.quoted_compared, counts.pairs * 9 / 10);
}

// Compares search_pattern with usearch on pairs, leaving out what the
// differential leaves out. A disagreement is "documented" when `documented`
// says so for the pair and the library finds a match where usearch finds none
// (the library compares a prevowel in written order, where the collator
// compares it swapped with the character after it); any other disagreement is
// reported.
class pair_comparison {
 public:
  explicit pair_comparison(usearch_oracle& oracle) : oracle_(oracle) {}

  template <class Documented>
  void operator()(const std::u16string& query, const std::u16string& text, Documented documented) {
    if (nfc(query) != query || nfc(text) != text) return;
    if (re::search_fold(query).text().empty()) return;
    // A prevowel swapped on one side is what `documented` judges here.
    const exclusion kind = excluded(oracle_, {}, query, text);
    if (kind != exclusion::none && kind != exclusion::prevowel_swapped_on_one_side) return;
    ++compared;
    bool failed = false;
    const ranges expected = oracle_.find_all(query, text, failed);
    const ranges library = ranges_of(re::search_pattern(query).find_all(text));
    EXPECT_FALSE(failed);
    if (library == expected) return;
    if (expected.empty() && !library.empty() && documented()) {
      ++documented_differences;
    } else if (++disagreements <= 10) {
      ADD_FAILURE() << "query " << hex(query) << " text " << hex(text) << ": search_pattern "
                    << show(library) << ", usearch " << show(expected);
    }
  }

  long compared = 0;
  long disagreements = 0;
  long documented_differences = 0;

 private:
  usearch_oracle& oracle_;
};

// Whether `c` folds to more than one code point (Lao U+0EDC folds to U+0EAB U+0E99).
bool expands(UChar32 c) {
  std::u16string text;
  append_code_point(text, c);
  const std::u16string folded = re::search_fold(text).text();
  int32_t at = 0;
  const auto size = static_cast<int32_t>(folded.size());
  UChar32 first = 0;
  if (size > 0) U16_NEXT(folded.data(), at, size, first);
  return at < size;
}

// Calls `visit(prevowel, c)` for every Logical_Order_Exception prevowel (Thai,
// Lao, New Tai Lue, Tai Viet) and every assigned character `c` of its block.
template <class Visit>
long for_each_prevowel_pair(Visit visit) {
  long prevowels = 0;
  for (UChar32 prevowel = 0; prevowel <= 0xFFFF; ++prevowel) {
    if (!u_hasBinaryProperty(prevowel, UCHAR_LOGICAL_ORDER_EXCEPTION)) continue;
    ++prevowels;
    const UBlockCode block = ublock_getCode(prevowel);
    for (UChar32 c = 0; c <= 0xFFFF; ++c) {
      if (ublock_getCode(c) == block && u_charType(c) != U_UNASSIGNED) visit(prevowel, c);
    }
  }
  return prevowels;
}

// Every prevowel before every character of its block: the pair, its fold and
// the second character alone, in the pair and in a longer text.
TEST(SearchPatternUsearch, PrevowelsBeforeEveryCharacterOfTheirBlock) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  pair_comparison compare(oracle);
  const long prevowels = for_each_prevowel_pair([&](UChar32 prevowel, UChar32 c) {
    std::u16string pair;
    append_code_point(pair, prevowel);
    append_code_point(pair, c);
    std::u16string alone;
    append_code_point(alone, c);
    const std::u16string folded = nfc(re::search_fold(pair).text());
    // A prevowel before a character that expands (Lao U+0EDC) is one of the
    // documented differences: its fold puts the prevowel before a consonant
    // that the collator would swap it with.
    const bool documented = expands(c);
    for (const std::u16string& text : {pair, u"a" + pair + u"a"}) {
      for (const std::u16string& query : {pair, folded, alone}) {
        compare(query, text, [&] { return documented; });
      }
    }
  });
  std::printf(
      "prevowel pairs: %ld prevowels, %ld query/text pairs compared, %ld documented differences, "
      "%ld other disagreements\n",
      prevowels, compare.compared, compare.documented_differences, compare.disagreements);
  EXPECT_EQ(compare.disagreements, 0);
  EXPECT_LT(compare.documented_differences, compare.compared / 100);
  EXPECT_GE(prevowels, 19);
  EXPECT_GT(compare.compared, 5000);
}

// A prevowel and the character after it written apart by a character the
// collator ignores (soft hyphen, a mark, ZWJ, U+0000), against the two
// adjacent: the collator swaps a prevowel and its consonant only when they are
// adjacent.
TEST(SearchPatternUsearch, PrevowelWrittenApartFromTheNextCharacter) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  pair_comparison compare(oracle);
  const std::u16string apart[] = {u"\u00AD", u"\u0301", u"\u200D", std::u16string(1, u'\0')};
  for_each_prevowel_pair([&](UChar32 prevowel, UChar32 c) {
    std::u16string pair;
    append_code_point(pair, prevowel);
    append_code_point(pair, c);
    for (const std::u16string& between : apart) {
      std::u16string separated;
      append_code_point(separated, prevowel);
      separated += between;
      append_code_point(separated, c);
      // Written apart on one side only: a documented difference. The same
      // form on both sides must agree.
      compare(pair, separated, [] { return true; });
      compare(separated, pair, [] { return true; });
      compare(separated, separated, [] { return false; });
    }
  });
  std::printf(
      "prevowel written apart: %ld query/text pairs compared, %ld documented differences, %ld "
      "other disagreements\n",
      compare.compared, compare.documented_differences, compare.disagreements);
  EXPECT_EQ(compare.disagreements, 0);
  EXPECT_GT(compare.compared, 5000);
  EXPECT_GT(compare.documented_differences, 0);
}

// UTF-8 text with ill-formed sequences: the library reads each maximal subpart
// as U+FFFD, so its matches are those in the text ICU's U8_NEXT_OR_FFFD reads,
// and replace_all keeps every byte outside them.
TEST(SearchPatternUtf8, IllFormedSequencesReadAsReplacementCharacters) {
  // 2,000 texts, 4 queries each: 8,000 pairs.
  constexpr int kTexts = 2000;
  constexpr int kQueriesPerText = 4;
  generator make(7);
  failure_log log;
  long pairs = 0;
  long found = 0;
  for (int t = 0; t < kTexts; ++t) {
    std::u16string read;
    const utf8_text damaged = read_utf8(make.damaged_utf8(make.text()), read);
    if (read.empty()) continue;
    for (int k = 0; k < kQueriesPerText; ++k) {
      const std::u16string query = k + 1 == kQueriesPerText ? make.word() : make.query_from(read);
      ++pairs;
      const re::search_pattern pattern(query);
      const ranges expected = ranges_of(pattern.find_all(read));
      const std::vector<re::source_match> matches = pattern.find_all(damaged.bytes);
      const ranges bytes = ranges_of(matches);
      const std::string where = "query " + hex(query) + " text read as " + hex(read);
      if (!expected.empty()) ++found;
      if (!well_formed(matches, damaged.bytes.size())) {
        log.add("UTF-8 matches out of order, overlapping or with wrong groups", where);
      }
      if (to_utf16(bytes, damaged) != expected) {
        log.add("UTF-8 find_all differs from UTF-16 on the text as read",
                where + " UTF-16 " + show(expected) + " UTF-8 bytes " + show(bytes));
      }
      check_utf8_agreement(pattern, damaged.bytes, bytes, log, where);
    }
  }
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(found * 2, pairs);
}

// The header's examples, each also checked against usearch.
TEST(SearchPatternUsearch, HeaderExamplesAgreeWithUsearch) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  struct example {
    std::u16string query;
    std::u16string text;
    ranges expected;
  };
  const example examples[] = {
      {u"lodz", u"\u0141\u00F3d\u017A, \u0141OD\u0179", {{0, 4}, {6, 10}}},
      {u"usb", u"\uFF35\uFF33\uFF22 cable", {{0, 3}}},
      {u"\u0141\u00F3d\u017A", u"lodz", {{0, 4}}},
      {u"ss", u"\u00DFs", {{0, 1}}},
      {u"s", u"\u00DF", {}},         // not inside ß
      {u"e", u"e\u0301", {{0, 2}}},  // the mark comes along
      {u"a", u"\u00ADa", {{1, 2}}},  // the soft hyphen does not
      {u"\U0001F469",
       u"\U0001F469\u200D\U0001F4BB",
       {{0, 3}}},                                          // 👩 in 👩‍💻, with the ZWJ
      {u"\U0001F4BB", u"\U0001F469\u200D\U0001F4BB", {}},  // 💻 does not start a cluster
      {u"naive", u"NA\u00CFVE na\u00EFve", {{0, 5}, {6, 11}}},
      {u"\u0939\u093F\u0928\u0926\u0940", u"\u0939\u093F\u0928\u094D\u0926\u0940", {}},  // virama
      {u"i", u"\u0131", {}},             // ı is not i
      {u"\u0438", u"\u0439", {}},        // и is not й
      {u"th", u"\u00FE", {}},            // þ is not th
      {u"\u0E01", u"\u0E40\u0E01", {}},  // no edge inside เก
      {u"\u0E40", u"\u0E40\u0E01", {}},
      {u"kobenhavn", u"K\u00F8benhavn", {{0, 9}}},
      {u"123", u"\u0661\u0662\u0663", {{0, 3}}},
      {u"\u304B", u"\u304C", {{0, 1}}},  // か in が
  };
  for (const example& e : examples) {
    const ranges library = ranges_of(re::search_pattern(e.query).find_all(e.text));
    bool failed = false;
    const ranges usearch = oracle.find_all(e.query, e.text, failed);
    EXPECT_EQ(library, e.expected) << "query " << hex(e.query) << " text " << hex(e.text) << ": "
                                   << show(library) << ", expected " << show(e.expected);
    EXPECT_FALSE(failed);
    EXPECT_EQ(usearch, e.expected)
        << "usearch on query " << hex(e.query) << " text " << hex(e.text) << ": " << show(usearch);
  }

  EXPECT_TRUE(re::search_pattern(u"lodz").found_in("Lodz"));
  EXPECT_EQ(re::search_pattern("cafe").replace_all("Caf\xc3\xa9 cr\xc3\xa8me", "tea"),
            "tea cr\xc3\xa8me");
}

// The differences the header documents, so that the comparison above may
// leave them out: a contraction read as its parts, a query that ends in a
// prevowel, and a prevowel swapped on one side only.
TEST(SearchPatternUsearch, DocumentedDifferencesFromUsearch) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  bool failed = false;
  // Sara aa written after nikhahit: the collator reads sara am, the fold reads sara aa.
  EXPECT_TRUE(oracle.find_all(u"\u0E32", u"\u0E4D\u0E32", failed).empty());
  EXPECT_TRUE(re::search_pattern(u"\u0E32").found_in(u"\u0E4D\u0E32"));
  // ก่ไ in ไก: the collator compares the text's prevowel after its consonant.
  EXPECT_EQ(oracle.find_all(u"\u0E01\u0E48\u0E44", u"\u0E44\u0E01", failed), (ranges{{0, 2}}));
  EXPECT_FALSE(re::search_pattern(u"\u0E01\u0E48\u0E44").found_in(u"\u0E44\u0E01"));
  // A prevowel swapped in the query, not in the text (before a space, at the
  // end): usearch finds the text's consonant and prevowel.
  for (const std::u16string_view text : {u"\u0E27\u0E41 ", u"\u0E27\u0E41"}) {
    EXPECT_EQ(oracle.find_all(u"\u0E41\u0E27", text, failed), (ranges{{0, 2}}));
    EXPECT_FALSE(re::search_pattern(u"\u0E41\u0E27").found_in(text));
    EXPECT_EQ(excluded(oracle, {}, u"\u0E41\u0E27", text), exclusion::prevowel_swapped_on_one_side);
  }
  // Swapped on both sides, or on neither: no difference.
  EXPECT_EQ(excluded(oracle, {}, u"\u0E41\u0E27", u"\u0E41\u0E27 "), exclusion::none);
  EXPECT_EQ(excluded(oracle, {}, u"\u0E27\u0E41 ", u"\u0E27\u0E41 "), exclusion::none);
  EXPECT_FALSE(failed);
}

}  // namespace
