#include "icu/pattern_cache.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace scl::regex::detail {
namespace {

struct entry {
  std::int32_t hash;
  std::uint32_t flags;
  icu::UnicodeString text;
  shared_pattern compiled;
};

// One thread's patterns, most recently used first.
class pattern_cache {
 public:
  shared_pattern find(const icu::UnicodeString& text, std::uint32_t flags) {
    const std::int32_t hash = text.hashCode();
    const auto hit = std::find_if(entries_.begin(), entries_.end(), [&](const entry& e) {
      return e.hash == hash && e.flags == flags && e.text == text;
    });
    if (hit == entries_.end()) return nullptr;
    std::rotate(entries_.begin(), hit, hit + 1);
    return entries_.front().compiled;
  }

  bool contains(const icu::UnicodeString& text, std::uint32_t flags) const {
    const std::int32_t hash = text.hashCode();
    return std::any_of(entries_.begin(), entries_.end(), [&](const entry& e) {
      return e.hash == hash && e.flags == flags && e.text == text;
    });
  }

  void keep(const icu::UnicodeString& text, std::uint32_t flags, shared_pattern compiled) {
    const auto units = static_cast<std::size_t>(text.length());
    if (!enabled || units > kCachedUnits) return;
    while (!entries_.empty() &&
           (entries_.size() >= kCachedPatterns || units_ + units > kCachedUnits)) {
      units_ -= static_cast<std::size_t>(entries_.back().text.length());
      entries_.pop_back();
    }
    entries_.insert(entries_.begin(), entry{text.hashCode(), flags, text, std::move(compiled)});
    units_ += units;
  }

  void clear() noexcept {
    entries_.clear();
    units_ = 0;
  }

  std::size_t size() const noexcept { return entries_.size(); }

  bool enabled = true;

 private:
  std::vector<entry> entries_;
  std::size_t units_ = 0;
};

pattern_cache& this_thread_cache() {
  thread_local pattern_cache cache;
  return cache;
}

}  // namespace

shared_pattern cached_pattern(const icu::UnicodeString& text, std::uint32_t flags) {
  pattern_cache& cache = this_thread_cache();
  return cache.enabled ? cache.find(text, flags) : nullptr;
}

void keep_pattern(const icu::UnicodeString& text, std::uint32_t flags, shared_pattern compiled) {
  this_thread_cache().keep(text, flags, std::move(compiled));
}

void set_pattern_cache_enabled(bool enabled) noexcept {
  pattern_cache& cache = this_thread_cache();
  cache.enabled = enabled;
  if (!enabled) cache.clear();
}

std::size_t cached_pattern_count() noexcept { return this_thread_cache().size(); }

bool pattern_is_cached(const icu::UnicodeString& pattern, std::uint32_t flags) noexcept {
  return this_thread_cache().contains(pattern, flags);
}

}  // namespace scl::regex::detail
