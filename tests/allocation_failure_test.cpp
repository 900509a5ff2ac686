// Allocation failures while making handles, and what destroying them frees,
// observed through allocators that this process installs: ICU's
// (u_setMemoryFunctions, before any ICU use) and the global operator new and
// delete.
#include <atomic>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unicode/uclean.h>

#include <scl/regex.h>

namespace {

std::atomic<bool> fail_next_icu_allocation{false};
std::atomic<long> icu_live_blocks{0};
std::atomic<long> icu_frees{0};
std::atomic<bool> throw_on_next_new{false};
std::atomic<long> global_deletes{0};

void* icu_alloc(const void*, size_t size) {
  if (fail_next_icu_allocation.exchange(false)) return nullptr;
  void* p = std::malloc(size);
  if (p != nullptr) ++icu_live_blocks;
  return p;
}

void* icu_realloc(const void*, void* p, size_t size) {
  void* q = std::realloc(p, size);
  if (p == nullptr && q != nullptr) ++icu_live_blocks;
  return q;
}

void icu_free(const void*, void* p) {
  if (p != nullptr) {
    --icu_live_blocks;
    ++icu_frees;
  }
  std::free(p);
}

}  // namespace

// Replacing the global allocation functions reaches the library's std::string use too.
// They pair malloc with free; g++ sees the free() inside a replaced operator delete and
// wrongly reports it as mismatched with operator new.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
void* operator new(std::size_t size) {
  if (throw_on_next_new.exchange(false)) throw std::bad_alloc();
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  if (p != nullptr) ++global_deletes;
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  if (p != nullptr) ++global_deletes;
  std::free(p);
}

namespace {

using scl::regex::createExpectedMatcher;
using scl::regex::createMatcher;

TEST(AllocationFailure, IcuWithoutStorageGivesEmptyHandleWithoutError) {
  fail_next_icu_allocation = true;
  scl::regex::matcher_ptr handle = createMatcher(u"a", 0x1);
  EXPECT_EQ(handle.get(), nullptr);
  EXPECT_EQ(handle.get_deleter().options, 0x1u);
}

TEST(AllocationFailure, IcuWithoutStorageGivesNullHandleAndNoErrorFromExpectedForm) {
  fail_next_icu_allocation = true;
  auto result = createExpectedMatcher(u"a", 0x1);
  ASSERT_FALSE(result.has_error());
  EXPECT_EQ(result.value().get(), nullptr);
}

TEST(AllocationFailure, RejectedPatternLeavesNoMatcherBehind) {
  EXPECT_THROW((void)createMatcher(u"(a", 0), scl::regex::regex_exception);  // warm-up
  const long before = icu_live_blocks;
  EXPECT_THROW((void)createMatcher(u"(a", 0), scl::regex::regex_exception);
  EXPECT_EQ(icu_live_blocks, before);
  EXPECT_TRUE(createExpectedMatcher(u"(a", 0).has_error());
  EXPECT_EQ(icu_live_blocks, before);
}

TEST(AllocationFailure, DestroyingHandlesReturnsAllMatcherStorage) {
  const std::u16string pattern = u"(?<word>\\w+)\\s+\\k<word>";
  (void)createMatcher(pattern, 0x1);  // warm-up: ICU caches some character data on first use
  const long before = icu_live_blocks;
  {
    scl::regex::matcher_ptr handle = createMatcher(pattern, 0x1);
    EXPECT_GT(icu_live_blocks, before);
    scl::regex::matcher_ptr moved = std::move(handle);
    handle.reset();  // a moved-from handle deletes nothing
  }
  EXPECT_EQ(icu_live_blocks, before);
}

TEST(AllocationFailure, DestroyingEmptyOrMovedFromHandlesFreesNothing) {
  scl::regex::matcher_ptr live = createMatcher(u"a", 0);
  const long frees = icu_frees;
  {
    scl::regex::matcher_ptr empty;
    scl::regex::matcher_ptr moved_from = std::move(live);
    live = std::move(moved_from);  // moved_from is empty again when it goes
    const scl::regex::detail::matcher_destroyer destroyer{0x3};
    destroyer(nullptr);
  }
  EXPECT_EQ(icu_frees, frees);
  ASSERT_NE(live.get(), nullptr);
  live.reset();
  EXPECT_GT(icu_frees, frees);  // the one real handle does free its matcher
}

// The destroyer frees through ICU's allocator: on a matcher it gives back every
// block the matcher took, on null it frees nothing from either allocator.
TEST(MatcherDestroyer, NullPointerDeletesNothing) {
  // Warm-up: ICU caches some character data on first use, and the thread
  // keeps the compiled pattern for each flag word.
  for (scl::regex::constants::syntax_option_type options = 0; options < 8; ++options) {
    (void)createMatcher(u"(a)b", options);
  }
  for (scl::regex::constants::syntax_option_type options = 0; options < 8; ++options) {
    SCOPED_TRACE(options);
    const long live_before = icu_live_blocks;
    scl::regex::matcher_ptr handle = createMatcher(u"(a)b", options);
    ASSERT_NE(handle.get(), nullptr);
    const long live_with_matcher = icu_live_blocks;
    const scl::regex::detail::matcher_destroyer destroyer = handle.get_deleter();

    // Called on null, directly and through empty handles: no block moves.
    const long frees = icu_frees;
    const long deletes = global_deletes;
    destroyer(nullptr);
    scl::regex::matcher_ptr empty(nullptr, destroyer);
    empty.reset();
    { scl::regex::matcher_ptr goes_out_of_scope; }
    const long frees_on_null = icu_frees - frees;
    const long deletes_on_null = global_deletes - deletes;
    EXPECT_EQ(frees_on_null, 0);
    EXPECT_EQ(deletes_on_null, 0);
    EXPECT_EQ(icu_live_blocks, live_with_matcher);

    // The same destroyer on the matcher frees it, so the counts above do see it.
    destroyer(handle.release());
    EXPECT_GT(icu_frees, frees);
    EXPECT_EQ(icu_live_blocks, live_before);
  }
}

TEST(AllocationFailure, BadAllocWhilePreparingPatternPropagatesAndLeaksNothing) {
  // Long enough that preparing it needs the heap.
  std::u16string pattern;
  for (int i = 0; i < 20; ++i) pattern += u"e\u0301";
  const auto nfc = scl::regex::constants::normalize_nfc;
  (void)createMatcher(pattern, nfc);  // warm-up
  const long before = icu_live_blocks;
  throw_on_next_new = true;
  EXPECT_THROW((void)createMatcher(pattern, nfc), std::bad_alloc);
  EXPECT_FALSE(throw_on_next_new);
  throw_on_next_new = true;
  EXPECT_THROW((void)createExpectedMatcher(pattern, nfc), std::bad_alloc);
  EXPECT_FALSE(throw_on_next_new);
  EXPECT_EQ(icu_live_blocks, before);
}

// One-shot calls keep compiled patterns per thread; a thread that ends gives
// every one of them back.
TEST(AllocationFailure, ThreadsThatEndFreeTheirCachedPatterns) {
  const auto work = [] {
    for (int i = 0; i < 100; ++i) {
      const std::u16string pattern =
          u"(x" + std::u16string(static_cast<std::size_t>(i % 40 + 1), u'y') + u")+";
      (void)scl::regex::regex_replace(u"xyyy xy", pattern, u"z", static_cast<std::uint32_t>(i % 2));
    }
  };
  std::thread(work).join();  // ICU's one-time data is made here
  const long before = icu_live_blocks.load();
  for (int round = 0; round < 500; ++round) std::thread(work).join();
  EXPECT_EQ(icu_live_blocks.load(), before);
}

}  // namespace

int main(int argc, char** argv) {
  UErrorCode status = U_ZERO_ERROR;
  u_setMemoryFunctions(nullptr, icu_alloc, icu_realloc, icu_free, &status);
  if (U_FAILURE(status)) return 2;
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
