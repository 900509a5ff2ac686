// The UTF-8 replace decodes its pattern and replacement as UTF-8 whatever the
// process locale and ICU's default converter say. CTest runs this with LC_ALL=C.
#include <clocale>
#include <string>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <scl/regex.h>

namespace {

using namespace std::string_literals;

TEST(Utf8UnderNonUtf8Locale, NonAsciiPatternAndReplacementStillMeanUtf8) {
  ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);  // adopt LC_ALL=C from the environment
  ucnv_setDefaultName("ISO-8859-1");               // and ask ICU for a Latin-1 default, too
  EXPECT_EQ(scl::regex::regex_replace("caf\xC3\xA9"s, "\xC3\xA9"s, "\xC3\xA8"s, 0), "caf\xC3\xA8");
  EXPECT_EQ(scl::regex::regex_replace("\xC3\x89T\xC3\x89"s, "\xC3\xA9"s, "e"s,
                                      scl::regex::constants::case_insensitive),
            "eTe");
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
