#include "icu/handle_matcher.h"

#include <memory>
#include <utility>

#include <unicode/uobject.h>

#include "icu/matcher.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

// What a handle keeps beside its matcher. Allocated with ICU's allocator (as
// UMemory), so that a handle's storage comes from where ICU's own does.
struct handle_storage : public icu::UMemory {
  shared_pattern pattern;
  icu::UnicodeString slot;
};

handle_storage* storage_of(icu::RegexMatcher& matcher) noexcept {
  URegexMatchCallback* callback = nullptr;
  const void* context = nullptr;
  UErrorCode status = U_ZERO_ERROR;
  matcher.getMatchCallback(callback, context, status);
  return static_cast<handle_storage*>(const_cast<void*>(context));
}

}  // namespace

icu::RegexMatcher* new_handle_matcher(const std::u16string& pattern,
                                      constants::syntax_option_type options, UErrorCode& status) {
  // The storage first: without it there is no handle, and no error either.
  // UMemory's allocation returns null instead of throwing.
  std::unique_ptr<handle_storage> storage(new handle_storage);
  if (storage == nullptr) return nullptr;
  compiled_pattern compiled = compile_pattern(pattern, options, pattern_text::prepared);
  if (!compiled) {
    status = compiled.status;
    return nullptr;
  }
  std::unique_ptr<icu::RegexMatcher> matcher = new_matcher(*compiled.pattern, status);
  if (matcher == nullptr) return nullptr;
  storage->pattern = std::move(compiled.pattern);
  watch_deadline(*matcher, storage.release());
  return matcher.release();
}

void delete_handle_matcher(icu::RegexMatcher* matcher) noexcept {
  if (matcher == nullptr) return;
  const std::unique_ptr<handle_storage> storage(storage_of(*matcher));
  // The matcher refers to the slot's text and the pattern, so it goes first.
  delete matcher;
}

icu::UnicodeString& handle_slot(icu::RegexMatcher& matcher) noexcept {
  return storage_of(matcher)->slot;
}

}  // namespace scl::regex::detail
