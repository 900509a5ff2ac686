// The regex class: a thin owner that forwards to its engine with its options.
#include "scl/regex/regex_class.h"

#include <utility>

#include "scl/regex/regex_impl_icu.h"

namespace scl::regex {
namespace {

constexpr std::int64_t kUnknownImplementation = -1001;

// The pointers under [first, last) of a string (null for an empty range).
std::pair<const char16_t*, const char16_t*> pointers(std::u16string::const_iterator first,
                                                     std::u16string::const_iterator last) {
  if (first == last) return {nullptr, nullptr};
  const char16_t* begin = &*first;
  return {begin, begin + (last - first)};
}

// Puts the caller's engine in place (destroying the one held so far), or a new
// ICU engine when the caller gave none, and sets the options and match flags.
void take_engine(std::unique_ptr<regex_impl_abstract>& held,
                 constants::syntax_option_type& held_options, std::uint32_t& match_flags,
                 std::unique_ptr<regex_impl_abstract> given,
                 constants::syntax_option_type options) {
  held = std::move(given);
  held_options = options;
  match_flags = 0;
  if (!held) held = std::make_unique<detail::regex_impl_icu>();
}

}  // namespace

regex::regex(const std::u16string& pattern, constants::syntax_option_type options,
             std::unique_ptr<regex_impl_abstract> impl) {
  init(pattern, options, std::move(impl));
}

regex::regex(std::u16string::const_iterator first, std::u16string::const_iterator last,
             constants::syntax_option_type options, std::unique_ptr<regex_impl_abstract> impl) {
  init(first, last, options, std::move(impl));
}

regex::regex(const std::u16string_view& pattern, constants::syntax_option_type options,
             std::unique_ptr<regex_impl_abstract> impl) {
  init(pattern, options, std::move(impl));
}

regex::regex(const char16_t* pattern, constants::syntax_option_type options,
             std::unique_ptr<regex_impl_abstract> impl) {
  init(std::u16string(pattern), options, std::move(impl));
}

regex::regex(regex&&) noexcept = default;
regex& regex::operator=(regex&&) noexcept = default;
regex::~regex() = default;

void regex::init(const std::u16string& pattern, constants::syntax_option_type options,
                 std::unique_ptr<regex_impl_abstract> impl) {
  take_engine(impl_, options_, match_flags_, std::move(impl), options);
  impl_->init(pattern, options_);
}

void regex::init(std::u16string::const_iterator first, std::u16string::const_iterator last,
                 constants::syntax_option_type options, std::unique_ptr<regex_impl_abstract> impl) {
  take_engine(impl_, options_, match_flags_, std::move(impl), options);
  const auto [begin, end] = pointers(first, last);
  impl_->init(begin, end, options_);
}

void regex::init(const std::u16string_view& pattern, constants::syntax_option_type options,
                 std::unique_ptr<regex_impl_abstract> impl) {
  take_engine(impl_, options_, match_flags_, std::move(impl), options);
  impl_->init(pattern, options_);
}

void regex::reset(const std::u16string& subject) {
  if (impl_) impl_->reset(subject, options_);
}

void regex::reset(std::u16string::const_iterator first, std::u16string::const_iterator last) {
  if (!impl_) return;
  const auto [begin, end] = pointers(first, last);
  impl_->reset(begin, end, options_);
}

void regex::reset(const std::u16string_view& subject) {
  if (impl_) impl_->reset(subject, options_);
}

void regex::reset(const char16_t* subject) { reset(std::u16string(subject)); }

std::u16string regex::str(std::size_t start, std::size_t length) const {
  return impl_ ? impl_->str(start, length) : std::u16string();
}

regex_result regex::match() {
  static const regex_result empty_result(npos, npos, nullptr);
  return impl_ ? impl_->match(match_flags_) : empty_result;
}

expected_result<regex_result> regex::match_ex() {
  if (!impl_) return regex_exception(kUnknownImplementation);
  return impl_->match_ex(match_flags_);
}

int regex::getGroupsCount() const { return impl_ ? impl_->getGroupsCount() : 0; }

}  // namespace scl::regex
