// One-shot replacement in UTF-16 and UTF-8 text.
#include "scl/regex/oneshot_replace.h"

#include "engine/icu_flags.h"
#include "engine/icu_text.h"
#include "i18n/host_i18n.h"
#include "oneshot/replace_once.h"
#include "scl/regex/prepare.h"

namespace scl::regex {

namespace {

using replace_engine = std::u16string (*)(std::u16string, const icu::UnicodeString&,
                                          const icu::UnicodeString&, std::uint32_t);

// Prepares pattern and subject with `options` and replaces with `engine`;
// pattern, replacement and subject end at their first U+0000.
std::u16string prepare_and_replace(const std::u16string& subject, const std::u16string& pattern,
                                   const std::u16string& replacement,
                                   constants::syntax_option_type options, replace_engine engine) {
  const std::u16string prepared_pattern = prepare_text(pattern, options);
  return engine(prepare_text(subject, options), detail::icu_until_nul(prepared_pattern),
                detail::icu_until_nul(replacement), detail::icu_flags(options));
}

}  // namespace

std::u16string regex_replace(const std::u16string& subject, const std::u16string& pattern,
                             const std::u16string& replacement,
                             constants::syntax_option_type options) {
  return prepare_and_replace(subject, pattern, replacement, options, detail::replace_all_once);
}

std::u16string regex_replace_first(const std::u16string& subject, const std::u16string& pattern,
                                   const std::u16string& replacement,
                                   constants::syntax_option_type options) {
  return prepare_and_replace(subject, pattern, replacement, options, detail::replace_first_once);
}

std::string regex_replace(const std::string& subject, const std::string& pattern,
                          const std::string& replacement, constants::syntax_option_type options) {
  // Pattern and replacement are decoded exactly as the subject is: as UTF-8,
  // whatever the process locale, up to their first zero byte.
  return detail::replace_all_utf8(subject,
                                  detail::icu_until_nul(detail::i18n::utf8_to_ustring(pattern)),
                                  detail::icu_until_nul(detail::i18n::utf8_to_ustring(replacement)),
                                  detail::icu_flags(options));
}

}  // namespace scl::regex
