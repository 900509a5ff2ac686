// Grapheme-cluster boundaries as ICU's character break iterator finds them,
// from the classes in the fold table: the rules of UAX #29 plus ICU's Indic
// conjunct rule. Looks back a few characters at most, except over runs of
// marks, emoji modifiers or regional indicators.
#ifndef SCL_REGEX_SRC_SEARCH_GRAPHEME_BOUNDARY_H
#define SCL_REGEX_SRC_SEARCH_GRAPHEME_BOUNDARY_H

#include <cstdint>

#include <unicode/uchar.h>

#include "search/code_points.h"
#include "search/fold_table.h"

namespace scl::regex::detail {

// Whether a grapheme cluster starts at `at` in text[0, size); `at` starts a
// code point.
template <class Unit>
bool grapheme_boundary(const fold_table& table, const Unit* text, int32_t size, int32_t at) {
  using gc = grapheme_class;
  if (at <= 0 || at >= size) return true;
  int32_t before_start = at;
  const UChar32 before = previous_code_point(text, before_start);
  const gc a = fold_value::klass(table.value(before));
  const gc b = fold_value::klass(table.value(code_point_at(text, at, size)));
  auto class_before = [&](int32_t& position) {
    return fold_value::klass(table.value(previous_code_point(text, position)));
  };
  if (a == gc::cr && b == gc::lf) return false;             // GB3
  if (is_break_class(a) || is_break_class(b)) return true;  // GB4, GB5
  if (a == gc::l && (b == gc::l || b == gc::v || b == gc::lv || b == gc::lvt)) return false;  // GB6
  if ((a == gc::lv || a == gc::v) && (b == gc::v || b == gc::t)) return false;                // GB7
  if ((a == gc::lvt || a == gc::t) && b == gc::t) return false;                               // GB8
  if (extends_grapheme(b)) return false;  // GB9, GB9a
  if (a == gc::prepend) return false;     // GB9b
  if (b == gc::linking_consonant && (a == gc::virama || a == gc::extend || a == gc::zwj)) {
    // LinkingConsonant ExtCccZwj* Virama ExtCccZwj* x LinkingConsonant
    bool virama = false;
    for (int32_t position = at; position > 0;) {
      const UChar32 c = previous_code_point(text, position);
      const gc klass = fold_value::klass(table.value(c));
      if (klass == gc::virama) {
        virama = true;
      } else if (klass == gc::zwj || (klass == gc::extend && u_getCombiningClass(c) != 0)) {
        // part of the run
      } else {
        return !(virama && klass == gc::linking_consonant);
      }
    }
    return true;
  }
  if (a == gc::zwj && b == gc::extended_pictographic) {  // GB11
    for (int32_t position = before_start; position > 0;) {
      const gc klass = class_before(position);
      if (klass != gc::extend && klass != gc::virama) return klass != gc::extended_pictographic;
    }
    return true;
  }
  if (a == gc::regional_indicator && b == gc::regional_indicator) {  // GB12, GB13
    int count = 0;
    for (int32_t position = at; position > 0 && class_before(position) == gc::regional_indicator;) {
      ++count;
    }
    return count % 2 == 0;
  }
  return true;  // GB999
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_GRAPHEME_BOUNDARY_H
