#include "search/typed_accents.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <unicode/uchar.h>

#include "search/code_points.h"
#include "search/folded_text.h"

namespace scl::regex::detail {

namespace {

constexpr UChar32 middle_dot = 0xB7;

}  // namespace

typed_accents::typed_accents(const fold_table& accents, std::u16string_view query, bool dot_apart)
    : table_(&accents), letters_(&accents.sibling({})), dot_apart_(dot_apart) {
  folded_text folded;
  fold_text(accents, query.data(), static_cast<int32_t>(query.size()), false, folded);
  elements_of(folded, 0, query_);
}

void typed_accents::elements_of(const folded_text& folded, int32_t offset,
                                std::vector<element>& out) const {
  std::u16string letters;
  std::u16string back;
  std::u16string self;
  const int32_t size = folded.size;
  for (int32_t at = 0; at < size;) {
    const int32_t unit_start = at;
    const UChar32 unit = next_code_point(folded.units.data(), at, size);
    int32_t piece_end = at;
    while (piece_end < size && folded.origin[piece_end] == folded.origin[unit_start]) ++piece_end;
    const int32_t start = folded.origin[unit_start] + offset;
    const int32_t end = folded.piece_end(piece_end) + offset;
    if (const composite_unit* composite = table_->composite(unit)) {
      for (std::uint32_t i = 0; i < composite->count; ++i) {
        out.push_back({static_cast<UChar32>(composite->primaries[i]),
                       (composite->common_secondary >> i & 1) != 0, unit, i, start, end});
      }
      continue;
    }
    letters.clear();
    letters_->append_fold(unit, letters);
    const auto length = static_cast<int32_t>(letters.size());
    if (length == 0) {
      out.push_back({0, false, unit, 0, start, end});  // an accent
      continue;
    }
    int32_t k = 0;
    const UChar32 letter = next_code_point(letters.data(), k, length);
    if (k == length) {
      // The letter has the common secondary weight when it is what the
      // letter without accents folds to with them.
      back.clear();
      table_->append_fold(letter, back);
      self.clear();
      append_code_point(self, unit);
      out.push_back({letter, back == self, unit, 0, start, end});
      continue;
    }
    std::uint32_t index = 0;
    for (k = 0; k < length; ++index) {
      out.push_back({next_code_point(letters.data(), k, length), false, unit, index, start, end});
    }
  }
}

std::size_t typed_accents::match_from(const std::vector<element>& text, std::size_t from,
                                      int32_t tail) const {
  if (query_.empty()) return 0;
  std::size_t j = from;
  for (const element& q : query_) {
    if (q.primary == 0) {
      if (j == text.size() || text[j].primary != 0 || !text[j].same(q)) return 0;
      ++j;
      continue;
    }
    while (j < text.size() && text[j].primary == 0) ++j;
    if (j == text.size() || text[j].primary != q.primary) return 0;
    if (!q.common && !text[j].same(q)) return 0;
    ++j;
  }
  const std::size_t matched = j;
  const element& last = query_.back();
  for (; j < text.size(); ++j) {
    if (text[j].primary != 0 && text[j].piece_end > tail) {
      // The next letter: the match ends before it, if not inside its piece.
      if (text[j].piece_start < text[matched - 1].piece_end) return 0;
      break;
    }
    if (text[j].primary != 0 || (last.primary == 0 && !text[j].same(last))) return 0;
  }
  return matched;
}

bool typed_accents::accent(UChar32 c, UChar32 previous) const {
  if (c == middle_dot && (previous == u'l' || previous == u'L')) return true;  // "l\u00b7"
  // Punctuation that "shifted" ignores is no element either.
  return fold_value::kind(letters_->value(c)) == fold_kind::nothing ||
         (table_->variant().shifted && fold_value::kind(table_->value(c)) == fold_kind::nothing);
}

template <class Unit>
bool typed_accents::place_in(const Unit* source, int32_t size, int32_t limit, source_span& span,
                             const start_check& may_start) const {
  // The window: the accents right before the match and right after it, and,
  // for what they fold to, the character before them.
  int32_t window_start = span.start;
  while (window_start > limit) {
    int32_t before = window_start;
    const UChar32 c = previous_code_point(source, before);
    int32_t earlier = before;
    if (!accent(c, before > 0 ? previous_code_point(source, earlier) : -1)) break;
    window_start = before;
  }
  int32_t window_end = span.end;
  while (window_end < size) {
    int32_t after = window_end;
    const UChar32 c = next_code_point(source, after, size);
    int32_t before = window_end;
    if (!accent(c, window_end > 0 ? previous_code_point(source, before) : -1)) break;
    window_end = after;
  }
  // Where what stops it is a mark ("\u0368", a letter of its own), accents
  // after it may come before it in canonical order: the window takes them,
  // and what follows the match ends at its first letter.
  const int32_t accents_end = window_end;
  while (window_end < size) {
    int32_t after = window_end;
    if (u_getCombiningClass(next_code_point(source, after, size)) == 0) break;
    window_end = after;
  }
  int32_t context = window_start;
  if (context > 0) previous_code_point(source, context);

  thread_local folded_text folded;
  thread_local std::vector<element> text;
  std::size_t first = 0;
  for (;;) {
    fold_text(*table_, source + context, window_end - context, false, folded);
    text.clear();
    elements_of(folded, context, text);
    first = 0;
    while (first < text.size() && text[first].piece_start < window_start) ++first;
    // The match starts a piece of the text. Where the character before the
    // window forms a contraction with the window's first ("a" + "a" in
    // Danish, read from the left otherwise than the whole text reads), the
    // window is folded without it.
    const bool starts_piece =
        std::any_of(text.begin() + static_cast<std::ptrdiff_t>(first), text.end(),
                    [&](const element& e) { return e.piece_start == span.start; });
    if (starts_piece || context == window_start) break;
    context = window_start;
  }

  // Each accent before the match, then the match's own start.
  for (std::size_t i = first; i < text.size() && text[i].piece_start <= span.start; ++i) {
    if (i > first && text[i].piece_start == text[i - 1].piece_start) continue;
    if (dot_apart_ && text[i].unit == dot_accent) continue;
    if (!may_start(text[i].piece_start)) continue;
    const std::size_t matched = match_from(text, i, accents_end);
    if (matched == 0) continue;
    span.start = text[i].piece_start;
    span.end = std::max(span.end, text[matched - 1].piece_end);
    return true;
  }
  return false;
}

bool typed_accents::place(const char16_t* source, int32_t size, int32_t limit, source_span& span,
                          const start_check& may_start) const {
  return place_in(source, size, limit, span, may_start);
}

bool typed_accents::place(const char* source, int32_t size, int32_t limit, source_span& span,
                          const start_check& may_start) const {
  return place_in(source, size, limit, span, may_start);
}

}  // namespace scl::regex::detail
