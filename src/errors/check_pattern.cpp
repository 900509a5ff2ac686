// Checking a pattern as createMatcher compiles it, and saying where it is wrong.
#include "scl/regex/check_pattern.h"

#include <string>
#include <utility>

#include "errors/parse_offset.h"
#include "errors/pattern_error_description.h"
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
  std::string description = detail::describe_pattern_error(error, pattern, offset, offset);
  return pattern_error{error, offset, std::move(description)};
}

}  // namespace scl::regex
