// The text preparation that patterns and subjects go through before ICU sees them.
//
//   namespace re = scl::regex;
//   re::prepare_text(u"cafe\u0301", re::constants::normalize_nfc);      // u"caf\u00e9"
//   re::prepare_text(u"caf\u00e9", re::constants::ignore_diacritics);   // u"cafe"
//   re::strip_diacritics(u"cr\u00e8me br\u00fbl\u00e9e");             // u"creme brulee"
#ifndef SCL_REGEX_PREPARE_H
#define SCL_REGEX_PREPARE_H

#include <string>

#include <scl/regex/export.h>
#include <scl/regex/options.h>

namespace scl::regex {

// Returns `text` prepared as `options` ask: first normalised to NFC if
// `normalize_nfc` is set, then stripped of non-spacing marks if
// `ignore_diacritics` is set. Other bits are ignored. Positions reported by
// searches count UTF-16 code units of this prepared text (prepare_text_mapped,
// in <scl/regex/prepared_text.h>, maps them back to `text`).
// With `normalize_nfc` alone, or no preparation bit, embedded U+0000 units
// are kept; removing diacritics ends the text at its first U+0000.
// Throws only std::bad_alloc.
[[nodiscard]] SCL_REGEX_API std::u16string prepare_text(const std::u16string& text,
                                                        constants::syntax_option_type options);

// Returns `text`, up to its first U+0000, with every non-spacing mark (general
// category Mn) removed: decomposed (NFD), marks dropped, recomposed (NFC); the
// result of ICU's transliterator "any-NFD; [:Nonspacing_Mark:] any-Remove;
// any-NFC". One quirk of it is kept: in text with unpaired surrogates, when a
// removal brings a lead and a trail surrogate together, they are read as one
// character and the mark right after them stays (so preparing such a result
// again can change it). If ICU cannot build the transformation, returns `text`
// unchanged (whole). Throws only std::bad_alloc.
[[nodiscard]] SCL_REGEX_API std::u16string strip_diacritics(const std::u16string& text);

}  // namespace scl::regex

#endif  // SCL_REGEX_PREPARE_H
