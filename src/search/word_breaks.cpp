#include "search/word_breaks.h"

#include <memory>

#include "scl/regex/exception.h"

namespace scl::regex::detail {

namespace {

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(status);
}

// The root's word break iterator, opened once per process; each thread
// searches with a clone of it.
const UBreakIterator& prototype() {
  static const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> opened(
        ubrk_open(UBRK_WORD, "", nullptr, 0, &status), &ubrk_close);
    throw_if_failed(status);
    return opened;
  }();
  return *breaks;
}

UBreakIterator* thread_breaks() {
  thread_local const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> clone(ubrk_clone(&prototype(), &status),
                                                                 &ubrk_close);
    throw_if_failed(status);
    return clone;
  }();
  return breaks.get();
}

}  // namespace

word_breaks::word_breaks(const char16_t* text, int32_t size) : breaks_(thread_breaks()) {
  UErrorCode status = U_ZERO_ERROR;
  utext_openUChars(&text_, text, size, &status);
  ubrk_setUText(breaks_, &text_, &status);
  throw_if_failed(status);
}

word_breaks::word_breaks(const char* text, int32_t size) : breaks_(thread_breaks()) {
  UErrorCode status = U_ZERO_ERROR;
  utext_openUTF8(&text_, text, size, &status);
  ubrk_setUText(breaks_, &text_, &status);
  throw_if_failed(status);
}

word_breaks::~word_breaks() { utext_close(&text_); }

bool word_breaks::is_boundary(int32_t at) const { return ubrk_isBoundary(breaks_, at) != 0; }

int32_t word_breaks::following(int32_t at) const { return ubrk_following(breaks_, at); }

}  // namespace scl::regex::detail
