// What the fold table stores for each code point, in one 32-bit value.
//
//   bits 30-31  kind: the code point folds to itself, to one other code point
//               (itself + delta), to a string of the pool, or to nothing
//   bits 25-29  grapheme class (grapheme_class below)
//   bit  24     NFC_Quick_Check is not Yes: text around it may need NFC
//   bit  23     a Logical_Order_Exception prevowel that starts root contractions
//   bit  22     canonical combining class is not 0
//   bit  21     NFC_Quick_Check is Maybe: may compose with the character before it
//   bits 0-20   the delta (signed), or the pool string as offset << 5 | length
//
// In the table of a tailored collator, a pool string that starts with
// contraction_mark marks a code point that starts contractions (Danish "aa");
// the rest of the string is its fold alone.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_VALUE_H
#define SCL_REGEX_SRC_SEARCH_FOLD_VALUE_H

#include <cstdint>
#include <string>

namespace scl::regex::detail {

enum class fold_kind : std::uint32_t { self = 0, delta = 1, pool = 2, nothing = 3 };

// The character's Grapheme_Cluster_Break class, as ICU's character break
// iterator sees it: two classes are split off for ICU's Indic conjunct rule
// (LinkingConsonant ExtCccZwj* Virama ExtCccZwj* x LinkingConsonant).
enum class grapheme_class : std::uint32_t {
  other,
  control,
  cr,
  lf,
  extend,
  zwj,
  spacing_mark,
  prepend,
  l,
  v,
  t,
  lv,
  lvt,
  regional_indicator,
  extended_pictographic,
  virama,             // an Extend character that links consonants
  linking_consonant,  // an Other character that a virama links to the consonant before it
};

// A pair of code points, as the table stores them.
struct code_point_pair {
  char32_t first;
  char32_t second;
};

// The character that stands, in folded text with accents, for the one
// secondary weight no character has alone: the middle dot of the root
// collator's "l\u00b7" (and of "\u0140"). GREEK ANO TELEIA looks like that dot,
// and no text folds to it: NFC turns it into U+00B7.
constexpr char16_t dot_accent = 0x0387;

// A character of folded text (with accents, without case) whose collation
// elements are not what its fold without accents says: one that stands for
// more than one element, because one of them has no character of its own
// ("\u00df" for an s with a secondary weight of its own followed by an s), and
// dot_accent, an accent.
struct composite_unit {
  static constexpr int max_elements = 8;
  char32_t unit;
  std::uint32_t count;               // its elements
  char32_t primaries[max_elements];  // each element's fold without accents (0: an accent)
  std::uint32_t common_secondary;    // bit i: element i has the common secondary weight
};

// The characters a collation's fold tables read apart, the same for every
// variant (fold_tables_image says what each list holds).
struct character_lists {
  const code_point_pair* prevowel_pairs;
  std::size_t prevowel_pair_count;
  const char32_t* dropped_starts;
  std::size_t dropped_start_count;
  const char32_t* variable_ends;
  std::size_t variable_end_count;
  const composite_unit* composites[2];  // the accent tables' without case, with case
  std::size_t composite_count[2];
};

// A contraction of a tailored collator (code points that its collation
// elements read as one, Danish "aa"), in NFC, with its fold.
struct contraction_fold {
  std::u16string text;
  std::u16string fold;
};

namespace fold_value {

constexpr int kind_shift = 30;
constexpr int class_shift = 25;
constexpr std::uint32_t needs_nfc_bit = 1U << 24;
constexpr std::uint32_t prevowel_bit = 1U << 23;
constexpr std::uint32_t combining_bit = 1U << 22;
constexpr std::uint32_t composes_back_bit = 1U << 21;
constexpr int payload_bits = 21;
constexpr std::uint32_t payload_mask = (1U << payload_bits) - 1;
constexpr std::int32_t max_delta = (1 << (payload_bits - 1)) - 1;
constexpr int length_bits = 5;
constexpr std::uint32_t max_length = (1U << length_bits) - 1;
constexpr std::uint32_t max_pool_offset = payload_mask >> length_bits;

constexpr char16_t contraction_mark = 0xFFFF;

constexpr fold_kind kind(std::uint32_t value) {
  return static_cast<fold_kind>(value >> kind_shift);
}
constexpr grapheme_class klass(std::uint32_t value) {
  return static_cast<grapheme_class>((value >> class_shift) & 0x1F);
}
constexpr bool needs_nfc(std::uint32_t value) { return (value & needs_nfc_bit) != 0; }
constexpr bool prevowel(std::uint32_t value) { return (value & prevowel_bit) != 0; }
constexpr bool combining(std::uint32_t value) { return (value & combining_bit) != 0; }
constexpr bool composes_back(std::uint32_t value) { return (value & composes_back_bit) != 0; }
constexpr std::int32_t delta(std::uint32_t value) {
  // Sign-extends the payload.
  constexpr std::uint32_t sign = 1U << (payload_bits - 1);
  return static_cast<std::int32_t>((value & payload_mask) ^ sign) - static_cast<std::int32_t>(sign);
}
constexpr std::uint32_t pool_offset(std::uint32_t value) {
  return (value & payload_mask) >> length_bits;
}
constexpr std::uint32_t pool_length(std::uint32_t value) { return value & max_length; }

constexpr std::uint32_t make(fold_kind kind, std::uint32_t payload) {
  return static_cast<std::uint32_t>(kind) << kind_shift | (payload & payload_mask);
}
constexpr std::uint32_t with_class(std::uint32_t value, grapheme_class klass) {
  return value | static_cast<std::uint32_t>(klass) << class_shift;
}

}  // namespace fold_value

// Whether a character of this class extends the grapheme before it.
constexpr bool extends_grapheme(grapheme_class klass) {
  return klass == grapheme_class::extend || klass == grapheme_class::zwj ||
         klass == grapheme_class::spacing_mark || klass == grapheme_class::virama;
}

// Whether a grapheme always ends after a character of this class.
constexpr bool is_break_class(grapheme_class klass) {
  return klass == grapheme_class::control || klass == grapheme_class::cr ||
         klass == grapheme_class::lf;
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_VALUE_H
