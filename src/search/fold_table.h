// A fold table: how one collation, read at the levels of one fold variant,
// folds every code point. Read-only, shared by all threads, kept for the life
// of the process (fold_collation.h makes them).
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <unicode/ucptrie.h>
#include <unicode/unorm2.h>
#include <unicode/utypes.h>

#include "search/fold_value.h"
#include "search/fold_variant.h"

namespace scl::regex::detail {

class fold_collation;

// A table's lists: those all variants share, and its contractions.
struct fold_table_lists {
  character_lists characters;
  const contraction_fold* contractions;  // a tailored collator's, sorted by text
  std::size_t contraction_count;
};

class fold_table {
 public:
  // The root collator's table of `variant`. The first call loads the tables
  // computed at build time (some tens of microseconds), or builds them anew if
  // the running ICU is not the one they were computed with. Throws
  // regex_exception with ICU's code if ICU fails.
  static const fold_table& get(fold_variant variant = {});

  // Loads the table of `variant` of `collation` from `trie` and `pool`, which
  // must outlive it, as must `lists`.
  fold_table(const fold_collation& collation, fold_variant variant, const std::uint8_t* trie,
             std::size_t trie_size, const char16_t* pool, const fold_table_lists& lists,
             UErrorCode& status)
      : fold_table(collation, variant, {trie, trie_size, nullptr, 0, pool, 0, nullptr}, lists,
                   status) {}
  // Where a table that is another's with changes (fold_table_changes.h) is:
  // the other's trie and pool, a trie of the values of U+0000..U+FFFF (if
  // not null, rather than those of `trie`), and the pool that continues
  // `pool` from `pool_size` on (if not null).
  struct source {
    const std::uint8_t* trie;
    std::size_t trie_size;
    const std::uint8_t* bmp_trie;
    std::size_t bmp_trie_size;
    const char16_t* pool;
    std::size_t pool_size;
    const char16_t* more_pool;
  };
  fold_table(const fold_collation& collation, fold_variant variant, const source& from,
             const fold_table_lists& lists, UErrorCode& status);
  fold_table(const fold_table&) = delete;
  fold_table& operator=(const fold_table&) = delete;
  ~fold_table();

  const fold_collation& collation() const { return *collation_; }
  // The table of the same collation for `variant`.
  const fold_table& sibling(fold_variant variant) const;
  fold_variant variant() const { return variant_; }

  std::uint32_t value(UChar32 c) const {
    return static_cast<std::uint32_t>(c) <= 0xFFFF ? UCPTRIE_FAST_BMP_GET(bmp_, UCPTRIE_32, c)
                                                   : UCPTRIE_FAST_SUPP_GET(trie_, UCPTRIE_32, c);
  }
  std::uint32_t bmp_value(char16_t c) const { return UCPTRIE_FAST_BMP_GET(bmp_, UCPTRIE_32, c); }
  // The fold of a code point whose value is of kind pool.
  std::u16string_view pool_fold(std::uint32_t value) const {
    const char16_t* units = pool_at(fold_value::pool_offset(value));
    std::size_t length = fold_value::pool_length(value);
    if (length != 0 && units[0] == fold_value::contraction_mark) {
      ++units;
      --length;
    }
    return {units, length};
  }
  // Whether the code point whose value is `value` starts contractions.
  bool starts_contractions(std::uint32_t value) const {
    return fold_value::kind(value) == fold_kind::pool && fold_value::pool_length(value) != 0 &&
           *pool_at(fold_value::pool_offset(value)) == fold_value::contraction_mark;
  }
  // The contractions, sorted by text (none for the root collator).
  const contraction_fold* contractions_begin() const { return lists_->contractions; }
  const contraction_fold* contractions_end() const {
    return lists_->contractions + lists_->contraction_count;
  }
  // Those that start with `first` and `second`, a range of them.
  std::pair<const contraction_fold*, const contraction_fold*> contractions_of(UChar32 first,
                                                                              UChar32 second) const;
  // Whether `c` may be the second code point of a contraction (false means
  // no contraction goes on with it).
  bool may_follow_starter(UChar32 c) const {
    return c > 0xFFFF || (followers_[static_cast<std::size_t>(c) >> 6] >> (c & 63) & 1) != 0;
  }

  // The last code point of the run from `start` whose folds are all alike:
  // each folds to itself, or all to themselves plus one delta, or all to one
  // pool string, or all to nothing. `fold` gets the run's value, with only
  // its kind and payload.
  UChar32 fold_run(UChar32 start, std::uint32_t& fold) const;
  const UNormalizer2* nfc() const { return nfc_; }

  // Appends the fold of `c` alone to `out`.
  void append_fold(UChar32 c, std::u16string& out) const;

  // Whether `prevowel` and `next` form a root contraction that NFC leaves alone.
  bool contracts(UChar32 prevowel, UChar32 next) const;
  // Whether the collation elements of `c` start with punctuation and go on
  // with something else ("\u2474", "(1)" in one character).
  bool dropped_start(UChar32 c) const;
  // Whether the last primary collation element of `c` is punctuation and
  // another one is not.
  bool variable_end(UChar32 c) const;
  // The elements of `unit`, if it is a composite unit of folded text with
  // accents; else nullptr.
  const composite_unit* composite(UChar32 unit) const;
  // All of them.
  const composite_unit* composites_begin() const;
  const composite_unit* composites_end() const;

  // The fold of U+0000..U+02FF, packed: up to two units (first | second << 16),
  // or one of these.
  static constexpr std::uint32_t latin_nothing = 0xFFFFFFFFU;  // folds to nothing
  static constexpr std::uint32_t latin_slow = 0xFFFFFFFEU;     // needs the general path
  static constexpr char16_t latin_limit = 0x300;
  std::uint32_t latin(char16_t c) const { return latin_[c]; }

  // Data derived from the table, made by `make` (returning std::unique_ptr<const T>)
  // at its first use and kept with it. Each kind of data has its own slot.
  enum class slot { runs, alphabet, count };
  template <class T, class Make>
  const T& derived(slot which, Make make) const {
    const auto index = static_cast<std::size_t>(which);
    std::call_once(derived_once_[index], [&] {
      std::unique_ptr<const T> made = make();
      derived_[index] = std::shared_ptr<const void>(std::move(made));
    });
    return *static_cast<const T*>(derived_[index].get());
  }

 private:
  const fold_collation* collation_;
  fold_variant variant_;
  UCPTrie* trie_ = nullptr;
  UCPTrie* bmp_ = nullptr;  // trie_, or a trie of its own for U+0000..U+FFFF
  const char16_t* pool_at(std::uint32_t offset) const {
    return offset < more_pool_from_ ? pool_ + offset : more_pool_ + (offset - more_pool_from_);
  }

  const char16_t* pool_ = nullptr;
  const char16_t* more_pool_ = nullptr;  // where offsets from more_pool_from_ on point
  std::uint32_t more_pool_from_ = UINT32_MAX;
  const fold_table_lists* lists_ = nullptr;
  const UNormalizer2* nfc_ = nullptr;
  std::uint32_t latin_[latin_limit] = {};
  // For each code point that starts contractions, where they are.
  // The contractions that start with two code points, a range of them, by
  // the code points (first << 21 | second).
  std::unordered_map<std::uint64_t, std::pair<std::uint32_t, std::uint32_t>> starters_;
  std::vector<std::uint64_t> followers_ = std::vector<std::uint64_t>(0x10000 / 64);  // BMP bits
  mutable std::once_flag derived_once_[static_cast<std::size_t>(slot::count)];
  mutable std::shared_ptr<const void> derived_[static_cast<std::size_t>(slot::count)];
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H
