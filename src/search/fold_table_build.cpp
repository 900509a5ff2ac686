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
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include "search/code_points.h"
#include "search/fold_value.h"

namespace scl::regex::detail {

namespace {

constexpr UChar32 kCodePoints = 0x110000;
constexpr std::uint32_t kCommonWeight = 0x0500;  // common secondary and tertiary, no case bits
constexpr std::uint32_t kCaseBits = 0xC000;      // the case bits of a tertiary weight
constexpr std::uint32_t kMergeSeparator = 0x02000000;  // the lowest primary, never variable

// One collation element: primary (32 bits), secondary and tertiary (16 each).
struct collation_element {
  std::uint32_t primary;
  std::uint32_t secondary;
  std::uint32_t tertiary;
};

// Appends the collation elements of `text` to `out`. ICU's element iterator
// gives 32-bit orders; a 64-bit element whose weights have low bytes comes as
// two, the second marked as a continuation by its two low bits of the
// tertiary byte.
void collation_elements(UCollationElements* elements, const UChar* text, int32_t length,
                        std::vector<collation_element>& out, UErrorCode& status) {
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

// A contraction and its collation elements.
struct contraction_elements {
  std::u16string text;
  std::vector<collation_element> elements;
};

// The collation elements of every code point.
struct element_table {
  std::vector<std::uint32_t> first = std::vector<std::uint32_t>(kCodePoints + 1);
  std::vector<collation_element> elements;

  const collation_element* begin(UChar32 c) const { return elements.data() + first[c]; }
  const collation_element* end(UChar32 c) const { return elements.data() + first[c + 1]; }
  std::size_t size(UChar32 c) const { return first[c + 1] - first[c]; }
};

// A collation element as a variant compares it: its primary, with the
// secondary weight when accents count, with the case bits when case counts.
using element_key = std::uint64_t;

// How a variant reads collation elements.
class element_reader {
 public:
  element_reader(fold_variant variant, std::uint32_t variable_top)
      : variant_(variant), variable_top_(variable_top) {}

  bool case_level() const { return variant_.case_level; }

  // Whether the element is punctuation or a space (a variable element).
  bool variable(const collation_element& e) const {
    return e.primary > kMergeSeparator && e.primary <= variable_top_;
  }

  // Whether the element counts at the variant's strength.
  bool weighs(const collation_element& e) const {
    return variant_.accents ? e.secondary != 0 : e.primary != 0;
  }

  element_key key(const collation_element& e) const {
    element_key key = e.primary;
    if (variant_.accents) key = key << 16 | e.secondary;
    if (variant_.case_level) key = key << 2 | e.tertiary >> 14;
    return key;
  }

  // Whether the weights the key leaves out are the common ones.
  bool common(const collation_element& e) const {
    const std::uint32_t tertiary = variant_.case_level ? e.tertiary & ~kCaseBits : e.tertiary;
    return (variant_.accents || e.secondary == kCommonWeight) && tertiary == kCommonWeight;
  }

  // Whether a character with these elements can represent its key alone.
  bool single(const collation_element* begin, const collation_element* end) const {
    return end - begin == 1 && weighs(*begin) && !(variant_.shifted && variable(*begin));
  }

  // The keys of a character's elements, in order. With "shifted", variable
  // elements and the primary-ignorable ones after them are left out.
  void keys(const collation_element* begin, const collation_element* end,
            std::vector<element_key>& out) const {
    out.clear();
    bool after_variable = false;
    for (const collation_element* e = begin; e != end; ++e) {
      if (variant_.shifted) {
        if (variable(*e)) {
          after_variable = true;
          continue;
        }
        if (e->primary == 0 && after_variable) continue;
        if (e->primary != 0) after_variable = false;
      }
      if (weighs(*e)) out.push_back(key(*e));
    }
  }

 private:
  fold_variant variant_;
  std::uint32_t variable_top_;
};

// The representative of each key: the smallest code point whose collation
// elements are one element with that key and common other weights; failing
// that (kana), the smallest whose elements are one element with that key.
class representatives {
 public:
  representatives(const element_table& table, const element_reader& reader) {
    struct single {
      element_key key;
      bool common;
      UChar32 c;
    };
    std::vector<single> singles;
    singles.reserve(1100000);
    for (UChar32 c = 0; c < kCodePoints; ++c) {
      if (U_IS_SURROGATE(c) || !reader.single(table.begin(c), table.end(c))) continue;
      singles.push_back({reader.key(*table.begin(c)), reader.common(*table.begin(c)), c});
    }
    std::sort(singles.begin(), singles.end(), [](const single& a, const single& b) {
      if (a.key != b.key) return a.key < b.key;
      if (a.common != b.common) return a.common;
      return a.c < b.c;
    });
    for (const single& s : singles) {
      if (entries_.empty() || entries_.back().first != s.key) entries_.emplace_back(s.key, s.c);
    }
  }

  // Makes `c` the representative of `key`, which has none.
  void assign(element_key key, UChar32 c) {
    const auto it = std::lower_bound(entries_.begin(), entries_.end(), key,
                                     [](const std::pair<element_key, UChar32>& entry,
                                        element_key k) { return entry.first < k; });
    entries_.insert(it, {key, c});
  }

  // The representative of `key`, or -1 if no code point is that key alone.
  UChar32 of(element_key key) const {
    const auto it = std::lower_bound(entries_.begin(), entries_.end(), key,
                                     [](const std::pair<element_key, UChar32>& entry,
                                        element_key k) { return entry.first < k; });
    return it != entries_.end() && it->first == key ? it->second : -1;
  }

 private:
  std::vector<std::pair<element_key, UChar32>> entries_;
};

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

// The bits of every code point's value that do not depend on the variant:
// its grapheme class, NFC and combining class, prevowel.
UErrorCode character_bits(const std::set<UChar32>& prevowels, std::vector<std::uint32_t>& bits) {
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUBreakIteratorPointer breaks(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
  if (U_FAILURE(status)) return status;
  bits.assign(kCodePoints, 0);
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    std::uint32_t value = 0;
    if (!U_IS_SURROGATE(c)) {
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
    bits[static_cast<std::size_t>(c)] = fold_value::with_class(value, klass);
  }
  return status;
}

// Prevowels that start root contractions NFC leaves alone, with their partners.
UErrorCode prevowel_contractions(const UCollator* collator, const UNormalizer2* nfc,
                                 std::set<UChar32>& prevowels,
                                 std::vector<code_point_pair>& pairs) {
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUSetPointer contractions(uset_openEmpty());
  ucol_getContractionsAndExpansions(collator, contractions.getAlias(), nullptr, 1, &status);
  if (U_FAILURE(status)) return status;
  pairs.clear();
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
    pairs.push_back({static_cast<char32_t>(lead), static_cast<char32_t>(next)});
  }
  auto as_tuple = [](const code_point_pair& p) { return std::make_pair(p.first, p.second); };
  std::sort(pairs.begin(), pairs.end(), [&](const code_point_pair& a, const code_point_pair& b) {
    return as_tuple(a) < as_tuple(b);
  });
  pairs.erase(std::unique(pairs.begin(), pairs.end(),
                          [&](const code_point_pair& a, const code_point_pair& b) {
                            return as_tuple(a) == as_tuple(b);
                          }),
              pairs.end());
  return status;
}

// Letters that NFC never lets through (they decompose to one smaller code
// point, which has their collation elements), in order: no text folds to
// them, so they can stand for a key that only contractions have.
std::vector<UChar32> unused_singletons() {
  std::vector<UChar32> singletons;
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  if (U_FAILURE(status)) return singletons;
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    if (U_IS_SURROGATE(c) || c == dot_accent || (U_GET_GC_MASK(c) & U_GC_L_MASK) == 0 ||
        u_getCombiningClass(c) != 0 || class_of(c) != grapheme_class::other) {
      continue;
    }
    std::array<UChar, 8> decomposition{};
    const int32_t length = unorm2_getRawDecomposition(
        nfc, c, decomposition.data(), static_cast<int32_t>(decomposition.size()), &status);
    if (U_FAILURE(status)) {
      status = U_ZERO_ERROR;
      continue;
    }
    if (length <= 0 || u_countChar32(decomposition.data(), length) != 1) continue;
    int32_t at = 0;
    UChar32 d = 0;
    U16_NEXT(decomposition.data(), at, length, d);
    if (d < c) singletons.push_back(c);
  }
  return singletons;
}

// Appends `fold` to the pool (or finds it there) and returns its value.
UErrorCode pool_value(const std::u16string& fold, std::u16string& pool,
                      std::map<std::u16string, std::uint32_t>& pooled, std::uint32_t& value) {
  auto found = pooled.find(fold);
  if (found == pooled.end()) {
    std::size_t at = pool.find(fold);
    if (at == std::u16string::npos) {
      at = pool.size();
      pool += fold;
    }
    found = pooled.emplace(fold, static_cast<std::uint32_t>(at)).first;
  }
  if (found->second > fold_value::max_pool_offset || fold.size() > fold_value::max_length) {
    return U_BUFFER_OVERFLOW_ERROR;
  }
  value = fold_value::make(fold_kind::pool, found->second << fold_value::length_bits |
                                                static_cast<std::uint32_t>(fold.size()));
  return U_ZERO_ERROR;
}

// The fold table of one variant. Each code point folds to the representatives
// of its keys, in order. A key that no code point is alone (the "ss" of "ß"
// with accents) cannot be written so: a code point with such a key folds to
// the smallest code point whose keys are all of its own (preferring common
// other weights). With `composites`, lists those code points and their
// elements, read by `primary` (the variant without accents).
UErrorCode build_variant(const element_table& table, const element_reader& reader,
                         const std::vector<std::uint32_t>& bits, fold_table_image* image,
                         const representatives* primary, std::vector<composite_unit>* composites,
                         const std::vector<contraction_elements>& contractions = {},
                         std::vector<contraction_fold>* contraction_folds = nullptr) {
  representatives reps(table, reader);
  std::vector<element_key> keys;
  // An accent's secondary weight that no character has alone (the dot of
  // "l\u00b7"): dot_accent stands for it. ICU 72 has one such weight; a
  // second would need a character of its own.
  std::set<element_key> lonely_accents;
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    reader.keys(table.begin(c), table.end(c), keys);
    for (const collation_element* e = table.begin(c); e != table.end(c); ++e) {
      if (e->primary == 0 && reader.weighs(*e) && reps.of(reader.key(*e)) < 0 &&
          std::find(keys.begin(), keys.end(), reader.key(*e)) != keys.end()) {
        lonely_accents.insert(reader.key(*e));
      }
    }
  }
  if (lonely_accents.size() > 1) return U_UNSUPPORTED_ERROR;
  for (const element_key key : lonely_accents) reps.assign(key, dot_accent);

  // The code points with a key that has no representative, by their keys.
  std::map<std::vector<element_key>, std::pair<bool, UChar32>> wholes;  // keys -> (!common, c)
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    reader.keys(table.begin(c), table.end(c), keys);
    if (std::all_of(keys.begin(), keys.end(), [&](element_key k) { return reps.of(k) >= 0; })) {
      continue;
    }
    const bool common = std::all_of(table.begin(c), table.end(c),
                                    [&](const collation_element& e) { return reader.common(e); });
    const auto candidate = std::make_pair(!common, c);
    auto [it, inserted] = wholes.emplace(keys, candidate);
    if (!inserted && candidate < it->second) it->second = candidate;
  }
  if (composites != nullptr) {
    composites->clear();
    // (A unit whose elements cannot be listed, too many or a primary that no
    // code point stands for alone, is left out: none in the root's tables,
    // a few Hangul compatibility characters in tailored ones.)
    for (const auto& [element_keys, best] : wholes) {
      if (element_keys.size() > composite_unit::max_elements) continue;
      composite_unit unit{static_cast<char32_t>(best.second), 0, {}, 0};
      bool listed = true;
      for (element_key key : element_keys) {
        // A key of an accent table: primary << 16 | secondary, then the case
        // bits if case counts; read by the table without accents.
        element_key case_bits = 0;
        if (reader.case_level()) {
          case_bits = key & 3;
          key >>= 2;
        }
        const auto primary_weight = static_cast<std::uint32_t>(key >> 16);
        if ((key & 0xFFFF) == kCommonWeight) unit.common_secondary |= 1U << unit.count;
        const element_key primary_key =
            reader.case_level() ? element_key{primary_weight} << 2 | case_bits : primary_weight;
        const UChar32 rep = primary_weight == 0 ? 0 : primary->of(primary_key);
        listed = listed && rep >= 0;
        unit.primaries[unit.count++] = static_cast<char32_t>(rep);
      }
      if (listed) composites->push_back(unit);
    }
    if (!lonely_accents.empty()) composites->push_back({dot_accent, 1, {}, 0});
    std::sort(composites->begin(), composites->end(),
              [](const composite_unit& a, const composite_unit& b) { return a.unit < b.unit; });
  }
  if (image == nullptr) return U_ZERO_ERROR;

  // The contractions: each folds as a code point with its keys would. A key
  // that only contractions have (Slovak "ch") is given a stand-in of its own.
  std::vector<UChar32> stand_ins;  // listed when the first key needs one, smallest last
  bool stand_ins_listed = false;
  std::map<UChar32, std::u16string> starters;  // the code points that start contractions
  if (contraction_folds != nullptr) contraction_folds->clear();
  for (const contraction_elements& contraction : contractions) {
    reader.keys(contraction.elements.data(),
                contraction.elements.data() + contraction.elements.size(), keys);
    std::u16string fold;
    if (const auto whole = wholes.find(keys); whole != wholes.end()) {
      append_code_point(fold, whole->second.second);
    } else {
      for (const element_key key : keys) {
        if (reps.of(key) < 0) {
          if (!stand_ins_listed) {
            stand_ins = unused_singletons();
            std::reverse(stand_ins.begin(), stand_ins.end());
            stand_ins_listed = true;
          }
          if (stand_ins.empty()) return U_BUFFER_OVERFLOW_ERROR;
          reps.assign(key, stand_ins.back());
          stand_ins.pop_back();
        }
        append_code_point(fold, reps.of(key));
      }
    }
    if (fold.size() > fold_value::max_length) return U_BUFFER_OVERFLOW_ERROR;
    if (contraction_folds != nullptr) contraction_folds->push_back({contraction.text, fold});
    int32_t at = 0;
    UChar32 first = 0;
    U16_NEXT(contraction.text.data(), at, static_cast<int32_t>(contraction.text.size()), first);
    starters.emplace(first, std::u16string());
  }
  if (contraction_folds != nullptr) {
    std::sort(contraction_folds->begin(), contraction_folds->end(),
              [](const contraction_fold& a, const contraction_fold& b) { return a.text < b.text; });
  }

  image->pool.clear();
  std::map<std::u16string, std::uint32_t> pooled;
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUMutableCPTriePointer values(umutablecptrie_open(0, 0, &status));
  if (U_FAILURE(status)) return status;
  std::u16string fold;
  for (UChar32 c = 0; c < kCodePoints; ++c) {
    std::uint32_t value = 0;
    if (!U_IS_SURROGATE(c)) {
      reader.keys(table.begin(c), table.end(c), keys);
      fold.clear();
      int32_t code_points = 0;
      UChar32 only = -1;
      if (const auto whole = wholes.find(keys); whole != wholes.end()) {
        only = whole->second.second;
        append_code_point(fold, only);
        code_points = 1;
      } else {
        for (const element_key key : keys) {
          only = reps.of(key);
          if (only < 0) return U_INTERNAL_PROGRAM_ERROR;
          append_code_point(fold, only);
          ++code_points;
        }
      }
      if (starters.count(c) != 0) {
        // Its fold alone, after the mark that says it starts contractions.
        status = pool_value(fold_value::contraction_mark + fold, image->pool, pooled, value);
        if (U_FAILURE(status)) return status;
      } else if (code_points == 0) {
        value = fold_value::make(fold_kind::nothing, 0);
      } else if (code_points == 1 && only == c) {
        value = fold_value::make(fold_kind::self, 0);
      } else if (code_points == 1) {
        if (only - c > fold_value::max_delta || c - only > fold_value::max_delta) {
          return U_BUFFER_OVERFLOW_ERROR;
        }
        value = fold_value::make(fold_kind::delta, static_cast<std::uint32_t>(only - c));
      } else {
        status = pool_value(fold, image->pool, pooled, value);
        if (U_FAILURE(status)) return status;
      }
    }
    value |= bits[static_cast<std::size_t>(c)];
    if (value != 0) umutablecptrie_set(values.getAlias(), c, value, &status);
  }
  icu::LocalUCPTriePointer trie(umutablecptrie_buildImmutable(values.getAlias(), UCPTRIE_TYPE_FAST,
                                                              UCPTRIE_VALUE_BITS_32, &status));
  if (U_FAILURE(status)) return status;
  const int32_t size = ucptrie_toBinary(trie.getAlias(), nullptr, 0, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR)
    return U_FAILURE(status) ? status : U_INTERNAL_PROGRAM_ERROR;
  status = U_ZERO_ERROR;
  image->trie.assign(static_cast<std::size_t>(size), 0);
  ucptrie_toBinary(trie.getAlias(), image->trie.data(), size, &status);
  return status;
}

// What every table of a collator is made from: the collation elements of
// every code point, read once.
struct collation_data {
  const UNormalizer2* nfc = nullptr;
  std::uint32_t variable_top = 0;
  element_table table;
  std::unique_ptr<UCollationElements, decltype(&ucol_closeElements)> elements{nullptr,
                                                                              &ucol_closeElements};

  // Reads the elements of `collator`, and fills the image's lists.
  UErrorCode read(const UCollator* collator, fold_tables_image& image) {
    UErrorCode status = U_ZERO_ERROR;
    nfc = unorm2_getNFCInstance(&status);
    elements.reset(ucol_openElements(collator, nullptr, 0, &status));
    variable_top = ucol_getVariableTop(collator, &status);
    if (U_FAILURE(status)) return status;
    table.elements.reserve(1200000);
    for (UChar32 c = 0; c < kCodePoints; ++c) {
      table.first[static_cast<std::size_t>(c)] = static_cast<std::uint32_t>(table.elements.size());
      if (U_IS_SURROGATE(c)) continue;
      const std::u16string text = code_point_text(c);
      collation_elements(elements.get(), text.data(), static_cast<int32_t>(text.size()),
                         table.elements, status);
      if (U_FAILURE(status)) return status;
    }
    table.first[kCodePoints] = static_cast<std::uint32_t>(table.elements.size());

    std::set<UChar32> prevowels;
    status = prevowel_contractions(collator, nfc, prevowels, image.prevowel_pairs);
    if (U_FAILURE(status)) return status;
    list_mixed_punctuation(image);
    primary_ = std::make_unique<representatives>(table, element_reader({}, variable_top));
    primary_case_ = std::make_unique<representatives>(
        table, element_reader(fold_variant{false, true, false}, variable_top));
    return status;
  }

  // The representatives of the table without accents, with case or not.
  const representatives& primary(bool case_level) const {
    return case_level ? *primary_case_ : *primary_;
  }

 private:
  // Characters whose primary elements mix punctuation with other elements.
  void list_mixed_punctuation(fold_tables_image& image) const {
    const element_reader primary_reader(fold_variant{}, variable_top);
    image.dropped_starts.clear();
    image.variable_ends.clear();
    for (UChar32 c = 0; c < kCodePoints; ++c) {
      if (U_IS_SURROGATE(c)) continue;
      int variable_first = -1;
      bool variable_last = false;
      bool other = false;
      for (const collation_element* e = table.begin(c); e != table.end(c); ++e) {
        if (e->primary == 0) continue;
        const bool variable = primary_reader.variable(*e);
        if (variable_first < 0) variable_first = variable ? 1 : 0;
        variable_last = variable;
        other = other || !variable;
      }
      if (!other) continue;
      if (variable_first == 1) image.dropped_starts.push_back(static_cast<char32_t>(c));
      if (variable_last) image.variable_ends.push_back(static_cast<char32_t>(c));
    }
  }

  std::unique_ptr<representatives> primary_;
  std::unique_ptr<representatives> primary_case_;
};

// The contractions of `collator` that the root collator does not have, or
// reads otherwise (Catalan "l\u00b7", a letter of its own), in NFC, with
// their elements. (The root's own, Thai and Lao prevowels, Tibetan vowels,
// "l\u00b7", are read as the root's tables read them.)
UErrorCode tailored_contractions(const UCollator* collator, collation_data& data,
                                 std::vector<contraction_elements>& out) {
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUCollatorPointer root(ucol_open("", &status));
  icu::LocalUSetPointer root_set(uset_openEmpty());
  icu::LocalUSetPointer set(uset_openEmpty());
  ucol_getContractionsAndExpansions(root.getAlias(), root_set.getAlias(), nullptr, 1, &status);
  ucol_getContractionsAndExpansions(collator, set.getAlias(), nullptr, 1, &status);
  if (U_FAILURE(status)) return status;
  const std::unique_ptr<UCollationElements, decltype(&ucol_closeElements)> root_elements(
      ucol_openElements(root.getAlias(), nullptr, 0, &status), &ucol_closeElements);
  if (U_FAILURE(status)) return status;
  std::vector<collation_element> as_root;
  auto same = [](const collation_element& a, const collation_element& b) {
    return a.primary == b.primary && a.secondary == b.secondary && a.tertiary == b.tertiary;
  };
  out.clear();
  const int32_t items = uset_getItemCount(set.getAlias());
  for (int32_t i = 0; i < items; ++i) {
    UChar32 low = 0;
    UChar32 high = 0;
    std::array<UChar, 64> buffer{};
    const int32_t length = uset_getItem(set.getAlias(), i, &low, &high, buffer.data(),
                                        static_cast<int32_t>(buffer.size()), &status);
    if (U_FAILURE(status)) return status;
    if (length < 2 || u_countChar32(buffer.data(), length) < 2) continue;
    if (unorm2_isNormalized(data.nfc, buffer.data(), length, &status) == 0) continue;
    contraction_elements contraction;
    contraction.text.assign(buffer.data(), buffer.data() + length);
    collation_elements(data.elements.get(), buffer.data(), length, contraction.elements, status);
    if (U_FAILURE(status)) return status;
    if (uset_containsString(root_set.getAlias(), buffer.data(), length) != 0) {
      as_root.clear();
      collation_elements(root_elements.get(), buffer.data(), length, as_root, status);
      if (U_FAILURE(status)) return status;
      if (std::equal(as_root.begin(), as_root.end(), contraction.elements.begin(),
                     contraction.elements.end(), same)) {
        continue;
      }
    }
    out.push_back(std::move(contraction));
  }
  return status;
}

}  // namespace

UErrorCode build_fold_tables(fold_tables_image& image) {
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUCollatorPointer collator(ucol_open("", &status));
  if (U_FAILURE(status)) return status;
  collation_data data;
  status = data.read(collator.getAlias(), image);
  if (U_FAILURE(status)) return status;
  std::set<UChar32> prevowels;
  for (const code_point_pair& pair : image.prevowel_pairs) {
    prevowels.insert(static_cast<UChar32>(pair.first));
  }
  std::vector<std::uint32_t> bits;
  status = character_bits(prevowels, bits);
  if (U_FAILURE(status)) return status;

  // The composite units of the accent tables, with and without case: their
  // elements are read by the tables without accents.
  for (int index = 0; index < fold_variant::count; ++index) {
    const fold_variant variant = fold_variant::at(index);
    // (The tables with "shifted" have the same composite units.)
    const bool lists_composites = variant.accents && !variant.shifted;
    status = build_variant(
        data.table, element_reader(variant, data.variable_top), bits,
        &image.tables[static_cast<std::size_t>(index)], &data.primary(variant.case_level),
        lists_composites ? &image.composites[variant.case_level ? 1 : 0] : nullptr);
    if (U_FAILURE(status)) return status;
  }
  return status;
}

namespace {

// What every table of a tailored collator is made from.
struct tailored_data {
  collation_data data;
  std::vector<std::uint32_t> bits;
  std::vector<contraction_elements> contractions;

  // Reads `collator` and fills the image's lists; `bits` are the root's.
  UErrorCode read(const UCollator* collator, std::vector<std::uint32_t> root_bits,
                  fold_tables_image& image) {
    if (root_bits.size() != static_cast<std::size_t>(kCodePoints)) {
      return U_ILLEGAL_ARGUMENT_ERROR;
    }
    bits = std::move(root_bits);
    UErrorCode status = data.read(collator, image);
    if (U_FAILURE(status)) return status;
    for (std::uint32_t& value : bits) value &= ~fold_value::prevowel_bit;
    for (const code_point_pair& pair : image.prevowel_pairs) {
      bits[static_cast<std::size_t>(pair.first)] |= fold_value::prevowel_bit;
    }
    return tailored_contractions(collator, data, contractions);
  }

  UErrorCode build(fold_variant variant, fold_tables_image& image) const {
    const auto index = static_cast<std::size_t>(variant.index());
    const representatives& primary = data.primary(variant.case_level);
    std::vector<composite_unit>* composites =
        variant.accents ? &image.composites[variant.case_level ? 1 : 0] : nullptr;
    if (composites != nullptr && variant.shifted) {
      // The composite units are those of the table without "shifted".
      const fold_variant unshifted{variant.accents, variant.case_level, false};
      const UErrorCode status =
          build_variant(data.table, element_reader(unshifted, data.variable_top), bits, nullptr,
                        &primary, composites);
      if (U_FAILURE(status)) return status;
      composites = nullptr;
    }
    return build_variant(data.table, element_reader(variant, data.variable_top), bits,
                         &image.tables[index], &primary, composites, contractions,
                         &image.contractions[index]);
  }
};

}  // namespace

UErrorCode build_fold_table(const UCollator* collator, fold_variant variant,
                            std::vector<std::uint32_t> bits, fold_tables_image& image) {
  tailored_data tailored;
  const UErrorCode status = tailored.read(collator, std::move(bits), image);
  return U_FAILURE(status) ? status : tailored.build(variant, image);
}

UErrorCode build_fold_tables(const UCollator* collator, fold_tables_image& image) {
  std::vector<std::uint32_t> bits;
  UErrorCode status = character_bits({}, bits);
  if (U_FAILURE(status)) return status;
  tailored_data tailored;
  status = tailored.read(collator, std::move(bits), image);
  for (int index = 0; index < fold_variant::count && U_SUCCESS(status); ++index) {
    status = tailored.build(fold_variant::at(index), image);
  }
  return status;
}

std::u16string stored_contractions(const std::vector<contraction_fold>& contractions) {
  std::u16string stored;
  for (const contraction_fold& contraction : contractions) {
    for (const std::u16string* text : {&contraction.text, &contraction.fold}) {
      stored += static_cast<char16_t>(text->size());
      stored += *text;
    }
  }
  return stored;
}

std::vector<contraction_fold> stored_contractions(const char16_t* data, std::size_t size) {
  std::vector<contraction_fold> contractions;
  std::size_t at = 0;
  // Reads the next text into `text`; false if the store ends before it does.
  auto next_text = [&](std::u16string& text) {
    if (at >= size || data[at] > size - at - 1) return false;
    text.assign(data + at + 1, data + at + 1 + data[at]);
    at += 1 + data[at];
    return true;
  };
  contraction_fold contraction;
  while (next_text(contraction.text) && next_text(contraction.fold)) {
    contractions.push_back(contraction);
  }
  return contractions;
}

}  // namespace scl::regex::detail
