// The rules that prepare_text_mapped's map keeps, checked from the outside:
// only prepare_text and the public interface are used. Shared by the tests
// and the fuzz targets.
#ifndef SCL_REGEX_TESTS_SUPPORT_MAP_PROPERTIES_H
#define SCL_REGEX_TESTS_SUPPORT_MAP_PROPERTIES_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <scl/regex.h>
#include <unicode/utf16.h>

namespace scl_regex_test {

// Checks every rule of the map of `source` prepared with `options`, over every
// range of the prepared text; returns the first rule broken, or "" if none.
// Texts of a few dozen units keep this quick; it is quadratic in the length
// of the prepared text and calls prepare_text for each piece boundary pair.
inline std::string broken_map_rule(const std::u16string& source, std::uint32_t options) {
  namespace re = scl::regex;
  const re::prepared_text mapped = re::prepare_text_mapped(source, options);
  const std::u16string& text = mapped.text();
  const std::size_t size = text.size();
  const bool marks = (options & re::constants::ignore_diacritics) != 0;
  const bool changes =
      (options & (re::constants::normalize_nfc | re::constants::ignore_diacritics)) != 0;

  // 1. The text is exactly prepare_text's.
  if (text != re::prepare_text(source, options)) return "1: text() differs from prepare_text";
  // 2. How much of the source was read.
  const std::size_t read = marks ? source.substr(0, source.find(u'\0')).size() : source.size();
  if (mapped.source_size() != read) return "2: source_size()";
  const std::u16string used = source.substr(0, read);
  const auto prepare = [options](const std::u16string& piece) {
    return re::prepare_text(piece, options);
  };
  // 3. Arguments outside the text throw.
  try {
    (void)mapped.source_range(size, size + 1);
    return "3: end past the text did not throw";
  } catch (const std::out_of_range&) {
  }
  if (size > 0) {
    try {
      (void)mapped.source_range(1, 0);
      return "3: start after end did not throw";
    } catch (const std::out_of_range&) {
    }
  }
  const auto splits_pair = [&used](std::size_t at) {
    return at > 0 && at < used.size() && U16_IS_LEAD(used[at - 1]) && U16_IS_TRAIL(used[at]);
  };
  // Ranges [p, p + 1): the piece of each unit.
  std::vector<std::pair<std::size_t, std::size_t>> unit_pieces;
  for (std::size_t p = 0; p < size; ++p) unit_pieces.push_back(mapped.source_range(p, p + 1));
  // Piece boundaries in the prepared text: where one unit's piece ends and the next one's begins.
  std::vector<std::size_t> boundaries = {0};
  for (std::size_t p = 1; p < size; ++p) {
    if (unit_pieces[p - 1] != unit_pieces[p]) {
      if (unit_pieces[p - 1].second != unit_pieces[p].first) return "7: pieces are not contiguous";
      boundaries.push_back(p);
    }
  }
  if (size > 0) boundaries.push_back(size);

  for (std::size_t start = 0; start <= size; ++start) {
    for (std::size_t end = start; end <= size; ++end) {
      const auto [first, second] = mapped.source_range(start, end);
      // 3. Result bounds.
      if (!(first <= second && second <= read)) return "3: result out of bounds";
      // 5. Monotone: the start of the result in `start`, its end in `end`.
      if (end > start && mapped.source_range(start, end - 1).second > second)
        return "5: not monotone in end";
      if (start > 0 && mapped.source_range(start - 1, end).first > first)
        return "5: not monotone in start";
      // 7. Non-empty ranges run from the piece of `start` to the piece of `end - 1`;
      //    empty ones sit at the start of the piece of `p`, or at the end.
      if (end > start) {
        if (first != unit_pieces[start].first || second != unit_pieces[end - 1].second)
          return "7: range is not its pieces";
      } else if (start == size) {
        if (first != read || second != read) return "7: empty range at the end";
      } else if (first != unit_pieces[start].first || second != first) {
        return "7: empty range not at the start of its piece";
      }
      // 8. Never inside a surrogate pair.
      if (splits_pair(first) || splits_pair(second)) return "8: splits a surrogate pair";
    }
  }
  // 6. The whole text maps to the whole source read.
  if (size > 0 && mapped.source_range(0, size) != std::make_pair(std::size_t{0}, read))
    return "6: whole text";

  // 9. Round trip between piece boundaries; and cutting the source at them
  //    leaves the preparation as it is (so no character is split from a mark
  //    removed after it or composed into it: 8).
  for (std::size_t i = 0; i < boundaries.size(); ++i) {
    for (std::size_t j = i + 1; j < boundaries.size(); ++j) {
      const auto [first, second] = mapped.source_range(boundaries[i], boundaries[j]);
      if (prepare(used.substr(first, second - first)) !=
          text.substr(boundaries[i], boundaries[j] - boundaries[i])) {
        return "9: round trip";
      }
    }
  }
  // 7. Pieces are the shortest: no cut inside a piece, before a character that
  //    preparation keeps, splits it into two parts that prepare on their own.
  for (std::size_t i = 0; i + 1 < boundaries.size(); ++i) {
    const auto [first, second] = mapped.source_range(boundaries[i], boundaries[i + 1]);
    const std::u16string whole = prepare(used.substr(first, second - first));
    for (std::size_t cut = first + 1; cut < second; ++cut) {
      if (splits_pair(cut)) continue;
      const std::size_t next =
          cut + (U16_IS_LEAD(used[cut]) && cut + 1 < second && U16_IS_TRAIL(used[cut + 1]) ? 2 : 1);
      if (prepare(used.substr(cut, next - cut)).empty())
        continue;  // a removed mark stays with what precedes it
      const std::u16string head = prepare(used.substr(first, cut - first));
      if (!head.empty() && head + prepare(used.substr(cut, second - cut)) == whole)
        return "7: a piece is not the shortest";
    }
  }
  // 4. Where preparation keeps the text, the identity on code-point boundaries.
  if (!changes || text == used) {
    for (std::size_t start = 0; start <= size; ++start) {
      for (std::size_t end = start; end <= size; ++end) {
        if (splits_pair(start) || splits_pair(end)) continue;
        if (mapped.source_range(start, end) != std::make_pair(start, end))
          return "4: not the identity";
      }
    }
  }
  return "";
}

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_MAP_PROPERTIES_H
