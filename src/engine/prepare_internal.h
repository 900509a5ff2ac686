// What the text preparation's fast paths know, for callers that can then skip
// making a prepared copy.
#ifndef SCL_REGEX_SRC_ENGINE_PREPARE_INTERNAL_H
#define SCL_REGEX_SRC_ENGINE_PREPARE_INTERNAL_H

#include <cstdint>

#include "scl/regex/options.h"

namespace scl::regex::detail {

// True if removing diacritics from the `length` units at `text` (which hold no
// U+0000) certainly gives them back unchanged: well-formed, nothing that NFD
// would decompose, no non-spacing mark, nothing that NFC would compose.
bool diacritics_removal_keeps(const char16_t* text, int32_t length);

// True if prepare_text with `options` certainly gives the `length` units at
// `text` (which hold no U+0000) back unchanged; false when it may change them.
bool preparation_keeps(const char16_t* text, int32_t length,
                       constants::syntax_option_type options);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_PREPARE_INTERNAL_H
