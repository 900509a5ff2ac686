// Matchers of one compiled pattern, kept for reuse: a search borrows one and
// gives it back, so that searching many short texts one after the other does
// not make and delete an ICU matcher each time.
#ifndef SCL_REGEX_SRC_ICU_SPARE_MATCHERS_H
#define SCL_REGEX_SRC_ICU_SPARE_MATCHERS_H

#include <atomic>
#include <cstddef>
#include <exception>
#include <memory>
#include <utility>

#include <unicode/regex.h>

namespace scl::regex::detail {

class spare_matchers;

// A matcher borrowed from spare_matchers, given back when this goes.
class borrowed_matcher {
 public:
  borrowed_matcher(const borrowed_matcher&) = delete;
  borrowed_matcher& operator=(const borrowed_matcher&) = delete;
  ~borrowed_matcher();

  icu::RegexMatcher& operator*() const { return *matcher_; }
  icu::RegexMatcher* operator->() const { return matcher_.get(); }

 private:
  friend class spare_matchers;
  borrowed_matcher(const spare_matchers& owner, std::unique_ptr<icu::RegexMatcher> matcher)
      : owner_(owner), matcher_(std::move(matcher)) {}
  const spare_matchers& owner_;
  std::unique_ptr<icu::RegexMatcher> matcher_;
  // A search that ends by throwing gives nothing back: ICU may have left the
  // matcher in a failed state.
  int exceptions_ = std::uncaught_exceptions();
};

// Up to a few matchers of `pattern` (for as many threads searching with it at
// once), without locks: any number of threads may borrow at once. The
// pattern must outlive this.
class spare_matchers {
 public:
  explicit spare_matchers(const icu::RegexPattern& pattern) : pattern_(pattern) {}
  spare_matchers(const spare_matchers&) = delete;
  spare_matchers& operator=(const spare_matchers&) = delete;
  ~spare_matchers();

  // A matcher of the pattern, kept from an earlier search or new (new_matcher:
  // with the calling thread's time limit), over no text the caller may count
  // on: reset it onto the text to search. Throws regex_exception with ICU's
  // code if ICU cannot make one.
  borrowed_matcher borrow() const;

 private:
  friend class borrowed_matcher;
  void give_back(std::unique_ptr<icu::RegexMatcher> matcher) const noexcept;

  static constexpr std::size_t kept = 4;
  const icu::RegexPattern& pattern_;
  mutable std::atomic<icu::RegexMatcher*> spare_[kept] = {};
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_SPARE_MATCHERS_H
