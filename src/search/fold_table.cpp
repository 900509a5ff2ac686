#include "search/fold_table.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "scl/regex/exception.h"
#include "search/fold_table_data.h"

namespace scl::regex::detail {

namespace {

bool built_for_running_icu() {
  UVersionInfo icu;
  UVersionInfo unicode;
  u_getVersion(icu);
  u_getUnicodeVersion(unicode);
  return std::memcmp(icu, fold_table_data::icu_version, sizeof icu) == 0 &&
         std::memcmp(unicode, fold_table_data::unicode_version, sizeof unicode) == 0;
}

// The table built at run time, for an ICU other than the one at build time.
struct rebuilt_table {
  fold_table_image image;
  std::unique_ptr<fold_table> table;
};

const fold_table& load() {
  UErrorCode status = U_ZERO_ERROR;
  if (built_for_running_icu()) {
    static const fold_table embedded(fold_table_data::trie, fold_table_data::trie_size,
                                     fold_table_data::pool, fold_table_data::prevowel_pairs,
                                     fold_table_data::prevowel_pair_count, status);
    if (U_FAILURE(status)) throw regex_exception(status);
    return embedded;
  }
  static const rebuilt_table rebuilt = [] {
    rebuilt_table result;
    UErrorCode build_status = build_fold_table(result.image);
    if (U_FAILURE(build_status)) throw regex_exception(build_status);
    result.table = std::make_unique<fold_table>(result.image, build_status);
    if (U_FAILURE(build_status)) throw regex_exception(build_status);
    return result;
  }();
  return *rebuilt.table;
}

}  // namespace

const fold_table& fold_table::get() {
  static const fold_table& table = load();
  return table;
}

fold_table::fold_table(const fold_table_image& image, UErrorCode& status)
    : fold_table(image.trie.data(), image.trie.size(), image.pool.c_str(),
                 image.prevowel_pairs.data(), image.prevowel_pairs.size(), status) {}

fold_table::fold_table(const std::uint8_t* trie, std::size_t trie_size, const char16_t* pool,
                       const code_point_pair* prevowel_pairs, std::size_t prevowel_pair_count,
                       UErrorCode& status)
    : pool_(pool), pairs_(prevowel_pairs), pair_count_(prevowel_pair_count) {
  if (U_FAILURE(status)) return;
  trie_ = ucptrie_openFromBinary(UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, trie,
                                 static_cast<int32_t>(trie_size), nullptr, &status);
  nfc_ = unorm2_getNFCInstance(&status);
  if (U_FAILURE(status)) return;
  for (char16_t c = 0; c < latin_limit; ++c) {
    const std::uint32_t value = bmp_value(c);
    std::uint32_t packed = latin_slow;
    switch (fold_value::kind(value)) {
      case fold_kind::self:
        packed = c;
        break;
      case fold_kind::delta: {
        const UChar32 to = c + fold_value::delta(value);
        if (to > 0 && to <= 0xFFFF && !U_IS_SURROGATE(to)) packed = static_cast<std::uint32_t>(to);
        break;
      }
      case fold_kind::pool: {
        const char16_t* units = pool_ + fold_value::pool_offset(value);
        if (fold_value::pool_length(value) == 2 && units[0] != 0 && units[1] != 0 &&
            !U16_IS_SURROGATE(units[0]) && !U16_IS_SURROGATE(units[1])) {
          packed = units[0] | static_cast<std::uint32_t>(units[1]) << 16;
        }
        break;
      }
      case fold_kind::nothing:
        // An empty piece of its own, never joining the one before.
        if (!extends_grapheme(fold_value::klass(value))) packed = latin_nothing;
        break;
    }
    // The middle dot depends on the character before it.
    if (c == 0xB7 || fold_value::needs_nfc(value) || fold_value::combining(value) ||
        fold_value::prevowel(value)) {
      packed = latin_slow;
    }
    latin_[c] = packed;
  }
}

fold_table::~fold_table() { ucptrie_close(trie_); }

namespace {

uint32_t U_CALLCONV fold_only(const void*, uint32_t value) {
  return value & (3U << fold_value::kind_shift | fold_value::payload_mask);
}

}  // namespace

UChar32 fold_table::fold_run(UChar32 start, std::uint32_t& fold) const {
  return ucptrie_getRange(trie_, start, UCPMAP_RANGE_NORMAL, 0, fold_only, nullptr, &fold);
}

bool fold_table::contracts(UChar32 prevowel, UChar32 next) const {
  const code_point_pair* end = pairs_ + pair_count_;
  const code_point_pair* it = std::lower_bound(
      pairs_, end, prevowel,
      [](const code_point_pair& p, UChar32 c) { return static_cast<UChar32>(p.first) < c; });
  for (; it != end && static_cast<UChar32>(it->first) == prevowel; ++it) {
    if (static_cast<UChar32>(it->second) == next) return true;
  }
  return false;
}

}  // namespace scl::regex::detail
