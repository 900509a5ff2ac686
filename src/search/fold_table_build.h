// Computes the fold table from the running ICU: its root collator, its
// normalisation data and its character break rules.
//
// The library's table is computed at build time by fold_table_gen, with this
// code, against the ICU it links; the same code builds it at run time when
// the ICU found then is not that one.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H

#include <cstdint>
#include <string>
#include <vector>

#include <unicode/utypes.h>

#include "search/fold_value.h"

namespace scl::regex::detail {

// The table in the form that is stored: values as in fold_value.h.
struct fold_table_image {
  std::vector<std::uint8_t> trie;  // a serialised UCPTrie: fast type, 32-bit values
  std::u16string pool;             // the folds of more than one code point
  // (prevowel, next) for every root contraction that starts with a
  // Logical_Order_Exception prevowel and that NFC leaves as it is; sorted.
  std::vector<code_point_pair> prevowel_pairs;
};

// Builds the table. Returns ICU's error, if any (the image is then unusable).
// Takes a few hundred milliseconds and some tens of megabytes while it runs.
UErrorCode build_fold_table(fold_table_image& image);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_BUILD_H
