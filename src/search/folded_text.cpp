#include "search/folded_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include "scl/regex/exception.h"
#include "search/code_points.h"
#include "time_limit/deadline.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace scl::regex::detail {

int32_t folded_text::piece_end(int32_t end) const {
  int32_t piece_end = end < size ? origin[end] : source_size;
  const auto empty = std::upper_bound(empty_pieces.begin(), empty_pieces.end(), origin[end - 1]);
  if (empty != empty_pieces.end() && *empty < piece_end) piece_end = *empty;
  return piece_end;
}

void folded_text::grow(int32_t more) {
  const std::size_t needed = static_cast<std::size_t>(size) + static_cast<std::size_t>(more);
  const std::size_t capacity = std::max(needed, units.capacity() * 2);
  units.reallocate(capacity, static_cast<std::size_t>(size));
  origin.reallocate(capacity, static_cast<std::size_t>(size));
}

void folded_text::trim() {
  constexpr std::size_t kept = 1 << 16;
  if (units.capacity() > kept) {
    units.release();
    origin.release();
  }
  if (empty_pieces.capacity() > kept) empty_pieces = {};
}

namespace {

constexpr UChar32 middle_dot = 0xB7;
constexpr int32_t longest_fold = 32;  // units; the longest fold has 18

bool is_l(UChar32 c) { return c == u'l' || c == u'L'; }

// ICU's NFD, for the marks a letter decomposes to (null if ICU has none).
const UNormalizer2* nfd_instance() {
  static const UNormalizer2* const nfd = [] {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* instance = unorm2_getNFDInstance(&status);
    return U_SUCCESS(status) ? instance : nullptr;
  }();
  return nfd;
}

template <class Unit>
class folder {
 public:
  folder(const fold_table& table, const Unit* text, int32_t size, folded_text& out)
      : table_(table),
        primary_(table.sibling({})),
        accents_(table.variant().accents),
        text_(text),
        size_(size),
        out_(out) {
    out_.size = 0;
    out_.source_size = size;
    out_.empty_pieces.clear();
    out_.aligned.clear();
    // Text folds to about as many units as it has, Hangul and expansions to
    // more: one allocation for nearly all text, not a series of doublings.
    out_.reserve_more(size + size / 2 + longest_fold);
  }

  void run(bool watch_time, const chunk_observer& after_chunk, int32_t first_stretch) {
    int32_t at = 0;
    int32_t stretch = std::max<int32_t>(1, std::min(first_stretch, fold_stretch));
    while (at < size_) {
      if (watch_time) {
        UErrorCode status = U_ZERO_ERROR;
        check_deadline(status);
        if (U_FAILURE(status)) throw regex_exception(status);
      }
      const int32_t end = size_ - at > stretch ? at + stretch : size_;
      stretch = std::min(stretch * 2, fold_stretch);
      while (at < end) {
        const int32_t stop = fold_run(at, end, true);
        at = stop < end ? normalise_segment(stop) : stop;
      }
      if (after_chunk && at < size_ && after_chunk(final_units(at), false)) return;
    }
    if (after_chunk) after_chunk(out_.size, true);
  }

 private:
  // Folds the characters that start in [at, end); with `check`, stops at the
  // first one around which the text may not be in NFC, and returns where that
  // starts. Otherwise returns where the last character ends.
  int32_t fold_run(int32_t at, int32_t end, bool check) {
    while (at < end) {
      if (latin_first(at)) at = fold_latin(at, end);
      at = fold_simple(at, end);
      if (at >= end) break;
      const int32_t start = at;
      const UChar32 c = next_code_point(text_, at, size_);
      const std::uint32_t value = table_.value(c);
      if (check && out_of_nfc(c, value)) return start;
      if (table_.starts_contractions(value)) {
        const int32_t contraction_end = fold_contraction(start);
        if (contraction_end > start) {
          at = contraction_end;
          continue;
        }
      }
      previous_combining_ = fold_value::combining(value);
      out_.reserve_more(longest_fold);
      fold_code_point(c, value, start, at);
    }
    return at;
  }

  // The longest contraction of the table that the text has at `at`: folded
  // as one piece. Returns where it ends, or `at` if none is there. The
  // contractions are sorted by text, so those that the text read so far
  // starts are a range, narrowed a code point at a time.
  int32_t fold_contraction(int32_t at) {
    // Compares the units of a contraction's text from `from` on, as many as
    // `next` has, with `next`: the contractions compared all have the units
    // before `from` in common.
    struct by_next {
      std::size_t from;
      std::u16string_view part(const contraction_fold& c) const {
        return std::u16string_view(c.text).substr(std::min(from, c.text.size()));
      }
      bool operator()(const contraction_fold& c, std::u16string_view next) const {
        return part(c).substr(0, next.size()) < next;
      }
      bool operator()(std::u16string_view next, const contraction_fold& c) const {
        return next < part(c).substr(0, next.size());
      }
    };
    int32_t in_text = at;
    const UChar32 head = next_code_point(text_, in_text, size_);
    if (in_text == size_ || !table_.may_follow_starter(code_point_at(text_, in_text, size_))) {
      return at;
    }
    std::array<char16_t, 64> units;  // the text read so far (written before it is read)
    std::size_t length = 0;
    auto append = [&](UChar32 c) {
      if (c <= 0xFFFF) {
        units[length++] = static_cast<char16_t>(c);
      } else {
        units[length++] = U16_LEAD(c);
        units[length++] = U16_TRAIL(c);
      }
    };
    append(head);
    const UChar32 second = next_code_point(text_, in_text, size_);
    append(second);
    auto [first, last] = table_.contractions_of(head, second);
    const contraction_fold* longest = nullptr;
    int32_t longest_end = at;
    if (first != last && first->text.size() == length) {  // a whole contraction sorts first
      longest = first;
      longest_end = in_text;
    }
    // (A range of the whole contraction alone goes no further.)
    while (first != last && !(last - first == 1 && longest == first) && in_text < size_ &&
           length + 2 <= units.size()) {
      const std::size_t matched = length;  // the units every contraction in range has
      append(next_code_point(text_, in_text, size_));
      const std::u16string_view next(units.data() + matched, length - matched);
      std::tie(first, last) = std::equal_range(first, last, next, by_next{matched});
      if (first != last && first->text.size() == length) {  // a whole contraction sorts first
        longest = first;
        longest_end = in_text;
      }
    }
    if (longest == nullptr) return at;
    out_.reserve_more(static_cast<int32_t>(longest->fold.size()));
    for (const char16_t unit : longest->fold) {
      out_.units[out_.size] = unit;
      out_.origin[out_.size++] = at;
    }
    if (longest->fold.empty()) {
      empty_piece(at);
    } else {
      last_piece_empty_ = false;
    }
    previous_ = code_point_before(text_, longest_end);
    previous_combining_ = fold_value::combining(table_.value(previous_));
    contraction_start_ = at;
    contraction_end_ = longest_end;
    return longest_end;
  }

  // `at` moved back to the start of the contraction it falls inside, if any.
  int32_t outside_contraction(int32_t at) const {
    return at > contraction_start_ && at < contraction_end_ ? contraction_start_ : at;
  }

  // How many folded units no later character can change, once the text up to
  // `at` is folded: NFC can roll the fold back only to a normalisation
  // boundary, and never before the last one at or before `at` (or the start
  // of the contraction that boundary falls inside).
  int32_t final_units(int32_t at) const {
    int32_t boundary = at;
    while (boundary > 0 &&
           unorm2_hasBoundaryBefore(table_.nfc(), code_point_at(text_, boundary, size_)) == 0) {
      previous_code_point(text_, boundary);
    }
    boundary = outside_contraction(boundary);
    int32_t units = out_.size;
    while (units > 0 && out_.origin[units - 1] >= boundary) --units;
    return units;
  }

  // Ends a run of fold_latin or fold_simple: the folded text ends at `units`;
  // if the run folded anything, `last` was its last character, folded to
  // nothing or not.
  void end_run(const char16_t* units, bool folded_any, UChar32 last, bool last_empty) {
    out_.size = static_cast<int32_t>(units - out_.units.data());
    if (folded_any) {
      previous_ = last;
      previous_combining_ = false;
      last_piece_empty_ = last_empty;
    }
  }

  // Whether fold_latin folds the character at `at` (< end).
  bool latin_first(int32_t at) const {
    const UChar32 c = code_at(at);
    if constexpr (sizeof(Unit) == 2) {
      return c < fold_table::latin_limit &&
             table_.latin(static_cast<char16_t>(c)) != fold_table::latin_slow;
    } else {
      return c < 0x80 ? table_.latin(static_cast<char16_t>(c)) != fold_table::latin_slow
                      : c >= 0xC2 && c <= 0xCB;
    }
  }

  // The unit at `at`, as a number.
  UChar32 code_at(int32_t at) const { return static_cast<std::make_unsigned_t<Unit>>(text_[at]); }

  // How many of the eight units at `text`, from the first, are below
  // latin_limit (bytes below 0x80, in UTF-8).
  static int32_t latin_units(const Unit* text) {
    constexpr int32_t all = 8;
    if constexpr (sizeof(Unit) == 1) {
      std::uint64_t bytes = 0;
      std::memcpy(&bytes, text, sizeof bytes);
      const std::uint64_t high = bytes & 0x8080808080808080U;
      if (high == 0) return all;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
      return static_cast<int32_t>(__builtin_ctzll(high) >> 3);
#endif
    } else {
#if defined(__SSE2__)
      const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
      const __m128i last = _mm_set1_epi16(static_cast<short>(fold_table::latin_limit - 1));
      const __m128i over = _mm_subs_epu16(units, last);  // 0 where a unit is at most `last`
      const auto below =
          static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(over, _mm_setzero_si128())));
      if (below == 0xFFFF) return all;
      return static_cast<int32_t>(__builtin_ctz(~below) >> 1);
#endif
    }
    constexpr unsigned limit = sizeof(Unit) == 1 ? 0x80 : fold_table::latin_limit;
    int32_t count = 0;
    while (count < all && static_cast<std::make_unsigned_t<Unit>>(text[count]) < limit) ++count;
    return count;
  }

  // Folds the sixteen units at `at`, all below latin_limit, into `units`
  // (each into one unit, as far as they go): returns how many from the first
  // fold to one unit each.
  int32_t fold_block(int32_t at, char16_t* units) const {
    constexpr int32_t block = folded_text::aligned_block;
    std::uint32_t folds = 0;
    for (int32_t k = 0; k < block; ++k) {
      const std::uint32_t fold = table_.latin(code_at(at + k));
      units[k] = static_cast<char16_t>(fold);
      folds |= fold;
    }
    if (folds <= 0xFFFF) return block;
    int32_t kept = 0;
    while (table_.latin(code_at(at + kept)) <= 0xFFFF) ++kept;
    return kept;
  }

  // Notes the block just folded at `units` from source unit `at` as aligned:
  // a run of its own, or more of the one it follows.
  void note_aligned(const char16_t* units, int32_t at) {
    const auto begin = static_cast<int32_t>(units - out_.units.data());
    const int32_t end = begin + folded_text::aligned_block;
    if (!out_.aligned.empty() && out_.aligned.back().end == begin && begin > 0 &&
        out_.origin[static_cast<std::size_t>(begin) - 1] + 1 == at) {
      out_.aligned.back().end = end;
    } else {
      out_.aligned.push_back({begin, end});
    }
  }

  // origin[0, 8) = at, at + 1, ...
  static void store_origins(int32_t* origin, int32_t at) {
#if defined(__SSE2__)
    const __m128i first = _mm_add_epi32(_mm_set1_epi32(at), _mm_setr_epi32(0, 1, 2, 3));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(origin), first);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(origin + 4),
                     _mm_add_epi32(first, _mm_set1_epi32(4)));
#else
    for (int32_t k = 0; k < 8; ++k) origin[k] = at + k;
#endif
  }

  // Characters that the Latin table folds, as long as they come.
  int32_t fold_latin(int32_t at, int32_t end) {
    out_.reserve_more(2 * (end - at) + 2);
    char16_t* units = out_.units.data() + out_.size;
    int32_t* origin = out_.origin.data() + out_.size;
    const int32_t first = at;
    UChar32 last = -1;
    bool last_empty = false;
    // One character at a time; once eight in a row have folded to one unit
    // each, blocks of units that each fold to one unit (bytes below 0x80, in
    // UTF-8), as nearly all of such text: folded, and kept up to the first
    // unit that does not (the room is there either way). From there, one at
    // a time again (in text with a space or an accent every few letters, or
    // short runs of Latin between other scripts, blocks would keep failing).
    constexpr int32_t block = folded_text::aligned_block;
    bool slow = false;
    while (at < end && !slow) {
      int32_t in_a_row = 0;  // characters just folded to one unit each
      while (at < end && in_a_row < 8) {
        UChar32 c = code_at(at);
        int32_t length = 1;
        if constexpr (sizeof(Unit) == 2) {
          if (c >= fold_table::latin_limit) {
            slow = true;
            break;
          }
        } else if (c >= 0x80) {
          // Two-byte sequences up to U+02FF: C2..CB, then a trail byte.
          const auto trail = at + 1 < size_ ? static_cast<unsigned char>(text_[at + 1]) : 0;
          if (c < 0xC2 || c > 0xCB || (trail & 0xC0) != 0x80) {
            slow = true;
            break;
          }
          c = (c & 0x1F) << 6 | (trail & 0x3F);
          length = 2;
          in_a_row = -1;
        }
        const std::uint32_t fold = table_.latin(static_cast<char16_t>(c));
        if (fold <= 0xFFFF) {  // one unit, as nearly every character
          *units++ = static_cast<char16_t>(fold);
          *origin++ = at;
          last_empty = false;
          ++in_a_row;
        } else if (fold < fold_table::latin_slow) {
          *units++ = static_cast<char16_t>(fold);
          *origin++ = at;
          *units++ = static_cast<char16_t>(fold >> 16);
          *origin++ = at;
          last_empty = false;
          in_a_row = 0;
        } else if (fold == fold_table::latin_nothing) {
          out_.empty_pieces.push_back(at);
          last_empty = true;
          in_a_row = 0;
        } else {
          slow = true;
          break;
        }
        last = c;
        at += length;
      }
      if (slow) break;
      while (end - at >= block) {
        int32_t kept = latin_units(text_ + at);
        if (kept == 8) kept += latin_units(text_ + at + 8);
        if (kept == block) {
          kept = fold_block(at, units);
          store_origins(origin, at);
          store_origins(origin + 8, at + 8);
          if (kept == block && out_.note_aligned) note_aligned(units, at);
        } else {
          for (int32_t k = 0; k < kept; ++k) {
            const std::uint32_t fold = table_.latin(code_at(at + k));
            if (fold > 0xFFFF) {
              kept = k;
              break;
            }
            units[k] = static_cast<char16_t>(fold);
            origin[k] = at + k;
          }
        }
        units += kept;
        origin += kept;
        at += kept;
        if (kept != 0) {
          last = code_at(at - 1);
          last_empty = false;
        }
        if (kept != block) break;
      }
    }
    end_run(units, at > first, last, last_empty);
    return at;
  }

  // Characters that fold to themselves or to one other code point and need
  // no look at NFC or at their neighbours, as long as they come.
  int32_t fold_simple(int32_t at, int32_t end) {
    out_.reserve_more(2 * (end - at) + 2);
    char16_t* units = out_.units.data() + out_.size;
    int32_t* origin = out_.origin.data() + out_.size;
    const int32_t first = at;
    UChar32 last = -1;
    while (at < end) {
      const int32_t start = at;
      UChar32 c = 0;
      std::uint32_t value = 0;
      if constexpr (sizeof(Unit) == 2) {
        if (!U16_IS_SURROGATE(text_[at])) {
          c = text_[at++];
          value = table_.bmp_value(static_cast<char16_t>(c));
        }
      }
      if (at == start) {
        c = next_code_point(text_, at, size_);
        value = table_.value(c);
      }
      const fold_kind kind = fold_value::kind(value);
      if ((value & (fold_value::needs_nfc_bit | fold_value::combining_bit)) != 0 ||
          (kind != fold_kind::self && kind != fold_kind::delta) || c == middle_dot ||
          (accents_ && extends_grapheme(fold_value::klass(value)))) {
        at = start;
        break;
      }
      const UChar32 fold = kind == fold_kind::self ? c : c + fold_value::delta(value);
      if (fold <= 0xFFFF) {
        *units++ = static_cast<char16_t>(fold);
        *origin++ = start;
      } else {
        *units++ = U16_LEAD(fold);
        *origin++ = start;
        *units++ = U16_TRAIL(fold);
        *origin++ = start;
      }
      last = c;
    }
    end_run(units, at > first, last, false);
    return at;
  }

  // Whether NFC could change the text around `c`: it is not NFC_QC=Yes, or
  // it is a mark out of canonical order. A character that NFC_QC says may
  // compose with what comes before it is settled here when that is a starter
  // it does not compose with (a Bengali vowel sign after a consonant).
  bool out_of_nfc(UChar32 c, std::uint32_t value) const {
    if (fold_value::needs_nfc(value)) {
      return previous_ < 0 || previous_combining_ || !fold_value::composes_back(value) ||
             unorm2_composePair(table_.nfc(), previous_, c) >= 0;
    }
    return fold_value::combining(value) && previous_combining_ &&
           unorm2_getCombiningClass(table_.nfc(), c) <
               unorm2_getCombiningClass(table_.nfc(), previous_);
  }

  void put(UChar32 c, int32_t origin) {
    if (c <= 0xFFFF) {
      out_.units[out_.size] = static_cast<char16_t>(c);
      out_.origin[out_.size++] = origin;
    } else {
      out_.units[out_.size] = U16_LEAD(c);
      out_.origin[out_.size++] = origin;
      out_.units[out_.size] = U16_TRAIL(c);
      out_.origin[out_.size++] = origin;
    }
  }

  // Appends the fold of `c` to the folded text; returns false if it folds to nothing.
  bool put_fold(UChar32 c, std::uint32_t value, int32_t origin) {
    switch (fold_value::kind(value)) {
      case fold_kind::self:
        put(c, origin);
        return true;
      case fold_kind::delta:
        put(c + fold_value::delta(value), origin);
        return true;
      case fold_kind::pool: {
        const std::u16string_view fold = table_.pool_fold(value);
        for (const char16_t unit : fold) {
          out_.units[out_.size] = unit;
          out_.origin[out_.size++] = origin;
        }
        return !fold.empty();
      }
      case fold_kind::nothing:
        break;
    }
    return false;
  }

  // Whether a character of class `klass` that folds to nothing joins the piece
  // before it.
  bool joins_previous(grapheme_class klass) const {
    return extends_grapheme(klass) && out_.size > 0 && !last_piece_empty_ && previous_ >= 0 &&
           !is_break_class(fold_value::klass(table_.value(previous_)));
  }

  void empty_piece(int32_t at) {
    out_.empty_pieces.push_back(at);
    last_piece_empty_ = true;
  }

  // Folds `c`, which starts at `at` and ends at `end`, as a piece of its own,
  // or joins it to the piece before it.
  void fold_code_point(UChar32 c, std::uint32_t value, int32_t at, int32_t end) {
    if (c == middle_dot && is_l(previous_)) {
      // The root collator's "l\u00b7" reads the dot as an accent of the "l",
      // in a piece of its own: with accents it is dot_accent, without it is
      // nothing.
      if (accents_) {
        put(dot_accent, at);
        last_piece_empty_ = false;
      } else {
        empty_piece(at);
      }
    } else if (accents_ && primary_ignorable(c) && fold_value::kind(value) != fold_kind::nothing) {
      fold_accent(c, value, at, end);
    } else if (put_fold(c, value, at)) {
      last_piece_empty_ = false;
    } else if (!joins_previous(fold_value::klass(value))) {
      empty_piece(at);
    } else {
      block_reordering(c);
    }
    previous_ = c;
  }

  // A character that folds to nothing has joined the piece before it: if it
  // is a starter (U+034F), accents after it stay after it, as the collator
  // reads them (canonical order does not pass it).
  void block_reordering(UChar32 c) {
    if (accents_ && u_getCombiningClass(c) == 0) accent_floor_ = out_.size;
  }

  // An accent, with accents counting: it joins the piece before it where a
  // character that folds to nothing would; after punctuation that "shifted"
  // ignores, it is ignored too.
  void fold_accent(UChar32 c, std::uint32_t value, int32_t at, int32_t end) {
    const bool joins = joins_previous(fold_value::klass(value));
    if (table_.variant().shifted && after_variable(at, end)) {
      if (!joins) empty_piece(at);
      return;
    }
    if (!joins) {
      put_fold(c, value, at);
      last_piece_empty_ = false;
      return;
    }
    const int32_t from = out_.size;
    put_fold(c, value, out_.origin[out_.size - 1]);
    order_accents(from, c);
  }

  // Moves the accents folded from `c` (from `from` on) before the accents of
  // their piece with a higher combining class: the canonical order in which
  // the collator reads them ("\u00f3" U+0338 folds as "\u01fe" does). The
  // class is that of the mark folded, not of its representative, which may
  // differ (U+035C, class 233, folds to U+0316, class 220).
  void order_accents(int32_t from, UChar32 c) {
    classes_.resize(static_cast<std::size_t>(out_.size), kUnknownClass);
    classify(from, c);
    for (int32_t k = from; k < out_.size; ++k) {
      const uint8_t klass = class_at(k);
      if (klass == 0) continue;
      for (int32_t j = k; j > accent_floor_ && j > 0 && out_.origin[j - 1] == out_.origin[j] &&
                          class_at(j - 1) > klass;
           --j) {
        std::swap(out_.units[j - 1], out_.units[j]);
        std::swap(classes_[static_cast<std::size_t>(j - 1)], classes_[static_cast<std::size_t>(j)]);
      }
    }
  }

  // Records the classes of the accents folded from `c`, at [from, size): that
  // of `c` if it is a mark; if it is a letter with marks, theirs in order.
  void classify(int32_t from, UChar32 c) {
    const uint8_t own = u_getCombiningClass(c);
    std::array<uint8_t, 8> marks{};
    std::size_t mark_count = 0;
    std::size_t accent_count = 0;
    for (int32_t k = from; k < out_.size; ++k) {
      if (representative_class(k) != 0) ++accent_count;
    }
    if (accent_count == 0) return;
    if (own == 0) {
      if (nfd_ == nullptr) return;
      UErrorCode status = U_ZERO_ERROR;
      std::array<UChar, 32> decomposition{};
      const int32_t length = unorm2_getDecomposition(
          nfd_, c, decomposition.data(), static_cast<int32_t>(decomposition.size()), &status);
      for (int32_t k = 0; U_SUCCESS(status) && k < length;) {
        const uint8_t klass = u_getCombiningClass(next_code_point(decomposition.data(), k, length));
        if (klass == 0) continue;
        if (mark_count == marks.size()) return;
        marks[mark_count++] = klass;
      }
      if (mark_count != accent_count) return;  // as their representatives say
    }
    std::size_t mark = 0;
    for (int32_t k = from; k < out_.size; ++k) {
      if (representative_class(k) == 0) continue;
      classes_[static_cast<std::size_t>(k)] = own != 0 ? own : marks[mark++];
    }
  }

  uint8_t representative_class(int32_t at) const {
    return unorm2_getCombiningClass(table_.nfc(), out_.units[at]);
  }

  uint8_t class_at(int32_t at) const {
    const uint8_t known = classes_[static_cast<std::size_t>(at)];
    return known != kUnknownClass ? known : representative_class(at);
  }

  // Whether the collator reads `c` as nothing at primary strength.
  bool primary_ignorable(UChar32 c) const {
    return fold_value::kind(primary_.value(c)) == fold_kind::nothing;
  }

  // Whether "shifted" ignores `c`: a space or punctuation.
  bool variable(UChar32 c) const {
    return fold_value::kind(table_.value(c)) == fold_kind::nothing && !primary_ignorable(c);
  }

  // Whether the character at [at, end), which the collator reads as
  // nothing at primary strength, comes after punctuation with nothing but
  // such characters between: "shifted" ignores it then. What was found
  // last is remembered, so that a run of such characters is read once.
  bool after_variable(int32_t at, int32_t end) {
    bool after = false;
    for (int32_t position = at; position > 0;) {
      if (position == variable_known_at_) {
        after = variable_known_;
        break;
      }
      const UChar32 c = previous_code_point(text_, position);
      if (c == middle_dot && position > 0 && is_l(code_point_before(text_, position))) {
        continue;  // the dot of "l\u00b7", an accent
      }
      if (variable(c) || table_.variable_end(c)) {
        after = true;
        break;
      }
      if (!primary_ignorable(c)) break;
    }
    variable_known_at_ = end;
    variable_known_ = after;
    return after;
  }

  // Whether NFC gives `segment` back as it is, settled without normalising
  // in the common case (marks in canonical order, none of which composes with
  // the starter before it); `false` means "not known".
  bool quick_nfc(std::u16string_view segment) const {
    const char16_t* units = segment.data();
    const auto size = static_cast<int32_t>(segment.size());
    UChar32 starter = -1;
    bool adjacent = false;  // nothing stands between the starter and this character
    int previous_class = 0;
    for (int32_t at = 0; at < size;) {
      const UChar32 c = next_code_point(units, at, size);
      const int klass = unorm2_getCombiningClass(table_.nfc(), c);
      if (klass != 0 && klass < previous_class) return false;
      const std::uint32_t value = table_.value(c);
      if (fold_value::needs_nfc(value) && !fold_value::composes_back(value)) return false;
      const bool blocked = klass == 0 ? !adjacent : previous_class >= klass;
      if (fold_value::composes_back(value) && starter >= 0 && !blocked &&
          unorm2_composePair(table_.nfc(), starter, c) >= 0) {
        return false;
      }
      if (klass == 0) {
        starter = c;
        adjacent = true;
      } else {
        adjacent = false;
      }
      previous_class = klass;
    }
    return true;
  }

  // The text from the last normalisation boundary at or before `at` to the
  // next one after it, folded as NFC has it. Returns where that ends.
  int32_t normalise_segment(int32_t at) {
    const UNormalizer2* nfc = table_.nfc();
    int32_t start = at;
    while (start > 0 && unorm2_hasBoundaryBefore(nfc, code_point_at(text_, start, size_)) == 0) {
      previous_code_point(text_, start);
    }
    start = outside_contraction(start);
    int32_t end = at;
    next_code_point(text_, end, size_);
    while (end < size_) {
      int32_t next = end;
      if (unorm2_hasBoundaryBefore(nfc, next_code_point(text_, next, size_)) != 0) break;
      end = next;
    }

    // What was folded from `start` on goes; the state is the one before it.
    while (out_.size > 0 && out_.origin[out_.size - 1] >= start) --out_.size;
    while (!out_.aligned.empty() && out_.aligned.back().end > out_.size) {
      folded_text::aligned_run& run = out_.aligned.back();
      run.end = out_.size;
      if (run.end > run.begin) break;
      out_.aligned.pop_back();
    }
    accent_floor_ = std::min(accent_floor_, out_.size);
    while (!out_.empty_pieces.empty() && out_.empty_pieces.back() >= start) {
      out_.empty_pieces.pop_back();
    }
    previous_ = start > 0 ? code_point_before(text_, start) : -1;
    previous_combining_ = previous_ >= 0 && fold_value::combining(table_.value(previous_));
    last_piece_empty_ = !out_.empty_pieces.empty() &&
                        (out_.size == 0 || out_.empty_pieces.back() > out_.origin[out_.size - 1]);

    segment_.clear();
    for (int32_t k = start; k < end;) append_code_point(segment_, next_code_point(text_, k, size_));
    if (quick_nfc(segment_)) return std::max(end, fold_run(start, end, false));
    UErrorCode status = U_ZERO_ERROR;
    normalised_.resize(segment_.size() * 3 + 8);
    const int32_t length =
        unorm2_normalize(nfc, segment_.data(), static_cast<int32_t>(segment_.size()),
                         normalised_.data(), static_cast<int32_t>(normalised_.size()), &status);
    if (U_FAILURE(status)) throw regex_exception(status);
    normalised_.resize(static_cast<std::size_t>(length));
    if (normalised_ == segment_) return std::max(end, fold_run(start, end, false));

    // NFC changed it: the whole segment is one piece.
    const UChar32 first = code_point_at(normalised_.data(), 0, length);
    const int32_t before = out_.size;
    const bool joins = joins_previous(fold_value::klass(table_.value(first)));
    bool accents_only =
        true;  // the segment is what the collator reads as nothing at primary strength
    UChar32 previous = previous_;
    const bool shifted_accents = accents_ && table_.variant().shifted;
    bool after_punctuation = shifted_accents && after_variable(start, start);
    for (int32_t k = 0; k < length;) {
      const UChar32 c = next_code_point(normalised_.data(), k, length);
      out_.reserve_more(longest_fold);
      if (c == middle_dot && is_l(previous)) {
        if (accents_) put(dot_accent, start);
      } else if (!(after_punctuation && primary_ignorable(c))) {
        const int32_t from = out_.size;
        if (put_fold(c, table_.value(c), start)) {
          if (accents_) order_accents(from, c);
        } else {
          block_reordering(c);
        }
      }
      if (shifted_accents && !primary_ignorable(c)) {
        after_punctuation = variable(c) || table_.variable_end(c);
      }
      accents_only = accents_only && (primary_ignorable(c) || (c == middle_dot && is_l(previous)));
      previous = c;
    }
    if (out_.size > before) {
      last_piece_empty_ = false;
      // Accents that a grapheme extender starts: part of the piece before,
      // as they are without accents.
      if (accents_only && joins) {
        for (int32_t unit = before; unit < out_.size; ++unit)
          out_.origin[unit] = out_.origin[before - 1];
      }
    } else if (!joins) {
      empty_piece(start);
    }
    previous_ = code_point_before(text_, end);
    previous_combining_ = fold_value::combining(table_.value(previous_));
    return end;
  }

  const fold_table& table_;
  const fold_table& primary_;  // the collation's table at primary strength
  bool accents_;               // whether the table keeps accents
  const Unit* text_;
  int32_t size_;
  folded_text& out_;
  int32_t accent_floor_ = 0;        // accents are not moved before this unit
  int32_t contraction_start_ = -1;  // the last contraction folded
  int32_t contraction_end_ = -1;
  int32_t variable_known_at_ = -1;  // where after_variable last looked, and what it found
  bool variable_known_ = false;
  UChar32 previous_ = -1;            // the code point before the next one to fold
  bool previous_combining_ = false;  // whether its combining class is not 0
  bool last_piece_empty_ = false;    // whether the last piece folded to nothing
  std::u16string segment_;
  std::u16string normalised_;
  // With accents: the combining class of each accent unit folded, where it
  // is not its representative's (see order_accents).
  static constexpr uint8_t kUnknownClass = 0xFF;
  std::vector<uint8_t> classes_;
  const UNormalizer2* nfd_ = nfd_instance();
};

}  // namespace

void fold_text(const fold_table& table, const char16_t* text, int32_t size, bool watch_time,
               folded_text& out, const chunk_observer& after_chunk, int32_t first_stretch) {
  folder<char16_t>(table, text, size, out).run(watch_time, after_chunk, first_stretch);
}

void fold_text(const fold_table& table, const char* text, int32_t size, bool watch_time,
               folded_text& out, const chunk_observer& after_chunk, int32_t first_stretch) {
  folder<char>(table, text, size, out).run(watch_time, after_chunk, first_stretch);
}

}  // namespace scl::regex::detail
