// What removing diacritics does to each code point on its own.
//
// Removing diacritics is NFC(remove_Mn(NFD(text))). Decomposition and removal
// work character by character, so the text only ever changes through the
// final composition, and that cannot reach across a character that starts
// with an NFC boundary. Most characters therefore have a fixed result
// whatever their neighbours are; the table holds it, and the preparation pass
// reads the text once, looking each character up. The rest (characters that
// may combine with what stands before them) are marked for ICU's normalisers.
#ifndef SCL_REGEX_SRC_PREPARE_MARK_TABLE_H
#define SCL_REGEX_SRC_PREPARE_MARK_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <unicode/normalizer2.h>
#include <unicode/ucptrie.h>
#include <unicode/uniset.h>
#include <unicode/utf16.h>

namespace scl::regex::detail {

// A character's entry. Anything from kFirstReplacement up names its result
// in the table's pool.
enum : std::uint16_t {
  kKeep = 0,     // stays as it is and starts at an NFC boundary
  kRemove = 1,   // every part of it is a non-spacing mark: it disappears
  kCompose = 2,  // may combine with what precedes it: ICU's normalisers decide
  kLone = 3,     // an unpaired surrogate: stays, but see strip_diacritics
  kFirstReplacement = 8,
};

class mark_table {
 public:
  // The table of the ICU that the library runs with, built on first use
  // (thread-safe) and immutable afterwards.
  static const mark_table& instance();

  mark_table(const mark_table&) = delete;
  mark_table& operator=(const mark_table&) = delete;
  ~mark_table() = default;

  // False if ICU could not provide the normalisers, the set of marks or the
  // table; nothing else may then be used.
  bool ready() const noexcept { return trie_.isValid(); }

  // Below this unit every character stays (checked when the table is built).
  static constexpr char16_t kFirstChange = 0xC0;

  // The entry of the character that starts at `text[at]` (of `length` units);
  // `at` moves past it. An unpaired surrogate is a character of its own.
  std::uint16_t next(const char16_t* text, std::size_t& at, std::size_t length) const noexcept {
    const char16_t unit = text[at++];
    if (unit < kFirstChange) return kKeep;
    if (!U16_IS_SURROGATE(unit)) return UCPTRIE_FAST_BMP_GET(trie_.getAlias(), UCPTRIE_16, unit);
    if (U16_IS_SURROGATE_LEAD(unit) && at < length && U16_IS_TRAIL(text[at])) {
      const UChar32 c = U16_GET_SUPPLEMENTARY(unit, text[at++]);
      return UCPTRIE_FAST_SUPP_GET(trie_.getAlias(), UCPTRIE_16, c);
    }
    return kLone;
  }

  // For a BMP unit: the one BMP unit that the character becomes when it stays
  // one unit (kept, or replaced by one unit); 0 otherwise (removed, may
  // combine, longer, a surrogate, U+0000). Such characters map unit for unit.
  char16_t single_unit(char16_t unit) const noexcept { return single_units_[unit]; }

  // The result of a character whose entry is a replacement.
  const char16_t* replacement(std::uint16_t entry) const noexcept {
    return pool_.data() + (entry >> 3) - 1;
  }
  static std::size_t replacement_length(std::uint16_t entry) noexcept { return entry & 7u; }

  // Bytes that the lookup structure takes.
  std::size_t memory_size() const noexcept;

  const icu::Normalizer2& nfd() const noexcept { return *nfd_; }
  const icu::Normalizer2& nfc() const noexcept { return *nfc_; }
  const icu::UnicodeSet& marks() const noexcept { return marks_; }

 private:
  mark_table();

  const icu::Normalizer2* nfd_ = nullptr;
  const icu::Normalizer2* nfc_ = nullptr;
  icu::UnicodeSet marks_;               // general category Mn, frozen
  std::u16string pool_;                 // the results of the replacements, back to back
  std::vector<char16_t> single_units_;  // single_unit() of every BMP unit
  icu::LocalUCPTriePointer trie_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_PREPARE_MARK_TABLE_H
