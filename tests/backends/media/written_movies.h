#pragma once
// Movies that tests write with the factory's writers, and what is expected of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "backends/media/movie_writer_factory.h"
#include "made_clips.h"
#include "movie_reader.h"
#include "support/scratch_folder.h"

namespace zq::test {

inline std::unique_ptr<platform::MovieWriter> writerFor(const std::string& path, Log* log = nullptr) {
  auto writer = media::MovieWriterFactory(log).create(path, nullptr);
  EXPECT_TRUE(writer.ok()) << writer.error().text();
  return std::move(writer.value());
}

inline void write(const Clip& clip, const std::string& path, Log* log = nullptr) {
  const auto writer = writerFor(path, log);
  for (const auto& frame : clip) {
    const Status appended = writer->append(frame);
    ASSERT_TRUE(appended.ok()) << appended.error().text();
  }
  const Status finished = writer->finish();
  ASSERT_TRUE(finished.ok()) << finished.error().text();
}

inline void expectPicturesOf(const Clip& clip, const ReadTrack& track, std::size_t count) {
  ASSERT_EQ(track.packets.size(), count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto frame = clip[i].bytesForAllSamples.bytes();
    ASSERT_TRUE(std::ranges::equal(track.packets[i], frame)) << "frame " << i;
  }
}

/// The sound must be there whole and start with the picture; times of Matroska are rounded to milliseconds.
inline void expectSound(const std::vector<std::int16_t>& samples, const ReadTrack& track) {
  EXPECT_EQ(track.codec, AV_CODEC_ID_PCM_S16LE);
  EXPECT_EQ(track.channels, 2);
  EXPECT_NEAR(track.start, 0, 1e-9);
  EXPECT_NEAR(track.end, static_cast<double>(samples.size()) / 2 / track.sampleRate, 2e-3);
  EXPECT_TRUE(track.samples() == samples);
}

/// A test for each container and each system.
class EachContainer : public testing::TestWithParam<std::tuple<const char*, DVSystem>> {
 protected:
  std::string extension() const { return std::get<0>(GetParam()); }
  DVSystem system() const { return std::get<1>(GetParam()); }
  std::string path() const { return folder_.file("clip." + extension()); }
  bool is(const char* name) const { return extension() == name; }

  ScratchFolder folder_;
};

/// For INSTANTIATE_TEST_SUITE_P.
inline auto eachContainerAndSystem() {
  return testing::Combine(testing::Values("mov", "avi", "mkv"),
                          testing::Values(DVSystem::pal625_50, DVSystem::ntsc525_60));
}

inline std::string nameOfContainerAndSystem(
    const testing::TestParamInfo<std::tuple<const char*, DVSystem>>& parameters) {
  const bool isPal = std::get<1>(parameters.param) == DVSystem::pal625_50;
  return std::get<0>(parameters.param) + std::string(isPal ? "625_50" : "525_60");
}

}  // namespace zq::test
