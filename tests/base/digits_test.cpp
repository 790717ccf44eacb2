#include "base/digits.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace zq {
namespace {

std::string digits(std::int64_t number, int width) {
  std::string out;
  appendDigits(out, number, width);
  return out;
}

TEST(Digits, FillsWithZerosToTheWidth) {
  EXPECT_EQ(digits(7, 2), "07");
  EXPECT_EQ(digits(7, 4), "0007");
  EXPECT_EQ(digits(0, 1), "0");
}

TEST(Digits, WritesALongerNumberWhole) {
  EXPECT_EQ(digits(123, 2), "123");
  EXPECT_EQ(digits(std::numeric_limits<std::int64_t>::max(), 1), "9223372036854775807");
}

TEST(Digits, PutsTheSignBeforeTheZeros) {
  EXPECT_EQ(digits(-5, 2), "-05");
  EXPECT_EQ(digits(std::numeric_limits<std::int64_t>::min(), 1), "-9223372036854775808");
}

TEST(Digits, AgreesWithTheFormattingLibraryOnRandomNumbers) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000; ++i) {
    const auto number = static_cast<std::int64_t>(random() >> (random() % 63 + 1));
    EXPECT_EQ(digits(number, 2), fmt::format("{:02}", number));
    EXPECT_EQ(digits(number, 4), fmt::format("{:04}", number));
  }
}

}  // namespace
}  // namespace zq
