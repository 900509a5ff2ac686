// Making and destroying matcher handles.
#include "icu/handle_matcher.h"
#include "scl/regex/matcher.h"

namespace scl::regex {
namespace {

// The handle for `pattern`: empty (with no error) if ICU has no storage for
// it; otherwise `status` tells whether ICU compiled the pattern.
matcher_ptr make_handle(const std::u16string& pattern, constants::syntax_option_type options,
                        UErrorCode& status) {
  return matcher_ptr(detail::new_handle_matcher(pattern, options, status),
                     detail::matcher_destroyer{options});
}

}  // namespace

void detail::matcher_destroyer::operator()(void* p) const noexcept {
  delete_handle_matcher(static_cast<icu::RegexMatcher*>(p));
}

matcher_ptr createMatcher(const std::u16string& pattern, constants::syntax_option_type options) {
  UErrorCode status = U_ZERO_ERROR;
  matcher_ptr handle = make_handle(pattern, options, status);
  if (U_FAILURE(status)) throw regex_exception(status);
  return handle;
}

expected_result<matcher_ptr> createExpectedMatcher(const std::u16string& pattern,
                                                   constants::syntax_option_type options) {
  UErrorCode status = U_ZERO_ERROR;
  matcher_ptr handle = make_handle(pattern, options, status);
  if (U_FAILURE(status)) return regex_exception(status);
  return handle;
}

}  // namespace scl::regex
