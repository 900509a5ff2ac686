// Making and destroying matcher handles.
#include <climits>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "engine/icu_flags.h"
#include "engine/icu_text.h"
#include "handle/matcher_storage.h"
#include "scl/regex/matcher.h"
#include "scl/regex/prepare.h"

namespace scl::regex {
namespace {

// Compiles the prepared pattern. The handle holds the matcher even when ICU
// rejected the pattern; `status` tells which.
matcher_ptr compile(const std::u16string& pattern, constants::syntax_option_type options,
                    UErrorCode& status) {
  status = U_ZERO_ERROR;
  const std::u16string prepared = prepare_text(pattern, options);
  // Embedded U+0000 units stay part of the pattern.
  return matcher_ptr(
      detail::new_matcher(detail::icu_whole(prepared), detail::icu_flags(options), status),
      detail::matcher_destroyer{options});
}

}  // namespace

void detail::matcher_destroyer::operator()(void* p) const noexcept {
  delete_matcher(static_cast<icu::RegexMatcher*>(p));
}

matcher_ptr createMatcher(const std::u16string& pattern, constants::syntax_option_type options) {
  UErrorCode status = U_ZERO_ERROR;
  matcher_ptr handle = compile(pattern, options, status);
  if (U_FAILURE(status)) {
    handle.reset();
    throw regex_exception(status);
  }
  return handle;
}

expected_result<matcher_ptr> createExpectedMatcher(const std::u16string& pattern,
                                                   constants::syntax_option_type options) {
  UErrorCode status = U_ZERO_ERROR;
  matcher_ptr handle = compile(pattern, options, status);
  if (U_FAILURE(status)) return regex_exception(status);
  return handle;
}

}  // namespace scl::regex
