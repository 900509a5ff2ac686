// The fold table of the running process: one per process, read-only, shared
// by all threads.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H
#define SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H

#include <cstdint>
#include <memory>

#include <unicode/ucptrie.h>
#include <unicode/unorm2.h>
#include <unicode/utypes.h>

#include "search/fold_table_build.h"
#include "search/fold_value.h"

namespace scl::regex::detail {

class fold_table {
 public:
  // The table. The first call loads the one computed at build time (a few
  // microseconds), or builds it anew if the running ICU is not the one it was
  // computed with. Throws regex_exception with ICU's code if ICU fails.
  static const fold_table& get();

  // Loads `image` (which must outlive the table).
  fold_table(const fold_table_image& image, UErrorCode& status);
  fold_table(const std::uint8_t* trie, std::size_t trie_size, const char16_t* pool,
             const code_point_pair* prevowel_pairs, std::size_t prevowel_pair_count,
             UErrorCode& status);
  fold_table(const fold_table&) = delete;
  fold_table& operator=(const fold_table&) = delete;
  ~fold_table();

  std::uint32_t value(UChar32 c) const { return UCPTRIE_FAST_GET(trie_, UCPTRIE_32, c); }
  std::uint32_t bmp_value(char16_t c) const { return UCPTRIE_FAST_BMP_GET(trie_, UCPTRIE_32, c); }
  const char16_t* pool() const { return pool_; }

  // The last code point of the run from `start` whose folds are all alike:
  // each folds to itself, or all to themselves plus one delta, or all to one
  // pool string, or all to nothing. `fold` gets the run's value, with only
  // its kind and payload.
  UChar32 fold_run(UChar32 start, std::uint32_t& fold) const;
  const UNormalizer2* nfc() const { return nfc_; }

  // Whether `prevowel` and `next` form a root contraction that NFC leaves alone.
  bool contracts(UChar32 prevowel, UChar32 next) const;

  // The fold of U+0000..U+02FF, packed: up to two units (first | second << 16),
  // or one of these.
  static constexpr std::uint32_t latin_nothing = 0xFFFFFFFFU;  // folds to nothing
  static constexpr std::uint32_t latin_slow = 0xFFFFFFFEU;     // needs the general path
  static constexpr char16_t latin_limit = 0x300;
  std::uint32_t latin(char16_t c) const { return latin_[c]; }

 private:
  void finish(UErrorCode& status);

  UCPTrie* trie_ = nullptr;
  const char16_t* pool_ = nullptr;
  const code_point_pair* pairs_ = nullptr;
  std::size_t pair_count_ = 0;
  const UNormalizer2* nfc_ = nullptr;
  std::uint32_t latin_[latin_limit] = {};
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_TABLE_H
