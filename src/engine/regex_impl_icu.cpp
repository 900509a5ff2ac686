// The ICU engine: compiles through a matcher handle, keeps the prepared
// subject, and finds matches step by step.
#include "scl/regex/regex_impl_icu.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include <unicode/regex.h>

#include "engine/group_number.h"
#include "engine/icu_text.h"
#include "handle/matcher_storage.h"
#include "scl/regex/prepare.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

constexpr std::int64_t kMatcherNotAvailable = -1000;

// ICU positions are signed; -1 (no position) becomes npos.
std::size_t position(std::int64_t icu_position) { return static_cast<std::size_t>(icu_position); }

// Searches on, and with `retry_on_stack_overflow` searches once more with the
// backtrack stack doubled if ICU ran out of it. Returns ICU's answer; `status`
// holds the status that stands: the first search's, unless the retry ran (a
// search stopped by the thread's time limit is U_REGEX_TIME_OUT).
bool find_next(icu::RegexMatcher& matcher, std::uint32_t match_flags, UErrorCode& status) {
  status = U_ZERO_ERROR;
  check_deadline(status);
  const bool found = matcher.find(status);
  status = search_status(status);
  if (status != U_REGEX_STACK_OVERFLOW ||
      (match_flags & constants::retry_on_stack_overflow) == 0) {
    return found;
  }
  // Doubling is cut to 32 bits; past INT32_MAX the limit turns negative and
  // ICU refuses it, which ends the retry.
  const auto doubled = static_cast<std::int32_t>(static_cast<std::uint32_t>(matcher.getStackLimit()) * 2u);
  UErrorCode limit_status = U_ZERO_ERROR;
  matcher.setStackLimit(doubled, limit_status);
  if (U_FAILURE(limit_status)) return found;
  status = U_ZERO_ERROR;
  check_deadline(status);
  const bool retried = matcher.find(status);
  status = search_status(status);
  return retried;
}

// Stores the raw subject, prepares it into the engine's subject and rewinds
// the matcher onto it. Shared by the three reset forms, which must not call
// one another: each is an operation an engine derived from this one may override.
void set_subject(regex_impl_icu& engine, std::u16string_view raw,
                 constants::syntax_option_type options) {
  engine.pattern.assign(raw);
  // setTo copies into the subject's own buffer, reusing it from one reset to the next.
  if ((options & (constants::normalize_nfc | constants::ignore_diacritics)) == 0) {
    engine.subject.setTo(engine.pattern.data(), static_cast<int32_t>(engine.pattern.size()));
  } else {
    const std::u16string prepared = prepare_text(engine.pattern, options);
    engine.subject.setTo(prepared.data(), static_cast<int32_t>(prepared.size()));
  }
  if (icu::RegexMatcher* m = icu_matcher(engine.matcher)) m->reset(engine.subject);
}

// Replaces every match in `subject_text`, which the engine is first reset onto
// through the interface (with the options its pattern was compiled with).
// Shared by replace and replace_ex for the same reason as set_subject.
expected_result<std::u16string> replace_all(regex_impl_icu& engine,
                                             const std::u16string& subject_text,
                                             const std::u16string& replacement) {
  icu::RegexMatcher* m = icu_matcher(engine.matcher);
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  engine.reset(subject_text, engine.matcher.get_deleter().options);
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString output =
      replace_within_deadline(*m, &icu::RegexMatcher::replaceAll, icu_whole(replacement), status);
  if (U_FAILURE(status)) return regex_exception(search_status(status));
  const char16_t* buffer = output.getTerminatedBuffer();
  return buffer != nullptr ? std::u16string(buffer) : subject_text;
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

void regex_impl_icu::reset(const std::u16string& subject_text,
                           constants::syntax_option_type options) {
  set_subject(*this, subject_text, options);
}

void regex_impl_icu::reset(const char16_t* first, const char16_t* last,
                           constants::syntax_option_type options) {
  set_subject(*this, std::u16string_view(first, static_cast<std::size_t>(last - first)), options);
}

void regex_impl_icu::reset(const std::u16string_view& subject_text,
                           constants::syntax_option_type options) {
  set_subject(*this, subject_text, options);
}

std::u16string regex_impl_icu::str(std::size_t start, std::size_t length) const {
  // Both are cut to 32 bits and pinned to the subject, as ICU pins substrings:
  // a start of npos becomes 0 and a length of 0 stays 0. The text ends at
  // the first U+0000 within the piece.
  const int32_t size = subject.length();
  auto from = static_cast<int32_t>(start);
  auto count = static_cast<int32_t>(length);
  from = from < 0 ? 0 : (from > size ? size : from);
  count = count < 0 ? 0 : (count > size - from ? size - from : count);
  const char16_t* units = subject.getBuffer();
  if (units == nullptr) throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(units + from, units_before_nul(units + from, static_cast<std::size_t>(count)));
}

regex_result regex_impl_icu::match(std::uint32_t match_flags) {
  static const regex_result empty_result(npos, npos, nullptr);
  icu::RegexMatcher* m = icu_matcher(matcher);
  if (m == nullptr) return empty_result;
  UErrorCode status = U_ZERO_ERROR;
  if (!find_next(*m, match_flags, status) || U_FAILURE(status)) return empty_result;
  UErrorCode position_status = U_ZERO_ERROR;
  std::size_t start = position(m->start64(position_status));
  std::size_t end = npos;
  if (U_FAILURE(position_status)) {
    start = npos;
  } else {
    end = position(m->end64(position_status));
    if (U_FAILURE(position_status)) end = npos;
  }
  return regex_result(start, end, this);
}

expected_result<regex_result> regex_impl_icu::match_ex(std::uint32_t match_flags) {
  icu::RegexMatcher* m = icu_matcher(matcher);
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  UErrorCode status = U_ZERO_ERROR;
  const bool found = find_next(*m, match_flags, status);
  if (U_FAILURE(status)) return regex_exception(status);
  UErrorCode position_status = U_ZERO_ERROR;
  if (!found) {
    // No current match: ICU answers -1 for both, and the statuses do not matter.
    const std::int64_t start = m->start64(position_status);
    const std::int64_t end = m->end64(position_status);
    return regex_result(position(start), position(end), this);
  }
  const std::int64_t start = m->start64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  const std::int64_t end = m->end64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  return regex_result(position(start), position(end), this);
}

void regex_impl_icu::getGroups(std::vector<group_result>& groups) const {
  groups.clear();
  const icu::RegexMatcher* m = icu_matcher(matcher);
  if (m == nullptr) return;
  const int32_t count = m->groupCount();
  groups.reserve(static_cast<std::size_t>(count) + 1);
  for (int32_t i = 0; i <= count; ++i) {
    UErrorCode status = U_ZERO_ERROR;
    const int32_t begin = m->start(i, status);
    if (U_FAILURE(status)) return;
    const int32_t finish = m->end(i, status);
    if (U_FAILURE(status)) return;
    groups.push_back(group_result{position(begin), position(finish), this});
  }
}

std::u16string regex_impl_icu::replace(const std::u16string& subject_text,
                                       const std::u16string& replacement) {
  expected_result<std::u16string> result = replace_all(*this, subject_text, replacement);
  return result.has_error() ? subject_text : std::move(result).value();
}

expected_result<std::u16string> regex_impl_icu::replace_ex(const std::u16string& subject_text,
                                                           const std::u16string& replacement) {
  return replace_all(*this, subject_text, replacement);
}

std::u16string regex_impl_icu::getGroupReference(const std::u16string& name) const {
  return u"${" + name + u"}";
}

int regex_impl_icu::getGroupNumber(const std::string& name) const {
  const icu::RegexMatcher* m = icu_matcher(matcher);
  if (m == nullptr || name.empty()) return -1;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t number = m->pattern().groupNumberFromName(
      name.data(), static_cast<int32_t>(name.size()), status);
  if (U_SUCCESS(status)) return number;
  return group_number_from_digits(name);
}

int regex_impl_icu::getGroupsCount() const {
  const icu::RegexMatcher* m = icu_matcher(matcher);
  return m == nullptr ? 0 : m->groupCount();
}

}  // namespace scl::regex::detail
