// The sound of compressed movies: its rates, its tracks, and whether it is in step.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>

#include "compression_choices.h"
#include "decoded_movie.h"
#include "movie_reader.h"
#include "moving_clips.h"
#include "support/scratch_folder.h"

namespace zq::media {
namespace {

using test::Clip;
using test::custom;
using test::decodeMovie;
using test::FrameBytes;
using test::makeSoundFrameBytes;
using test::readMovie;
using test::sampleBufferOf;
using test::ScratchFolder;
using test::writeCompressed;
using testing::SizeIs;

constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
constexpr DVSystem kPal = DVSystem::pal625_50;

using Way = std::tuple<const char*, const char*, const char*>;

class CompressedSound : public testing::TestWithParam<Way> {
 protected:
  static test::Compression compression() {
    return custom({std::string("codec=") + std::get<0>(GetParam()), std::string("sound=") + std::get<1>(GetParam())});
  }
  std::string path() const { return folder_.file(std::string("a.") + std::get<2>(GetParam())); }
  static bool isAac() { return std::string(std::get<1>(GetParam())) == "aac"; }

  const ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(EachWay, CompressedSound,
                         testing::Values(Way{"h264", "aac", "mp4"}, Way{"h264", "aac", "mov"},
                                         Way{"h264", "aac", "mkv"}, Way{"h264", "pcm", "mov"},
                                         Way{"ffv1", "flac", "mkv"}, Way{"ffv1", "pcm", "mkv"},
                                         Way{"mjpeg", "pcm", "avi"}),
                         [](const auto& parameters) {
                           return std::string(std::get<0>(parameters.param)) + "_" + std::get<1>(parameters.param) +
                                  "_" + std::get<2>(parameters.param);
                         });

/// The first sample louder than noise of the encoder before a step.
std::size_t onset(const std::vector<float>& samples) {
  const auto found = std::ranges::find_if(samples, [](float sample) { return std::abs(sample) > 0.15F; });
  return static_cast<std::size_t>(found - samples.begin());
}

/// Silence up to one frame, then a tone; before it, frames of which every other one lacks its sound.
Clip clipWithOnset(DVSystem system, int silentFrames) {
  Clip clip;
  for (int i = 0; i < silentFrames + 6; ++i) {
    FrameBytes frame = test::makeFrameBytes(system);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(2 * samplesInFrame(system, i)));
    for (std::size_t k = 0; i >= silentFrames && k < samples.size(); ++k) {
      samples[k] = static_cast<std::int16_t>(k / 40 % 2 == 0 ? 15000 : -15000);
    }
    if (i % 2 == 0 || i >= silentFrames) writeFrameSound(frame, system, samples);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(frame)));
  }
  return clip;
}

TEST_P(CompressedSound, IsInStepWithThePicturesAlsoAfterFramesThatHaveNone) {
  for (const DVSystem system : {kPal, kNtsc}) {
    const int silent = 31;
    const std::string file = folder_.file((system == kPal ? "p" : "n") + std::string(".") + std::get<2>(GetParam()));
    writeCompressed(clipWithOnset(system, silent), file, compression());
    const auto movie = decodeMovie(file);
    ASSERT_THAT(movie.sounds, SizeIs(1));
    const FrameRate rate = frameRateOf(system);
    const double expected = static_cast<double>(silent) * rate.denominator / rate.numerator;
    const double heard = movie.soundStarts[0] + static_cast<double>(onset(movie.sounds[0])) / 48000;
    EXPECT_NEAR(heard, expected, 0.005);
  }
}

TEST_P(CompressedSound, KeepsItsRate) {
  for (const int rate : {32000, 44100}) {
    Clip clip;
    for (int i = 0; i < 10; ++i) {
      FrameBytes frame = makeSoundFrameBytes(kPal, i);
      rate == 32000 ? test::make32000(frame) : test::make44100(frame);
      clip.push_back(sampleBufferOf(SharedBytes::copyOf(frame)));
    }
    const std::string file = folder_.file(std::to_string(rate) + "." + std::get<2>(GetParam()));
    writeCompressed(clip, file, compression());
    const auto movie = readMovie(file);
    ASSERT_THAT(movie.sounds, SizeIs(1));
    EXPECT_EQ(movie.sounds[0].sampleRate, rate);
    // Matroska counts the last piece of AAC in whole.
    EXPECT_NEAR(movie.sounds[0].end, 0.4, isAac() && file.ends_with("mkv") ? 0.03 : 0.005);
  }
}

TEST_P(CompressedSound, OfTwoPairsHasTwoTracks) {
  Clip clip;
  for (const auto& frame : test::framesOf(DECKHAND_FIXTURES "/sony-digital8-ntsc-5-frames.dv", kNtsc)) {
    FrameBytes dubbed(frame.bytes().begin(), frame.bytes().end());
    test::markSecondPairRecorded(dubbed);
    clip.push_back(sampleBufferOf(SharedBytes::copyOf(dubbed)));
  }
  writeCompressed(clip, path(), compression());
  const auto movie = readMovie(path());
  ASSERT_THAT(movie.sounds, SizeIs(2));
  EXPECT_EQ(movie.sounds[1].sampleRate, 32000);
  EXPECT_THAT(decodeMovie(path()).pictures, SizeIs(movie.pictures.at(0).packets.size()));
  if (isAac()) return;
  const auto decoded = decodeMovie(path());
  for (std::size_t pair = 0; pair < 2; ++pair) {
    const auto recorded = test::recordedSound(clip, pair);
    ASSERT_EQ(decoded.sounds[pair].size(), recorded.size() / 2);
    for (std::size_t i = 0; i < recorded.size() / 2; ++i) {
      ASSERT_EQ(decoded.sounds[pair][i], static_cast<float>(recorded[2 * i]) / 32768.0F);
    }
  }
}

}  // namespace
}  // namespace zq::media
