// Internal text helpers: finding the first U+0000 four units at a time.
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "text/until_nul.h"

namespace {

using scl::regex::detail::units_before_nul;

std::size_t naive(const std::u16string& text) {
  const std::size_t nul = text.find(u'\0');
  return nul == std::u16string::npos ? text.size() : nul;
}

TEST(UnitsBeforeNul, AgreesWithAPlainScanEverywhere) {
  // Units that stress the word trick: 0x0001 and 0x8000 lanes, 0xFFFF, surrogates.
  const char16_t units[] = {u'\0', u'\x0001', u'\x8000', u'\xFFFF', u'\x7FFF',
                            u'a',  u'\xD800', u'\x0100', u'\x8001'};
  std::mt19937 random(3);
  std::uniform_int_distribution<std::size_t> pick(0, sizeof units / sizeof units[0] - 1);
  std::uniform_int_distribution<int> zero_odds(0, 20);
  for (int round = 0; round < 20000; ++round) {
    std::u16string text(static_cast<std::size_t>(round % 41), u'x');
    for (char16_t& unit : text) unit = zero_odds(random) == 0 ? u'\0' : units[1 + pick(random) % 8];
    ASSERT_EQ(units_before_nul(text.data(), text.size()), naive(text)) << "round " << round;
  }
}

TEST(UnitsBeforeNul, EveryPositionOfASingleNul) {
  for (std::size_t size = 0; size < 20; ++size) {
    for (std::size_t at = 0; at <= size; ++at) {
      std::u16string text(size, u'\x8001');
      if (at < size) text[at] = u'\0';
      EXPECT_EQ(units_before_nul(text.data(), text.size()), at) << size << " " << at;
    }
  }
}

}  // namespace
