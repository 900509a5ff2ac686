// Where a match may lie in folded text: the rules that literal and regex
// search share, and the map of match and group positions back to the source.
//
// A match covers whole pieces, starts on a grapheme-cluster boundary of the
// source, has no edge between a prevowel and the character it contracts
// with, and does not end between two characters that canonical reordering
// could swap. An empty match sits between pieces.
//
// Options add rules (match_policy). With "shifted", a character whose
// collation elements start with punctuation that is ignored ("\u2474", "(1)")
// can neither start a match nor come right after one, as in ICU's usearch,
// which reads what is left of it as the inside of an expansion. With whole
// words, a match starts on a word boundary instead of a grapheme boundary,
// and ends on one: where its last piece ends on none, the match takes in what
// folds to nothing up to the next boundary, or is no match.
#ifndef SCL_REGEX_SRC_SEARCH_MATCH_RULES_H
#define SCL_REGEX_SRC_SEARCH_MATCH_RULES_H

#include <cstdint>

#include <unicode/uchar.h>

#include "search/code_points.h"
#include "search/fold_runs.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/grapheme_boundary.h"
#include "search/word_breaks.h"

namespace scl::regex::detail {

// A range of the source, in its units.
struct source_span {
  int32_t start;
  int32_t end;
};

// The rules that options add.
struct match_policy {
  bool shifted = false;                // spaces and punctuation are ignored
  const word_breaks* words = nullptr;  // whole words: the source's word boundaries
  // Diacritics matched where typed, in folded text with accents: the accents
  // a match takes after its last letter, which a word may end after.
  const code_point_bits* trailing_accents = nullptr;
};

template <class Unit>
class match_rules {
 public:
  match_rules(const fold_table& table, const Unit* source, const folded_text& folded,
              match_policy policy = {})
      : table_(table),
        source_(source),
        size_(folded.source_size),
        folded_(folded),
        policy_(policy) {}

  // Whether folded units [start, end) (start < end) make a match, and where
  // it is in the source.
  bool accepts(int32_t start, int32_t end, source_span& span) const {
    return covers_pieces(start, end, span) && may_end(end, span) && may_start(span.start);
  }

  // Whether folded units [start, end) cover whole pieces, and which source
  // range they come from.
  bool covers_pieces(int32_t start, int32_t end, source_span& span) const {
    if (!folded_.starts_piece(start) || !folded_.ends_piece(end)) return false;
    span.start = folded_.origin[start];
    span.end = folded_.piece_end(end);
    return true;
  }

  // Whether a match may end at span.end, before folded unit `end`; with whole
  // words, moves span.end to the word boundary it ends on.
  bool may_end(int32_t end, source_span& span) const {
    if (inside_contraction(span.end) || splits_marks(span.end)) return false;
    if (policy_.shifted && end < folded_.size && dropped_start_at(folded_.origin[end])) {
      return false;
    }
    return policy_.words == nullptr || ends_word(end, span);
  }

  // Whether a match may start at source position `at`.
  bool may_start(int32_t at) const {
    return starts_cluster(at) && !inside_contraction(at) &&
           !(policy_.shifted && dropped_start_at(at));
  }

  // Whether an empty match at folded position `at` is one, and where it is.
  bool accepts_empty(int32_t at, source_span& span) const {
    if (at > 0 && at < folded_.size && !folded_.starts_piece(at)) return false;
    span.start = span.end = source_position(at);
    return starts_cluster(span.start) && !inside_contraction(span.start);
  }

  // Whether a cluster starts at `at`: a grapheme, or with whole words a word.
  bool starts_cluster(int32_t at) const {
    return policy_.words != nullptr ? policy_.words->is_boundary(at)
                                    : grapheme_boundary(table_, source_, size_, at);
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

  bool dropped_start_at(int32_t at) const {
    return at < size_ && table_.dropped_start(code_point_at(source_, at, size_));
  }

  // With whole words: whether the match of folded units up to `end` ends on
  // a word boundary, moving span.end to it over what folds to nothing.
  bool ends_word(int32_t end, source_span& span) const {
    if (policy_.words->is_boundary(span.end)) return true;
    const int32_t boundary = policy_.words->following(span.end);
    int32_t next = end;
    if (policy_.trailing_accents != nullptr) {
      while (next < folded_.size && policy_.trailing_accents->test(folded_.units[next])) ++next;
    }
    const int32_t next_piece = next < folded_.size ? folded_.origin[next] : size_;
    if (boundary > next_piece) return false;
    span.end = boundary;
    return true;
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
  match_policy policy_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_MATCH_RULES_H
