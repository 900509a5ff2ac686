#include "search/fold_table_changes.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include <unicode/ucptrie.h>
#include <unicode/umutablecptrie.h>

#include "search/fold_value.h"

namespace scl::regex::detail {

namespace {

constexpr UChar32 kCodePoints = 0x110000;
constexpr std::uint32_t kFoldBits = 3U << fold_value::kind_shift | fold_value::payload_mask;

using trie_pointer = std::unique_ptr<UCPTrie, decltype(&ucptrie_close)>;

trie_pointer open_trie(const std::uint8_t* trie, std::size_t size, UErrorCode& status) {
  if (size > static_cast<std::size_t>(INT32_MAX)) status = U_ILLEGAL_ARGUMENT_ERROR;
  if (U_FAILURE(status)) return {nullptr, &ucptrie_close};
  return {ucptrie_openFromBinary(UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, trie,
                                 static_cast<int32_t>(size), nullptr, &status),
          &ucptrie_close};
}

// The fold a value stands for: its pool text, or else its kind and payload.
std::u16string pooled_fold(std::uint32_t value, const std::u16string& pool) {
  if (fold_value::kind(value) != fold_kind::pool) return {};
  return pool.substr(fold_value::pool_offset(value), fold_value::pool_length(value));
}

bool same_fold(std::uint32_t a, const std::u16string& a_pool, std::uint32_t b,
               const std::u16string& b_pool) {
  if ((a & ~kFoldBits) != (b & ~kFoldBits) || fold_value::kind(a) != fold_value::kind(b)) {
    return false;
  }
  if (fold_value::kind(a) != fold_kind::pool) return (a & kFoldBits) == (b & kFoldBits);
  return pooled_fold(a, a_pool) == pooled_fold(b, b_pool);
}

}  // namespace

UErrorCode changes_between(const fold_table_image& base, const fold_table_image& table,
                           fold_table_changes& out) {
  UErrorCode status = U_ZERO_ERROR;
  const trie_pointer from = open_trie(base.trie.data(), base.trie.size(), status);
  const trie_pointer to = open_trie(table.trie.data(), table.trie.size(), status);
  if (U_FAILURE(status)) return status;
  out.changes.clear();
  out.pool.clear();
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    const std::uint32_t was = ucptrie_get(from.get(), c);
    std::uint32_t value = ucptrie_get(to.get(), c);
    if (same_fold(was, base.pool, value, table.pool)) continue;
    if (fold_value::kind(value) == fold_kind::pool) {
      const std::u16string fold = pooled_fold(value, table.pool);
      std::size_t at = base.pool.find(fold);
      if (at == std::u16string::npos) {
        at = out.pool.find(fold);
        if (at == std::u16string::npos) {
          at = out.pool.size();
          out.pool += fold;
        }
        at += base.pool.size();
      }
      if (at > fold_value::max_pool_offset) return U_BUFFER_OVERFLOW_ERROR;
      value = (value & ~kFoldBits) |
              fold_value::make(fold_kind::pool, static_cast<std::uint32_t>(at)
                                                        << fold_value::length_bits |
                                                    fold_value::pool_length(value));
    }
    out.changes.push_back(static_cast<std::uint32_t>(c));
    out.changes.push_back(value);
  }
  return status;
}

UErrorCode apply_changes(const std::uint8_t* base_trie, std::size_t base_trie_size,
                         const std::uint32_t* changes, std::size_t count,
                         std::vector<std::uint8_t>& trie, bool& bmp_only) {
  UErrorCode status = U_ZERO_ERROR;
  const trie_pointer base = open_trie(base_trie, base_trie_size, status);
  if (U_FAILURE(status)) return status;
  bmp_only = true;
  for (std::size_t i = 0; i < count; ++i) {
    if (changes[2 * i] >= static_cast<std::uint32_t>(kCodePoints)) return U_ILLEGAL_ARGUMENT_ERROR;
    if (changes[2 * i] > 0xFFFF) bmp_only = false;
  }
  std::unique_ptr<UMutableCPTrie, decltype(&umutablecptrie_close)> values(nullptr,
                                                                          &umutablecptrie_close);
  if (bmp_only) {
    values.reset(umutablecptrie_open(0, 0, &status));
    for (UChar32 start = 0; start <= 0xFFFF && U_SUCCESS(status);) {
      std::uint32_t value = 0;
      const UChar32 end = std::min<UChar32>(
          ucptrie_getRange(base.get(), start, UCPMAP_RANGE_NORMAL, 0, nullptr, nullptr, &value),
          0xFFFF);
      if (value != 0) umutablecptrie_setRange(values.get(), start, end, value, &status);
      start = end + 1;
    }
  } else {
    values.reset(umutablecptrie_fromUCPTrie(base.get(), &status));
  }
  for (std::size_t i = 0; i < count && U_SUCCESS(status); ++i) {
    umutablecptrie_set(values.get(), static_cast<UChar32>(changes[2 * i]), changes[2 * i + 1],
                       &status);
  }
  if (U_FAILURE(status)) return status;
  const trie_pointer built(umutablecptrie_buildImmutable(values.get(), UCPTRIE_TYPE_FAST,
                                                         UCPTRIE_VALUE_BITS_32, &status),
                           &ucptrie_close);
  if (U_FAILURE(status)) return status;
  const int32_t size = ucptrie_toBinary(built.get(), nullptr, 0, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR) {
    return U_FAILURE(status) ? status : U_INTERNAL_PROGRAM_ERROR;
  }
  status = U_ZERO_ERROR;
  trie.assign(static_cast<std::size_t>(size), 0);
  ucptrie_toBinary(built.get(), trie.data(), size, &status);
  return status;
}

}  // namespace scl::regex::detail
