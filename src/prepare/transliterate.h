// ICU's own transliterator for removing diacritics, for the one case that
// nothing else reproduces: text with unpaired surrogates that a removal brings
// together.
#ifndef SCL_REGEX_SRC_PREPARE_TRANSLITERATE_H
#define SCL_REGEX_SRC_PREPARE_TRANSLITERATE_H

#include <cstddef>
#include <string>

namespace scl::regex::detail {

// Appends the result of "any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC" on
// `text[0, length)` (no U+0000 among them) to `out`; the text unchanged if ICU
// cannot build the transliterator.
void append_transliterated(std::u16string& out, const char16_t* text, std::size_t length);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_PREPARE_TRANSLITERATE_H
