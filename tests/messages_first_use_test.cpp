// The library's own codes get their messages when they are the first codes a
// process ever asks about (before the ICU message table exists).
#include <gtest/gtest.h>

#include <scl/regex.h>

TEST(MessagesFirstUse, LibraryCodesBeforeAnyOtherCode) {
  const scl::regex::regex_exception no_matcher(-1000);
  const scl::regex::regex_exception no_impl(-1001);
  EXPECT_STREQ(no_matcher.what(), "Matcher is not available.");
  EXPECT_STREQ(no_impl.what(), "Unknown regex implementation.");
  // The table comes later and does not disturb the first answers.
  EXPECT_STREQ(scl::regex::regex_exception(0x10306).what(),
               "Incorrectly nested parentheses in regexp pattern.");
  EXPECT_STREQ(no_matcher.what(), "Matcher is not available.");
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
