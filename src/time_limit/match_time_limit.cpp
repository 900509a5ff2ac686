// The calling thread's live time limits, innermost first.
#include <chrono>

#include "scl/regex/time_limit.h"
#include "time_limit/deadline.h"

namespace scl::regex {

namespace detail {

std::atomic<unsigned> live_time_limits{0};

struct time_limit_chain {
  using clock = std::chrono::steady_clock;

  // The innermost live limit of this thread, or null.
  static match_time_limit*& innermost() noexcept {
    thread_local match_time_limit* limit = nullptr;
    return limit;
  }

  // How many searches this thread's deadlines have stopped.
  static unsigned& stops() noexcept {
    thread_local unsigned count = 0;
    return count;
  }

  // Whether this thread's deadline has passed; if so every live limit learns
  // that a search was stopped.
  static bool passed() noexcept {
    match_time_limit* limit = innermost();
    if (limit == nullptr || clock::now() < limit->deadline_) return false;
    for (; limit != nullptr; limit = limit->enclosing_) limit->exceeded_ = true;
    ++stops();
    return true;
  }

  static void enter(match_time_limit& limit, std::chrono::milliseconds length) noexcept {
    const clock::time_point now = clock::now();
    // Saturates instead of overflowing the clock's representation.
    const auto room =
        std::chrono::duration_cast<std::chrono::milliseconds>(clock::time_point::max() - now);
    if (length <= std::chrono::milliseconds::zero()) {
      limit.deadline_ = now;
    } else if (length >= room) {
      limit.deadline_ = clock::time_point::max();
    } else {
      limit.deadline_ = now + std::chrono::duration_cast<clock::duration>(length);
    }
    limit.enclosing_ = innermost();
    if (limit.enclosing_ != nullptr && limit.enclosing_->deadline_ < limit.deadline_) {
      limit.deadline_ = limit.enclosing_->deadline_;
    }
    innermost() = &limit;
    // Only this thread's own count matters to its searches, and program order
    // makes that visible to it.
    live_time_limits.fetch_add(1, std::memory_order_relaxed);
  }

  static void leave(match_time_limit& limit) noexcept {
    // Normally `limit` is the innermost; should limits end out of order on
    // this thread, it is unlinked from wherever it is.
    match_time_limit** link = &innermost();
    while (*link != nullptr && *link != &limit) link = &(*link)->enclosing_;
    if (*link == &limit) *link = limit.enclosing_;
    live_time_limits.fetch_sub(1, std::memory_order_relaxed);
  }
};

namespace {

// ICU's match callback: go on until the deadline.
UBool until_deadline(const void*, int32_t) {
  return static_cast<UBool>(!time_limit_chain::passed());
}

}  // namespace

void watch_deadline(icu::RegexMatcher& matcher, const void* context) noexcept {
  UErrorCode status = U_ZERO_ERROR;
  matcher.setMatchCallback(until_deadline, context, status);
}

void check_thread_deadline(UErrorCode& status) noexcept {
  if (U_SUCCESS(status) && time_limit_chain::passed()) status = U_REGEX_TIME_OUT;
}

unsigned deadline_stops() noexcept { return time_limit_chain::stops(); }

}  // namespace detail

match_time_limit::match_time_limit(std::chrono::milliseconds limit) {
  detail::time_limit_chain::enter(*this, limit);
}

match_time_limit::~match_time_limit() { detail::time_limit_chain::leave(*this); }

}  // namespace scl::regex
