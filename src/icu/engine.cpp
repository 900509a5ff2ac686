#include "icu/engine.h"

#include <stdexcept>

#include "icu/group_number.h"
#include "icu/icu_string.h"
#include "icu/matcher.h"

namespace scl::regex::detail {
namespace {

constexpr std::int64_t kMatcherNotAvailable = -1000;

// ICU positions are signed; -1 (no position) becomes npos.
std::size_t position(std::int64_t icu_position) { return static_cast<std::size_t>(icu_position); }

// Searches on, and with `retry_on_stack_overflow` searches once more with the
// backtrack stack doubled if ICU ran out of it. Returns ICU's answer; `status`
// holds the status that stands: the first search's, unless the retry ran (a
// search stopped by the thread's time limit is U_REGEX_TIME_OUT).
bool find_with_retry(icu::RegexMatcher& matcher, std::uint32_t match_flags, UErrorCode& status) {
  status = U_ZERO_ERROR;
  const bool found = find_next(matcher, status);
  if (status != U_REGEX_STACK_OVERFLOW || (match_flags & constants::retry_on_stack_overflow) == 0) {
    return found;
  }
  // Doubling is cut to 32 bits; past INT32_MAX the limit turns negative and
  // ICU refuses it, which ends the retry.
  const auto doubled =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(matcher.getStackLimit()) * 2u);
  UErrorCode limit_status = U_ZERO_ERROR;
  matcher.setStackLimit(doubled, limit_status);
  if (U_FAILURE(limit_status)) return found;
  status = U_ZERO_ERROR;
  return find_next(matcher, status);
}

}  // namespace

void icu_engine::set_subject(icu::RegexMatcher* matcher, icu::UnicodeString& subject,
                             std::u16string& stored, const prepared_subject& prepared) {
  stored.assign(prepared.raw());
  // setTo copies into the subject's own buffer, reusing it from one reset to the next.
  const std::u16string_view text = prepared.text();
  subject.setTo(text.data(), icu_length(text.size()));
  if (matcher != nullptr) matcher->reset(subject);
}

std::u16string icu_engine::str(std::size_t start, std::size_t length) const {
  // Both are cut to 32 bits and pinned to the subject, as ICU pins substrings:
  // a start of npos becomes 0 and a length of 0 stays 0. The text ends at
  // the first U+0000 within the piece.
  const int32_t size = subject_.length();
  auto from = static_cast<int32_t>(start);
  auto count = static_cast<int32_t>(length);
  from = from < 0 ? 0 : (from > size ? size : from);
  count = count < 0 ? 0 : (count > size - from ? size - from : count);
  const char16_t* units = subject_.getBuffer();
  if (units == nullptr) throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(until_nul({units + from, static_cast<std::size_t>(count)}));
}

regex_result icu_engine::match(std::uint32_t match_flags) {
  static const regex_result empty_result(npos, npos, nullptr);
  icu::RegexMatcher* m = matcher_;
  if (m == nullptr) return empty_result;
  UErrorCode status = U_ZERO_ERROR;
  if (!find_with_retry(*m, match_flags, status) || U_FAILURE(status)) return empty_result;
  UErrorCode position_status = U_ZERO_ERROR;
  std::size_t start = position(m->start64(position_status));
  std::size_t end = npos;
  if (U_FAILURE(position_status)) {
    start = npos;
  } else {
    end = position(m->end64(position_status));
    if (U_FAILURE(position_status)) end = npos;
  }
  return regex_result(start, end, &owner_);
}

expected_result<regex_result> icu_engine::match_ex(std::uint32_t match_flags) {
  icu::RegexMatcher* m = matcher_;
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  UErrorCode status = U_ZERO_ERROR;
  const bool found = find_with_retry(*m, match_flags, status);
  if (U_FAILURE(status)) return regex_exception(status);
  UErrorCode position_status = U_ZERO_ERROR;
  if (!found) {
    // No current match: ICU answers -1 for both, and the statuses do not matter.
    const std::int64_t start = m->start64(position_status);
    const std::int64_t end = m->end64(position_status);
    return regex_result(position(start), position(end), &owner_);
  }
  const std::int64_t start = m->start64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  const std::int64_t end = m->end64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  return regex_result(position(start), position(end), &owner_);
}

void icu_engine::groups(std::vector<group_result>& groups) const {
  const icu::RegexMatcher* m = matcher_;
  groups.clear();
  if (m == nullptr) return;
  const int32_t count = m->groupCount();
  groups.reserve(static_cast<std::size_t>(count) + 1);
  for (int32_t i = 0; i <= count; ++i) {
    UErrorCode status = U_ZERO_ERROR;
    const int32_t begin = m->start(i, status);
    if (U_FAILURE(status)) return;
    const int32_t finish = m->end(i, status);
    if (U_FAILURE(status)) return;
    groups.push_back(group_result{position(begin), position(finish), &owner_});
  }
}

expected_result<std::u16string> icu_engine::replace_all(regex_impl_abstract& owner,
                                                        constants::syntax_option_type options,
                                                        const std::u16string& subject_text,
                                                        const std::u16string& replacement) {
  icu::RegexMatcher* m = matcher_;
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  owner.reset(subject_text, options);
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString output = replace_matches(*m, replace_scope::all, to_icu(replacement), status);
  if (U_FAILURE(status)) return regex_exception(status);
  return from_icu_until_nul(output, subject_text);
}

std::u16string icu_engine::group_reference(const std::u16string& name) {
  return u"${" + name + u"}";
}

int icu_engine::group_number(const std::string& name) const {
  const icu::RegexMatcher* m = matcher_;
  if (m == nullptr || name.empty()) return -1;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t number =
      m->pattern().groupNumberFromName(name.data(), static_cast<int32_t>(name.size()), status);
  if (U_SUCCESS(status)) return number;
  return group_number_from_digits(name);
}

int icu_engine::group_count() const { return matcher_ == nullptr ? 0 : matcher_->groupCount(); }

}  // namespace scl::regex::detail
