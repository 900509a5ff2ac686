#include "engine/cached_icu_engine.h"

#include <utility>

#include "engine/icu_engine_core.h"
#include "engine/icu_flags.h"
#include "engine/icu_text.h"
#include "scl/regex/exception.h"
#include "scl/regex/prepare.h"

namespace scl::regex::detail {

cached_icu_engine::~cached_icu_engine() = default;

void cached_icu_engine::compile(std::u16string_view pattern,
                                constants::syntax_option_type options) {
  stored_.assign(pattern);
  matcher_.reset();
  compiled_.reset();
  options_ = options;
  // The whole prepared pattern, embedded U+0000 units included, as createMatcher compiles it.
  const std::u16string prepared = prepare_text(stored_, options);
  UErrorCode status = U_ZERO_ERROR;
  shared_pattern compiled = compiled_pattern(icu_whole(prepared), icu_flags(options), status);
  if (compiled == nullptr) throw regex_exception(status);
  matcher_ = new_matcher_of(*compiled, nullptr, status);
  compiled_ = std::move(compiled);
}

void cached_icu_engine::init(const std::u16string& pattern, constants::syntax_option_type options) {
  compile(pattern, options);
}

void cached_icu_engine::init(const char16_t* first, const char16_t* last,
                             constants::syntax_option_type options) {
  compile(std::u16string_view(first, static_cast<std::size_t>(last - first)), options);
}

void cached_icu_engine::init(const std::u16string_view& pattern,
                             constants::syntax_option_type options) {
  compile(pattern, options);
}

void cached_icu_engine::reset(const std::u16string& subject,
                              constants::syntax_option_type options) {
  set_engine_subject(matcher_.get(), subject_, stored_, subject, options);
}

void cached_icu_engine::reset(const char16_t* first, const char16_t* last,
                              constants::syntax_option_type options) {
  set_engine_subject(matcher_.get(), subject_, stored_,
                     std::u16string_view(first, static_cast<std::size_t>(last - first)), options);
}

void cached_icu_engine::reset(const std::u16string_view& subject,
                              constants::syntax_option_type options) {
  set_engine_subject(matcher_.get(), subject_, stored_, subject, options);
}

std::u16string cached_icu_engine::str(std::size_t start, std::size_t length) const {
  return engine_subject_piece(subject_, start, length);
}

regex_result cached_icu_engine::match(std::uint32_t match_flags) {
  return engine_match(matcher_.get(), match_flags, this);
}

expected_result<regex_result> cached_icu_engine::match_ex(std::uint32_t match_flags) {
  return engine_match_ex(matcher_.get(), match_flags, this);
}

void cached_icu_engine::getGroups(std::vector<group_result>& groups) const {
  engine_groups(matcher_.get(), this, groups);
}

std::u16string cached_icu_engine::replace(const std::u16string& subject_text,
                                          const std::u16string& replacement) {
  expected_result<std::u16string> result =
      engine_replace_all(*this, matcher_.get(), options_, subject_text, replacement);
  return result.has_error() ? subject_text : std::move(result).value();
}

expected_result<std::u16string> cached_icu_engine::replace_ex(const std::u16string& subject_text,
                                                              const std::u16string& replacement) {
  return engine_replace_all(*this, matcher_.get(), options_, subject_text, replacement);
}

std::u16string cached_icu_engine::getGroupReference(const std::u16string& name) const {
  return engine_group_reference(name);
}

int cached_icu_engine::getGroupNumber(const std::string& name) const {
  return engine_group_number(matcher_.get(), name);
}

int cached_icu_engine::getGroupsCount() const { return engine_group_count(matcher_.get()); }

}  // namespace scl::regex::detail
