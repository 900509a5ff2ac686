// Where a match may lie in folded text: the rules that literal and regex
// search share, and the map of match and group positions back to the source.
//
// A match covers whole pieces, starts on a grapheme-cluster boundary of the
// source, has no edge between a prevowel and the character it contracts
// with, and does not end between two characters that canonical reordering
// could swap. An empty match sits between pieces.
#ifndef SCL_REGEX_SRC_SEARCH_MATCH_RULES_H
#define SCL_REGEX_SRC_SEARCH_MATCH_RULES_H

#include <cstdint>

#include <unicode/uchar.h>

#include "search/code_points.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/grapheme_boundary.h"

namespace scl::regex::detail {

// A range of the source, in its units.
struct source_span {
  int32_t start;
  int32_t end;
};

template <class Unit>
class match_rules {
 public:
  match_rules(const fold_table& table, const Unit* source, const folded_text& folded)
      : table_(table), source_(source), size_(folded.source_size), folded_(folded) {}

  // Whether folded units [start, end) (start < end) make a match, and where
  // it is in the source.
  bool accepts(int32_t start, int32_t end, source_span& span) const {
    if (!folded_.starts_piece(start) || !folded_.ends_piece(end)) return false;
    span.start = folded_.origin[start];
    span.end = folded_.piece_end(end);
    if (!grapheme_boundary(table_, source_, size_, span.start)) return false;
    if (inside_contraction(span.start) || inside_contraction(span.end)) return false;
    return !splits_marks(span.end);
  }

  // Whether an empty match at folded position `at` is one, and where it is.
  bool accepts_empty(int32_t at, source_span& span) const {
    if (at > 0 && at < folded_.size && !folded_.starts_piece(at)) return false;
    span.start = span.end = source_position(at);
    return grapheme_boundary(table_, source_, size_, span.start) && !inside_contraction(span.start);
  }

  // The source range of folded units [start, end), widened to whole pieces.
  source_span widened(int32_t start, int32_t end) const {
    if (start == end) return {source_position(start), source_position(start)};
    int32_t piece_end = end;
    while (piece_end < folded_.size && folded_.origin[piece_end] == folded_.origin[end - 1]) {
      ++piece_end;
    }
    return {folded_.origin[start], folded_.piece_end(piece_end)};
  }

 private:
  // The source position of folded position `at`: the start of the piece
  // there (the source's ends at the folded text's ends).
  int32_t source_position(int32_t at) const {
    if (at == 0) return 0;
    return at < folded_.size ? folded_.origin[at] : size_;
  }

  // Whether `at` falls between a prevowel and the character it contracts with.
  bool inside_contraction(int32_t at) const {
    if (at <= 0 || at >= size_) return false;
    const UChar32 before = code_point_before(source_, at);
    return fold_value::prevowel(table_.value(before)) &&
           table_.contracts(before, code_point_at(source_, at, size_));
  }

  // Whether an end at `at` falls between two characters that canonical
  // reordering could swap (non-zero trailing, then non-zero leading class).
  bool splits_marks(int32_t at) const {
    if (at <= 0 || at >= size_) return false;
    const UChar32 after = code_point_at(source_, at, size_);
    if (after < 0x300 || u_getIntPropertyValue(after, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) == 0) {
      return false;
    }
    return u_getIntPropertyValue(code_point_before(source_, at),
                                 UCHAR_TRAIL_CANONICAL_COMBINING_CLASS) != 0;
  }

  const fold_table& table_;
  const Unit* source_;
  int32_t size_;
  const folded_text& folded_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_MATCH_RULES_H
