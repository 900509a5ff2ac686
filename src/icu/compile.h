// The one way the library compiles a pattern.
//
// Every entry point that compiles (createMatcher and through it the regex
// class and its engine, the one-shot functions, check_pattern) comes here:
// the pattern's text is prepared as the caller's rule says, the option bits
// become ICU's flag word, and the result comes from this thread's cache or
// from ICU's compiler, which then keeps it.
#ifndef SCL_REGEX_SRC_ICU_COMPILE_H
#define SCL_REGEX_SRC_ICU_COMPILE_H

#include <string_view>

#include <unicode/parseerr.h>
#include <unicode/utypes.h>

#include "icu/pattern_cache.h"
#include "scl/regex/exception.h"
#include "scl/regex/options.h"

namespace scl::regex::detail {

// What ICU compiles of the text the caller gave.
enum class pattern_text {
  prepared,            // prepare_text with the options; embedded U+0000 units stay
  prepared_until_nul,  // prepare_text with the options, up to the first U+0000
  as_given_until_nul,  // the text unprepared, up to its first U+0000
};

// A pattern compiled, or ICU's reason for rejecting it.
struct compiled_pattern {
  shared_pattern pattern;            // null when ICU rejected the text
  UErrorCode status = U_ZERO_ERROR;  // ICU's failure when it did
  UParseError where{};               // and where ICU stopped reading it (offset -1: nowhere)

  explicit operator bool() const noexcept { return pattern != nullptr; }
  // The failure as the library reports it.
  [[nodiscard]] regex_exception error() const { return regex_exception(status); }
};

// Compiles `pattern` with `options` (ICU flags: "." matches line ends, and
// case-insensitive with case_insensitive), its text taken as `text` says.
// Throws std::bad_alloc; ICU's rejection comes back in the result.
[[nodiscard]] compiled_pattern compile_pattern(std::u16string_view pattern,
                                               constants::syntax_option_type options,
                                               pattern_text text);

// The same for text that is already what ICU must compile (its preparation
// done by the caller, who maps positions through it).
[[nodiscard]] compiled_pattern compile_prepared(std::u16string_view prepared,
                                                constants::syntax_option_type options);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_COMPILE_H
