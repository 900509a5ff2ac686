#include "prepare/mark_table.h"

#include <map>

#include <unicode/umutablecptrie.h>
#include <unicode/unistr.h>

namespace scl::regex::detail {
namespace {

// Characters whose entry may differ from kKeep: marks, characters that
// decompose, and characters that NFC may combine with what precedes them.
// Every other character has no decomposition, is no mark and starts at an NFC
// boundary, so it stays whatever surrounds it.
constexpr const char16_t* kCandidates = u"[[:Mn:][:NFD_QC=N:][:NFC_QC=N:][:NFC_QC=M:][:^ccc=0:]]";

// Results longer than this, or beyond the pool's reach, are left to ICU.
constexpr int32_t kMaxReplacementLength = 7;
constexpr std::size_t kMaxPoolSize = (1u << 13) - 1;

}  // namespace

const mark_table& mark_table::instance() {
  static const mark_table table;
  return table;
}

mark_table::mark_table() {
  UErrorCode status = U_ZERO_ERROR;
  nfd_ = icu::Normalizer2::getNFDInstance(status);
  nfc_ = icu::Normalizer2::getNFCInstance(status);
  marks_.applyPattern(icu::UnicodeString(u"[:Nonspacing_Mark:]"), status);
  marks_.freeze();
  icu::UnicodeSet candidates(icu::UnicodeString(kCandidates), status);
  icu::LocalUMutableCPTriePointer entries(umutablecptrie_open(kKeep, kCompose, &status));
  if (U_FAILURE(status)) return;

  std::map<std::u16string, std::uint16_t> pooled;  // each distinct result once
  auto entry_of = [&](UChar32 c) -> std::uint16_t {
    icu::UnicodeString decomposed;
    if (!nfd_->getDecomposition(c, decomposed)) decomposed.setTo(c);
    icu::UnicodeString kept;
    for (int32_t at = 0; at < decomposed.length(); at = decomposed.moveIndex32(at, 1)) {
      const UChar32 part = decomposed.char32At(at);
      if (!marks_.contains(part)) kept.append(part);
    }
    if (kept.isEmpty()) return kRemove;
    if (!nfc_->hasBoundaryBefore(kept.char32At(0))) return kCompose;
    UErrorCode normalized = U_ZERO_ERROR;
    const icu::UnicodeString result = nfc_->normalize(kept, normalized);
    if (U_FAILURE(normalized)) return kCompose;
    if (result == icu::UnicodeString(c)) return kKeep;
    const std::u16string text(result.getBuffer(), static_cast<std::size_t>(result.length()));
    if (const auto found = pooled.find(text); found != pooled.end()) return found->second;
    if (result.length() > kMaxReplacementLength || pool_.size() + text.size() > kMaxPoolSize) {
      return kCompose;
    }
    const auto entry = static_cast<std::uint16_t>(((pool_.size() + 1) << 3) |
                                                  static_cast<std::size_t>(text.size()));
    pool_ += text;
    pooled.emplace(text, entry);
    return entry;
  };

  for (int32_t range = 0; range < candidates.getRangeCount(); ++range) {
    for (UChar32 c = candidates.getRangeStart(range); c <= candidates.getRangeEnd(range); ++c) {
      const std::uint16_t entry = entry_of(c);
      // The pass reads units below kFirstChange without the table.
      if (entry != kKeep && c < kFirstChange) return;
      if (entry != kKeep) umutablecptrie_set(entries.getAlias(), c, entry, &status);
    }
  }
  UCPTrie* built = umutablecptrie_buildImmutable(entries.getAlias(), UCPTRIE_TYPE_FAST,
                                                 UCPTRIE_VALUE_BITS_16, &status);
  if (U_FAILURE(status)) return;
  single_units_.assign(0x10000, u'\0');
  for (UChar32 c = 1; c <= 0xFFFF; ++c) {
    if (U16_IS_SURROGATE(c)) continue;
    const std::uint16_t entry = UCPTRIE_FAST_BMP_GET(built, UCPTRIE_16, c);
    if (entry == kKeep) {
      single_units_[c] = static_cast<char16_t>(c);
    } else if (entry >= kFirstReplacement && replacement_length(entry) == 1 &&
               !U16_IS_SURROGATE(*replacement(entry))) {
      single_units_[c] = *replacement(entry);
    }
  }
  trie_.adoptInstead(built);
}

std::size_t mark_table::memory_size() const noexcept {
  if (!ready()) return 0;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t trie_bytes = ucptrie_toBinary(trie_.getAlias(), nullptr, 0, &status);
  return static_cast<std::size_t>(trie_bytes) + pool_.size() * sizeof(char16_t) +
         single_units_.size() * sizeof(char16_t);
}

}  // namespace scl::regex::detail
