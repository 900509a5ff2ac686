#include "search/fold_table.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <utility>

#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "scl/regex/exception.h"
#include "search/code_points.h"
#include "search/fold_collation.h"

namespace scl::regex::detail {

namespace {

// Two code points as one key, in code point order.
std::uint64_t starter_key(UChar32 first, UChar32 second) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(first)) << 21 |
         static_cast<std::uint32_t>(second);
}

}  // namespace

const fold_table& fold_table::get(fold_variant variant) {
  return fold_collation::root().table(variant);
}

const fold_table& fold_table::sibling(fold_variant variant) const {
  return collation_->table(variant);
}

fold_table::fold_table(const fold_collation& collation, fold_variant variant, const source& from,
                       const fold_table_lists& lists, UErrorCode& status)
    : collation_(&collation), variant_(variant), pool_(from.pool), lists_(&lists) {
  if (U_FAILURE(status)) return;
  if (from.more_pool != nullptr) {
    if (from.pool_size > fold_value::max_pool_offset) status = U_ILLEGAL_ARGUMENT_ERROR;
    more_pool_ = from.more_pool;
    more_pool_from_ = static_cast<std::uint32_t>(from.pool_size);
  }
  auto open = [&](const std::uint8_t* binary, std::size_t size) -> UCPTrie* {
    if (size > static_cast<std::size_t>(INT32_MAX)) status = U_ILLEGAL_ARGUMENT_ERROR;
    if (U_FAILURE(status)) return nullptr;
    return ucptrie_openFromBinary(UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, binary,
                                  static_cast<int32_t>(size), nullptr, &status);
  };
  trie_ = open(from.trie, from.trie_size);
  bmp_ = from.bmp_trie != nullptr ? open(from.bmp_trie, from.bmp_trie_size) : trie_;
  if (bmp_ == nullptr) bmp_ = trie_;
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
        const char16_t* units = pool_at(fold_value::pool_offset(value));
        if (fold_value::pool_length(value) == 2 && !starts_contractions(value) && units[0] != 0 &&
            units[1] != 0 && !U16_IS_SURROGATE(units[0]) && !U16_IS_SURROGATE(units[1])) {
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
  // Contractions sorted by text have those with the same two code points
  // together.
  for (std::uint32_t k = 0; k < lists.contraction_count; ++k) {
    const std::u16string& text = lists.contractions[k].text;
    int32_t at = 0;
    UChar32 first = 0;
    UChar32 second = 0;
    U16_NEXT(text.data(), at, static_cast<int32_t>(text.size()), first);
    U16_NEXT(text.data(), at, static_cast<int32_t>(text.size()), second);
    auto& range = starters_.try_emplace(starter_key(first, second), k, k).first->second;
    range.second = k + 1;
    if (second <= 0xFFFF)
      followers_[static_cast<std::size_t>(second) >> 6] |= 1ULL << (second & 63);
  }
}

fold_table::~fold_table() {
  if (bmp_ != trie_) ucptrie_close(bmp_);
  ucptrie_close(trie_);
}

std::pair<const contraction_fold*, const contraction_fold*> fold_table::contractions_of(
    UChar32 first, UChar32 second) const {
  const auto found = starters_.find(starter_key(first, second));
  if (found == starters_.end()) return {nullptr, nullptr};
  return {contractions_begin() + found->second.first, contractions_begin() + found->second.second};
}

namespace {

uint32_t U_CALLCONV fold_only(const void*, uint32_t value) {
  return value & (3U << fold_value::kind_shift | fold_value::payload_mask);
}

bool listed(const char32_t* list, std::size_t count, UChar32 c) {
  return std::binary_search(list, list + count, static_cast<char32_t>(c));
}

}  // namespace

UChar32 fold_table::fold_run(UChar32 start, std::uint32_t& fold) const {
  if (start > 0xFFFF || bmp_ == trie_) {
    return ucptrie_getRange(trie_, start, UCPMAP_RANGE_NORMAL, 0, fold_only, nullptr, &fold);
  }
  return std::min<UChar32>(
      ucptrie_getRange(bmp_, start, UCPMAP_RANGE_NORMAL, 0, fold_only, nullptr, &fold), 0xFFFF);
}

void fold_table::append_fold(UChar32 c, std::u16string& out) const {
  const std::uint32_t value = this->value(c);
  switch (fold_value::kind(value)) {
    case fold_kind::self:
      append_code_point(out, c);
      break;
    case fold_kind::delta:
      append_code_point(out, c + fold_value::delta(value));
      break;
    case fold_kind::pool:
      out.append(pool_fold(value));
      break;
    case fold_kind::nothing:
      break;
  }
}

bool fold_table::contracts(UChar32 prevowel, UChar32 next) const {
  const code_point_pair* pairs = lists_->characters.prevowel_pairs;
  const code_point_pair* end = pairs + lists_->characters.prevowel_pair_count;
  const code_point_pair* it = std::lower_bound(
      pairs, end, prevowel,
      [](const code_point_pair& p, UChar32 c) { return static_cast<UChar32>(p.first) < c; });
  for (; it != end && static_cast<UChar32>(it->first) == prevowel; ++it) {
    if (static_cast<UChar32>(it->second) == next) return true;
  }
  return false;
}

bool fold_table::dropped_start(UChar32 c) const {
  return listed(lists_->characters.dropped_starts, lists_->characters.dropped_start_count, c);
}

bool fold_table::variable_end(UChar32 c) const {
  return listed(lists_->characters.variable_ends, lists_->characters.variable_end_count, c);
}

const composite_unit* fold_table::composites_begin() const {
  return lists_->characters.composites[variant_.case_level ? 1 : 0];
}

const composite_unit* fold_table::composites_end() const {
  const int list = variant_.case_level ? 1 : 0;
  return lists_->characters.composites[list] + lists_->characters.composite_count[list];
}

const composite_unit* fold_table::composite(UChar32 unit) const {
  const int list = variant_.case_level ? 1 : 0;
  const composite_unit* begin = lists_->characters.composites[list];
  const composite_unit* end = begin + lists_->characters.composite_count[list];
  const composite_unit* it = std::lower_bound(
      begin, end, unit,
      [](const composite_unit& u, UChar32 c) { return static_cast<UChar32>(u.unit) < c; });
  return it != end && static_cast<UChar32>(it->unit) == unit ? it : nullptr;
}

}  // namespace scl::regex::detail
