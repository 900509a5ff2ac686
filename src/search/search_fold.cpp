#include <string>
#include <utility>
#include <vector>

#include <unicode/utf16.h>

#include "icu/icu_string.h"
#include "prepare/prepared_text_builder.h"
#include "scl/regex/search_pattern.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/search_settings.h"
#include "search/unit_scan.h"

namespace scl::regex {

namespace {

// The number of units of the code point that starts at text[at, end), if it
// fills that range; otherwise 0.
std::size_t one_code_point(const char16_t* text, std::size_t at, std::size_t end) {
  if (end - at == 1) return 1;
  return end - at == 2 && U16_IS_LEAD(text[at]) && U16_IS_TRAIL(text[at + 1]) ? 2 : 0;
}

// The pieces of `folded` as prepared_text stretches: a character that folds
// to one character of the same length joins an aligned stretch; any other
// piece is a stretch of its own.
std::vector<detail::map_stretch> stretches(const detail::folded_text& folded,
                                           std::u16string_view source) {
  std::vector<detail::map_stretch> map;
  const auto& empty = folded.empty_pieces;
  std::size_t next_empty = 0;
  const auto folded_size = static_cast<std::size_t>(folded.size);
  for (std::size_t unit = 0; unit < folded_size || next_empty < empty.size();) {
    if (unit == folded_size ||
        (next_empty < empty.size() && empty[next_empty] < folded.origin[unit])) {
      map.push_back({unit, static_cast<std::size_t>(empty[next_empty++]), false});
      continue;
    }
    // A run of characters of one unit that fold to one unit: an aligned
    // stretch, or more of the one before. (Where the next unit of the fold
    // comes from the next source unit, this one's source is one unit: a
    // character of one unit, or a lone surrogate, which folds to itself and
    // is left out as a surrogate of the fold.)
    const std::size_t run =
        detail::aligned_run_end(folded.units.data(), folded.origin.data(), unit, folded_size - 1);
    if (run > unit && (next_empty == empty.size() || empty[next_empty] > folded.origin[run])) {
      if (map.empty() || !map.back().aligned) {
        map.push_back({unit, static_cast<std::size_t>(folded.origin[unit]), true});
      }
      unit = run;
      continue;
    }
    const auto start = static_cast<std::size_t>(folded.origin[unit]);
    std::size_t end_unit = unit + 1;
    while (end_unit < folded_size && folded.origin[end_unit] == folded.origin[unit]) ++end_unit;
    std::size_t source_end = end_unit < folded_size ? folded.origin[end_unit] : source.size();
    if (next_empty < empty.size() && static_cast<std::size_t>(empty[next_empty]) < source_end) {
      source_end = static_cast<std::size_t>(empty[next_empty]);
    }
    const std::size_t length = one_code_point(source.data(), start, source_end);
    const bool aligned =
        length != 0 && one_code_point(folded.units.data(), unit, end_unit) == length;
    if (!(aligned && !map.empty() && map.back().aligned)) map.push_back({unit, start, aligned});
    unit = end_unit;
  }
  return map;
}

}  // namespace

prepared_text search_fold(std::u16string_view text) { return search_fold(text, search_options{}); }

prepared_text search_fold(std::u16string_view text, const search_options& options) {
  const detail::search_locale& locale = detail::search_settings::validate(options);
  const detail::scratch_text scratch;
  detail::folded_text& folded = scratch.text();
  detail::fold_text(locale.collation->table(detail::search_settings::text_fold(options)),
                    text.data(), detail::icu_length(text.size()), false, folded);
  return detail::prepared_text_builder::assemble(std::u16string(folded.text()), text.size(),
                                                 stretches(folded, text));
}

}  // namespace scl::regex
