#include "icu/spare_matchers.h"

#include <exception>
#include <utility>

#include "icu/matcher.h"
#include "scl/regex/exception.h"

namespace scl::regex::detail {

borrowed_matcher::~borrowed_matcher() {
  if (std::uncaught_exceptions() == exceptions_) owner_.give_back(std::move(matcher_));
}

spare_matchers::~spare_matchers() {
  for (std::atomic<icu::RegexMatcher*>& spare : spare_) {
    const std::unique_ptr<icu::RegexMatcher> kept(spare.load(std::memory_order_acquire));
  }
}

borrowed_matcher spare_matchers::borrow() const {
  for (std::atomic<icu::RegexMatcher*>& spare : spare_) {
    if (spare.load(std::memory_order_relaxed) == nullptr) continue;
    if (icu::RegexMatcher* matcher = spare.exchange(nullptr, std::memory_order_acquire)) {
      return borrowed_matcher(*this, std::unique_ptr<icu::RegexMatcher>(matcher));
    }
  }
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::RegexMatcher> matcher = new_matcher(pattern_, status);
  if (U_FAILURE(status)) throw regex_exception(status);
  return borrowed_matcher(*this, std::move(matcher));
}

void spare_matchers::give_back(std::unique_ptr<icu::RegexMatcher> matcher) const noexcept {
  if (matcher == nullptr) return;
  for (std::atomic<icu::RegexMatcher*>& spare : spare_) {
    icu::RegexMatcher* empty = nullptr;
    if (spare.compare_exchange_strong(empty, matcher.get(), std::memory_order_release,
                                      std::memory_order_relaxed)) {
      (void)matcher.release();  // the slot owns it now
      return;
    }
  }
}

}  // namespace scl::regex::detail
