// A fold table written as its differences from another table of the same
// variant: the values of the code points whose fold or character bits differ,
// and the folds of more than one code point that the other table's pool does
// not hold. A language's search collation differs from the root's search
// collation in some hundreds of code points, so its tables are stored so.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_CHANGES_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_CHANGES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <unicode/utypes.h>

#include "search/fold_table_build.h"

namespace scl::regex::detail {

struct fold_table_changes {
  // Code point, value; sorted by code point. A value's pool offset counts
  // from the start of the base's pool, which `pool` continues.
  std::vector<std::uint32_t> changes;
  std::u16string pool;
};

// What turns `base` into `table`. Returns U_BUFFER_OVERFLOW_ERROR if the pools
// together are larger than a value can point into, or ICU's error.
UErrorCode changes_between(const fold_table_image& base, const fold_table_image& table,
                           fold_table_changes& out);

// The trie that `changes` (`count` pairs) make of `base_trie`, serialised
// into `trie` (the table's pool is the base's, then the changes'). If no
// change is beyond U+FFFF, `trie` holds the values of U+0000..U+FFFF alone
// and `bmp_only` is set: the base's trie holds the others, and a trie of the
// BMP builds in half the time of a whole one. Returns ICU's error, if any.
UErrorCode apply_changes(const std::uint8_t* base_trie, std::size_t base_trie_size,
                         const std::uint32_t* changes, std::size_t count,
                         std::vector<std::uint8_t>& trie, bool& bmp_only);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_CHANGES_H
