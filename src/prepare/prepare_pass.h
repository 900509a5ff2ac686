// The one pass that prepares text and, when asked, maps it back to its source.
#ifndef SCL_REGEX_SRC_PREPARE_PREPARE_PASS_H
#define SCL_REGEX_SRC_PREPARE_PREPARE_PASS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "scl/regex/options.h"
#include "scl/regex/prepared_text.h"

namespace scl::regex::detail {

// What the pass tells a map: where pieces of the output start, in increasing
// order of position; a later call for the same output position overrides.
struct no_map {
  static constexpr bool records = false;
  void aligned(std::size_t, std::size_t) noexcept {}
  void piece(std::size_t, std::size_t) noexcept {}
};

class map_recorder {
 public:
  static constexpr bool records = true;
  explicit map_recorder(std::vector<map_stretch>& stretches) : stretches_(stretches) {}

  // Output from `prepared` on maps to source from `source` on unit for unit,
  // each character a piece of its own, until the next call.
  void aligned(std::size_t prepared, std::size_t source) {
    if (!stretches_.empty() && stretches_.back().aligned) return;
    record({prepared, source, true});
  }
  // Output from `prepared` on, until the next call, is one piece that begins
  // at `source`.
  void piece(std::size_t prepared, std::size_t source) { record({prepared, source, false}); }

 private:
  // A stretch told again for the same output position replaces the first.
  void record(const map_stretch& stretch) {
    if (!stretches_.empty() && stretches_.back().prepared == stretch.prepared) {
      stretches_.back() = stretch;
    } else {
      stretches_.push_back(stretch);
    }
  }

  std::vector<map_stretch>& stretches_;
};

// Appends `text[0, length)` prepared with `options` to `out`: NFC for
// normalize_nfc, then removal of non-spacing marks for ignore_diacritics (the
// caller ends the text at its first U+0000 for that). Throws std::bad_alloc.
template <class Map>
void prepare_pass(const char16_t* text, std::size_t length, constants::syntax_option_type options,
                  std::u16string& out, Map& map);

extern template void prepare_pass<no_map>(const char16_t*, std::size_t,
                                          constants::syntax_option_type, std::u16string&, no_map&);
extern template void prepare_pass<map_recorder>(const char16_t*, std::size_t,
                                                constants::syntax_option_type, std::u16string&,
                                                map_recorder&);

// The part of `text` that preparation with `options` reads: removing
// diacritics stops at the first U+0000 (unless ICU gives no means to remove
// them; then the text passes whole); otherwise all of it.
std::u16string_view preparation_source(std::u16string_view text,
                                       constants::syntax_option_type options);

// True if the `length` units at `text` (no U+0000 among them) come out of
// prepare_pass with `options` certainly unchanged; false when they may change.
bool preparation_keeps(const char16_t* text, std::size_t length,
                       constants::syntax_option_type options);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_PREPARE_PREPARE_PASS_H
