#include "dv/dv_system.h"

#include <gtest/gtest.h>

namespace zq {
namespace {

TEST(DVSystem, KnowsItsNumbers) {
  EXPECT_EQ(frameSizeOf(DVSystem::ntsc525_60), 120000U);
  EXPECT_EQ(frameSizeOf(DVSystem::pal625_50), 144000U);
  EXPECT_EQ(sequenceCountOf(DVSystem::ntsc525_60), 10);
  EXPECT_EQ(sequenceCountOf(DVSystem::pal625_50), 12);
  EXPECT_EQ(timebaseOf(DVSystem::ntsc525_60), 30);
  EXPECT_EQ(timebaseOf(DVSystem::pal625_50), 25);
  EXPECT_EQ(frameRateOf(DVSystem::ntsc525_60), (FrameRate{30000, 1001}));
  EXPECT_EQ(frameRateOf(DVSystem::pal625_50), (FrameRate{25, 1}));
  EXPECT_EQ(nameOf(DVSystem::ntsc525_60), "525/60");
  EXPECT_EQ(nameOf(DVSystem::pal625_50), "625/50");
}

TEST(DVSystem, IsToldByTheSizeOfAFrame) {
  EXPECT_EQ(systemOfFrameSize(120000), DVSystem::ntsc525_60);
  EXPECT_EQ(systemOfFrameSize(144000), DVSystem::pal625_50);
  for (const std::size_t size : {0U, 119999U, 120001U, 240000U, 288000U}) EXPECT_FALSE(systemOfFrameSize(size)) << size;
}

}  // namespace
}  // namespace zq
