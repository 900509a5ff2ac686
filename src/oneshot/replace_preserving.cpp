// Replacement in the caller's own text: only the matched units change.
#include <optional>
#include <vector>

#include "icu/replacement_template.h"
#include "object/match_walk.h"
#include "oneshot/source_locator.h"
#include "scl/regex/exception.h"
#include "scl/regex/regex_impl.h"
#include "scl/regex/source_results.h"
#include "text/until_nul.h"

namespace scl::regex {

std::u16string regex_replace_preserving(regex& re, const std::u16string& subject,
                                        const std::u16string& replacement) {
  // The replacement is read up to its first U+0000, as by every replace function.
  const std::u16string template_text(detail::until_nul(replacement));
  const int group_count = re.getGroupsCount();
  const detail::prepared_subject prepared(subject, re.options(), true);
  const detail::source_locator locator(prepared, group_count);
  std::vector<detail::replacement_part> parts;
  bool parsed = false;
  bool valid = true;
  std::u16string result;
  std::size_t copied = 0;  // the units of `subject` before this are in `result`
  const bool searched = detail::walk_matches(
      re, subject, prepared,
      [&](const regex_result& match) {
        if (!valid) return;
        if (!parsed) {
          // As in ICU, the replacement is read at the first match, and names
          // are those of the engine that found it.
          const regex_impl_abstract* engine = match.impl;
          valid = U_SUCCESS(detail::parse_replacement(
              template_text, group_count,
              [engine](const std::string& name) {
                return engine != nullptr ? engine->getGroupNumber(name) : -1;
              },
              parts));
          parsed = true;
          if (!valid) return;
        }
        const source_match found = locator.locate(match);
        // A match that starts inside the previous one's source range (one
        // source character prepared into several units) is left alone.
        if (found.start < copied) return;
        result.append(subject, copied, found.start - copied);
        for (const detail::replacement_part& part : parts) {
          if (part.group < 0) {
            result += part.text;
            continue;
          }
          const auto group = static_cast<std::size_t>(part.group);
          if (group >= found.groups.size()) continue;  // beyond an engine's own count
          const auto& [start, end] = found.groups[group];
          if (start != npos) result.append(subject, start, end - start);
        }
        copied = found.end;
      },
      detail::on_failure::report);
  if (!searched || !valid) return subject;
  result.append(subject, copied, std::u16string::npos);
  return result;
}

std::u16string regex_replace_preserving(const std::u16string& subject,
                                        const std::u16string& pattern,
                                        const std::u16string& replacement,
                                        constants::syntax_option_type options) {
  std::optional<regex> re;
  try {
    re.emplace(pattern, options);
  } catch (const regex_exception&) {
    return subject;
  }
  return regex_replace_preserving(*re, subject, replacement);
}

}  // namespace scl::regex
