// A deadline for every search the library runs on the calling thread.
//
//   namespace re = scl::regex;
//   {
//     re::match_time_limit limit(std::chrono::milliseconds(50));
//     // Gives up after about 50 ms instead of never returning:
//     re::regex_replace(u"aac", user_pattern, u"x", 0);  // u"aac" (the prepared subject)
//     if (limit.exceeded()) { /* tell the user the pattern is too slow */ }
//   }
//   // Here searches run without a limit again.
//
// While a match_time_limit lives, every search of the library on an ICU
// matcher, on the thread that made it, stops at its deadline: the moment of
// construction plus the limit, on the steady clock. A stopped search fails as
// on any ICU error: the function returns what it documents for that (false,
// the subject unchanged or the prepared subject, the end of a walk, a
// no-match result), and match_ex and replace_ex report U_REGEX_TIME_OUT
// (66322). A search that starts after the deadline fails at once. Time spent
// in a replace callback counts, but a callback is never interrupted. Engines
// of the caller's own and other threads are not affected.
#ifndef SCL_REGEX_TIME_LIMIT_H
#define SCL_REGEX_TIME_LIMIT_H

#include <chrono>

#include <scl/regex/export.h>

namespace scl::regex {

namespace detail {
struct time_limit_chain;
}  // namespace detail

// A scope within which the calling thread's searches have a deadline. Limits
// nest: the earliest deadline of the live ones governs. Destroy them on the
// thread that made them, in reverse order of construction (as scopes do).
// Not copyable, not movable.
class SCL_REGEX_API match_time_limit {
 public:
  // Starts the deadline now + `limit`; a zero or negative limit makes every
  // search fail at once. A limit too far away to represent means no deadline.
  explicit match_time_limit(std::chrono::milliseconds limit);
  ~match_time_limit();

  match_time_limit(const match_time_limit&) = delete;
  match_time_limit& operator=(const match_time_limit&) = delete;

  // Returns true once a search on this thread was stopped by time while this
  // object lived (by its own deadline or an enclosing one's).
  [[nodiscard]] bool exceeded() const noexcept { return exceeded_; }

 private:
  friend struct detail::time_limit_chain;

  // The earliest of this and the enclosing limits.
  std::chrono::steady_clock::time_point deadline_{};
  match_time_limit* enclosing_ = nullptr;
  bool exceeded_ = false;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_TIME_LIMIT_H
