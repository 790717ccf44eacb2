// The capture command on bad input: one clear message, a non-zero exit status, and nothing lost or written over.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "support/program.h"
#include "support/tape_script.h"

namespace zq::test {
namespace {

using nlohmann::json;

const StampDateTime kFirst{2004, 7, 15, 13, 30, 45};
const StampDateTime kLater{2004, 7, 15, 14, 0, 0};

class CaptureRefusals : public ::testing::Test {
 protected:
  std::vector<std::string> words(const std::string& device, std::vector<std::string> more = {}) const {
    std::vector<std::string> all{"capture", "--device", device, "--output", folder / "clips"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  std::string goodTape(int frames = 10) {
    writeTape(folder / "tape.dv", framesOf({{frames, kFirst, timecodeOf(0, 0, 0, 0)}}));
    return "tape:" + folder / "tape.dv";
  }
  void expectRefused(const ProgramResult& result, int exitCode, const std::string& message) const {
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "clips")) << "nothing was to be made";
  }

  ProgramFolder folder;
};

TEST_F(CaptureRefusals, ATapeThatIsNotThere) {
  expectRefused(runDeckhand(folder, words("tape:" + folder / "nowhere.dv")), 1, "No such tape image");
}

TEST_F(CaptureRefusals, AFolderAsATape) {
  expectRefused(runDeckhand(folder, words("tape:" + folder.path())), 1, "is a folder, not a tape image");
}

TEST_F(CaptureRefusals, AnEmptyFile) {
  writeText(folder / "empty.dv", "");
  expectRefused(runDeckhand(folder, words("tape:" + folder / "empty.dv")), 1, "is empty");
}

TEST_F(CaptureRefusals, ATextFile) {
  writeText(folder / "letter.dv", std::string(400000, 'a'));
  expectRefused(runDeckhand(folder, words("tape:" + folder / "letter.dv")), 1, "is not a raw DV tape image");
}

TEST_F(CaptureRefusals, APicture) {
  writeText(folder / "picture.dv", "\x89PNG\r\n\x1a\n" + std::string(400000, '\x55'));
  expectRefused(runDeckhand(folder, words("tape:" + folder / "picture.dv")), 1,
                "is a picture, not a raw DV tape image");
}

TEST_F(CaptureRefusals, NoiseOfTheRightSize) {
  std::string noise(144000 * 5, '\0');
  std::uint32_t state = 1;
  for (char& byte : noise) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  writeText(folder / "noise.dv", noise);
  expectRefused(runDeckhand(folder, words("tape:" + folder / "noise.dv")), 1, "is not a raw DV tape image");
}

TEST_F(CaptureRefusals, AFiftyMegabitStream) {
  auto frames = framesOf({{4, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (std::size_t i = 1; i < frames.size(); i += 2) {
    for (std::size_t block = 0; block < frames[i].bytes.size(); block += 80) frames[i].bytes[block + 1] |= 0x08;
  }
  writeTape(folder / "fifty.dv", frames);
  expectRefused(runDeckhand(folder, words("tape:" + folder / "fifty.dv")), 1, "is a 50 Mbit/s stream");
}

TEST_F(CaptureRefusals, ADeviceOfAnotherKind) {
  expectRefused(runDeckhand(folder, words(folder / "tape.dv")), 1, "A tape image is played as tape:PATH");
}

TEST_F(CaptureRefusals, ASettingThatThereIsNot) {
  expectRefused(runDeckhand(folder, words(goodTape(), {"--set", "colour=blue"})), 2, "there is no setting \"colour\"");
}

TEST_F(CaptureRefusals, AValueThatASettingDoesNotTake) {
  expectRefused(runDeckhand(folder, words(goodTape(), {"--set", "sampleInterval=9"})), 2, "a whole number from 0 to 4");
  expectRefused(runDeckhand(folder, words(goodTape(), {"--set", "detectScene=maybe"})), 2, "true or false");
}

TEST_F(CaptureRefusals, AFormatThatThereIsNot) {
  expectRefused(runDeckhand(folder, words(goodTape(), {"--format", "wmv"})), 2, "--format");
}

TEST_F(CaptureRefusals, NoOutputFolder) {
  const ProgramResult result = runDeckhand(folder, {"capture", "--device", goodTape()});
  expectRefused(result, 2, "--output");
}

TEST_F(CaptureRefusals, AnOutputFolderThatIsAFile) {
  writeText(folder / "file", "mine");
  const ProgramResult result = runDeckhand(folder, {"capture", "--device", goodTape(), "--output", folder / "file"});
  expectRefused(result, 1, folder / "file");
  EXPECT_EQ(readText(folder / "file"), "mine");
}

TEST_F(CaptureRefusals, AnOutputFolderThatCannotBeMade) {
  const ProgramResult result = runDeckhand(folder, {"capture", "--device", goodTape(), "--output", "/proc/clips"});
  expectRefused(result, 1, "Cannot make the output folder /proc/clips");
}

TEST_F(CaptureRefusals, ATapeThatEndsInsideAFrameIsCapturedUpToThere) {
  const auto frames = framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}});
  writeText(folder / "cut.dv", bytesOf(frames, 0, 10).substr(0, 9 * 144000 + 1000));
  const ProgramResult result = runDeckhand(folder, words("tape:" + folder / "cut.dv", {"--format", "dv"}));
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("the tape ends inside a frame: 1000 bytes after frame 8"), std::string::npos) << result.err;
  EXPECT_EQ(readText(folder / "clips/2004-07-15T13-30-45.dv"), bytesOf(frames, 0, 9));
}

TEST_F(CaptureRefusals, AnInterruptEndsTheCaptureWithCompleteFiles) {
  const auto frames = framesOf({{250, kFirst, timecodeOf(0, 0, 0, 0)}});
  writeTape(folder / "tape.dv", frames);
  std::vector<std::string> all = words("tape:" + folder / "tape.dv", {"--format", "dv", "--real-time"});
  all.insert(all.begin(), DECKHAND_PROGRAM);
  const RunningProgram program(folder, all);
  waitForBytes(folder / "clips/capturing-0002.dv");
  program.interrupt();
  ::usleep(1000);
  program.interrupt();
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 130) << result.err;
  const json report = json::parse(readText(folder / "clips/session.json"));
  EXPECT_EQ(report.at("ended"), "interrupted");
  ASSERT_EQ(report.at("clips").size(), 1U);
  const std::string movie = readText(folder / "clips/2004-07-15T13-30-45.dv");
  EXPECT_EQ(movie.size(), report.at("clips").at(0).at("movieFrames").get<std::size_t>() * 144000);
  EXPECT_EQ(movie, bytesOf(frames, 0, movie.size() / 144000));
}

TEST_F(CaptureRefusals, ATapeThatShrinksWhileItPlaysEndsTheCaptureWithAMessage) {
  const auto frames = framesOf({{250, kFirst, timecodeOf(0, 0, 0, 0)}});
  writeTape(folder / "tape.dv", frames);
  std::vector<std::string> all = words("tape:" + folder / "tape.dv", {"--format", "dv", "--real-time"});
  all.insert(all.begin(), DECKHAND_PROGRAM);
  const RunningProgram program(folder, all);
  waitForBytes(folder / "clips/capturing-0002.dv");
  std::filesystem::resize_file(folder / "tape.dv", 144000);
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("became shorter while it was read"), std::string::npos) << result.err;
  const std::string movie = readText(folder / "clips/2004-07-15T13-30-45.dv");
  EXPECT_EQ(movie, bytesOf(frames, 0, movie.size() / 144000));
}

/// A small disk of its own, where the machine lets the test have one.
class CaptureOnASmallDisk : public CaptureRefusals, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(folder / "disk");
    if (::mount("tmpfs", (folder / "disk").c_str(), "tmpfs", 0, "size=9m") != 0) {
      GTEST_SKIP() << "may not mount a small disk here";
    }
    mounted_ = true;
  }
  void TearDown() override {
    if (mounted_) ::umount((folder / "disk").c_str());
  }

 private:
  bool mounted_ = false;
};

TEST_P(CaptureOnASmallDisk, EverythingBeforeTheDiskWasFullIsCompleteAndReported) {
  const auto frames = framesOf({{20, kFirst, timecodeOf(0, 0, 0, 0)}, {60, kLater, timecodeOf(0, 0, 1, 0)}});
  writeTape(folder / "tape.dv", frames);
  const ProgramResult result = runDeckhand(folder, {"capture", "--device", "tape:" + folder / "tape.dv", "--output",
                                                    folder / "disk/clips", "--format", GetParam()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
  const json report = json::parse(readText(folder / "disk/clips/session.json"));
  EXPECT_EQ(report.at("ended"), "error");
  ASSERT_EQ(report.at("clips").size(), 2U);
  std::size_t first = 0;
  for (const json& clip : report.at("clips")) {
    const std::string movie = folder / ("disk/clips/" + clip.at("moviePath").get<std::string>());
    const RunningProgram reader(folder, {"ffmpeg", "-v", "error", "-nostdin", "-y", "-i", movie, "-map", "0:v", "-c",
                                         "copy", "-f", "rawvideo", folder / "pictures.raw"});
    EXPECT_EQ(reader.wait().exitCode, 0);
    const auto count = clip.at("movieFrames").get<std::size_t>();
    EXPECT_GT(count, 0U);
    EXPECT_EQ(readText(folder / "pictures.raw"), bytesOf(frames, first, first + count)) << movie;
    first += 20;
  }
}

INSTANTIATE_TEST_SUITE_P(Each, CaptureOnASmallDisk, ::testing::Values("mov", "avi", "mkv", "dv"));

}  // namespace
}  // namespace zq::test
