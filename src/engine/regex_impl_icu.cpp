// The ICU engine: compiles through a matcher handle, keeps the prepared
// subject, and forwards its work to the ICU layer's engine.
#include "scl/regex/regex_impl_icu.h"

#include <utility>

#include "icu/engine.h"
#include "icu/handle_matcher.h"
#include "prepare/prepared_subject.h"

namespace scl::regex::detail {

namespace {

icu_engine engine_of(const regex_impl_icu& self) {
  return icu_engine(icu_matcher(self.matcher), self.subject, self);
}

}  // namespace

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
  icu_engine::set_subject(icu_matcher(matcher), subject, pattern,
                          prepared_subject(subject_text, options));
}

void regex_impl_icu::reset(const char16_t* first, const char16_t* last,
                           constants::syntax_option_type options) {
  icu_engine::set_subject(
      icu_matcher(matcher), subject, pattern,
      prepared_subject(std::u16string_view(first, static_cast<std::size_t>(last - first)),
                       options));
}

void regex_impl_icu::reset(const std::u16string_view& subject_text,
                           constants::syntax_option_type options) {
  icu_engine::set_subject(icu_matcher(matcher), subject, pattern,
                          prepared_subject(subject_text, options));
}

std::u16string regex_impl_icu::str(std::size_t start, std::size_t length) const {
  return engine_of(*this).str(start, length);
}

regex_result regex_impl_icu::match(std::uint32_t match_flags) {
  return engine_of(*this).match(match_flags);
}

expected_result<regex_result> regex_impl_icu::match_ex(std::uint32_t match_flags) {
  return engine_of(*this).match_ex(match_flags);
}

void regex_impl_icu::getGroups(std::vector<group_result>& groups) const {
  engine_of(*this).groups(groups);
}

// The engine is first reset onto the subject through the interface, with the
// options its pattern was compiled with.
std::u16string regex_impl_icu::replace(const std::u16string& subject_text,
                                       const std::u16string& replacement) {
  expected_result<std::u16string> result =
      engine_of(*this).replace_all(*this, matcher.get_deleter().options, subject_text, replacement);
  return result.has_error() ? subject_text : std::move(result).value();
}

expected_result<std::u16string> regex_impl_icu::replace_ex(const std::u16string& subject_text,
                                                           const std::u16string& replacement) {
  return engine_of(*this).replace_all(*this, matcher.get_deleter().options, subject_text,
                                      replacement);
}

std::u16string regex_impl_icu::getGroupReference(const std::u16string& name) const {
  return icu_engine::group_reference(name);
}

int regex_impl_icu::getGroupNumber(const std::string& name) const {
  return engine_of(*this).group_number(name);
}

int regex_impl_icu::getGroupsCount() const { return engine_of(*this).group_count(); }

}  // namespace scl::regex::detail
