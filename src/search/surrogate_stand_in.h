// ICU's regex engine reads a lead surrogate followed by a trail surrogate as
// one code point. Lone surrogates that meet in folded text (the characters
// between them folded to nothing) must stay two, so the engine is shown those
// two as stand-ins: Hangul syllables, which folded text never holds
// (syllables fold to jamo). A folded pattern matches a lone surrogate in
// either form.
#ifndef SCL_REGEX_SRC_SEARCH_SURROGATE_STAND_IN_H
#define SCL_REGEX_SRC_SEARCH_SURROGATE_STAND_IN_H

#include <unicode/utypes.h>

namespace scl::regex::detail {

constexpr UChar32 surrogate_stand_in(UChar32 surrogate) { return 0xAC00 + (surrogate - 0xD800); }

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_SURROGATE_STAND_IN_H
