#include "icu/compile.h"

#include <string>
#include <utility>

#include <unicode/regex.h>

#include "icu/flags.h"
#include "icu/icu_string.h"
#include "prepare/prepared_subject.h"

namespace scl::regex::detail {

compiled_pattern compile_prepared(std::u16string_view prepared,
                                  constants::syntax_option_type options) {
  compiled_pattern result;
  // Errors that ICU reports without a position leave these as they are.
  result.where.line = 0;
  result.where.offset = -1;
  const icu::UnicodeString text = to_icu(prepared);
  const std::uint32_t flags = icu_flags(options);
  result.pattern = cached_pattern(text, flags);
  if (result.pattern != nullptr) return result;
  shared_pattern compiled(icu::RegexPattern::compile(text, flags, result.where, result.status));
  if (U_FAILURE(result.status)) return result;
  if (compiled == nullptr) {
    result.status = U_MEMORY_ALLOCATION_ERROR;
    return result;
  }
  keep_pattern(text, flags, compiled);
  result.pattern = std::move(compiled);
  return result;
}

compiled_pattern compile_pattern(std::u16string_view pattern, constants::syntax_option_type options,
                                 pattern_text text) {
  if (text == pattern_text::as_given_until_nul)
    return compile_prepared(until_nul(pattern), options);
  std::u16string prepared;
  prepare_into(prepared, pattern, options);
  if (text == pattern_text::prepared_until_nul)
    return compile_prepared(until_nul(prepared), options);
  return compile_prepared(prepared, options);
}

}  // namespace scl::regex::detail
