#include "engine/icu_engine_core.h"

#include <stdexcept>

#include "engine/group_number.h"
#include "engine/icu_text.h"
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
  check_deadline(status);
  const bool retried = matcher.find(status);
  status = search_status(status);
  return retried;
}

}  // namespace

void set_engine_subject(icu::RegexMatcher* matcher, icu::UnicodeString& subject,
                        std::u16string& stored, std::u16string_view raw,
                        constants::syntax_option_type options) {
  stored.assign(raw);
  // setTo copies into the subject's own buffer, reusing it from one reset to the next.
  if ((options & (constants::normalize_nfc | constants::ignore_diacritics)) == 0) {
    subject.setTo(stored.data(), static_cast<int32_t>(stored.size()));
  } else {
    const std::u16string prepared = prepare_text(stored, options);
    subject.setTo(prepared.data(), static_cast<int32_t>(prepared.size()));
  }
  if (matcher != nullptr) matcher->reset(subject);
}

std::u16string engine_subject_piece(const icu::UnicodeString& subject, std::size_t start,
                                    std::size_t length) {
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
  return std::u16string(units + from,
                        units_before_nul(units + from, static_cast<std::size_t>(count)));
}

regex_result engine_match(icu::RegexMatcher* m, std::uint32_t match_flags,
                          const regex_impl_abstract* engine) {
  static const regex_result empty_result(npos, npos, nullptr);
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
  return regex_result(start, end, engine);
}

expected_result<regex_result> engine_match_ex(icu::RegexMatcher* m, std::uint32_t match_flags,
                                              const regex_impl_abstract* engine) {
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  UErrorCode status = U_ZERO_ERROR;
  const bool found = find_next(*m, match_flags, status);
  if (U_FAILURE(status)) return regex_exception(status);
  UErrorCode position_status = U_ZERO_ERROR;
  if (!found) {
    // No current match: ICU answers -1 for both, and the statuses do not matter.
    const std::int64_t start = m->start64(position_status);
    const std::int64_t end = m->end64(position_status);
    return regex_result(position(start), position(end), engine);
  }
  const std::int64_t start = m->start64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  const std::int64_t end = m->end64(position_status);
  if (U_FAILURE(position_status)) return regex_exception(position_status);
  return regex_result(position(start), position(end), engine);
}

void engine_groups(const icu::RegexMatcher* m, const regex_impl_abstract* engine,
                   std::vector<group_result>& groups) {
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
    groups.push_back(group_result{position(begin), position(finish), engine});
  }
}

expected_result<std::u16string> engine_replace_all(regex_impl_abstract& engine,
                                                   icu::RegexMatcher* m,
                                                   constants::syntax_option_type options,
                                                   const std::u16string& subject_text,
                                                   const std::u16string& replacement) {
  if (m == nullptr) return regex_exception(kMatcherNotAvailable);
  engine.reset(subject_text, options);
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString output =
      replace_within_deadline(*m, &icu::RegexMatcher::replaceAll, icu_whole(replacement), status);
  if (U_FAILURE(status)) return regex_exception(search_status(status));
  const char16_t* buffer = output.getTerminatedBuffer();
  return buffer != nullptr ? std::u16string(buffer) : subject_text;
}

std::u16string engine_group_reference(const std::u16string& name) { return u"${" + name + u"}"; }

int engine_group_number(const icu::RegexMatcher* m, const std::string& name) {
  if (m == nullptr || name.empty()) return -1;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t number =
      m->pattern().groupNumberFromName(name.data(), static_cast<int32_t>(name.size()), status);
  if (U_SUCCESS(status)) return number;
  return group_number_from_digits(name);
}

int engine_group_count(const icu::RegexMatcher* m) { return m == nullptr ? 0 : m->groupCount(); }

}  // namespace scl::regex::detail
