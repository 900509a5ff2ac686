#include "search/word_breaks.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "scl/regex/exception.h"

namespace scl::regex::detail {

namespace {

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(status);
}

using break_iterator = std::unique_ptr<UBreakIterator, decltype(&ubrk_close)>;

// The word break iterator of `locale`, opened once per process; each thread
// searches with a clone of it.
const UBreakIterator& prototype(const std::string& locale) {
  static std::mutex mutex;
  static std::map<std::string, break_iterator> opened;
  const std::lock_guard<std::mutex> lock(mutex);
  auto found = opened.find(locale);
  if (found == opened.end()) {
    UErrorCode status = U_ZERO_ERROR;
    break_iterator breaks(ubrk_open(UBRK_WORD, locale.c_str(), nullptr, 0, &status), &ubrk_close);
    throw_if_failed(status);
    found = opened.emplace(locale, std::move(breaks)).first;
  }
  return *found->second;
}

UBreakIterator* thread_breaks(const std::string& locale) {
  thread_local std::map<std::string, break_iterator> clones;
  auto found = clones.find(locale);
  if (found == clones.end()) {
    UErrorCode status = U_ZERO_ERROR;
    break_iterator clone(ubrk_clone(&prototype(locale), &status), &ubrk_close);
    throw_if_failed(status);
    found = clones.emplace(locale, std::move(clone)).first;
  }
  return found->second.get();
}

}  // namespace

word_breaks::word_breaks(const char16_t* text, int32_t size, const std::string& locale)
    : breaks_(thread_breaks(locale)) {
  UErrorCode status = U_ZERO_ERROR;
  utext_openUChars(&text_, text, size, &status);
  ubrk_setUText(breaks_, &text_, &status);
  throw_if_failed(status);
}

word_breaks::word_breaks(const char* text, int32_t size, const std::string& locale)
    : breaks_(thread_breaks(locale)) {
  UErrorCode status = U_ZERO_ERROR;
  utext_openUTF8(&text_, text, size, &status);
  ubrk_setUText(breaks_, &text_, &status);
  throw_if_failed(status);
}

word_breaks::~word_breaks() { utext_close(&text_); }

bool word_breaks::is_boundary(int32_t at) const { return ubrk_isBoundary(breaks_, at) != 0; }

int32_t word_breaks::following(int32_t at) const { return ubrk_following(breaks_, at); }

}  // namespace scl::regex::detail
