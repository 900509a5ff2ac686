// The code points that a character class of an ICU regular expression
// stands for, computed as ICU's compiler computes them: "[...]" sets with
// their ranges, nesting and operators (&&, --, and the old & and -), POSIX
// "[:name:]" sets, "\p{...}" and "\P{...}", and \d \w \s \h \v and their
// negations; closed over case under the i flag.
//
// A class is read as a positive set and a negation: "[^...]", "[:^...:]",
// "\P{...}" and the upper-case shorthands are the complement of their
// positive set, which search folding takes after folding. Negations inside a
// set are applied as ICU applies them.
#ifndef SCL_REGEX_SRC_SEARCH_CLASS_SET_H
#define SCL_REGEX_SRC_SEARCH_CLASS_SET_H

#include <memory>
#include <string_view>

#include <unicode/uniset.h>

#include "search/pattern_lexer.h"

namespace scl::regex::detail {

struct class_set {
  icu::UnicodeSet members;  // the positive set: no strings
  bool negated = false;     // the class is the complement of `members`
};

// Reads the set whose "[" `lexer` has just returned, leaving the lexer past
// its "]". The pattern must be one that ICU compiles.
class_set read_bracket_set(pattern_lexer& lexer, bool case_insensitive);

// Reads "{name}" after "\p" or "\P" (`negated`) outside a set.
class_set read_property(pattern_lexer& lexer, bool negated, bool case_insensitive);

// The set of a shorthand class: `letter` is one of d D w W s S h H v V.
class_set shorthand_set(UChar32 letter);

// Reads "{NAME}" after "\N": the character of that Unicode name.
UChar32 read_named_char(pattern_lexer& lexer);

// Whether `letter` after a backslash is a shorthand class.
constexpr bool is_shorthand(UChar32 letter) {
  switch (letter) {
    case u'd':
    case u'D':
    case u'w':
    case u'W':
    case u's':
    case u'S':
    case u'h':
    case u'H':
    case u'v':
    case u'V':
      return true;
    default:
      return false;
  }
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_CLASS_SET_H
