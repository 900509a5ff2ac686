// How option bits map to ICU's compile flags.
#ifndef SCL_REGEX_SRC_ICU_FLAGS_H
#define SCL_REGEX_SRC_ICU_FLAGS_H

#include <cstdint>

#include <unicode/uregex.h>

#include "scl/regex/options.h"

namespace scl::regex::detail {

// "." always matches line ends; case-insensitivity is the one optional flag.
// No other ICU flag is ever set.
constexpr std::uint32_t icu_flags(constants::syntax_option_type options) noexcept {
  return (options & constants::case_insensitive) != 0
             ? std::uint32_t{UREGEX_CASE_INSENSITIVE | UREGEX_DOTALL}
             : std::uint32_t{UREGEX_DOTALL};
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_FLAGS_H
