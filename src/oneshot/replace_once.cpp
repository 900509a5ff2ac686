#include "oneshot/replace_once.h"

#include <memory>

#include <unicode/regex.h>

#include "icu/icu_string.h"

namespace scl::regex::detail {

std::optional<icu::UnicodeString> replace_once(std::u16string_view subject,
                                               std::u16string_view pattern,
                                               std::u16string_view replacement,
                                               constants::syntax_option_type options,
                                               pattern_text text, replace_scope scope) {
  const compiled_pattern compiled = compile_pattern(pattern, options, text);
  if (!compiled) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString input;  // outlives the matcher, which refers to it
  const std::unique_ptr<icu::RegexMatcher> matcher = new_matcher(*compiled.pattern, status);
  if (matcher == nullptr) return std::nullopt;
  set_subject(*matcher, input, subject, subject_end::until_nul);
  icu::UnicodeString output =
      replace_matches(*matcher, scope, to_icu_until_nul(replacement), status);
  if (U_FAILURE(status)) return std::nullopt;
  return output;
}

}  // namespace scl::regex::detail
