// The four text services the library takes from the host application's i18n
// layer, implemented on ICU. Everything else in the library converts and
// normalises through these.
#ifndef SCL_REGEX_SRC_I18N_HOST_I18N_H
#define SCL_REGEX_SRC_I18N_HOST_I18N_H

#include <cstddef>
#include <string>

namespace scl::regex::detail::i18n {

// Writes the NFC form of `input[0, length)` into `output`, at most `capacity`
// code units, and returns the length the whole NFC form needs (0 for an empty
// result). Embedded U+0000 units are ordinary characters here. Should ICU's
// normaliser be unavailable, the input is treated as already normalised.
std::size_t to_nfc(char16_t* output, std::size_t capacity, const char16_t* input,
                   std::size_t length);

// Returns how many leading code units of `input[0, length)` are certainly in
// NFC already (ICU's quick check); `length` when the whole text is. The prefix
// ends at a normalisation boundary.
std::size_t nfc_span(const char16_t* input, std::size_t length);

// Decodes UTF-8 (all of it, zero bytes included) into UTF-16; every
// ill-formed sequence becomes U+FFFD.
std::u16string utf8_to_ustring(const std::string& utf8);

// Encodes the NUL-terminated UTF-16 text at `text` as UTF-8; unpaired
// surrogates become U+FFFD. A null pointer gives an empty string.
std::string ustring_to_utf8(const char16_t* text);

// Encodes all of `text` (U+0000 units included) as UTF-8; unpaired
// surrogates become U+FFFD.
std::string to_string(const std::u16string& text);

}  // namespace scl::regex::detail::i18n

#endif  // SCL_REGEX_SRC_I18N_HOST_I18N_H
