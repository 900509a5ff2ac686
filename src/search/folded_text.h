// Text folded for search, with the map back to the text it came from.
//
// The map is made of pieces: runs of whole source characters that fold to a
// run of whole folded units. Each folded unit records where its piece starts
// in the source; a piece that folds to nothing (a soft hyphen, U+0000, the
// middle dot after "l") is recorded in `empty_pieces`. Pieces tile the source,
// so a piece ends where the next one starts.
#ifndef SCL_REGEX_SRC_SEARCH_FOLDED_TEXT_H
#define SCL_REGEX_SRC_SEARCH_FOLDED_TEXT_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include <unicode/utf16.h>

#include "search/fold_table.h"

namespace scl::regex::detail {

// Storage for elements of a trivially copyable type that grows without
// initialising them: the folded text is written before it is read, and
// initialising it first would cost as much as a pass over it.
template <class T>
class growable_buffer {
 public:
  growable_buffer() = default;
  growable_buffer(const growable_buffer&) = delete;
  growable_buffer& operator=(const growable_buffer&) = delete;
  ~growable_buffer() { release(); }

  T* data() noexcept { return data_; }
  const T* data() const noexcept { return data_; }
  std::size_t capacity() const noexcept { return capacity_; }
  T& operator[](std::size_t at) noexcept { return data_[at]; }
  const T& operator[](std::size_t at) const noexcept { return data_[at]; }

  // Makes room for `capacity` elements, keeping the first `kept`.
  void reallocate(std::size_t capacity, std::size_t kept) {
    T* fresh = std::allocator<T>().allocate(capacity);
    if (kept != 0) std::memcpy(fresh, data_, kept * sizeof(T));
    release();
    data_ = fresh;
    capacity_ = capacity;
  }

  void release() noexcept {
    if (data_ != nullptr) std::allocator<T>().deallocate(data_, capacity_);
    data_ = nullptr;
    capacity_ = 0;
  }

 private:
  static_assert(std::is_trivially_copyable_v<T>);
  T* data_ = nullptr;
  std::size_t capacity_ = 0;
};

struct folded_text {
  // The folded text is units[0, size); origin[i] is the source start of the
  // piece that unit i belongs to.
  growable_buffer<char16_t> units;
  growable_buffer<int32_t> origin;
  std::vector<int32_t> empty_pieces;  // source starts of the pieces that fold to nothing
  int32_t size = 0;
  int32_t source_size = 0;
  // With `note_aligned`, the fold notes (in order) the runs of units
  // [begin, end) that it folded one from each source unit in turn, blocks of
  // Latin letters aligned_block long, joined where they meet: the map need
  // not look inside them.
  static constexpr int32_t aligned_block = 16;
  struct aligned_run {
    int32_t begin;
    int32_t end;
  };
  bool note_aligned = false;
  std::vector<aligned_run> aligned;

  std::u16string_view text() const { return {units.data(), static_cast<std::size_t>(size)}; }

  // Whether a piece starts at folded unit `at` (< size).
  bool starts_piece(int32_t at) const { return at == 0 || origin[at - 1] != origin[at]; }
  // Whether a piece ends at folded position `end` (> 0).
  bool ends_piece(int32_t end) const { return end == size || origin[end] != origin[end - 1]; }
  // The source end of the piece that folded unit `end - 1` belongs to.
  int32_t piece_end(int32_t end) const;

  // Whether units `at - 1` and `at` (0 < at < size) read as a surrogate pair
  // although they are lone surrogates of two pieces (the characters between
  // them folded to nothing).
  bool false_pair(int32_t at) const {
    return U16_IS_TRAIL(units[at]) && U16_IS_LEAD(units[at - 1]) && origin[at] != origin[at - 1];
  }

  // Room for `more` units past size.
  void reserve_more(int32_t more) {
    if (static_cast<std::size_t>(size) + static_cast<std::size_t>(more) > units.capacity()) {
      grow(more);
    }
  }
  void grow(int32_t more);

  // Gives back the memory of a large fold.
  void trim();
};

// The calling thread's folded text, reused from fold to fold; a large one is
// given back when the scratch_text that lent it goes. One at a time per
// thread: a fold lends it for its own length and calls nothing that folds.
class scratch_text {
 public:
  // With `note_aligned`, the folds into it note their aligned blocks.
  explicit scratch_text(bool note_aligned = false) : text_(thread_text()) {
    text_.note_aligned = note_aligned;
  }
  scratch_text(const scratch_text&) = delete;
  scratch_text& operator=(const scratch_text&) = delete;
  ~scratch_text() {
    text_.note_aligned = false;
    text_.trim();
  }

  folded_text& text() const { return text_; }

 private:
  static folded_text& thread_text() {
    thread_local folded_text folded;
    return folded;
  }
  folded_text& text_;
};

// Called after each stretch of text is folded, with the number of folded
// units that stay as they are whatever follows (all of them, and `last`, after
// the last stretch); returning true stops the fold there.
using chunk_observer = std::function<bool(int32_t final_units, bool last)>;

// The source units folded between two looks at the clock and two calls of a
// chunk_observer: this many, or from `first_stretch` on, twice as many each
// time up to this many.
constexpr int32_t fold_stretch = 1 << 16;

// Folds `text` (UTF-16 or UTF-8, at most INT32_MAX units) into `out`, telling
// `after_chunk` (if any) as it goes. With `watch_time`, stops at the calling
// thread's match_time_limit by throwing regex_exception(U_REGEX_TIME_OUT).
void fold_text(const fold_table& table, const char16_t* text, int32_t size, bool watch_time,
               folded_text& out, const chunk_observer& after_chunk = {},
               int32_t first_stretch = fold_stretch);
void fold_text(const fold_table& table, const char* text, int32_t size, bool watch_time,
               folded_text& out, const chunk_observer& after_chunk = {},
               int32_t first_stretch = fold_stretch);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLDED_TEXT_H
