// Computes the fold tables from the running ICU: a collator, its
// normalisation data and its character break rules.
//
// The tables of the root collator and of ICU's search collations (the
// root's and the languages') are computed at build time by fold_table_gen,
// with this code, against the ICU the library links. The same code builds
// them at run time when the ICU found then is not that one, and builds the
// table of any other tailored collator ("de-u-co-phonebk") at its first use.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <unicode/ucol.h>
#include <unicode/utypes.h>

#include "search/fold_value.h"
#include "search/fold_variant.h"

namespace scl::regex::detail {

// One variant's table in the form that is stored: values as in fold_value.h.
struct fold_table_image {
  std::vector<std::uint8_t> trie;  // a serialised UCPTrie: fast type, 32-bit values
  std::u16string pool;             // the folds of more than one code point
};

struct fold_tables_image {
  std::array<fold_table_image, fold_variant::count> tables;  // by fold_variant::index()
  // (prevowel, next) for every root contraction that starts with a
  // Logical_Order_Exception prevowel and that NFC leaves as it is; sorted.
  std::vector<code_point_pair> prevowel_pairs;
  // Characters whose collation elements start with punctuation and go on
  // with something else ("⑴"), and those that end so; sorted.
  std::vector<char32_t> dropped_starts;
  std::vector<char32_t> variable_ends;
  // The composite units of the accent tables without case and with it
  // (composites[1]); each sorted by unit.
  std::array<std::vector<composite_unit>, 2> composites;
  // A tailored collator's contractions, by variant; each sorted by text.
  std::array<std::vector<contraction_fold>, fold_variant::count> contractions;
};

// Builds the root collator's tables, every variant. Returns ICU's error, if
// any (the image is then unusable). Takes about a second and some tens of
// megabytes while it runs.
UErrorCode build_fold_tables(fold_tables_image& image);

// Builds the table of `variant` for `collator`, a tailored collator, and the
// lists; its contractions fold as one piece each. `bits` are the character
// bits of every code point (fold_value.h: grapheme class, NFC, combining
// class; the prevowel bit is set here), as the root's table has them.
UErrorCode build_fold_table(const UCollator* collator, fold_variant variant,
                            std::vector<std::uint32_t> bits, fold_tables_image& image);

// Builds every variant's table of `collator`, a tailored collator, as
// build_fold_table does, with the character bits computed here.
UErrorCode build_fold_tables(const UCollator* collator, fold_tables_image& image);

// Contractions as the tables computed at build time store them, one after the
// other: the length of the text, the text, the length of the fold, the fold.
std::u16string stored_contractions(const std::vector<contraction_fold>& contractions);
std::vector<contraction_fold> stored_contractions(const char16_t* data, std::size_t size);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H
