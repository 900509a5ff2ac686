// Writing folded patterns: code points and sets as ICU reads them.
#ifndef SCL_REGEX_SRC_SEARCH_PATTERN_TEXT_H
#define SCL_REGEX_SRC_SEARCH_PATTERN_TEXT_H

#include <string>

#include <unicode/utypes.h>

#include "search/fold_runs.h"

namespace scl::regex::detail {

// Whether `c` can stand for itself in a pattern, in or out of a set, in
// free-spacing mode too.
bool stands_for_itself(UChar32 c);

// Appends `c` as \x{...}.
void append_escaped(std::u16string& out, UChar32 c);

// Appends `c` as itself where it can stand for itself, else escaped.
void append_literal_code_point(std::u16string& out, UChar32 c);

// Appends a set of the code points whose bit in `bits` is `in`, ranges
// joined where `alphabet` (what folded text can hold) has nothing between
// them; a set that matches nothing if there are none.
void append_set(const code_point_bits& bits, bool in, const code_point_bits& alphabet,
                std::u16string& out);
// Appends a set of `members` (in any order, repeated or not).
void append_set(std::vector<UChar32> members, std::u16string& out);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_PATTERN_TEXT_H
