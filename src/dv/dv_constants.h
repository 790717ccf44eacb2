#pragma once
// The numbers of the two DV systems (525/60, "NTSC"; 625/50, "PAL") and the aspect-ratio code.

#include <array>
#include <cstdint>

namespace zq {

inline constexpr std::int32_t DIF_SEQ_COUNT_525_60 = 10;
inline constexpr std::int32_t DIF_SEQ_COUNT_625_50 = 12;
/// As many sequences as a frame of any system has; what an unknown frame is scanned for.
inline constexpr std::int32_t DIF_SEQ_COUNT_MIN = 10;
inline constexpr std::int32_t DIF_SEQ_COUNT_MAX = 12;
inline constexpr std::int32_t BLOCKS_PER_SEQUENCE = 150;
inline constexpr std::int32_t DIF_BLOCK_COUNT_525_60 = 1500;
inline constexpr std::int32_t DIF_BLOCK_COUNT_625_50 = 1800;
inline constexpr std::int32_t SEQUENCE_SIZE = 12000;
inline constexpr std::int32_t BLOCKS_SIZE = 80;
inline constexpr std::int32_t ROW_COUNT_625_50 = 576;
inline constexpr std::int32_t COLUMN_COUNT_625_50 = 720;
inline constexpr std::int32_t ROW_COUNT_525_60 = 480;
inline constexpr std::int32_t COLUMN_COUNT_525_60 = 720;
inline constexpr std::int32_t FRAME_SIZE_525_60 = 120000;
inline constexpr std::int32_t FRAME_SIZE_625_50 = 144000;
inline constexpr std::int32_t FRAME_SIZE_525_60_50MBS = 240000;
inline constexpr std::int32_t FRAME_SIZE_625_50_50MBS = 288000;
inline constexpr std::int32_t TIMEBASE_525_60 = 30;
inline constexpr std::int32_t TIMEBASE_625_50 = 25;

inline constexpr double AVERAGE_FPS_525_60 = 29.97;
inline constexpr double AVERAGE_FPS_625_50 = 25.0;
inline constexpr double ASPECT_RATIO_4_3 = 4.0 / 3.0;
inline constexpr double ASPECT_RATIO_16_9 = 16.0 / 9.0;
inline constexpr double ASPECT_RATIO_525_60 = ASPECT_RATIO_4_3;
inline constexpr double ASPECT_RATIO_625_50 = ASPECT_RATIO_4_3;

inline constexpr char NTSC[] = "NTSC";
inline constexpr char PAL[] = "PAL";
inline constexpr char NOT_DECODED[] = "Not decoded";

/// -1 unknown, 0 16:9, 1 4:3, 2 not set, 3 fixed.
using DVAspectRatio = std::int32_t;

/// Both tables have their row for code -1 first. Five names; the three nulls behind them are never reached.
inline constexpr std::array<const char*, 8> DVAspectRatioName{"???",   "16/9",  "4/3",   "Not Set",
                                                              "Fixed", nullptr, nullptr, nullptr};
/// A negative factor says "fixed": it is no width over height.
inline constexpr std::array<float, 5> DVAspectRatioValues{1.0F, 16.0F / 9.0F, 4.0F / 3.0F, 1.0F, -1.0F};

/// The name to show for a code; "???" for one that is not in the table.
const char* DVAspectRatioNameForRatio(int ratio);
/// The factor of a code; 1.0 for one that is not in the table.
float DVAspectRatioValueForRatio(int ratio);

}  // namespace zq
