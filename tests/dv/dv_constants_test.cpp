#include "dv/dv_constants.h"

#include <gtest/gtest.h>

#include <limits>

namespace zq {
namespace {

TEST(DVConstants, FrameOfEachSystem) {
  EXPECT_EQ(BLOCKS_SIZE, 80);
  EXPECT_EQ(BLOCKS_PER_SEQUENCE, 150);
  EXPECT_EQ(SEQUENCE_SIZE, 12000);
  EXPECT_EQ(DIF_SEQ_COUNT_525_60, 10);
  EXPECT_EQ(DIF_SEQ_COUNT_625_50, 12);
  EXPECT_EQ(DIF_BLOCK_COUNT_525_60, 1500);
  EXPECT_EQ(DIF_BLOCK_COUNT_625_50, 1800);
  EXPECT_EQ(FRAME_SIZE_525_60, 120000);
  EXPECT_EQ(FRAME_SIZE_625_50, 144000);
}

TEST(DVConstants, SizesFollowFromCounts) {
  EXPECT_EQ(SEQUENCE_SIZE, BLOCKS_PER_SEQUENCE * BLOCKS_SIZE);
  EXPECT_EQ(FRAME_SIZE_625_50, DIF_SEQ_COUNT_625_50 * SEQUENCE_SIZE);
  EXPECT_EQ(FRAME_SIZE_525_60, DIF_SEQ_COUNT_525_60 * SEQUENCE_SIZE);
  EXPECT_EQ(DIF_BLOCK_COUNT_525_60, DIF_SEQ_COUNT_525_60 * BLOCKS_PER_SEQUENCE);
  EXPECT_EQ(DIF_BLOCK_COUNT_625_50, DIF_SEQ_COUNT_625_50 * BLOCKS_PER_SEQUENCE);
  EXPECT_EQ(FRAME_SIZE_525_60_50MBS, 2 * FRAME_SIZE_525_60);
  EXPECT_EQ(FRAME_SIZE_625_50_50MBS, 2 * FRAME_SIZE_625_50);
  EXPECT_EQ(DIF_SEQ_COUNT_MIN, 10);
  EXPECT_EQ(DIF_SEQ_COUNT_MAX, 12);
}

TEST(DVConstants, PictureAndRate) {
  EXPECT_EQ(ROW_COUNT_625_50, 576);
  EXPECT_EQ(ROW_COUNT_525_60, 480);
  EXPECT_EQ(COLUMN_COUNT_625_50, 720);
  EXPECT_EQ(COLUMN_COUNT_525_60, 720);
  EXPECT_EQ(TIMEBASE_525_60, 30);
  EXPECT_EQ(TIMEBASE_625_50, 25);
  EXPECT_DOUBLE_EQ(AVERAGE_FPS_525_60, 29.97);
  EXPECT_DOUBLE_EQ(AVERAGE_FPS_625_50, 25.0);
  EXPECT_DOUBLE_EQ(ASPECT_RATIO_4_3, 1.3333333333333333);
  EXPECT_DOUBLE_EQ(ASPECT_RATIO_16_9, 1.7777777777777777);
  EXPECT_DOUBLE_EQ(ASPECT_RATIO_525_60, ASPECT_RATIO_4_3);
  EXPECT_DOUBLE_EQ(ASPECT_RATIO_625_50, ASPECT_RATIO_4_3);
}

TEST(DVConstants, Texts) {
  EXPECT_STREQ(NTSC, "NTSC");
  EXPECT_STREQ(PAL, "PAL");
  EXPECT_STREQ(NOT_DECODED, "Not decoded");
}

TEST(DVAspectRatio, NamesAndFactors) {
  EXPECT_STREQ(DVAspectRatioNameForRatio(-1), "???");
  EXPECT_STREQ(DVAspectRatioNameForRatio(0), "16/9");
  EXPECT_STREQ(DVAspectRatioNameForRatio(1), "4/3");
  EXPECT_STREQ(DVAspectRatioNameForRatio(2), "Not Set");
  EXPECT_STREQ(DVAspectRatioNameForRatio(3), "Fixed");
  EXPECT_FLOAT_EQ(DVAspectRatioValueForRatio(-1), 1.0F);
  EXPECT_FLOAT_EQ(DVAspectRatioValueForRatio(0), 1.7777778F);
  EXPECT_FLOAT_EQ(DVAspectRatioValueForRatio(1), 1.3333334F);
  EXPECT_FLOAT_EQ(DVAspectRatioValueForRatio(2), 1.0F);
}

TEST(DVAspectRatio, FixedHasANegativeFactor) {
  EXPECT_EQ(DVAspectRatioValueForRatio(3), -1.0F);
}

TEST(DVAspectRatio, CodesOutsideTheTableAreUnknown) {
  for (const int ratio : {-2, 4, 5, 6, 7, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_STREQ(DVAspectRatioNameForRatio(ratio), "???") << ratio;
    EXPECT_EQ(DVAspectRatioValueForRatio(ratio), 1.0F) << ratio;
  }
}

TEST(DVAspectRatio, NameTableEndsWithThreeNulls) {
  ASSERT_EQ(DVAspectRatioName.size(), 8U);
  for (std::size_t row = 5; row < 8; ++row) EXPECT_EQ(DVAspectRatioName[row], nullptr);
}

}  // namespace
}  // namespace zq
