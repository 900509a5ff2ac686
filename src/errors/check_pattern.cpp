// Checking a pattern as createMatcher compiles it, and saying where it is wrong.
#include "scl/regex/check_pattern.h"

#include <string>
#include <utility>

#include "errors/caret_excerpt.h"
#include "errors/parse_offset.h"
#include "icu/compile.h"
#include "scl/regex/prepared_text.h"

namespace scl::regex {

std::optional<pattern_error> check_pattern(const std::u16string& pattern,
                                           constants::syntax_option_type options) {
  const prepared_text prepared = prepare_text_mapped(pattern, options);
  // The whole prepared pattern, embedded U+0000 units included, as createMatcher compiles it.
  const detail::compiled_pattern compiled = detail::compile_prepared(prepared.text(), options);
  if (compiled) return std::nullopt;

  std::size_t offset =
      detail::parse_offset(prepared.text(), compiled.where.line, compiled.where.offset);
  if (offset != npos) {
    offset = offset < prepared.text().size() ? prepared.source_range(offset, offset).first
                                             : prepared.source_size();
  }
  const regex_exception error = compiled.error();
  std::string description = error.what();
  if (offset == npos) {
    // Only the pattern: there is nothing to point at.
    const std::string excerpt = detail::caret_excerpt(pattern, 0);
    description += " (no position given)\n" + excerpt.substr(0, excerpt.rfind('\n'));
  } else {
    description += " (at offset " + std::to_string(offset) + ")\n";
    description += detail::caret_excerpt(pattern, offset);
  }
  return pattern_error{error, offset, std::move(description)};
}

}  // namespace scl::regex
