// Many threads ask for messages at once, the very first time in the process.
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "support/threads.h"

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
  const int wrong = scl_regex_test::run_on_threads(16, 200, [](int thread, int round) {
    const Row& row =
        rows[static_cast<std::size_t>(thread + round) % (sizeof rows / sizeof rows[0])];
    return std::strcmp(scl::regex::regex_exception(row.code).what(), row.message) != 0 ? 1 : 0;
  });
  EXPECT_EQ(wrong, 0);
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
