#include "search/fold_map.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <unicode/utf16.h>

#include "search/unit_scan.h"

namespace scl::regex::detail {

namespace {

// The number of units of the code point that starts at text[at, end), if it
// fills that range; otherwise 0.
std::size_t one_code_point(const char16_t* text, std::size_t at, std::size_t end) {
  if (end - at == 1) return 1;
  return end - at == 2 && U16_IS_LEAD(text[at]) && U16_IS_TRAIL(text[at + 1]) ? 2 : 0;
}

// Where the run of aligned units from `unit` ends, as aligned_run_end says
// up to the last unit: the runs the fold noted as aligned (from `next` on,
// which moves past those behind) are passed over.
std::size_t run_end(const folded_text& folded, std::size_t unit, std::size_t& next) {
  const std::vector<folded_text::aligned_run>& noted = folded.aligned;
  const auto last = static_cast<std::size_t>(folded.size) - 1;
  const auto begin = [&](std::size_t r) { return static_cast<std::size_t>(noted[r].begin); };
  const auto end = [&](std::size_t r) { return static_cast<std::size_t>(noted[r].end); };
  std::size_t run = unit;
  for (;;) {
    while (next < noted.size() && end(next) <= run) ++next;
    if (next < noted.size() && begin(next) <= run) {
      run = end(next) - 1;  // within a noted run, every unit but the last is aligned
      ++next;
    }
    const std::size_t limit = next < noted.size() ? std::min(begin(next), last) : last;
    run = aligned_run_end(folded.units.data(), folded.origin.data(), run, limit);
    if (run < limit || limit == last) return run;
  }
}

}  // namespace

std::vector<map_stretch> map_of(const folded_text& folded, std::u16string_view source) {
  std::vector<map_stretch> map;
  map.reserve(folded.empty_pieces.size() + 16);
  const auto& empty = folded.empty_pieces;
  std::size_t next_noted = 0;
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
    const std::size_t run = run_end(folded, unit, next_noted);
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

}  // namespace scl::regex::detail
