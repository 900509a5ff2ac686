// One-shot replacement in UTF-16 and UTF-8 text.
#include "scl/regex/oneshot_replace.h"

#include <optional>

#include "i18n/host_i18n.h"
#include "icu/icu_string.h"
#include "oneshot/replace_once.h"
#include "scl/regex/prepare.h"

namespace scl::regex {

namespace {

// Prepares pattern and subject with `options` and replaces with `scope`;
// pattern, replacement and subject end at their first U+0000. On failure
// the prepared subject comes back whole.
std::u16string prepare_and_replace(const std::u16string& subject, const std::u16string& pattern,
                                   const std::u16string& replacement,
                                   constants::syntax_option_type options,
                                   detail::replace_scope scope) {
  std::u16string prepared = prepare_text(subject, options);
  std::optional<icu::UnicodeString> output = detail::replace_once(
      prepared, pattern, replacement, options, detail::pattern_text::prepared_until_nul, scope);
  if (!output) return prepared;
  return detail::from_icu_until_nul(*output, prepared);
}

}  // namespace

std::u16string regex_replace(const std::u16string& subject, const std::u16string& pattern,
                             const std::u16string& replacement,
                             constants::syntax_option_type options) {
  return prepare_and_replace(subject, pattern, replacement, options, detail::replace_scope::all);
}

std::u16string regex_replace_first(const std::u16string& subject, const std::u16string& pattern,
                                   const std::u16string& replacement,
                                   constants::syntax_option_type options) {
  return prepare_and_replace(subject, pattern, replacement, options, detail::replace_scope::first);
}

std::string regex_replace(const std::string& subject, const std::string& pattern,
                          const std::string& replacement, constants::syntax_option_type options) {
  // Pattern and replacement are decoded exactly as the subject is: as UTF-8,
  // whatever the process locale, up to their first zero byte. Nothing is
  // prepared; only case_insensitive counts.
  std::optional<icu::UnicodeString> output = detail::replace_once(
      detail::i18n::utf8_to_ustring(subject), detail::i18n::utf8_to_ustring(pattern),
      detail::i18n::utf8_to_ustring(replacement), options, detail::pattern_text::as_given_until_nul,
      detail::replace_scope::all);
  if (!output) return subject;
  return detail::i18n::ustring_to_utf8(output->getTerminatedBuffer());
}

}  // namespace scl::regex
