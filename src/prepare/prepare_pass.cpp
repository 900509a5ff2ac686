// Preparation in one pass over the text.
//
// Removing diacritics reads each character's fixed result from the mark table
// and copies it out; only where a character may combine with what precedes it
// does the pass hand that stretch (from the last NFC boundary to the next) to
// ICU's normalisers. NFC alone copies what ICU's quick check passes and
// normalises the rest one stretch between boundaries at a time. Either way a
// map, when asked for, learns each piece as it is written.
#include "prepare/prepare_pass.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include "i18n/host_i18n.h"
#include "prepare/mark_table.h"
#include "prepare/transliterate.h"
#include "text/until_nul.h"

namespace scl::regex::detail {
namespace {

// Below this unit every character is in NFC and starts at an NFC boundary.
constexpr char16_t kFirstNonNfcUnit = 0x300;

// A stretch of more characters than this that preparation changes (one
// letter with hundreds of combining marks, say) is one piece; shorter ones are
// cut into the shortest pieces.
constexpr std::size_t kMaxCutCharacters = 256;

// Results up to this many code units are normalised on the stack in one pass.
constexpr std::size_t kNfcStackCapacity = 1024;

// The number of leading units of `text[0, length)` below `limit`.
std::size_t units_below(const char16_t* text, std::size_t length, char16_t limit) noexcept {
  std::size_t at = 0;
#if defined(__SSE2__)
  // An unsigned unit is below `limit` exactly when subtracting limit - 1 with
  // unsigned saturation leaves zero.
  const __m128i floor = _mm_set1_epi16(static_cast<short>(limit - 1));
  const __m128i zero = _mm_setzero_si128();
  for (; at + 8 <= length; at += 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at));
    const __m128i over = _mm_subs_epu16(units, floor);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(over, zero)) != 0xFFFF) break;
  }
#endif
  while (at < length && text[at] < limit) ++at;
  return at;
}

// How many leading units of `text[0, length)` are certainly in NFC; the span
// ends at an NFC boundary.
std::size_t nfc_yes_span(const char16_t* text, std::size_t length) {
  std::size_t below = units_below(text, length, kFirstNonNfcUnit);
  if (below == length) return length;
  // The unit before may combine with what follows: ICU checks from there.
  if (below > 0) --below;
  return below + i18n::nfc_span(text + below, length - below);
}

// Input pieces of at most this many units are normalised on the stack: NFC
// makes text at most three times longer.
constexpr std::size_t kNfcPiece = kNfcStackCapacity / 3;

// Where the first piece of `text[0, length)` to normalise on its own ends: at
// the last NFC boundary within kNfcPiece units, or the first one after them
// (`length` if there is none). NFC of the whole is NFC of its pieces.
std::size_t nfc_piece_end(const icu::Normalizer2& nfc, const char16_t* text, std::size_t length) {
  if (length <= kNfcPiece) return length;
  std::size_t end = kNfcPiece;
  if (U16_IS_TRAIL(text[end]) && U16_IS_LEAD(text[end - 1])) --end;
  for (std::size_t at = end; at > 0;) {
    UChar32 c;
    U16_GET(text, 0, at, length, c);
    if (nfc.hasBoundaryBefore(c)) return at;
    U16_BACK_1(text, 0, at);
  }
  for (std::size_t at = end; at < length;) {
    UChar32 c;
    U16_GET(text, 0, at, length, c);
    if (nfc.hasBoundaryBefore(c)) return at;
    U16_FWD_1(text, at, length);
  }
  return length;
}

// Appends the NFC form of `length` units at `input` to `out`, piece by piece
// through a stack buffer (with `nfc`, which finds the pieces; without it, in
// one piece). Only a piece that outgrows the buffer (hundreds of combining
// marks in a row) is normalised in place, in room made for it in `out`.
void append_nfc(std::u16string& out, const char16_t* input, std::size_t length,
                const icu::Normalizer2* nfc) {
  std::array<char16_t, kNfcStackCapacity> buffer;
  while (length > 0) {
    const std::size_t piece = nfc != nullptr ? nfc_piece_end(*nfc, input, length) : length;
    const std::size_t needed = i18n::to_nfc(buffer.data(), buffer.size(), input, piece);
    if (needed <= buffer.size()) {
      out.append(buffer.data(), needed);
    } else {
      const std::size_t at = out.size();
      out.resize(at + needed);
      i18n::to_nfc(out.data() + at, needed, input, piece);
    }
    input += piece;
    length -= piece;
  }
}

// Appends NFC(remove_Mn(NFD(text[0, length)))) to `out`, through ICU's
// normalisers. Short stretches stay within the strings' own storage.
void append_without_marks(const mark_table& table, std::u16string& out, const char16_t* text,
                          std::size_t length) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString source(false, text, static_cast<int32_t>(length));
  const icu::UnicodeString decomposed = table.nfd().normalize(source, status);
  icu::UnicodeString kept;
  const char16_t* units = decomposed.getBuffer();
  const int32_t size = decomposed.length();
  for (int32_t at = 0; at < size;) {
    const int32_t run_end = table.marks().span(units + at, size - at, USET_SPAN_NOT_CONTAINED) + at;
    kept.append(units, at, run_end - at);
    at = table.marks().span(units + run_end, size - run_end, USET_SPAN_CONTAINED) + run_end;
  }
  const icu::UnicodeString composed = table.nfc().normalize(kept, status);
  if (U_FAILURE(status) || composed.isBogus()) throw std::bad_alloc();
  out.append(composed.getBuffer(), static_cast<std::size_t>(composed.length()));
}

// The units `source[begin, end)` were prepared (by `prepare`, appending to a
// string) into `out` from `at` on. Tells `map` the shortest pieces: a cut
// falls before a character when what precedes it and what follows it prepare
// on their own into the two parts of the output. `removed(c)` tells whether a
// character disappears (it then stays with the piece before it).
template <class Map, class Prepare, class Removed>
void map_stretch_pieces(Map& map, const char16_t* source, std::size_t begin, std::size_t end,
                        const std::u16string& out, std::size_t at, Prepare prepare,
                        Removed removed) {
  if constexpr (Map::records) {
    const std::size_t produced = out.size() - at;
    if (produced == end - begin && out.compare(at, produced, source + begin, produced) == 0) {
      map.aligned(at, begin);
      return;
    }
    // Each place a cut may fall is tried once, with the piece that begins at
    // the last cut: quadratic in the stretch's length, hence the bound.
    std::size_t characters = 0;
    for (std::size_t unit = begin; unit < end && characters <= kMaxCutCharacters; ++characters) {
      U16_FWD_1(source, unit, end);
    }
    if (characters > kMaxCutCharacters) {
      map.piece(at, begin);
      return;
    }
    std::size_t piece_begin = begin;
    std::size_t piece_at = at;
    std::u16string head;
    std::u16string tail;
    for (std::size_t cut = begin;;) {
      U16_FWD_1(source, cut, end);
      if (cut >= end) break;
      if (removed(source, cut, end)) continue;
      head.clear();
      prepare(head, source + piece_begin, cut - piece_begin);
      if (head.empty() || out.compare(piece_at, head.size(), head) != 0) continue;
      tail.clear();
      prepare(tail, source + cut, end - cut);
      if (out.compare(piece_at + head.size(), std::u16string::npos, tail) != 0) continue;
      map.piece(piece_at, piece_begin);
      piece_begin = cut;
      piece_at += head.size();
    }
    if (piece_at < out.size()) map.piece(piece_at, piece_begin);
  } else {
    (void)map, (void)source, (void)begin, (void)end, (void)out, (void)at, (void)prepare,
        (void)removed;
  }
}

// NFC alone: what the quick check passes is copied, the rest is normalised; for
// a map, one stretch between NFC boundaries at a time.
template <class Map>
void nfc_pass(const mark_table& table, const char16_t* text, std::size_t length,
              std::u16string& out, Map& map) {
  const auto nfc = [&table](std::u16string& to, const char16_t* from, std::size_t size) {
    append_nfc(to, from, size, &table.nfc());
  };
  const auto never_removed = [](const char16_t*, std::size_t, std::size_t) { return false; };
  if constexpr (!Map::records) {
    // Without a map, everything after the prefix that passes goes to ICU at once.
    const std::size_t kept = nfc_yes_span(text, length);
    out.append(text, kept);
    if (kept < length) append_nfc(out, text + kept, length - kept, &table.nfc());
    return;
  }
  std::size_t at = 0;
  while (at < length) {
    const std::size_t kept = at + nfc_yes_span(text + at, length - at);
    if (kept > at) {
      map.aligned(out.size(), at);
      out.append(text + at, kept - at);
    }
    if (kept == length) return;
    std::size_t end = kept;
    U16_FWD_1(text, end, length);
    while (end < length) {
      UChar32 c;
      std::size_t next = end;
      U16_NEXT(text, next, length, c);
      if (table.nfc().hasBoundaryBefore(c)) break;
      end = next;
    }
    const std::size_t written = out.size();
    append_nfc(out, text + kept, end - kept, &table.nfc());
    map_stretch_pieces(map, text, kept, end, out, written, nfc, never_removed);
    at = end;
  }
}

// Removal of diacritics, character by character through the mark table.
//
// Characters that become one unit each are copied in runs, and map unit for
// unit. Such a character is a piece of its own until marks turn up after
// it (they join its piece) or a character that may combine with it does (then
// the stretch from it is prepared again through ICU's normalisers).
template <class Map>
class mark_removal {
 public:
  mark_removal(const mark_table& table, const char16_t* text, std::size_t length,
               std::u16string& out, Map& map)
      : table_(table), text_(text), length_(length), out_(out), map_(map) {}

  void run() {
    written_ = out_.size();
    // Marks at the very start belong to the first piece.
    at_ = skip(at_, is_removed);
    if (at_ < length_) {
      const std::size_t start = at_;
      character(start, table_.next(text_, at_, length_), 0);
    }
    while (at_ < length_) {
      const char16_t single = table_.single_unit(text_[at_]);
      if (single != 0) {
        copy_run(single);
        continue;
      }
      const std::size_t start = at_;
      character(start, table_.next(text_, at_, length_), start);
    }
    flush();
  }

 private:
  // Output goes through a small buffer on the stack, appended to out_ when it
  // fills: the output is never grown by zero-filling.
  void put(char16_t unit) {
    if (pending_ == chunk_.size()) flush();
    chunk_[pending_++] = unit;
    ++written_;
  }

  void flush() {
    out_.append(chunk_.data(), pending_);
    pending_ = 0;
  }

  // Drops the output from `written` on.
  void truncate(std::size_t written) {
    flush();
    out_.erase(written);
    written_ = written;
  }

  // Characters that become one unit each (most often themselves), `first`
  // the result of the one at at_. They map unit for unit.
  void copy_run(char16_t first) {
    const std::size_t start = at_;
    const std::size_t from = written_;
    put(first);
    ++at_;
    // The hot loop: straight into the chunk, as far as it has room.
    for (;;) {
      char16_t* to = chunk_.data() + pending_;
      const std::size_t room = std::min(chunk_.size() - pending_, length_ - at_);
      const char16_t* from_unit = text_ + at_;
      std::size_t copied = 0;
      while (copied < room) {
        const char16_t single = table_.single_unit(from_unit[copied]);
        if (single == 0) break;
        to[copied++] = single;
      }
      pending_ += copied;
      written_ += copied;
      at_ += copied;
      if (copied < room || at_ == length_) break;
      flush();
    }
    if constexpr (Map::records) {
      if (!aligned_open_) map_.aligned(from, start);
      aligned_open_ = true;
    }
    settle(written_ - 1, at_ - 1, true);
  }

  // The character at text_[start, at_) with its entry; its piece begins at
  // `piece_begin` (before `start` only for the first character after marks).
  void character(std::size_t start, std::uint16_t entry, std::size_t piece_begin) {
    if (entry >= kFirstReplacement) {
      const std::size_t from = written_;
      const char16_t* replacement = table_.replacement(entry);
      for (std::size_t i = 0; i < mark_table::replacement_length(entry); ++i) put(replacement[i]);
      record_piece(from, piece_begin);
      settle(from, piece_begin, false);
      return;
    }
    switch (entry) {
      case kRemove:
        // A mark joins the piece of the character before it.
        if (last_aligned_) {
          record_piece(last_written_, last_begin_);
          last_aligned_ = false;
        }
        return;
      case kCompose:
        // Prepare again from the character before, which it may combine with.
        compose(have_last_ ? last_begin_ : piece_begin, have_last_ ? last_written_ : written_);
        return;
      case kLone:
        if (const std::size_t end = joined_surrogates_end(start); end != 0) {
          stretch(piece_begin, start, end, written_, append_transliterated);
          return;
        }
        break;
      default:
        break;
    }
    const std::size_t from = written_;
    for (std::size_t unit = start; unit < at_; ++unit) put(text_[unit]);
    if (piece_begin == start) {
      if constexpr (Map::records) {
        if (!aligned_open_) map_.aligned(from, start);
        aligned_open_ = true;
      }
    } else {
      record_piece(from, piece_begin);
    }
    settle(from, piece_begin, piece_begin == start);
  }

  void record_piece(std::size_t prepared, std::size_t source) {
    map_.piece(prepared, source);
    aligned_open_ = false;
  }

  // The last character written: where its output and its piece begin.
  void settle(std::size_t written, std::size_t begin, bool aligned) {
    last_written_ = written;
    last_begin_ = begin;
    last_aligned_ = aligned;
    have_last_ = true;
  }

  // The stretch from `begin` (its output from `written` on) over the
  // character at at_ and every following one that is removed or may combine,
  // prepared through ICU's normalisers.
  void compose(std::size_t begin, std::size_t written) {
    const std::size_t end =
        skip(at_, [](std::uint16_t entry) { return entry == kRemove || entry == kCompose; });
    const auto prepare = [this](std::u16string& to, const char16_t* from, std::size_t size) {
      append_without_marks(table_, to, from, size);
    };
    stretch(begin, begin, end, written, prepare);
  }

  // Output from `written` on becomes text_[from, end) prepared by `prepare`,
  // mapped as pieces that begin at `begin`; at_ moves to `end`.
  template <class Prepare>
  void stretch(std::size_t begin, std::size_t from, std::size_t end, std::size_t written,
               Prepare prepare) {
    truncate(written);
    prepare(out_, text_ + from, end - from);
    map_stretch_pieces(map_, text_, begin, end, out_, written, prepare, removed());
    aligned_open_ = false;
    have_last_ = false;
    at_ = end;
    written_ = out_.size();
  }

  // For an unpaired surrogate at text_[start, at_): if it is a lead that
  // removed characters separate from an unpaired trail, the end of the stretch
  // that the transliterator must prepare (up to a character that stays, with
  // no surrogate right before it); otherwise 0.
  std::size_t joined_surrogates_end(std::size_t start) const {
    if (!U16_IS_LEAD(text_[start])) return 0;
    const std::size_t trail = skip(at_, is_removed);
    if (trail == at_ || trail == length_ || !U16_IS_TRAIL(text_[trail])) return 0;
    // The transliterator steps over the trail and the unit after it.
    std::size_t end = trail + 2;
    while (end < length_ && !(!U16_IS_SURROGATE(text_[end - 1]) && !U16_IS_SURROGATE(text_[end]) &&
                              stays(text_[end]))) {
      ++end;
    }
    return std::min(end, length_);
  }

  // Where the run of characters from `from` on whose entries `in_run`
  // accepts ends.
  template <class Accept>
  std::size_t skip(std::size_t from, Accept in_run) const {
    while (from < length_) {
      std::size_t next = from;
      if (!in_run(table_.next(text_, next, length_))) break;
      from = next;
    }
    return from;
  }

  static bool is_removed(std::uint16_t entry) { return entry == kRemove; }

  // Whether the character at `text[unit]` disappears.
  auto removed() const {
    return [this](const char16_t* text, std::size_t unit, std::size_t length) {
      return is_removed(table_.next(text, unit, length));
    };
  }

  bool stays(char16_t unit) const {
    std::size_t at = 0;
    return table_.next(&unit, at, 1) == kKeep;
  }

  static constexpr std::size_t kChunk = 512;

  const mark_table& table_;
  const char16_t* text_;
  std::size_t length_;
  std::u16string& out_;
  Map& map_;
  std::array<char16_t, kChunk> chunk_;  // output not yet appended to out_
  std::size_t pending_ = 0;             // units in chunk_
  std::size_t at_ = 0;                  // the next unit of text_ to read
  std::size_t written_ = 0;             // units of output: out_ and then chunk_
  bool aligned_open_ = false;           // the map's current stretch maps unit for unit
  // The last character written, while marks or a combining character may
  // still change its piece.
  bool have_last_ = false;
  bool last_aligned_ = false;
  std::size_t last_written_ = 0;
  std::size_t last_begin_ = 0;
};

}  // namespace

template <class Map>
void prepare_pass(const char16_t* text, std::size_t length, constants::syntax_option_type options,
                  std::u16string& out, Map& map) {
  const bool remove_marks = (options & constants::ignore_diacritics) != 0;
  const bool nfc = (options & constants::normalize_nfc) != 0;
  const std::size_t written = out.size();
  if (!remove_marks && !nfc) {
    if (length > 0) map.aligned(written, 0);
    out.append(text, length);
    return;
  }
  const mark_table& table = mark_table::instance();
  if (!table.ready()) {
    // ICU gave no means to remove marks: they stay.
    if (nfc) {
      append_nfc(out, text, length, nullptr);
    } else {
      out.append(text, length);
    }
    if (out.size() - written == length && out.compare(written, length, text, length) == 0) {
      if (length > 0) map.aligned(written, 0);
    } else if (out.size() > written) {
      map.piece(written, 0);
    }
    return;
  }
  // Removing marks decomposes first, and NFD(NFC(t)) == NFD(t): normalising to
  // NFC beforehand cannot change its result.
  if (remove_marks) {
    mark_removal<Map>(table, text, length, out, map).run();
  } else {
    nfc_pass(table, text, length, out, map);
  }
}

template void prepare_pass<no_map>(const char16_t*, std::size_t, constants::syntax_option_type,
                                   std::u16string&, no_map&);
template void prepare_pass<map_recorder>(const char16_t*, std::size_t,
                                         constants::syntax_option_type, std::u16string&,
                                         map_recorder&);

std::u16string_view preparation_source(std::u16string_view text,
                                       constants::syntax_option_type options) {
  const bool up_to_nul =
      (options & constants::ignore_diacritics) != 0 && mark_table::instance().ready();
  return up_to_nul ? until_nul(text) : text;
}

bool preparation_keeps(const char16_t* text, std::size_t length,
                       constants::syntax_option_type options) {
  if ((options & constants::ignore_diacritics) != 0) {
    const mark_table& table = mark_table::instance();
    if (!table.ready()) return true;
    for (std::size_t at = units_below(text, length, mark_table::kFirstChange); at < length;) {
      if (table.next(text, at, length) != kKeep) return false;
    }
    return true;
  }
  if ((options & constants::normalize_nfc) != 0) return nfc_yes_span(text, length) == length;
  return true;
}

}  // namespace scl::regex::detail
