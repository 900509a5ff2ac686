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

// A collation's lists.
struct collation_lists {
  character_lists characters;
  // Each table's contractions, sorted by text, as stored_contractions
  // (fold_table_build.h) writes them.
  const char16_t* contractions[fold_variant::count];
  std::size_t contractions_size[fold_variant::count];
};

// A collation's tables and lists.
struct collation_tables {
  table tables[fold_variant::count];  // by fold_variant::index()
  collation_lists lists;
};

// A table as its changes to the table of the same variant of `search`
// (fold_table_changes.h): `change_count` pairs of code point and value.
struct table_changes {
  const std::uint32_t* changes;
  std::size_t change_count;
  const char16_t* pool;
  std::size_t pool_size;
};

// A language's search collation, as changes to the root's.
struct collation_changes {
  table_changes tables[fold_variant::count];
  collation_lists lists;
};

// The root collator's.
extern const collation_tables root;
// The root's search collation ("und-u-co-search"), which most languages use.
extern const char search_tag[];
extern const collation_tables search;

// The search collations of their own that ICU has for languages
// ("da-u-co-search"), by tag; sorted by tag.
struct language_collation {
  const char* tag;
  const collation_changes* changes;
};
extern const language_collation languages[];
extern const std::size_t language_count;

}  // namespace scl::regex::detail::fold_table_data

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_DATA_H
