// How searches on ICU matchers keep the calling thread's match_time_limit.
//
// Every matcher the library makes carries a match callback that ICU calls
// every few thousand steps of a search; it stops the search once the thread's
// deadline has passed (ICU then reports U_REGEX_STOPPED_BY_CALLER). Before a
// search starts, check_deadline fails it at once if the deadline has passed.
#ifndef SCL_REGEX_SRC_TIME_LIMIT_DEADLINE_H
#define SCL_REGEX_SRC_TIME_LIMIT_DEADLINE_H

#include <atomic>

#include <unicode/regex.h>
#include <unicode/utypes.h>

namespace scl::regex::detail {

// Gives `matcher` the callback that stops its searches at the deadline of the
// thread that runs them. Costs nothing while no limit is live. The callback
// ignores its context, which the matcher's owner may use for its own ends
// (`context`, read back with matcher.getMatchCallback).
void watch_deadline(icu::RegexMatcher& matcher, const void* context = nullptr) noexcept;

// How many match_time_limit objects live, on all threads together. While
// there are none, a search does not even look at its thread's limits.
extern std::atomic<unsigned> live_time_limits;

// The check_deadline below, once some limit lives somewhere.
void check_thread_deadline(UErrorCode& status) noexcept;

// Sets `status` to U_REGEX_TIME_OUT if a limit is live on this thread and its
// deadline has passed, so that the ICU call it is passed to does nothing.
inline void check_deadline(UErrorCode& status) noexcept {
  if (live_time_limits.load(std::memory_order_relaxed) != 0) check_thread_deadline(status);
}

// How many searches this thread's deadlines have stopped so far. A call that
// makes several searches (ICU's replaceAll) learns from it whether any of them
// was stopped, which ICU itself does not report.
unsigned deadline_stops() noexcept;

// A search's status as the library reports it: a search stopped by the
// deadline is U_REGEX_TIME_OUT.
constexpr UErrorCode search_status(UErrorCode status) noexcept {
  return status == U_REGEX_STOPPED_BY_CALLER ? U_REGEX_TIME_OUT : status;
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_TIME_LIMIT_DEADLINE_H
