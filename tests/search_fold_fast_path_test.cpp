// The fold's fast paths (blocks of Latin units, the map's aligned runs read
// eight units at a time) against the plain mechanism they stand for: each
// character folded on its own, one at a time, and a plain loop over the map.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "scl/regex/search_pattern.h"
#include "search/fold_map.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/search_settings.h"
#include "search/unit_scan.h"
#include "support/hex.h"
#include "support/search_support.h"

namespace {

namespace re = scl::regex;
namespace detail = scl::regex::detail;

// What the loop that aligned_run_end speeds up gives.
std::size_t plain_aligned_run_end(const std::vector<char16_t>& units,
                                  const std::vector<int32_t>& origin, std::size_t from,
                                  std::size_t last) {
  while (from < last && !U16_IS_SURROGATE(units[from]) && origin[from + 1] == origin[from] + 1) {
    ++from;
  }
  return from;
}

TEST(AlignedRunEnd, IsWhereThePlainLoopStops) {
  std::mt19937 random(29);
  for (int round = 0; round < 20000; ++round) {
    const std::size_t size = 1 + random() % 40;
    std::vector<char16_t> units(size);
    std::vector<int32_t> origin(size);
    int32_t at = static_cast<int32_t>(random() % 100);
    for (std::size_t i = 0; i < size; ++i) {
      origin[i] = at;
      const unsigned step = random() % 24;  // mostly one unit on
      at += step == 0 ? 0 : step == 1 ? 2 : 1;
      const unsigned kind = random() % 40;
      units[i] = kind == 0   ? static_cast<char16_t>(0xD800 + random() % 0x800)
                 : kind == 1 ? char16_t{0xD7FF}
                 : kind == 2 ? char16_t{0xE000}
                             : static_cast<char16_t>(u'a' + random() % 26);
    }
    const std::size_t last = size - 1;
    for (std::size_t from = 0; from <= last; ++from) {
      ASSERT_EQ(detail::aligned_run_end(units.data(), origin.data(), from, last),
                plain_aligned_run_end(units, origin, from, last))
          << "round " << round << ", from " << from;
    }
  }
}

// Characters that fold on their own, whatever is around them: those below
// U+0300 that the table's Latin fast path takes, and a few it leaves to the
// general path (Cyrillic, kana, Han, an emoji of two units).
std::vector<UChar32> context_free_alphabet(const detail::fold_table& table) {
  std::vector<UChar32> alphabet;
  for (char16_t c = 0; c < detail::fold_table::latin_limit; ++c) {
    if (table.latin(c) != detail::fold_table::latin_slow) alphabet.push_back(c);
  }
  for (const UChar32 c : {0x416, 0x436, 0x3042, 0x30A2, 0x4E00, 0x1F600}) alphabet.push_back(c);
  return alphabet;
}

// Random text from `alphabet`: mostly its ASCII letters and spaces, in long
// runs, with the rest of it mixed in.
std::vector<UChar32> random_text(std::mt19937& random, const std::vector<UChar32>& alphabet) {
  std::vector<UChar32> common;
  for (const UChar32 c : alphabet) {
    if (c == u' ' || (c < 0x80 && u_isalpha(c))) common.push_back(c);
  }
  std::vector<UChar32> text(random() % 80);
  const unsigned mix = 1 + random() % 16;  // one character in `mix` from the whole alphabet
  for (UChar32& c : text) {
    const std::vector<UChar32>& from = random() % mix == 0 ? alphabet : common;
    c = from[random() % from.size()];
  }
  return text;
}

template <class Unit>
std::basic_string<Unit> encoded(const std::vector<UChar32>& code_points) {
  std::basic_string<Unit> out;
  for (const UChar32 c : code_points) {
    if constexpr (sizeof(Unit) == 2) {
      scl_regex_test::append_code_point(out, c);
    } else {
      char bytes[U8_MAX_LENGTH];
      int32_t length = 0;
      U8_APPEND_UNSAFE(bytes, length, c);
      out.append(bytes, static_cast<std::size_t>(length));
    }
  }
  return out;
}

// The fold of `text` as each character folds alone, one after the other:
// units, the origin of each, and the empty pieces.
template <class Unit>
void fold_one_at_a_time(const detail::fold_table& table, const std::vector<UChar32>& text,
                        std::vector<char16_t>& units, std::vector<int32_t>& origin,
                        std::vector<int32_t>& empty) {
  int32_t at = 0;
  detail::folded_text alone;
  for (const UChar32 c : text) {
    const std::basic_string<Unit> character = encoded<Unit>({c});
    detail::fold_text(table, character.data(), static_cast<int32_t>(character.size()), false,
                      alone);
    for (int32_t i = 0; i < alone.size; ++i) {
      units.push_back(alone.units[static_cast<std::size_t>(i)]);
      origin.push_back(at + alone.origin[static_cast<std::size_t>(i)]);
    }
    for (const int32_t piece : alone.empty_pieces) empty.push_back(at + piece);
    at += static_cast<int32_t>(character.size());
  }
}

template <class Unit>
void expect_folds_as_one_at_a_time(const detail::fold_table& table,
                                   const std::vector<UChar32>& text) {
  std::vector<char16_t> units;
  std::vector<int32_t> origin;
  std::vector<int32_t> empty;
  fold_one_at_a_time<Unit>(table, text, units, origin, empty);
  const std::basic_string<Unit> encoded_text = encoded<Unit>(text);
  detail::folded_text folded;
  detail::fold_text(table, encoded_text.data(), static_cast<int32_t>(encoded_text.size()), false,
                    folded);
  const auto size = static_cast<std::size_t>(folded.size);
  ASSERT_EQ(std::vector<char16_t>(folded.units.data(), folded.units.data() + size), units);
  ASSERT_EQ(std::vector<int32_t>(folded.origin.data(), folded.origin.data() + size), origin);
  ASSERT_EQ(folded.empty_pieces, empty);
}

// search_fold's map as the pieces of the characters say: each character is
// a piece of its own.
void expect_map_of_pieces(const re::search_options& options, const std::vector<UChar32>& text) {
  const std::u16string source = encoded<char16_t>(text);
  const re::prepared_text folded = re::search_fold(source, options);
  std::u16string units;
  std::vector<std::pair<std::size_t, std::size_t>> piece_of_unit;
  std::size_t at = 0;
  for (const UChar32 c : text) {
    const std::size_t length = U16_LENGTH(c);
    const std::u16string alone = re::search_fold(encoded<char16_t>({c}), options).text();
    units += alone;
    piece_of_unit.insert(piece_of_unit.end(), alone.size(), {at, at + length});
    at += length;
  }
  ASSERT_EQ(folded.text(), units);
  ASSERT_EQ(folded.source_size(), source.size());
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    ASSERT_EQ(folded.source_range(unit, unit + 1), piece_of_unit[unit]) << "unit " << unit;
    ASSERT_EQ(folded.source_range(unit, unit).first, piece_of_unit[unit].first) << "unit " << unit;
    if (unit + 1 < units.size()) {
      ASSERT_EQ(folded.source_range(unit, units.size()),
                std::make_pair(piece_of_unit[unit].first, piece_of_unit.back().second));
    }
  }
}

struct fast_path_case {
  re::search_options options;
  std::string name;
};

class FoldFastPath : public testing::TestWithParam<fast_path_case> {};

TEST_P(FoldFastPath, FoldsAsEachCharacterAloneInUtf16AndUtf8) {
  const re::search_options& options = GetParam().options;
  const detail::search_locale& locale = detail::search_settings::validate(options);
  const detail::fold_table& table =
      locale.collation->table(detail::search_settings::text_fold(options));
  const std::vector<UChar32> alphabet = context_free_alphabet(table);
  std::mt19937 random(2029);
  for (int round = 0; round < 1500; ++round) {
    const std::vector<UChar32> text = random_text(random, alphabet);
    SCOPED_TRACE("round " + std::to_string(round));
    expect_folds_as_one_at_a_time<char16_t>(table, text);
    expect_folds_as_one_at_a_time<char>(table, text);
    expect_map_of_pieces(options, text);
  }
}

TEST_P(FoldFastPath, FoldsEveryLatinCharacterInARunAsAlone) {
  // Each character of the Latin range eight times over, between letters:
  // a block of its own, and blocks it breaks.
  const re::search_options& options = GetParam().options;
  const detail::search_locale& locale = detail::search_settings::validate(options);
  const detail::fold_table& table =
      locale.collation->table(detail::search_settings::text_fold(options));
  for (const UChar32 c : context_free_alphabet(table)) {
    std::vector<UChar32> text = {u'x', u'y', u'z'};
    text.insert(text.end(), 8, c);
    text.insert(text.end(), {u'b', c, u'b', u'c', u'd', u'e', u'f', u'g', u'h', c});
    SCOPED_TRACE("U+" + scl_regex_test::hex(scl_regex_test::from_code_point(c)));
    expect_folds_as_one_at_a_time<char16_t>(table, text);
    expect_folds_as_one_at_a_time<char>(table, text);
    expect_map_of_pieces(options, text);
  }
}

TEST(FoldFastPath, LeavesTheFirstUnitPastTheLatinRangeToTheGeneralPath) {
  // U+0300 right past the range, at each place of a block: it joins the
  // letter before it, as a mark does.
  for (std::size_t at = 1; at <= 17; ++at) {
    const std::u16string letters = u"abcdefghijklmnopqrstuvwxyz";
    const std::u16string text = letters.substr(0, at) + u'\u0300' + letters.substr(at);
    const re::prepared_text folded = re::search_fold(text);
    SCOPED_TRACE("at " + std::to_string(at));
    EXPECT_EQ(folded.text(), u"abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(folded.source_range(at - 1, at), std::make_pair(at - 1, at + 1));
    EXPECT_EQ(folded.source_range(at, at + 1), std::make_pair(at + 1, at + 2));
  }
}

// Text of every kind the fold meets: long runs of Latin letters, with marks
// (decomposed letters, marks NFC reorders), controls and soft hyphens, the
// dot of "l\u00b7", ligatures, Hangul, kana, surrogate pairs and lone
// surrogates, Danish "aa", and letters past the Latin range.
std::u16string mixed_text(std::mt19937& random) {
  static const std::vector<std::u16string> pieces = {u"e\u0301",
                                                     u"\u0316\u0301",
                                                     u"\u0301\u0316",
                                                     std::u16string(1, u'\0'),
                                                     u"\u00ad",
                                                     u"l\u00b7",
                                                     u"\u0153",
                                                     u"\ufb01",
                                                     u"\uac00",
                                                     u"\u1100\u1161",
                                                     u"\u304b\u3099",
                                                     u"\U0001F600",
                                                     std::u16string(1, char16_t{0xD800}),
                                                     std::u16string(1, char16_t{0xDC00}),
                                                     u"Aa",
                                                     u"aa",
                                                     u"\u0418\u0306",
                                                     u"\u0e40\u0e01",
                                                     u"\t",
                                                     u"\u00df"};
  std::u16string text;
  const std::size_t parts = random() % 12;
  for (std::size_t part = 0; part < parts; ++part) {
    const std::size_t letters = random() % 60;
    for (std::size_t i = 0; i < letters; ++i) {
      text += static_cast<char16_t>(random() % 12 == 0 ? u' ' : u'a' + random() % 26);
    }
    text += pieces[random() % pieces.size()];
  }
  return text;
}

TEST_P(FoldFastPath, MapIsTheSameWithTheNotedBlocksAsWithout) {
  const re::search_options& options = GetParam().options;
  const detail::search_locale& locale = detail::search_settings::validate(options);
  const detail::fold_table& table =
      locale.collation->table(detail::search_settings::text_fold(options));
  std::mt19937 random(1729);
  detail::folded_text noted;
  detail::folded_text plain;
  noted.note_aligned = true;
  std::size_t runs = 0;
  for (int round = 0; round < 600; ++round) {
    const std::u16string text = mixed_text(random);
    SCOPED_TRACE(scl_regex_test::hex(text));
    const auto size = static_cast<int32_t>(text.size());
    detail::fold_text(table, text.data(), size, false, noted);
    detail::fold_text(table, text.data(), size, false, plain);
    ASSERT_TRUE(plain.aligned.empty());
    ASSERT_EQ(noted.text(), plain.text());
    runs += noted.aligned.size();
    const std::vector<detail::map_stretch> with = detail::map_of(noted, text);
    const std::vector<detail::map_stretch> without = detail::map_of(plain, text);
    ASSERT_EQ(with.size(), without.size());
    for (std::size_t i = 0; i < with.size(); ++i) {
      ASSERT_EQ(with[i].prepared, without[i].prepared) << "stretch " << i;
      ASSERT_EQ(with[i].source, without[i].source) << "stretch " << i;
      ASSERT_EQ(with[i].aligned, without[i].aligned) << "stretch " << i;
    }
  }
  EXPECT_GT(runs, 100U) << "too few aligned runs to prove anything";
}

std::vector<fast_path_case> fast_path_cases() {
  std::vector<fast_path_case> cases;
  for (const char* locale : {"", "da", "sv", "tr"}) {
    for (int toggles = 0; toggles < 8; ++toggles) {
      fast_path_case c;
      c.options.match_case = (toggles & 1) != 0;
      c.options.diacritics =
          (toggles & 2) != 0 ? re::diacritics_rule::match : re::diacritics_rule::ignore;
      c.options.ignore_punctuation = (toggles & 4) != 0;
      c.options.locale = locale;
      c.name = std::string(*locale != '\0' ? locale : "root") + "_" + std::to_string(toggles);
      cases.push_back(c);
    }
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Options, FoldFastPath, testing::ValuesIn(fast_path_cases()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
