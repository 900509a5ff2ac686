#include "handle/matcher_storage.h"

#include <cstddef>

#include <new>

#include <unicode/uobject.h>

#include "engine/icu_text.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

constexpr std::size_t round_up(std::size_t n, std::size_t alignment) {
  return (n + alignment - 1) / alignment * alignment;
}

// The matcher sits at the start of the allocation (so the handle's pointer is
// the matcher itself), the subject slot behind it.
constexpr std::size_t kSlotOffset =
    round_up(sizeof(icu::RegexMatcher), alignof(icu::UnicodeString));
constexpr std::size_t kStorageSize = kSlotOffset + sizeof(icu::UnicodeString);

void* slot_address(void* storage) noexcept {
  return static_cast<unsigned char*>(storage) + kSlotOffset;
}

// The subject slot of a matcher made by new_matcher.
icu::UnicodeString& subject_slot(icu::RegexMatcher& matcher) noexcept {
  return *static_cast<icu::UnicodeString*>(slot_address(&matcher));
}

}  // namespace

icu::RegexMatcher* new_matcher(const icu::UnicodeString& pattern, std::uint32_t flags,
                               UErrorCode& status) {
  void* storage = icu::UMemory::operator new(kStorageSize);
  if (storage == nullptr) return nullptr;
  new (slot_address(storage)) icu::UnicodeString();
  auto* matcher = new (storage) icu::RegexMatcher(pattern, flags, status);
  watch_deadline(*matcher);
  return matcher;
}

void delete_matcher(icu::RegexMatcher* matcher) noexcept {
  if (matcher == nullptr) return;
  void* storage = matcher;
  // The matcher refers to the slot's text, so it goes first.
  matcher->~RegexMatcher();
  static_cast<icu::UnicodeString*>(slot_address(storage))->~UnicodeString();
  icu::UMemory::operator delete(storage);
}

icu::UnicodeString& handle_slot(icu::RegexMatcher& matcher) noexcept {
  return subject_slot(matcher);
}

void reset_onto(icu::RegexMatcher& matcher, icu::UnicodeString& slot, const char16_t* text,
                int32_t length) {
  slot.setTo(text, length);
  matcher.reset(slot);
}

void reset_onto_until_nul(icu::RegexMatcher& matcher, icu::UnicodeString& slot,
                          const std::u16string& text) {
  const auto capacity = static_cast<int32_t>(text.size());
  char16_t* buffer = slot.getBuffer(capacity);
  if (buffer == nullptr) throw std::bad_alloc();
  const std::size_t copied =
      copy_until_nul(buffer, text.data(), static_cast<std::size_t>(capacity));
  slot.releaseBuffer(static_cast<int32_t>(copied));
  matcher.reset(slot);
}

}  // namespace scl::regex::detail
