// Option bits for compiling patterns and preparing text, and match flags.
//
//   namespace re = scl::regex;
//   const re::constants::syntax_option_type options =
//       re::constants::case_insensitive | re::constants::ignore_diacritics;  // 0x5
//   re::createMatcher(u"CAFE", options);  // finds "caf\u00e9" and "Cafe"
#ifndef SCL_REGEX_OPTIONS_H
#define SCL_REGEX_OPTIONS_H

#include <cstdint>

namespace scl::regex::constants {

// Option bits, combined with |. Bits not listed here are ignored everywhere.
// The value 0 means: case-sensitive, "." matches every character including
// line terminators, and no text preparation.
using syntax_option_type = std::uint32_t;

// Compile the pattern case-insensitively.
inline constexpr syntax_option_type case_insensitive = 0x1;
// Normalise pattern and subjects to Unicode Normalization Form C before use.
inline constexpr syntax_option_type normalize_nfc = 0x2;
// Remove every non-spacing mark (accents and other diacritics) from pattern
// and subjects before use, so that "cafe" finds "café".
inline constexpr syntax_option_type ignore_diacritics = 0x4;

// Match flag: when ICU's backtrack stack overflows during a search step,
// double the stack limit and try that step once more.
inline constexpr std::uint32_t retry_on_stack_overflow = 0x2;

}  // namespace scl::regex::constants

#endif  // SCL_REGEX_OPTIONS_H
