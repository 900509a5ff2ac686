// Prepared text that remembers where each of its units came from.
//
//   namespace re = scl::regex;
//   const std::u16string source = u"Cre\u0300me";            // "Crème", decomposed
//   re::prepared_text prepared = re::prepare_text_mapped(source, re::constants::ignore_diacritics);
//   prepared.text();                  // u"Creme": what searches see
//   prepared.source_range(2, 3);      // {2, 4}: the "e" came from "e" U+0300
//   prepared.source_range(0, 5);      // {0, 6}: the whole source
//
// Searches report positions in prepared text. source_range() turns a range of
// those positions into the range of the caller's text that produced it, so a
// match can be shown, highlighted or cut out where the user sees it.
#ifndef SCL_REGEX_PREPARED_TEXT_H
#define SCL_REGEX_PREPARED_TEXT_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <scl/regex/export.h>
#include <scl/regex/npos.h>
#include <scl/regex/options.h>

namespace scl::regex {

namespace detail {
struct prepared_text_builder;

// One stretch of the map: prepared units from `prepared` on came from source
// units from `source` on, up to where the next stretch begins. An aligned
// stretch maps unit for unit, each character a piece of its own (kept, or
// replaced by one unit, as "e" for "\u00e9"); any other stretch is one piece.
struct map_stretch {
  std::size_t prepared;
  std::size_t source;
  bool aligned;
};
}  // namespace detail

// The result of prepare_text together with a map from the prepared units back
// to the source text.
//
// The map is made of pieces: a piece is the shortest run of whole source
// characters that preparation turns into a run of whole prepared units on its
// own. A removed mark belongs to the piece of the character before it (marks
// at the very start, to the first piece). Where preparation keeps the text,
// every character is a piece of its own, and the map is the identity.
class SCL_REGEX_API prepared_text {
 public:
  // Empty text, with source_size() 0.
  prepared_text();

  // Exactly prepare_text(source, options).
  [[nodiscard]] const std::u16string& text() const noexcept;

  // How many units of the source preparation read: with ignore_diacritics,
  // the source up to its first U+0000; otherwise the whole source.
  [[nodiscard]] std::size_t source_size() const noexcept;

  // Returns the range [first, second) of the source that prepared units
  // [start, end) came from: from the start of the piece of unit `start` to
  // the end of the piece of unit `end - 1`. An empty range [p, p) gives the
  // empty range at the start of the piece of unit p, or {source_size(),
  // source_size()} when p == text().size(). The result never splits a
  // surrogate pair or a character from a mark that preparation removed after
  // it or composed into it; first <= second <= source_size(), and both ends
  // move monotonically with `start` and `end`.
  // Throws std::out_of_range unless start <= end <= text().size().
  std::pair<std::size_t, std::size_t> source_range(std::size_t start, std::size_t end) const;

 private:
  friend struct detail::prepared_text_builder;

  std::size_t piece_start(std::size_t unit) const;
  std::size_t piece_end(std::size_t unit) const;
  std::vector<detail::map_stretch>::const_iterator stretch_of(std::size_t unit) const;

  std::u16string text_;
  std::size_t source_size_ = 0;
  std::vector<detail::map_stretch> map_;
};

// Returns prepare_text(text, options) with its map back to `text`, computed
// in the same single pass. Throws only std::bad_alloc.
[[nodiscard]] SCL_REGEX_API prepared_text
prepare_text_mapped(const std::u16string& text, constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_PREPARED_TEXT_H
