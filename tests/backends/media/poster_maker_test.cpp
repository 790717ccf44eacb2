#include "backends/media/poster_maker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <random>

#include "backends/media/dv_picture_encoder.h"
#include "dv/frame_header.h"
#include "dv/frame_stamp.h"
#include "support/dv_frames.h"

namespace zq::media {
namespace {

using testing::HasSubstr;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVAspectRatio kWide = 0;
constexpr DVAspectRatio kNarrow = 1;

/// Studio range: luma 16 to 235, chroma 16 to 240.
using Colour = std::array<std::uint8_t, 3>;
using Rgb = std::array<double, 3>;

constexpr Colour kBlue{60, 190, 110};
constexpr Colour kRed{90, 100, 200};

/// Lets the encoder compress a picture whose colour `colourOf` says for each place of the luma.
template <typename ColourOf>
SharedBytes painted(DVSystem system, bool wide, const ColourOf& colourOf) {
  const auto encoder = DVPictureEncoder::create(system, wide);
  if (!encoder.ok()) throw std::runtime_error(encoder.error().text());
  const auto frame = encoder.value()->encode([&](const PicturePlanes& planes) {
    for (std::size_t plane = 0; plane < 3; ++plane) {
      const int shiftX = plane == 0 ? 0 : planes.chromaShiftX;
      const int shiftY = plane == 0 ? 0 : planes.chromaShiftY;
      for (int y = 0; y < planes.height >> shiftY; ++y) {
        // Chroma rows of 625/50 belong to the fields in turn, as the luma rows do.
        const int row = shiftY == 0 ? y : (y / 2 * 4) + y % 2;
        for (int x = 0; x < planes.width >> shiftX; ++x) {
          planes.data[plane][y * planes.stride[plane] + x] = colourOf(x << shiftX, row)[plane];
        }
      }
    }
  });
  if (!frame.ok()) throw std::runtime_error(frame.error().text());
  return SharedBytes::copyOf(frame.value());
}

SharedBytes filled(DVSystem system, bool wide, const Colour& colour) {
  return painted(system, wide, [&](int, int) { return colour; });
}

/// By the formulas of BT.601, so that the poster's colours are measured and not libswscale's idea of them.
Rgb rgbOf(double luma, double blue, double red) {
  const auto within = [](double value) { return std::clamp(value, 0.0, 255.0); };
  return {within(luma + 1.402 * red), within(luma - 0.344136 * blue - 0.714136 * red), within(luma + 1.772 * blue)};
}

Rgb rgbOfStudio(const Colour& colour) {
  return rgbOf((colour[0] - 16.0) * 255 / 219, (colour[1] - 128.0) * 255 / 224, (colour[2] - 128.0) * 255 / 224);
}

/// A JPEG file as libavcodec reads it.
class DecodedPoster {
 public:
  explicit DecodedPoster(const std::vector<std::uint8_t>& file) {
    AVCodecContext* codec = avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_MJPEG));
    codec->err_recognition = AV_EF_EXPLODE;
    AVPacket* packet = av_packet_alloc();
    bool read =
        av_new_packet(packet, static_cast<int>(file.size())) == 0 && avcodec_open2(codec, nullptr, nullptr) == 0;
    std::copy(file.begin(), file.end(), packet->data);
    read = read && avcodec_send_packet(codec, packet) == 0 && avcodec_receive_frame(codec, picture_) == 0;
    av_packet_free(&packet);
    avcodec_free_context(&codec);
    EXPECT_TRUE(read);
  }
  ~DecodedPoster() { av_frame_free(&picture_); }
  DecodedPoster(const DecodedPoster&) = delete;
  DecodedPoster& operator=(const DecodedPoster&) = delete;

  int width() const { return picture_->width; }
  int height() const { return picture_->height; }
  int format() const { return picture_->format; }
  Rgb at(int x, int y) const {
    const auto value = [&](std::size_t plane) {
      return static_cast<double>(picture_->data[plane][y * picture_->linesize[plane] + x]);
    };
    return rgbOf(value(0), value(1) - 128, value(2) - 128);
  }

 private:
  AVFrame* picture_ = av_frame_alloc();
};

DecodedPoster posterOf(const SharedBytes& frame, DVAspectRatio aspectRatio) {
  const auto poster = PosterMaker().make(frame, aspectRatio);
  if (!poster.ok()) throw std::runtime_error(poster.error().text());
  return DecodedPoster(poster.value());
}

void expectNear(const Rgb& found, const Rgb& wanted, double tolerance) {
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(found[i], wanted[i], tolerance);
}

bool isDark(const Rgb& colour) {
  return std::ranges::max(colour) < 40;
}

class PosterMakerOf : public testing::TestWithParam<DVSystem> {};

INSTANTIATE_TEST_SUITE_P(BothSystems, PosterMakerOf, testing::Values(kNtsc, kPal));

TEST_P(PosterMakerOf, IsAJpegOfTwiceThePointsWithAllItsColourPixels) {
  const auto poster = PosterMaker().make(filled(GetParam(), false, kBlue), kNarrow);
  ASSERT_TRUE(poster.ok()) << poster.error().text();
  const DecodedPoster decoded(poster.value());
  EXPECT_EQ(decoded.width(), 120);
  EXPECT_EQ(decoded.height(), 80);
  EXPECT_EQ(decoded.format(), AV_PIX_FMT_YUVJ444P);
  EXPECT_LT(poster.value().size(), 8000U);
}

TEST_P(PosterMakerOf, HasTheColoursOfTheFrame) {
  for (const Colour& colour : {kBlue, kRed, Colour{180, 120, 130}}) {
    const DecodedPoster poster = posterOf(filled(GetParam(), false, colour), kNarrow);
    for (const int x : {20, 60, 100}) expectNear(poster.at(x, 40), rgbOfStudio(colour), 4);
  }
}

TEST_P(PosterMakerOf, HasStudioBlackAndWhiteAsFullBlackAndWhite) {
  expectNear(posterOf(filled(GetParam(), false, {16, 128, 128}), kNarrow).at(60, 40), {0, 0, 0}, 2);
  expectNear(posterOf(filled(GetParam(), false, {235, 128, 128}), kNarrow).at(60, 40), {255, 255, 255}, 2);
}

TEST_P(PosterMakerOf, PutsTheNarrowPictureBetweenBarsAtItsSides) {
  const DecodedPoster poster = posterOf(filled(GetParam(), false, {200, 128, 128}), kNarrow);
  for (const int y : {0, 40, 79}) {
    for (const int x : {0, 5, 114, 119}) EXPECT_TRUE(isDark(poster.at(x, y))) << x << ", " << y;
    for (const int x : {8, 60, 111}) EXPECT_FALSE(isDark(poster.at(x, y))) << x << ", " << y;
  }
}

TEST_P(PosterMakerOf, PutsTheWidePictureBetweenBarsAboveAndBelow) {
  const DecodedPoster poster = posterOf(filled(GetParam(), true, {200, 128, 128}), kWide);
  for (const int x : {0, 60, 119}) {
    for (const int y : {0, 4, 75, 79}) EXPECT_TRUE(isDark(poster.at(x, y))) << x << ", " << y;
    for (const int y : {7, 40, 72}) EXPECT_FALSE(isDark(poster.at(x, y))) << x << ", " << y;
  }
}

TEST_P(PosterMakerOf, CutsNothingOff) {
  // A quarter of the picture in each colour; the borders between them lie in the middle of the poster.
  const int rows = GetParam() == kPal ? 576 : 480;
  for (const bool wide : {false, true}) {
    const auto frame = painted(GetParam(), wide, [&](int x, int y) {
      const bool right = x >= 360;
      const bool below = y >= rows / 2;
      return right == below ? kBlue : kRed;
    });
    const DecodedPoster poster = posterOf(frame, wide ? kWide : kNarrow);
    expectNear(poster.at(50, 32), rgbOfStudio(kBlue), 12);
    expectNear(poster.at(69, 32), rgbOfStudio(kRed), 12);
    expectNear(poster.at(50, 47), rgbOfStudio(kRed), 12);
    expectNear(poster.at(69, 47), rgbOfStudio(kBlue), 12);
  }
}

TEST_P(PosterMakerOf, ShowsTheFirstFieldOnly) {
  const auto frame = painted(GetParam(), false, [](int, int y) { return y % 2 == 0 ? kRed : kBlue; });
  expectNear(posterOf(frame, kNarrow).at(60, 40), rgbOfStudio(kRed), 20);
}

TEST_P(PosterMakerOf, LeavesAShapeThatIsNotKnownToTheFrame) {
  for (const bool wide : {false, true}) {
    FrameStamp stamp;
    stamp.aspect = wide ? 0 : 1;
    const SharedBytes encoded = filled(GetParam(), wide, {200, 128, 128});
    test::FrameBytes bytes(encoded.bytes().begin(), encoded.bytes().end());
    stampFrame(bytes, stamp);
    for (const DVAspectRatio unknown : {-1, 2, 3, 77}) {
      const DecodedPoster poster = posterOf(SharedBytes::copyOf(bytes), unknown);
      EXPECT_EQ(isDark(poster.at(60, 2)), wide);
      EXPECT_EQ(isDark(poster.at(2, 40)), !wide);
    }
  }
}

TEST_P(PosterMakerOf, IsTheSameForTheSameFrame) {
  const SharedBytes frame = filled(GetParam(), false, kBlue);
  EXPECT_EQ(PosterMaker().make(frame, kNarrow).value(), PosterMaker().make(frame, kNarrow).value());
}

TEST_P(PosterMakerOf, RefusesATruncatedFrame) {
  const SharedBytes frame = filled(GetParam(), false, kBlue);
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{239}, std::size_t{12000}, frame.size() - 1}) {
    const auto poster = PosterMaker().make(SharedBytes::copyOf(frame.bytes().first(size)), kNarrow);
    ASSERT_FALSE(poster.ok()) << size;
    EXPECT_THAT(poster.error().informative, HasSubstr(std::to_string(size) + " bytes"));
  }
}

TEST_P(PosterMakerOf, RefusesABlankFrame) {
  const auto poster = PosterMaker().make(SharedBytes::copyOf(test::FrameBytes(frameSizeOf(GetParam()))), kNarrow);
  ASSERT_FALSE(poster.ok());
  EXPECT_THAT(poster.error().informative, HasSubstr("damaged or blank"));
}

TEST_P(PosterMakerOf, RefusesNoise) {
  std::mt19937 random(1);
  for (int run = 0; run < 50; ++run) {
    test::FrameBytes bytes(frameSizeOf(GetParam()));
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
    EXPECT_FALSE(PosterMaker().make(SharedBytes::copyOf(bytes), kNarrow).ok()) << "run " << run;
  }
}

// What lies behind a good header may be anything; what comes of it is a picture or an error.
TEST_P(PosterMakerOf, SurvivesNoiseBehindAGoodHeader) {
  std::mt19937 random(2);
  int made = 0;
  for (int run = 0; run < 100; ++run) {
    test::FrameBytes bytes = test::makeFrameBytes(GetParam());
    std::generate(bytes.begin() + kFrameHeaderSize, bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    const auto poster = PosterMaker().make(SharedBytes::copyOf(bytes), run % 5 - 1);
    if (!poster.ok()) continue;
    EXPECT_EQ(DecodedPoster(poster.value()).width(), 120);
    ++made;
  }
  EXPECT_GT(made, 0);
}

TEST_P(PosterMakerOf, MakesOutADamagedFrame) {
  const SharedBytes good = filled(GetParam(), false, kBlue);
  std::mt19937 random(3);
  int made = 0;
  for (int run = 0; run < 100; ++run) {
    test::FrameBytes bytes(good.bytes().begin(), good.bytes().end());
    for (int hit = 0; hit < 20; ++hit) {
      bytes[kFrameHeaderSize + random() % (bytes.size() - kFrameHeaderSize)] = static_cast<std::uint8_t>(random());
    }
    const auto poster = PosterMaker().make(SharedBytes::copyOf(bytes), kNarrow);
    if (!poster.ok()) continue;
    EXPECT_EQ(DecodedPoster(poster.value()).height(), 80);
    ++made;
  }
  EXPECT_GT(made, 90);
}

TEST(PosterMaker, RefusesAFrameThatClaimsTheOtherSystem) {
  test::FrameBytes bytes = test::makeFrameBytes(kNtsc);
  bytes.resize(frameSizeOf(kPal));
  const auto poster = PosterMaker().make(SharedBytes::copyOf(bytes), kNarrow);
  ASSERT_FALSE(poster.ok());
  EXPECT_THAT(poster.error().informative, HasSubstr("does not begin as a 625/50 DV frame"));
}

TEST(PosterMaker, RefusesNoFrameAtAll) {
  EXPECT_FALSE(PosterMaker().make(SharedBytes(), kNarrow).ok());
}

TEST(PosterMaker, MakesPostersOfWhatCamcordersRecorded) {
  for (const auto& [name, system] :
       {std::pair{"pal-undated-15-frames.dv", kPal}, std::pair{"sony-digital8-ntsc-5-frames.dv", kNtsc}}) {
    const auto frames = test::framesOf(std::string(DECKHAND_FIXTURES "/") + name, system);
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(posterOf(frames[0], -1).width(), 120);
  }
}

}  // namespace
}  // namespace zq::media
