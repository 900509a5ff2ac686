// The ICU engine: compiles through a matcher handle, keeps the prepared
// subject, and finds matches step by step.
#include "scl/regex/regex_impl_icu.h"

#include <utility>

#include "engine/icu_engine_core.h"
#include "handle/matcher_storage.h"

namespace scl::regex::detail {

regex_impl_icu::regex_impl_icu() = default;
regex_impl_icu::~regex_impl_icu() = default;

void regex_impl_icu::init(const std::u16string& pattern_text,
                          constants::syntax_option_type options) {
  pattern = pattern_text;
  matcher = createMatcher(pattern, options);
}

void regex_impl_icu::init(const char16_t* first, const char16_t* last,
                          constants::syntax_option_type options) {
  pattern.assign(first, last);
  matcher = createMatcher(pattern, options);
}

void regex_impl_icu::init(const std::u16string_view& pattern_text,
                          constants::syntax_option_type options) {
  pattern.assign(pattern_text);
  matcher = createMatcher(pattern, options);
}

const std::u16string& regex_impl_icu::getPattern() const { return pattern; }

// The three reset forms must not call one another: each is an operation an
// engine derived from this one may override.
void regex_impl_icu::reset(const std::u16string& subject_text,
                           constants::syntax_option_type options) {
  set_engine_subject(icu_matcher(matcher), subject, pattern, subject_text, options);
}

void regex_impl_icu::reset(const char16_t* first, const char16_t* last,
                           constants::syntax_option_type options) {
  set_engine_subject(icu_matcher(matcher), subject, pattern,
                     std::u16string_view(first, static_cast<std::size_t>(last - first)), options);
}

void regex_impl_icu::reset(const std::u16string_view& subject_text,
                           constants::syntax_option_type options) {
  set_engine_subject(icu_matcher(matcher), subject, pattern, subject_text, options);
}

std::u16string regex_impl_icu::str(std::size_t start, std::size_t length) const {
  return engine_subject_piece(subject, start, length);
}

regex_result regex_impl_icu::match(std::uint32_t match_flags) {
  return engine_match(icu_matcher(matcher), match_flags, this);
}

expected_result<regex_result> regex_impl_icu::match_ex(std::uint32_t match_flags) {
  return engine_match_ex(icu_matcher(matcher), match_flags, this);
}

void regex_impl_icu::getGroups(std::vector<group_result>& groups) const {
  engine_groups(icu_matcher(matcher), this, groups);
}

// The engine is first reset onto the subject through the interface, with the
// options its pattern was compiled with.
std::u16string regex_impl_icu::replace(const std::u16string& subject_text,
                                       const std::u16string& replacement) {
  expected_result<std::u16string> result = engine_replace_all(
      *this, icu_matcher(matcher), matcher.get_deleter().options, subject_text, replacement);
  return result.has_error() ? subject_text : std::move(result).value();
}

expected_result<std::u16string> regex_impl_icu::replace_ex(const std::u16string& subject_text,
                                                           const std::u16string& replacement) {
  return engine_replace_all(*this, icu_matcher(matcher), matcher.get_deleter().options,
                            subject_text, replacement);
}

std::u16string regex_impl_icu::getGroupReference(const std::u16string& name) const {
  return engine_group_reference(name);
}

int regex_impl_icu::getGroupNumber(const std::string& name) const {
  return engine_group_number(icu_matcher(matcher), name);
}

int regex_impl_icu::getGroupsCount() const { return engine_group_count(icu_matcher(matcher)); }

}  // namespace scl::regex::detail
