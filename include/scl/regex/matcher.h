// The matcher handle: one compiled pattern with its ICU matching state.
//
//   namespace re = scl::regex;
//   re::matcher_ptr handle = re::createMatcher(u"caf\u00e9", re::constants::ignore_diacritics);
//   handle.get_deleter().options;                  // 0x4: subjects are prepared the same way
//   re::regex_search(handle, u"un cafe", false);   // true
#ifndef SCL_REGEX_MATCHER_H
#define SCL_REGEX_MATCHER_H

#include <memory>
#include <string>

#include <scl/regex/expected.h>
#include <scl/regex/export.h>
#include <scl/regex/options.h>

namespace scl::regex {
namespace detail {

// Deleter of a matcher handle. It remembers the options the pattern was
// compiled with, so that searches on the handle prepare their subjects the
// same way.
struct SCL_REGEX_API matcher_destroyer {
  constants::syntax_option_type options = 0;

  // Destroys the matcher at `p` and frees its storage; does nothing for null.
  void operator()(void* p) const noexcept;
};

}  // namespace detail

// An owning handle to one compiled ICU matcher (hidden behind void*) plus the
// options it was compiled with. Move-only; a null pointer is a valid, empty
// handle. Handles are made by createMatcher and createExpectedMatcher only.
// A handle is stateful (each search moves its matcher): use it from one
// thread at a time.
using matcher_ptr = std::unique_ptr<void, detail::matcher_destroyer>;

// Returns a handle holding `pattern` compiled with `options`: the pattern is
// first prepared (prepare_text), then compiled by ICU with "." matching line
// ends, and case-insensitively if `case_insensitive` is set.
// Throws regex_exception with ICU's error if ICU rejects the pattern. Returns
// an empty handle if ICU's allocator has no memory for the matcher.
SCL_REGEX_API matcher_ptr createMatcher(const std::u16string& pattern,
                                        constants::syntax_option_type options);

// Same as createMatcher, but returns ICU's rejection of the pattern inside the
// result instead of throwing it. Throws only std::bad_alloc.
[[nodiscard]] SCL_REGEX_API expected_result<matcher_ptr> createExpectedMatcher(
    const std::u16string& pattern, constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_MATCHER_H
