// The search fold's internals: the table computed at build time against the
// one built from the running ICU, and grapheme boundaries against ICU's
// character break iterator.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "search/collation_tag.h"
#include "search/fold_collation.h"
#include "search/fold_table.h"
#include "search/fold_table_build.h"
#include "search/fold_table_data.h"
#include "search/grapheme_boundary.h"
#include "support/hex.h"

namespace {

namespace detail = scl::regex::detail;

template <class T>
std::vector<T> as_vector(const T* data, std::size_t count) {
  return std::vector<T>(data, data + count);
}

bool same_composites(const std::vector<detail::composite_unit>& a,
                     const std::vector<detail::composite_unit>& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
           return std::memcmp(&x, &y, sizeof x) == 0;
         });
}

// Expects the lists computed at build time to be those of `image`.
void expect_lists(const detail::fold_tables_image& image,
                  const detail::fold_table_data::collation_lists& lists) {
  ASSERT_EQ(image.prevowel_pairs.size(), lists.characters.prevowel_pair_count);
  for (std::size_t i = 0; i < image.prevowel_pairs.size(); ++i) {
    EXPECT_EQ(image.prevowel_pairs[i].first, lists.characters.prevowel_pairs[i].first);
    EXPECT_EQ(image.prevowel_pairs[i].second, lists.characters.prevowel_pairs[i].second);
  }
  EXPECT_EQ(image.dropped_starts,
            as_vector(lists.characters.dropped_starts, lists.characters.dropped_start_count));
  EXPECT_EQ(image.variable_ends,
            as_vector(lists.characters.variable_ends, lists.characters.variable_end_count));
  for (std::size_t c = 0; c < 2; ++c) {
    EXPECT_TRUE(same_composites(
        image.composites[c],
        as_vector(lists.characters.composites[c], lists.characters.composite_count[c])));
  }
  for (std::size_t t = 0; t < image.contractions.size(); ++t) {
    EXPECT_EQ(
        detail::stored_contractions(image.contractions[t]),
        std::u16string(lists.contractions[t], lists.contractions[t] + lists.contractions_size[t]));
  }
}

// Expects the tables computed at build time to be `image`, as the running ICU
// computes them.
void expect_built_in(const detail::fold_tables_image& image,
                     const detail::fold_table_data::collation_tables& data) {
  for (int index = 0; index < detail::fold_variant::count; ++index) {
    SCOPED_TRACE("variant " + std::to_string(index));
    const auto at = static_cast<std::size_t>(index);
    const detail::fold_table_image& table = image.tables[at];
    ASSERT_EQ(table.trie.size(), data.tables[at].trie_size);
    EXPECT_EQ(std::memcmp(table.trie.data(), data.tables[at].trie, table.trie.size()), 0);
    EXPECT_EQ(table.pool, std::u16string(data.tables[at].pool, data.tables[at].pool_size));
  }
  expect_lists(image, data.lists);
}

TEST(FoldTable, BuiltInIsWhatTheRunningIcuGives) {
  detail::fold_tables_image image;
  ASSERT_EQ(detail::build_fold_tables(image), U_ZERO_ERROR);
  expect_built_in(image, detail::fold_table_data::root);

  // Tables loaded from the rebuilt image read the same values.
  const detail::fold_table_lists lists = detail::lists_of(image, 0);
  for (int index = 0; index < detail::fold_variant::count; ++index) {
    SCOPED_TRACE("variant " + std::to_string(index));
    const detail::fold_variant variant = detail::fold_variant::at(index);
    const detail::fold_table_image& table = image.tables[static_cast<std::size_t>(index)];
    UErrorCode status = U_ZERO_ERROR;
    const detail::fold_table rebuilt(detail::fold_collation::root(), variant, table.trie.data(),
                                     table.trie.size(), table.pool.c_str(), lists, status);
    ASSERT_EQ(status, U_ZERO_ERROR);
    const detail::fold_table& built_in = detail::fold_table::get(variant);
    EXPECT_EQ(built_in.variant(), variant);
    for (UChar32 c = 0; c < 0x110000; ++c) ASSERT_EQ(rebuilt.value(c), built_in.value(c)) << c;
    for (char16_t c = 0; c < detail::fold_table::latin_limit; ++c) {
      ASSERT_EQ(rebuilt.latin(c), built_in.latin(c)) << c;
    }
  }
}

// The root's search collation, which most languages use, is computed at build
// time too; a language's own is built at its first use, from the bits of the
// root's table, and gives the same tables.
TEST(FoldTable, BuiltInSearchCollationIsWhatTheRunningIcuGives) {
  namespace data = detail::fold_table_data;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Collator> collator(
      icu::Collator::createInstance(icu::Locale("@collation=search"), status));
  ASSERT_EQ(status, U_ZERO_ERROR);
  EXPECT_EQ(collator->getLocale(ULOC_ACTUAL_LOCALE, status).toLanguageTag<std::string>(status),
            data::search_tag);
  EXPECT_STREQ(data::search_tag, "und-u-co-search");
  EXPECT_EQ(&detail::fold_collation::of("cs"), &detail::fold_collation::of("und-u-co-search"));
  EXPECT_EQ(detail::fold_collation::of("cs").tag(), data::search_tag);

  detail::fold_tables_image image;
  ASSERT_EQ(detail::build_fold_tables(collator->toUCollator(), image), U_ZERO_ERROR);
  expect_built_in(image, data::search);

  constexpr std::uint32_t fold_bits =
      3U << detail::fold_value::kind_shift | detail::fold_value::payload_mask;
  std::vector<std::uint32_t> bits(0x110000);
  for (UChar32 c = 0; c < 0x110000; ++c) {
    bits[static_cast<std::size_t>(c)] = detail::fold_table::get().value(c) & ~fold_bits;
  }
  detail::fold_tables_image at_first_use;
  ASSERT_EQ(detail::build_fold_table(collator->toUCollator(), {}, bits, at_first_use),
            U_ZERO_ERROR);
  EXPECT_EQ(at_first_use.tables[0].trie, image.tables[0].trie);
  EXPECT_EQ(at_first_use.tables[0].pool, image.tables[0].pool);

  // The embedded tables load as the others do, contractions included.
  const detail::fold_table& loaded = detail::fold_collation::of("cs").table({});
  const auto loaded_count =
      static_cast<std::size_t>(loaded.contractions_end() - loaded.contractions_begin());
  ASSERT_EQ(loaded_count, image.contractions[0].size());
  for (std::size_t i = 0; i < loaded_count; ++i) {
    EXPECT_EQ(loaded.contractions_begin()[i].text, image.contractions[0][i].text);
    EXPECT_EQ(loaded.contractions_begin()[i].fold, image.contractions[0][i].fold);
  }
}

// Expects `a` and `b` to fold every code point alike, with the same bits.
void expect_same_folds(const detail::fold_table& a, const detail::fold_table& b) {
  constexpr std::uint32_t fold_bits =
      3U << detail::fold_value::kind_shift | detail::fold_value::payload_mask;
  for (UChar32 c = 0; c < 0x110000; ++c) {
    const std::uint32_t x = a.value(c);
    const std::uint32_t y = b.value(c);
    ASSERT_EQ(x & ~fold_bits, y & ~fold_bits) << c;
    ASSERT_EQ(detail::fold_value::kind(x), detail::fold_value::kind(y)) << c;
    if (detail::fold_value::kind(x) == detail::fold_kind::pool) {
      ASSERT_EQ(a.pool_fold(x), b.pool_fold(y)) << c;
      ASSERT_EQ(a.starts_contractions(x), b.starts_contractions(y)) << c;
    } else {
      ASSERT_EQ(x & fold_bits, y & fold_bits) << c;
    }
  }
}

// The languages' own search collations are computed at build time as changes
// to the root's search collation: each loads as the table that the running
// ICU's collator gives when built at first use.
class LanguageTable : public testing::TestWithParam<const char*> {};

TEST_P(LanguageTable, IsWhatTheRunningIcuBuilds) {
  namespace data = detail::fold_table_data;
  const detail::fold_collation& collation = detail::fold_collation::of(GetParam());
  const std::string& tag = collation.tag();
  const data::language_collation* end = data::languages + data::language_count;
  const data::language_collation* stored = std::find_if(
      data::languages, end, [&](const data::language_collation& l) { return l.tag == tag; });
  ASSERT_NE(stored, end) << tag;

  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Collator> collator(
      icu::Collator::createInstance(icu::Locale::forLanguageTag(tag, status), status));
  ASSERT_FALSE(U_FAILURE(status));
  constexpr std::uint32_t fold_bits =
      3U << detail::fold_value::kind_shift | detail::fold_value::payload_mask;
  std::vector<std::uint32_t> bits(0x110000);
  for (UChar32 c = 0; c < 0x110000; ++c) {
    bits[static_cast<std::size_t>(c)] = detail::fold_table::get().value(c) & ~fold_bits;
  }
  // The default variant, and the one with every toggle.
  for (const detail::fold_variant variant :
       {detail::fold_variant{}, detail::fold_variant{true, true, true}}) {
    SCOPED_TRACE("variant " + std::to_string(variant.index()));
    const auto index = static_cast<std::size_t>(variant.index());
    detail::fold_tables_image image;
    ASSERT_EQ(detail::build_fold_table(collator->toUCollator(), variant, bits, image),
              U_ZERO_ERROR);
    const detail::fold_table_lists lists = detail::lists_of(image, index);
    const detail::fold_table built(collation, variant, image.tables[index].trie.data(),
                                   image.tables[index].trie.size(),
                                   image.tables[index].pool.c_str(), lists, status);
    ASSERT_EQ(status, U_ZERO_ERROR);
    expect_same_folds(built, collation.table(variant));
    EXPECT_EQ(detail::stored_contractions(image.contractions[index]),
              std::u16string(stored->changes->lists.contractions[index],
                             stored->changes->lists.contractions[index] +
                                 stored->changes->lists.contractions_size[index]));
    if (variant.accents) {
      const std::size_t c = variant.case_level ? 1 : 0;
      EXPECT_TRUE(same_composites(image.composites[c],
                                  as_vector(stored->changes->lists.characters.composites[c],
                                            stored->changes->lists.characters.composite_count[c])));
    }
    EXPECT_EQ(image.dropped_starts,
              as_vector(stored->changes->lists.characters.dropped_starts,
                        stored->changes->lists.characters.dropped_start_count));
    EXPECT_EQ(image.variable_ends, as_vector(stored->changes->lists.characters.variable_ends,
                                             stored->changes->lists.characters.variable_end_count));
    ASSERT_EQ(image.prevowel_pairs.size(), stored->changes->lists.characters.prevowel_pair_count);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, LanguageTable,
                         testing::Values("da", "sv", "tr", "sk", "ca", "de", "ko"));

TEST(FoldTable, KnowsEveryLanguagesSearchCollationByTag) {
  namespace data = detail::fold_table_data;
  ASSERT_GE(data::language_count, 15U);
  for (std::size_t i = 0; i < data::language_count; ++i) {
    const std::string tag = data::languages[i].tag;
    SCOPED_TRACE(tag);
    if (i != 0) {
      EXPECT_LT(std::string(data::languages[i - 1].tag), tag);
    }
    EXPECT_NE(tag.find("-u-co-search"), std::string::npos);
    EXPECT_EQ(detail::fold_collation::of(tag).tag(), tag);
  }
  EXPECT_EQ(detail::fold_collation::of("nb").tag(), "no-u-co-search");
  EXPECT_EQ(detail::fold_collation::of("bs").tag(), "bs-u-co-search");
}

TEST(FoldTable, StoredContractionsReadBackAsTheyWere) {
  const std::vector<detail::contraction_fold> contractions = {
      {u"aa", u"\u00e5"}, {u"ch", u"\u00e5h"}, {u"l\u00b7", u""}, {u"\U0001F600x", u"x"}};
  const std::u16string stored = detail::stored_contractions(contractions);
  EXPECT_EQ(stored.size(), 2 * contractions.size() + 2 + 1 + 2 + 2 + 2 + 0 + 3 + 1);
  const std::vector<detail::contraction_fold> read =
      detail::stored_contractions(stored.data(), stored.size());
  ASSERT_EQ(read.size(), contractions.size());
  for (std::size_t i = 0; i < read.size(); ++i) {
    EXPECT_EQ(read[i].text, contractions[i].text);
    EXPECT_EQ(read[i].fold, contractions[i].fold);
  }
  EXPECT_TRUE(detail::stored_contractions(nullptr, 0).empty());
  // A cut store reads no further than its end.
  EXPECT_EQ(detail::stored_contractions(stored.data(), 3).size(), 0U);
  EXPECT_EQ(detail::stored_contractions(stored.data(), 6).size(), 1U);
}

// The tag of each collation ICU has is what Locale::toLanguageTag writes.
TEST(CollationTag, IsIcusLanguageTag) {
  int32_t count = 0;
  const icu::Locale* locales = icu::Collator::getAvailableLocales(count);
  std::vector<icu::Locale> all(locales, locales + count);
  all.emplace_back("");
  all.emplace_back("en_US_POSIX");
  all.emplace_back("de__1996");
  std::size_t tagged = 0;
  for (const icu::Locale& locale : all) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::StringEnumeration> types(
        icu::Collator::getKeywordValuesForLocale("collation", locale, false, status));
    ASSERT_FALSE(U_FAILURE(status)) << locale.getName();
    std::vector<std::string> names = {""};
    while (const char* type = types->next(nullptr, status)) names.emplace_back(type);
    for (const std::string& type : names) {
      icu::Locale with_type(locale);
      if (!type.empty()) with_type.setKeywordValue("collation", type.c_str(), status);
      const std::string expected = with_type.toLanguageTag<std::string>(status);
      ASSERT_FALSE(U_FAILURE(status)) << with_type.getName();
      EXPECT_EQ(detail::collation_tag(with_type, status), expected) << with_type.getName();
      EXPECT_FALSE(U_FAILURE(status));
      ++tagged;
    }
  }
  EXPECT_GT(tagged, 300U);
  UErrorCode status = U_ZERO_ERROR;
  EXPECT_EQ(detail::collation_tag(icu::Locale("de@collation=phonebook"), status),
            "de-u-co-phonebk");
  EXPECT_EQ(detail::collation_tag(icu::Locale("@collation=search"), status), "und-u-co-search");
  EXPECT_EQ(detail::collation_tag(icu::Locale(""), status), "und");
}

// The lists the variants share: characters that mix punctuation with other
// collation elements, and the characters of folded text with accents that
// stand for several elements.
TEST(FoldTable, KnowsWhatMixesPunctuationAndWhatStandsForSeveralElements) {
  const detail::fold_table& table = detail::fold_table::get();
  EXPECT_TRUE(table.dropped_start(0x2474));  // PARENTHESIZED DIGIT ONE: "(1)"
  EXPECT_TRUE(table.variable_end(0x2474));
  EXPECT_FALSE(table.dropped_start(0x2488));  // DIGIT ONE FULL STOP: "1."
  EXPECT_TRUE(table.variable_end(0x2488));
  EXPECT_FALSE(table.dropped_start(u'('));  // punctuation alone mixes nothing
  EXPECT_FALSE(table.variable_end(u'a'));

  const detail::fold_table& accents = detail::fold_table::get({true, false, false});
  const detail::composite_unit* sharp_s = accents.composite(0xDF);
  ASSERT_NE(sharp_s, nullptr);
  EXPECT_EQ(sharp_s->count, 2U);
  EXPECT_EQ(sharp_s->primaries[0], U's');
  EXPECT_EQ(sharp_s->primaries[1], U's');
  EXPECT_EQ(sharp_s->common_secondary, 2U);  // the first s has a secondary weight of its own
  const detail::composite_unit* dot = accents.composite(detail::dot_accent);
  ASSERT_NE(dot, nullptr);
  EXPECT_EQ(dot->count, 1U);
  EXPECT_EQ(dot->primaries[0], 0U);              // an accent
  EXPECT_EQ(accents.composite(0x140), nullptr);  // "\u0140" folds to "l" and the dot
  // With case, the capital sharp s has its own, of capital letters.
  const detail::composite_unit* capital =
      detail::fold_table::get({true, true, false}).composite(0x1E9E);
  ASSERT_NE(capital, nullptr);
  EXPECT_EQ(capital->primaries[0], U'S');
  EXPECT_EQ(accents.composite(0x1E9E), nullptr);
  EXPECT_EQ(accents.composite(u'e'), nullptr);
}

TEST(FoldTable, KnowsThePrevowelContractions) {
  const detail::fold_table& table = detail::fold_table::get();
  EXPECT_TRUE(table.contracts(0x0E40, 0x0E01));   // Thai sara e + ko kai
  EXPECT_TRUE(table.contracts(0x0EC0, 0x0E81));   // Lao
  EXPECT_FALSE(table.contracts(0x0E40, 0x0E40));  // two prevowels
  EXPECT_FALSE(table.contracts(u'a', u'b'));
  EXPECT_TRUE(detail::fold_value::prevowel(table.value(0x0E40)));
  EXPECT_FALSE(detail::fold_value::prevowel(table.value(0x0E01)));
}

// Random text from characters that exercise every grapheme rule.
std::u16string random_text(std::mt19937& random) {
  static const std::vector<std::u16string> pieces = {
      u"a",          u"\u00e9",     u"e\u0301",    u"\r",         u"\n",     u"\r\n",
      u"\u0000",     u"\u00ad",     u"\u200d",     u"\u200c",     u"\u0915", u"\u094d",
      u"\u0937",     u"\u093f",     u"\u0930",     u"\u09cd",     u"\u0995", u"\u0e40",
      u"\u0e01",     u"\u0e33",     u"\u1100",     u"\u1161",     u"\u11a8", u"\uac00",
      u"\uac01",     u"\U0001F469", u"\U0001F4BB", u"\U0001F3FD", u"\ufe0f", u"\U0001F1E9",
      u"\U0001F1EA", u"\u0600",     u"\u0903",     u"\u0338",     u"\u0f72", u"\u0f71",
      u"\u3099",     u"\u304b",     u"\xd800",     u"\xdc00",     u"\u2764", u"\u0d4d",
      u"\u0d15",     u"\u0b4d",     u"\u0b15",     u" "};
  std::u16string text;
  const int length = std::uniform_int_distribution<int>(1, 24)(random);
  for (int i = 0; i < length; ++i) {
    text += pieces[std::uniform_int_distribution<std::size_t>(0, pieces.size() - 1)(random)];
  }
  return text;
}

TEST(GraphemeBoundary, AgreesWithIcuCharacterBreaksInUtf16AndUtf8) {
  const detail::fold_table& table = detail::fold_table::get();
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks(
      ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status), &ubrk_close);
  ASSERT_EQ(status, U_ZERO_ERROR);
  std::mt19937 random(29);
  int positions = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::u16string text = random_text(random);
    const auto size = static_cast<int32_t>(text.size());
    ubrk_setText(breaks.get(), text.data(), size, &status);
    ASSERT_EQ(status, U_ZERO_ERROR);
    // The same text in UTF-8, unless it has a lone surrogate, which UTF-8
    // cannot hold.
    std::string utf8;
    bool has_lone_surrogate = false;
    std::vector<int32_t> byte_of(text.size() + 1, -1);
    for (int32_t at = 0; at < size;) {
      byte_of[static_cast<std::size_t>(at)] = static_cast<int32_t>(utf8.size());
      UChar32 c = 0;
      U16_NEXT(text.data(), at, size, c);
      if (U_IS_SURROGATE(c)) has_lone_surrogate = true;
      char bytes[4];
      int32_t length = 0;
      UBool error = 0;
      U8_APPEND(reinterpret_cast<uint8_t*>(bytes), length, 4, c, error);
      ASSERT_TRUE(U_IS_SURROGATE(c) || error == 0);
      utf8.append(bytes, static_cast<std::size_t>(length));
    }
    byte_of[text.size()] = static_cast<int32_t>(utf8.size());
    for (int32_t at = 0; at <= size; ++at) {
      if (at > 0 && at < size && U16_IS_TRAIL(text[at]) && U16_IS_LEAD(text[at - 1])) continue;
      const bool icu = ubrk_isBoundary(breaks.get(), at) != 0;
      ASSERT_EQ(detail::grapheme_boundary(table, text.data(), size, at), icu)
          << "at " << at << " in " << scl_regex_test::hex(text);
      if (!has_lone_surrogate) {
        ASSERT_EQ(detail::grapheme_boundary(table, utf8.data(), static_cast<int32_t>(utf8.size()),
                                            byte_of[static_cast<std::size_t>(at)]),
                  icu)
            << "UTF-8, at " << at << " in " << scl_regex_test::hex(text);
      }
      ++positions;
    }
  }
  EXPECT_GT(positions, 100000);
}

}  // namespace
