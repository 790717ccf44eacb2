#include "backends/media/tape_maker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>

#include "backends/media/picture_shape.h"
#include "backends/media/scene_sound.h"
#include "backends/media/small_disk.h"
#include "dv/frame_sound.h"
#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/dv_frames.h"
#include "timecode/timecode_text.h"

namespace zq::media {
namespace {

using test::framesOf;
using test::ScratchFolder;
using test::timecodeOf;
using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

TapeScene sceneOf(int frames) {
  TapeScene scene;
  scene.frames = frames;
  return scene;
}

std::vector<SharedBytes> made(DVSystem system, const std::vector<TapeScene>& scenes) {
  const ScratchFolder folder;
  const Status status = TapeMaker().make(folder.file("tape.dv"), system, scenes);
  EXPECT_TRUE(status.ok()) << status.error().text();
  return framesOf(folder.file("tape.dv"), system);
}

std::string timecodeOf(const SharedBytes& frame) {
  const auto timecode = firstTimecode(frame);
  return timecode ? timecodeText(timecode->time) + (timecode->dropFrame ? " drop" : "") : "none";
}

std::string dateOf(const SharedBytes& frame) {
  const DateValue date = scanRecordingDate(frame).date;
  return date ? date->isoString() : "none";
}

/// Decodes pictures one at a time and looks at their luma.
class PictureDecoder {
 public:
  PictureDecoder() : codec_(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_DVVIDEO))) {
    codec_->err_recognition = AV_EF_EXPLODE;
    if (avcodec_open2(codec_, nullptr, nullptr) < 0) throw std::runtime_error("no DV decoder");
  }
  ~PictureDecoder() {
    av_packet_free(&packet_);
    av_frame_free(&picture_);
    avcodec_free_context(&codec_);
  }

  bool decode(const SharedBytes& frame) {
    packet_->data = const_cast<std::uint8_t*>(frame.data());
    packet_->size = static_cast<int>(frame.size());
    return avcodec_send_packet(codec_, packet_) == 0 && avcodec_receive_frame(codec_, picture_) == 0 &&
           picture_->decode_error_flags == 0;
  }
  const AVFrame& picture() const { return *picture_; }
  int luma(int x, int y) const { return picture_->data[0][y * picture_->linesize[0] + x]; }

 private:
  AVCodecContext* codec_;
  AVPacket* packet_ = av_packet_alloc();
  AVFrame* picture_ = av_frame_alloc();
};

std::vector<int> lumaOf(const PictureDecoder& decoder) {
  std::vector<int> luma;
  for (int y = 100; y < 250; y += 10) {
    for (int x = 0; x < 720; x += 10) luma.push_back(decoder.luma(x, y));
  }
  return luma;
}

TEST(TapeMaker, MakesAsManyFramesAsTheScenesHave) {
  EXPECT_THAT(made(kPal, {sceneOf(3), sceneOf(1)}), SizeIs(4));
  EXPECT_THAT(made(kNtsc, {sceneOf(2)}), SizeIs(2));
}

TEST(TapeMaker, CountsTimecodeOverScenesUnlessOneStartsItsOwn) {
  for (const DVSystem system : {kPal, kNtsc}) {
    TapeScene own = sceneOf(2);
    own.timecode = timecodeOf(23, 59, 59, timebaseOf(system) - 1);
    const auto frames = made(system, {sceneOf(2), sceneOf(1), own, sceneOf(1)});
    ASSERT_THAT(frames, SizeIs(6));
    EXPECT_EQ(timecodeOf(frames[0]), "00:00:00:00");
    EXPECT_EQ(timecodeOf(frames[1]), "00:00:00:01");
    EXPECT_EQ(timecodeOf(frames[2]), "00:00:00:02");
    EXPECT_EQ(timecodeOf(frames[3]), "23:59:59:" + std::to_string(timebaseOf(system) - 1));
    EXPECT_EQ(timecodeOf(frames[4]), "00:00:00:00");
    EXPECT_EQ(timecodeOf(frames[5]), "00:00:00:01");
  }
}

TEST(TapeMaker, RunsTheClockInTapeTime) {
  TapeScene scene = sceneOf(61);
  scene.date = StampDateTime{2004, 12, 31, 23, 59, 58};
  const auto pal = made(kPal, {scene});
  EXPECT_EQ(dateOf(pal.at(0)), "2004-12-31T23:59:58");
  EXPECT_EQ(dateOf(pal.at(24)), "2004-12-31T23:59:58");
  EXPECT_EQ(dateOf(pal.at(25)), "2004-12-31T23:59:59");
  EXPECT_EQ(dateOf(pal.at(50)), "2005-01-01T00:00:00");
  // 30 frames of 525/60 are a little more than a second.
  const auto ntsc = made(kNtsc, {scene});
  EXPECT_EQ(dateOf(ntsc.at(29)), "2004-12-31T23:59:58");
  EXPECT_EQ(dateOf(ntsc.at(30)), "2004-12-31T23:59:59");
  EXPECT_EQ(dateOf(ntsc.at(60)), "2005-01-01T00:00:00");
}

TEST(TapeMaker, MakesUndatedScenes) {
  TapeScene dated = sceneOf(1);
  dated.date = StampDateTime{2004, 7, 15, 13, 30, 45};
  const auto frames = made(kPal, {dated, sceneOf(1)});
  EXPECT_EQ(dateOf(frames.at(0)), "2004-07-15T13:30:45");
  EXPECT_EQ(dateOf(frames.at(1)), "none");
}

TEST(TapeMaker, MakesWideScenes) {
  TapeScene wide = sceneOf(1);
  wide.wideScreen = true;
  for (const DVSystem system : {kPal, kNtsc}) {
    const auto frames = made(system, {wide, sceneOf(1)});
    EXPECT_TRUE(isWideScreen(frames.at(0).bytes()));
    EXPECT_FALSE(isWideScreen(frames.at(1).bytes()));
  }
}

TEST(TapeMaker, MakesPicturesThatDecodeWithoutError) {
  PictureDecoder decoder;
  for (const DVSystem system : {kPal, kNtsc}) {
    for (const SharedBytes& frame : made(system, {sceneOf(4), sceneOf(2)})) {
      ASSERT_TRUE(decoder.decode(frame));
      EXPECT_EQ(decoder.picture().width, 720);
      EXPECT_EQ(decoder.picture().height, system == kPal ? 576 : 480);
    }
  }
}

TEST(TapeMaker, MovesThePictureInEachFrameAndColoursEachScene) {
  PictureDecoder decoder;
  const auto frames = made(kPal, {sceneOf(3), sceneOf(1)});
  std::vector<std::vector<int>> luma;
  std::vector<int> chroma;
  for (const SharedBytes& frame : frames) {
    ASSERT_TRUE(decoder.decode(frame));
    luma.push_back(lumaOf(decoder));
    chroma.push_back(decoder.picture().data[1][100 * decoder.picture().linesize[1] + 300]);
  }
  EXPECT_NE(luma[0], luma[1]);
  EXPECT_NE(luma[1], luma[2]);
  EXPECT_NEAR(chroma[0], chroma[2], 4);
  EXPECT_GT(std::abs(chroma[3] - chroma[0]), 20);
}

TEST(TapeMaker, BeepsWhenThePictureFlashes) {
  PictureDecoder decoder;
  FrameSound sound;
  for (const DVSystem system : {kPal, kNtsc}) {
    int beeps = 0;
    for (const SharedBytes& frame : made(system, {sceneOf(70)})) {
      ASSERT_TRUE(decoder.decode(frame));
      ASSERT_TRUE(readFrameSound(frame.bytes(), sound));
      const bool flash = decoder.luma(640, system == kPal ? 140 : 120) > 220;
      // Frame and second do not start together in 525/60, so only the start of a frame is looked at.
      const auto loudest = std::ranges::max(std::span(sound.pairs[0]).first(200));
      EXPECT_EQ(loudest > 5000, flash);
      beeps += flash ? 1 : 0;
    }
    EXPECT_GE(beeps, 3 * 2);
  }
}

TEST(TapeMaker, MakesSoundThatRunsOnFromFrameToFrame) {
  const auto frames = made(kNtsc, {sceneOf(40)});
  SceneSound expected(1);
  FrameSound sound;
  for (const SharedBytes& frame : frames) {
    ASSERT_TRUE(readFrameSound(frame.bytes(), sound));
    EXPECT_EQ(sound.format.sampleRate, 48000);
    EXPECT_EQ(sound.format.pairs, 1);
    EXPECT_EQ(sound.pairs[0], expected.next(sound.samples));
  }
}

TEST(SceneSound, HasNoClick) {
  SceneSound sound(3);
  const auto samples = sound.next(2 * SceneSound::kRate);
  int largestStep = 0;
  for (std::size_t i = 2; i < samples.size(); ++i) {
    largestStep = std::max(largestStep, std::abs(samples[i] - samples[i - 2]));
  }
  // The steepest that beep and tone can be together.
  EXPECT_LT(largestStep, 1400);
}

TEST(TapeMaker, TellsHowFarItIs) {
  const ScratchFolder folder;
  std::vector<std::int64_t> made;
  std::vector<std::int64_t> inAll;
  const Status status = TapeMaker().make(folder.file("tape.dv"), kPal, {sceneOf(2), sceneOf(1)},
                                         [&](std::int64_t done, std::int64_t all) {
                                           made.push_back(done);
                                           inAll.push_back(all);
                                         });
  EXPECT_TRUE(status.ok());
  EXPECT_EQ(made, (std::vector<std::int64_t>{1, 2, 3}));
  EXPECT_THAT(inAll, Each(3));
}

TEST(TapeMaker, RefusesScenesOfNoLength) {
  const ScratchFolder folder;
  EXPECT_FALSE(TapeMaker().make(folder.file("tape.dv"), kPal, {}).ok());
  const Status status = TapeMaker().make(folder.file("tape.dv"), kPal, {sceneOf(1), sceneOf(0)});
  ASSERT_FALSE(status.ok());
  EXPECT_THAT(status.error().text(), HasSubstr("Scene 2"));
  EXPECT_FALSE(TapeMaker().make(folder.file("tape.dv"), kPal, {sceneOf(-5)}).ok());
  EXPECT_TRUE(folder.isEmpty());
}

TEST(TapeMaker, RefusesADateThatDoesNotExist) {
  const ScratchFolder folder;
  const StampDateTime noDay{2004, 2, 30, 12, 0, 0};
  const StampDateTime noMonth{2004, 13, 1, 12, 0, 0};
  const StampDateTime noHour{2004, 2, 1, 24, 0, 0};
  for (const StampDateTime& date : {noDay, noMonth, noHour}) {
    TapeScene scene = sceneOf(1);
    scene.date = date;
    const Status status = TapeMaker().make(folder.file("tape.dv"), kPal, {scene});
    ASSERT_FALSE(status.ok());
    EXPECT_THAT(status.error().text(), HasSubstr("date of scene 1"));
  }
  EXPECT_TRUE(folder.isEmpty());
}

TEST(TapeMaker, LeavesAnExistingFileAsItIs) {
  const ScratchFolder folder;
  std::ofstream(folder.file("tape.dv")) << "precious";
  EXPECT_FALSE(TapeMaker().make(folder.file("tape.dv"), kPal, {sceneOf(1)}).ok());
  EXPECT_EQ(std::filesystem::file_size(folder.file("tape.dv")), 8U);
}

TEST(TapeMaker, LeavesNoPartOfATapeOnAFullDisk) {
  const ScratchFolder folder;
  const test::FileSizeLimit limit(200000);
  const Status status = TapeMaker().make(folder.file("tape.dv"), kPal, {sceneOf(3)});
  ASSERT_FALSE(status.ok());
  EXPECT_THAT(status.error().text(), HasSubstr(folder.file("tape.dv")));
  EXPECT_TRUE(folder.isEmpty());
}

}  // namespace
}  // namespace zq::media
