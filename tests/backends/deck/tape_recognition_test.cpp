// What is taken for a tape image, and what a user is told of everything else.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <random>

#include "backends/deck/tape_image.h"
#include "support/deck_tapes.h"

namespace zq::backend {
namespace {

using test::DeckTape;
using test::FrameBytes;
using test::ScratchFolder;
using testing::AllOf;
using testing::HasSubstr;

constexpr DVSystem kPal = DVSystem::pal625_50;
constexpr DVSystem kNtsc = DVSystem::ntsc525_60;

class TapeRecognition : public testing::Test {
 protected:
  static std::string refusalOf(const std::string& path) {
    auto tape = TapeImage::open(path);
    return tape.ok() ? "taken for a tape" : tape.error().text();
  }
  std::string refusalOfBytes(const FrameBytes& bytes) { return refusalOf(folder_.fileWith("file.dv", bytes)); }

  /// A file with this start, as large as five frames.
  FrameBytes fileThatBegins(std::string_view start) {
    FrameBytes bytes(5 * frameSizeOf(kPal), 0x55);
    std::copy(start.begin(), start.end(), bytes.begin());
    return bytes;
  }

  ScratchFolder folder_;
};

TEST_F(TapeRecognition, AMissingFileIsNamed) {
  EXPECT_THAT(refusalOf(folder_.file("none.dv")), AllOf(HasSubstr("No such tape image"), HasSubstr("none.dv")));
}

TEST_F(TapeRecognition, AFolderIsSaidToBeOne) {
  EXPECT_THAT(refusalOf(folder_.path()), HasSubstr("is a folder, not a tape image"));
}

TEST_F(TapeRecognition, AnEmptyFileIsSaidToBeEmpty) {
  EXPECT_THAT(refusalOfBytes({}), HasSubstr("is empty"));
}

TEST_F(TapeRecognition, APipeIsRefusedWithoutWaitingForItsWriter) {
  ASSERT_EQ(mkfifo(folder_.file("pipe").c_str(), 0600), 0);
  EXPECT_THAT(refusalOf(folder_.file("pipe")), HasSubstr("is not a regular file"));
}

TEST_F(TapeRecognition, ADeviceIsNoRegularFile) {
  EXPECT_THAT(refusalOf("/dev/zero"), HasSubstr("is not a regular file"));
}

TEST_F(TapeRecognition, AFileThatMayNotBeReadIsSaidToBeSo) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  const std::string path = DeckTape(folder_.file("secret.dv")).add(kPal).path();
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  EXPECT_THAT(refusalOf(path), HasSubstr("no permission"));
}

struct Container {
  const char* name;
  std::string start;
  const char* saying;
};

class ContainerRecognition : public TapeRecognition, public testing::WithParamInterface<Container> {};

TEST_P(ContainerRecognition, IsNamedInTheRefusal) {
  EXPECT_THAT(refusalOfBytes(fileThatBegins(GetParam().start)),
              AllOf(HasSubstr(GetParam().saying), HasSubstr("not a raw DV tape image"), HasSubstr("120000 or 144000")));
}

INSTANTIATE_TEST_SUITE_P(
    Files, ContainerRecognition,
    testing::Values(Container{"Png", "\x89PNG\r\n\x1A\n", "a picture"},
                    Container{"Jpeg", "\xFF\xD8\xFF\xE0", "a picture"}, Container{"Gif", "GIF89a", "a picture"},
                    Container{"Mp4",
                              std::string("\0\0\0\x20"
                                          "ftypisom",
                                          12),
                              "a QuickTime or MP4 movie"},
                    Container{"QuickTime", std::string("\0\0\0\x08wide\0\0\0\0", 12), "a QuickTime or MP4 movie"},
                    Container{"QuickTimeHeader", std::string("\0\0\x10\0moov\0\0\0\0", 12), "a QuickTime or MP4 movie"},
                    Container{"QuickTimeData", std::string("\0\x10\0\0mdat\0\0\0\0", 12), "a QuickTime or MP4 movie"},
                    Container{"Avi",
                              std::string("RIFF\0\0\x10\0"
                                          "AVI LIST",
                                          16),
                              "an AVI or WAV file"},
                    Container{"Matroska", "\x1A\x45\xDF\xA3\x9F\x42\x86\x81", "a Matroska file"},
                    Container{"Text", "Dear reader,\n", "is not a raw DV tape image"}),
    [](const auto& each) { return each.param.name; });

TEST_F(TapeRecognition, NoiseIsNoTapeWhateverItsSize) {
  std::mt19937_64 random(5);
  for (const std::size_t size : {frameSizeOf(kPal), 3 * frameSizeOf(kPal), 4 * frameSizeOf(kNtsc), std::size_t{77}}) {
    FrameBytes noise(size);
    for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
    EXPECT_THAT(refusalOfBytes(noise), HasSubstr("is not a raw DV tape image")) << size << " bytes";
  }
}

TEST_F(TapeRecognition, ZerosAreNoTape) {
  EXPECT_THAT(refusalOfBytes(FrameBytes(10 * frameSizeOf(kPal))), HasSubstr("is not a raw DV tape image"));
  EXPECT_THAT(refusalOfBytes(FrameBytes(1)), HasSubstr("is not a raw DV tape image"));
}

TEST_F(TapeRecognition, AFileThatEndsInsideItsFirstFrameSaysHowMuchItHas) {
  for (const DVSystem system : {kPal, kNtsc}) {
    FrameBytes bytes = test::makeFrameBytes(system);
    bytes.resize(100000);
    EXPECT_THAT(refusalOfBytes(bytes), AllOf(HasSubstr("ends inside its first frame"), HasSubstr("has 100000 of ")));
  }
}

TEST_F(TapeRecognition, A625FrameThatLacksTheDifferenceOfTheSystemsIsNo525Frame) {
  FrameBytes bytes = test::makeFrameBytes(kPal);
  bytes.resize(frameSizeOf(kNtsc));
  EXPECT_THAT(refusalOfBytes(bytes), HasSubstr("ends inside its first frame"));
}

TEST_F(TapeRecognition, TwoChannelsAreSaidToBeFiftyMegabits) {
  for (const DVSystem system : {kPal, kNtsc}) {
    FrameBytes first = test::makeFrameBytes(system);
    FrameBytes second = first;
    for (std::size_t block = 0; block < second.size(); block += BLOCKS_SIZE) second[block + 1] |= 0x08;
    FrameBytes stream;
    for (int frame = 0; frame < 3; ++frame) {
      stream.insert(stream.end(), first.begin(), first.end());
      stream.insert(stream.end(), second.begin(), second.end());
    }
    EXPECT_THAT(refusalOfBytes(stream), AllOf(HasSubstr("is a 50 Mbit/s stream"), HasSubstr("25 Mbit/s")));
  }
}

TEST_F(TapeRecognition, OneFlippedChannelBitIsNoFiftyMegabitStream) {
  test::FrameBytes stream;
  for (int i = 0; i < 4; ++i) {
    test::FrameBytes frame = test::makeFrameBytes(DVSystem::pal625_50);
    if (i == 1) frame[1] |= 0x08;
    stream.insert(stream.end(), frame.begin(), frame.end());
  }
  EXPECT_EQ(refusalOfBytes(stream), "taken for a tape");
}

TEST_F(TapeRecognition, AFiftyMegabitStreamOfAnEncoderIsRefusedAndATwentyFiveMegabitOneTaken) {
  const auto encode = [&](const std::string& name, const std::string& pixels, const std::string& source) {
    const std::string command = "ffmpeg -loglevel error -f lavfi -i testsrc=" + source + " -frames:v 3 -pix_fmt " +
                                pixels + " -c:v dvvideo -f rawvideo -y '" + folder_.file(name) +
                                "' >/dev/null 2>&1 </dev/null";
    return std::system(command.c_str()) == 0;  // NOLINT(concurrency-mt-unsafe,cert-env33-c)
  };
  if (!encode("pal50.dv", "yuv422p", "size=720x576:rate=25")) GTEST_SKIP() << "no encoder here";
  EXPECT_THAT(refusalOf(folder_.file("pal50.dv")), HasSubstr("is a 50 Mbit/s stream"));
  ASSERT_TRUE(encode("ntsc50.dv", "yuv422p", "size=720x480:rate=30000/1001"));
  EXPECT_THAT(refusalOf(folder_.file("ntsc50.dv")), HasSubstr("is a 50 Mbit/s stream"));
  ASSERT_TRUE(encode("pal25.dv", "yuv420p", "size=720x576:rate=25"));
  EXPECT_EQ(refusalOf(folder_.file("pal25.dv")), "taken for a tape");
  ASSERT_TRUE(encode("ntsc25.dv", "yuv411p", "size=720x480:rate=30000/1001"));
  EXPECT_EQ(refusalOf(folder_.file("ntsc25.dv")), "taken for a tape");
}

TEST_F(TapeRecognition, ATapeOfOneFrameIsATape) {
  for (const DVSystem system : {kPal, kNtsc}) {
    auto tape = TapeImage::open(folder_.fileWith("one.dv", test::makeFrameBytes(system)));
    ASSERT_TRUE(tape.ok()) << tape.error().text();
    EXPECT_EQ(tape.value()->system(), system);
    EXPECT_FALSE(tape.value()->locate(1).value().has_value());
    EXPECT_EQ(tape.value()->trailingBytes().value(), 0U);
  }
}

TEST_F(TapeRecognition, CamcorderRecordingsAreTapes) {
  const std::string fixtures = DECKHAND_FIXTURES;
  auto ntsc = TapeImage::open(fixtures + "/sony-digital8-ntsc-5-frames.dv");
  ASSERT_TRUE(ntsc.ok());
  EXPECT_EQ(ntsc.value()->system(), kNtsc);
  EXPECT_TRUE(ntsc.value()->locate(4).value().has_value());
  EXPECT_FALSE(ntsc.value()->locate(5).value().has_value());
  auto pal = TapeImage::open(fixtures + "/pal-undated-15-frames.dv");
  ASSERT_TRUE(pal.ok());
  EXPECT_EQ(pal.value()->system(), kPal);
  EXPECT_FALSE(pal.value()->locate(15).value().has_value());
}

}  // namespace
}  // namespace zq::backend
