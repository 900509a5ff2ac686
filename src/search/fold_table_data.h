// The fold tables computed at build time against the ICU the library links
// (the file that defines these is written by fold_table_gen).
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H

#include <cstddef>
#include <cstdint>

#include "search/fold_value.h"
#include "search/fold_variant.h"

namespace scl::regex::detail::fold_table_data {

// u_getVersion and u_getUnicodeVersion of the ICU the tables were computed with.
extern const std::uint8_t icu_version[4];
extern const std::uint8_t unicode_version[4];

struct table {
  const std::uint8_t* trie;
  std::size_t trie_size;
  const char16_t* pool;
  std::size_t pool_size;
};
extern const table tables[fold_variant::count];  // by fold_variant::index()

extern const code_point_pair prevowel_pairs[];
extern const std::size_t prevowel_pair_count;
extern const char32_t dropped_starts[];
extern const std::size_t dropped_start_count;
extern const char32_t variable_ends[];
extern const std::size_t variable_end_count;
extern const composite_unit composites[];  // the accent tables without case
extern const std::size_t composite_count;
extern const composite_unit case_composites[];  // with case
extern const std::size_t case_composite_count;

}  // namespace scl::regex::detail::fold_table_data

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H
