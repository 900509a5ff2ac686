// The fold table computed at build time against the ICU the library links
// (the file that defines these is written by fold_table_gen).
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H

#include <cstddef>
#include <cstdint>

#include "search/fold_value.h"

namespace scl::regex::detail::fold_table_data {

// u_getVersion and u_getUnicodeVersion of the ICU the table was computed with.
extern const std::uint8_t icu_version[4];
extern const std::uint8_t unicode_version[4];

extern const std::uint8_t trie[];
extern const std::size_t trie_size;
extern const char16_t pool[];
extern const std::size_t pool_size;
extern const code_point_pair prevowel_pairs[];
extern const std::size_t prevowel_pair_count;

}  // namespace scl::regex::detail::fold_table_data

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H
