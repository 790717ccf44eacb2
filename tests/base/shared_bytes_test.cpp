#include "base/shared_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace zq {
namespace {

TEST(SharedBytes, HoldsNoBufferUntilItIsGivenOne) {
  EXPECT_FALSE(SharedBytes());
  EXPECT_TRUE(SharedBytes::copyOf({}));
}

TEST(SharedBytes, CopiesOfAHandleShareTheBytes) {
  const std::vector<std::uint8_t> bytes{1, 2, 3};
  const SharedBytes one = SharedBytes::copyOf(bytes);
  const SharedBytes other = one;
  EXPECT_EQ(one.data(), other.data());
  EXPECT_TRUE(one.sameBufferAs(other));
}

TEST(SharedBytes, EqualContentIsNotTheSameBuffer) {
  const std::vector<std::uint8_t> bytes{1, 2, 3};
  EXPECT_FALSE(SharedBytes::copyOf(bytes).sameBufferAs(SharedBytes::copyOf(bytes)));
}

TEST(SharedBytes, ReadsUpToTheVeryLastByte) {
  const SharedBytes bytes = SharedBytes::copyOf(std::vector<std::uint8_t>{1, 2, 3});
  std::array<std::uint8_t, 2> out{};
  bytes.getBytes(out, 1);
  EXPECT_EQ(out, (std::array<std::uint8_t, 2>{2, 3}));
}

TEST(SharedBytes, ARangeThatEndsPastTheEndThrowsAndCopiesNothing) {
  const SharedBytes bytes = SharedBytes::copyOf(std::vector<std::uint8_t>{1, 2, 3});
  std::array<std::uint8_t, 2> out{9, 9};
  EXPECT_THROW(bytes.getBytes(out, 2), std::out_of_range);
  EXPECT_THROW(bytes.getBytes(out, 4), std::out_of_range);
  EXPECT_THROW(bytes.getBytes(out, static_cast<std::size_t>(-1)), std::out_of_range);
  EXPECT_EQ(out, (std::array<std::uint8_t, 2>{9, 9}));
}

TEST(SharedBytes, ReadingFromNoBufferThrows) {
  std::array<std::uint8_t, 1> out{};
  EXPECT_THROW(SharedBytes().getBytes(out, 0), std::out_of_range);
}

}  // namespace
}  // namespace zq
