#include "search/fold_table_build.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/ucptrie.h>
#include <unicode/umutablecptrie.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>
#include <unicode/utf16.h>

#include "search/code_points.h"
#include "search/fold_value.h"

namespace scl::regex::detail {

namespace {

constexpr UChar32 kCodePoints = 0x110000;
constexpr std::uint32_t kCommonWeight = 0x0500;  // common secondary and tertiary, no case bits

// One collation element: primary (32 bits), secondary and tertiary (16 each).
struct collation_element {
  std::uint32_t primary;
  std::uint32_t secondary;
  std::uint32_t tertiary;
};

// The collation elements of `text`. ICU's element iterator gives 32-bit
// orders; a 64-bit element whose weights have low bytes comes as two, the
// second marked as a continuation by its two low bits of the tertiary byte.
void collation_elements(UCollationElements* elements, const UChar* text, int32_t length,
                        std::vector<collation_element>& out, UErrorCode& status) {
  out.clear();
  ucol_setText(elements, text, length, &status);
  auto is_continuation = [](int32_t order) {
    return order != UCOL_NULLORDER && (static_cast<std::uint32_t>(order) & 0xC0) == 0xC0;
  };
  int32_t order = ucol_next(elements, &status);
  while (order != UCOL_NULLORDER && U_SUCCESS(status)) {
    const auto bits = static_cast<std::uint32_t>(order);
    collation_element element{bits & 0xFFFF0000U, (bits >> 8 & 0xFF) << 8, (bits & 0xFF) << 8};
    int32_t next = ucol_next(elements, &status);
    if (is_continuation(next)) {
      const auto more = static_cast<std::uint32_t>(next);
      element.primary |= more >> 16;
      element.secondary |= more >> 8 & 0xFF;
      element.tertiary |= more & 0x3F;
      next = ucol_next(elements, &status);
    }
    out.push_back(element);
    order = next;
  }
}

grapheme_class class_of(UChar32 c) {
  switch (u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_CONTROL:
      return grapheme_class::control;
    case U_GCB_CR:
      return grapheme_class::cr;
    case U_GCB_LF:
      return grapheme_class::lf;
    case U_GCB_EXTEND:
      return grapheme_class::extend;
    case U_GCB_ZWJ:
      return grapheme_class::zwj;
    case U_GCB_SPACING_MARK:
      return grapheme_class::spacing_mark;
    case U_GCB_PREPEND:
      return grapheme_class::prepend;
    case U_GCB_L:
      return grapheme_class::l;
    case U_GCB_V:
      return grapheme_class::v;
    case U_GCB_T:
      return grapheme_class::t;
    case U_GCB_LV:
      return grapheme_class::lv;
    case U_GCB_LVT:
      return grapheme_class::lvt;
    case U_GCB_REGIONAL_INDICATOR:
      return grapheme_class::regional_indicator;
    default:
      return u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC)
                 ? grapheme_class::extended_pictographic
                 : grapheme_class::other;
  }
}

std::u16string code_point_text(UChar32 c) {
  std::u16string text;
  append_code_point(text, c);
  return text;
}

// ICU's character break iterator runs Indic conjunct rules ahead of the
// Grapheme_Cluster_Break property: asks it which characters are viramas
// (no break in KA x KA) and which consonants they link (no break in KA VIRAMA x).
void probe_conjuncts(UChar32 c, grapheme_class& klass, UBreakIterator* breaks, UErrorCode& status) {
  constexpr char16_t ka = 0x0915;
  constexpr char16_t virama = 0x094D;
  std::u16string text;
  int32_t at = 0;
  if (klass == grapheme_class::other) {
    text = std::u16string{ka, virama} + code_point_text(c);
    at = 2;
  } else if (klass == grapheme_class::extend) {
    text = std::u16string{ka} + code_point_text(c) + std::u16string{ka};
    at = static_cast<int32_t>(text.size()) - 1;
  } else {
    return;
  }
  ubrk_setText(breaks, text.data(), static_cast<int32_t>(text.size()), &status);
  if (U_SUCCESS(status) && ubrk_isBoundary(breaks, at) == 0) {
    klass =
        klass == grapheme_class::other ? grapheme_class::linking_consonant : grapheme_class::virama;
  }
}

}  // namespace

UErrorCode build_fold_table(fold_table_image& image) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  icu::LocalUCollatorPointer collator(ucol_open("", &status));
  const std::unique_ptr<UCollationElements, decltype(&ucol_closeElements)> elements(
      ucol_openElements(collator.getAlias(), nullptr, 0, &status), &ucol_closeElements);
  icu::LocalUBreakIteratorPointer breaks(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
  if (U_FAILURE(status)) return status;

  // The primaries of every code point, in order, zeros left out; and every
  // code point whose elements are one non-ignorable element.
  struct single {
    std::uint32_t primary;
    bool common;  // secondary and tertiary weights are the common ones
    UChar32 c;
  };
  std::vector<std::uint32_t> first(kCodePoints + 1);
  std::vector<std::uint32_t> primaries;
  primaries.reserve(1200000);
  std::vector<single> singles;
  singles.reserve(1100000);
  std::vector<collation_element> ces;
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    first[c] = static_cast<std::uint32_t>(primaries.size());
    if (U_IS_SURROGATE(c)) continue;
    const std::u16string text = code_point_text(c);
    collation_elements(elements.get(), text.data(), static_cast<int32_t>(text.size()), ces, status);
    if (U_FAILURE(status)) return status;
    for (const collation_element& element : ces) {
      if (element.primary != 0) primaries.push_back(element.primary);
    }
    if (ces.size() == 1 && ces[0].primary != 0) {
      const bool common = ces[0].secondary == kCommonWeight && ces[0].tertiary == kCommonWeight;
      singles.push_back({ces[0].primary, common, c});
    }
  }
  first[kCodePoints] = static_cast<std::uint32_t>(primaries.size());

  // The representative of each primary: the smallest code point that is that
  // primary alone with common weights; failing that (kana), the smallest that
  // is that primary alone with any weights.
  std::sort(singles.begin(), singles.end(), [](const single& a, const single& b) {
    if (a.primary != b.primary) return a.primary < b.primary;
    if (a.common != b.common) return a.common;
    return a.c < b.c;
  });
  std::vector<std::pair<std::uint32_t, UChar32>> representatives;
  for (const single& s : singles) {
    if (representatives.empty() || representatives.back().first != s.primary) {
      representatives.emplace_back(s.primary, s.c);
    }
  }
  singles = {};
  auto representative = [&](std::uint32_t primary) -> UChar32 {
    const auto it = std::lower_bound(representatives.begin(), representatives.end(), primary,
                                     [](const std::pair<std::uint32_t, UChar32>& entry,
                                        std::uint32_t p) { return entry.first < p; });
    return it != representatives.end() && it->first == primary ? it->second : -1;
  };

  // Prevowels that start root contractions NFC leaves alone, with their partners.
  std::set<UChar32> prevowels;
  image.prevowel_pairs.clear();
  {
    icu::LocalUSetPointer contractions(uset_openEmpty());
    ucol_getContractionsAndExpansions(collator.getAlias(), contractions.getAlias(), nullptr, 1,
                                      &status);
    if (U_FAILURE(status)) return status;
    const int32_t items = uset_getItemCount(contractions.getAlias());
    for (int32_t i = 0; i < items; ++i) {
      UChar32 low = 0;
      UChar32 high = 0;
      UChar buffer[32];
      const int32_t length =
          uset_getItem(contractions.getAlias(), i, &low, &high, buffer, 32, &status);
      if (U_FAILURE(status)) return status;
      if (length < 2) continue;
      int32_t at = 0;
      UChar32 lead = 0;
      UChar32 next = 0;
      U16_NEXT(buffer, at, length, lead);
      U16_NEXT(buffer, at, length, next);
      if (u_hasBinaryProperty(lead, UCHAR_LOGICAL_ORDER_EXCEPTION) == 0) continue;
      if (unorm2_isNormalized(nfc, buffer, length, &status) == 0) continue;
      prevowels.insert(lead);
      image.prevowel_pairs.push_back({static_cast<char32_t>(lead), static_cast<char32_t>(next)});
    }
    auto as_tuple = [](const code_point_pair& p) { return std::make_pair(p.first, p.second); };
    std::sort(image.prevowel_pairs.begin(), image.prevowel_pairs.end(),
              [&](const code_point_pair& a, const code_point_pair& b) {
                return as_tuple(a) < as_tuple(b);
              });
    image.prevowel_pairs.erase(std::unique(image.prevowel_pairs.begin(), image.prevowel_pairs.end(),
                                           [&](const code_point_pair& a, const code_point_pair& b) {
                                             return as_tuple(a) == as_tuple(b);
                                           }),
                               image.prevowel_pairs.end());
  }

  // The values.
  image.pool.clear();
  std::map<std::u16string, std::uint32_t> pooled;
  icu::LocalUMutableCPTriePointer values(umutablecptrie_open(0, 0, &status));
  if (U_FAILURE(status)) return status;
  std::u16string fold;
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    std::uint32_t value = 0;
    if (!U_IS_SURROGATE(c)) {
      fold.clear();
      int32_t code_points = 0;
      UChar32 only = -1;
      for (std::uint32_t k = first[c]; k < first[c + 1]; ++k) {
        const UChar32 r = representative(primaries[k]);
        if (r < 0) return U_INTERNAL_PROGRAM_ERROR;
        append_code_point(fold, r);
        only = r;
        ++code_points;
      }
      if (code_points == 0) {
        value = fold_value::make(fold_kind::nothing, 0);
      } else if (code_points == 1 && only == c) {
        value = fold_value::make(fold_kind::self, 0);
      } else if (code_points == 1) {
        if (only - c > fold_value::max_delta || c - only > fold_value::max_delta) {
          return U_BUFFER_OVERFLOW_ERROR;
        }
        value = fold_value::make(fold_kind::delta, static_cast<std::uint32_t>(only - c));
      } else {
        auto found = pooled.find(fold);
        if (found == pooled.end()) {
          std::size_t at = image.pool.find(fold);
          if (at == std::u16string::npos) {
            at = image.pool.size();
            image.pool += fold;
          }
          found = pooled.emplace(fold, static_cast<std::uint32_t>(at)).first;
        }
        if (found->second > fold_value::max_pool_offset || fold.size() > fold_value::max_length) {
          return U_BUFFER_OVERFLOW_ERROR;
        }
        value = fold_value::make(fold_kind::pool, found->second << fold_value::length_bits |
                                                      static_cast<std::uint32_t>(fold.size()));
      }
      const auto quick_check = u_getIntPropertyValue(c, UCHAR_NFC_QUICK_CHECK);
      if (quick_check != UNORM_YES) value |= fold_value::needs_nfc_bit;
      if (quick_check == UNORM_MAYBE) value |= fold_value::composes_back_bit;
      if (u_getCombiningClass(c) != 0) value |= fold_value::combining_bit;
      if (prevowels.count(c) != 0) value |= fold_value::prevowel_bit;
    }
    grapheme_class klass = class_of(c);
    if (u_charType(c) != U_UNASSIGNED && !U_IS_SURROGATE(c)) {
      probe_conjuncts(c, klass, breaks.getAlias(), status);
      if (U_FAILURE(status)) return status;
    }
    value = fold_value::with_class(value, klass);
    if (value != 0) umutablecptrie_set(values.getAlias(), c, value, &status);
  }
  icu::LocalUCPTriePointer trie(umutablecptrie_buildImmutable(values.getAlias(), UCPTRIE_TYPE_FAST,
                                                              UCPTRIE_VALUE_BITS_32, &status));
  if (U_FAILURE(status)) return status;
  const int32_t size = ucptrie_toBinary(trie.getAlias(), nullptr, 0, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR)
    return U_FAILURE(status) ? status : U_INTERNAL_PROGRAM_ERROR;
  status = U_ZERO_ERROR;
  image.trie.assign(static_cast<std::size_t>(size), 0);
  ucptrie_toBinary(trie.getAlias(), image.trie.data(), size, &status);
  return status;
}

}  // namespace scl::regex::detail
