// Many threads ask for messages at once, the very first time in the process.
#include <atomic>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

TEST(MessagesConcurrentFirstUse, EveryThreadGetsTheRightText) {
  struct Row {
    std::int64_t code;
    const char* message;
  };
  static const Row rows[] = {
      {-1000, "Matcher is not available."},
      {-1001, "Unknown regex implementation."},
      {0x10301, "Syntax error in regexp pattern."},
      {0x10306, "Incorrectly nested parentheses in regexp pattern."},
      {0x1030E, "unknown regex error"},
      {1, "unknown regex error"},
      {0x10315, "Invalid capture group name."},
      {0x10312, "Maximum allowed match time exceeded"},
  };
  constexpr int kThreads = 16;
  std::atomic<int> ready{0};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ++ready;
      while (ready < kThreads) std::this_thread::yield();  // start together
      for (int i = 0; i < 200; ++i) {
        const Row& row = rows[(t + i) % (sizeof rows / sizeof rows[0])];
        if (std::strcmp(scl::regex::regex_exception(row.code).what(), row.message) != 0) ++wrong;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
