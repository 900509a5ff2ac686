// Where a pattern is wrong: the error, its offset in the caller's pattern,
// and a message that points at it.
//
//   namespace re = scl::regex;
//   if (const std::optional<re::pattern_error> bad = re::check_pattern(u"(ab|cd", 0)) {
//     bad->offset;       // 6: ICU stopped at the end, looking for ")"
//     bad->description;  // "Incorrectly nested parentheses in regexp pattern. (at offset 6)\n"
//                        // "  (ab|cd\n"
//                        // "        ^"
//   }
#ifndef SCL_REGEX_CHECK_PATTERN_H
#define SCL_REGEX_CHECK_PATTERN_H

#include <cstddef>
#include <optional>
#include <string>

#include <scl/regex/exception.h>
#include <scl/regex/export.h>
#include <scl/regex/npos.h>
#include <scl/regex/options.h>

namespace scl::regex {

// Why and where a pattern was rejected.
struct pattern_error {
  regex_exception error;  // the exception createMatcher would throw for this pattern and options
  std::size_t offset;  // 0-based UTF-16 offset in the caller's pattern, or npos if ICU gives none
  std::string description;  // UTF-8, for people
};

// Returns no value if createMatcher(pattern, options) would compile `pattern`,
// otherwise the error it would throw, with the offset at which ICU detected
// it. ICU reports a line and a column of the prepared pattern; the offset is
// the UTF-16 offset just past the column's code points on that line (lines
// end at LF, CR, CR LF, U+0085 and U+2028), mapped back to `pattern` through
// prepare_text_mapped. The description's first line is error.what() with the
// offset; the next two show the pattern (around the offset, if it is long,
// with control characters escaped) and a caret under the offset. Throws only
// std::bad_alloc.
[[nodiscard]] SCL_REGEX_API std::optional<pattern_error> check_pattern(
    const std::u16string& pattern, constants::syntax_option_type options);

}  // namespace scl::regex

#endif  // SCL_REGEX_CHECK_PATTERN_H
