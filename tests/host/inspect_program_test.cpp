// The inspect command, as a user runs it.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "dv/frame_timecode.h"
#include "dv/recording_date_scan.h"
#include "support/program.h"
#include "support/tape_script.h"
#include "timecode/timecode_text.h"

namespace zq::test {
namespace {

using nlohmann::json;

const StampDateTime kFirst{2004, 7, 15, 13, 30, 45};
const StampDateTime kLater{2004, 7, 15, 14, 0, 0};

std::string fixture(const char* name) {
  return std::string(DECKHAND_FIXTURES) + "/" + name;
}

class InspectProgram : public ::testing::Test {
 protected:
  ProgramResult inspect(const std::string& tape, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"inspect", tape});
    return runDeckhand(folder, more);
  }
  ProgramFolder folder;
};

TEST_F(InspectProgram, GivesARowForEachFrameOfACamcordersTape) {
  const ProgramResult result = inspect(fixture("sony-digital8-ntsc-5-frames.dv"), {"--frames", "--csv"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "frame,offset,system,timecode,recordingDate,aspectRatio\n"
            "0,0,525/60,00:00:02:17,2024-07-08T19:55:58,1\n"
            "1,120000,525/60,00:00:02:18,2024-07-08T19:55:58,1\n"
            "2,240000,525/60,00:00:02:19,2024-07-08T19:55:58,1\n"
            "3,360000,525/60,00:00:02:20,2024-07-08T19:55:58,1\n"
            "4,480000,525/60,00:00:02:21,2024-07-08T19:55:58,1\n");
}

TEST_F(InspectProgram, LeavesTheDateOfAnUndatedFrameEmptyAndSaysSo) {
  const ProgramResult result = inspect(fixture("pal-undated-15-frames.dv"), {"--frames", "--csv"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.out.find("\n14,2016000,625/50,01:00:05:24,,1\n"), std::string::npos) << result.out;
  EXPECT_NE(result.err.find("15 of 15 frames carry no recording date"), std::string::npos) << result.err;
}

TEST_F(InspectProgram, GivesTheScenesAsJson) {
  const auto frames =
      framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}, {20, kLater, timecodeOf(0, 0, 0, 0), DVSystem::ntsc525_60}});
  writeText(folder / "tape.dv", bytesOf(frames, 0, 50) + std::string(99, 'x'));
  const ProgramResult result = inspect(folder / "tape.dv", {"--json"});
  EXPECT_EQ(result.exitCode, 3) << "the tape ends inside a frame";
  EXPECT_EQ(json::parse(result.out), (json{{"file", folder / "tape.dv"},
                                           {"system", "625/50"},
                                           {"frames", 50},
                                           {"trailingBytes", 99},
                                           {"scenes", json::array({{{"firstFrame", 0},
                                                                    {"frames", 30},
                                                                    {"startTimecode", "00:00:00:00"},
                                                                    {"endTimecode", "00:00:01:04"},
                                                                    {"recordingDate", "2004-07-15T13:30:45"},
                                                                    {"aspectRatio", 1}},
                                                                   {{"firstFrame", 30},
                                                                    {"frames", 20},
                                                                    {"startTimecode", "00:00:00:00"},
                                                                    {"endTimecode", "00:00:00:19"},
                                                                    {"recordingDate", "2004-07-15T14:00:00"},
                                                                    {"aspectRatio", 1}}})}}));
}

TEST_F(InspectProgram, GivesTheFramesInJsonToo) {
  const ProgramResult result = inspect(fixture("sony-digital8-ntsc-5-frames.dv"), {"--frames", "--json"});
  const json whole = json::parse(result.out);
  EXPECT_EQ(whole.at("frames"), 5);
  ASSERT_EQ(whole.at("frameList").size(), 5U);
  EXPECT_EQ(whole.at("frameList").at(4).at("timecode"), "00:00:02:21");
  EXPECT_EQ(whole.at("scenes").size(), 1U);
}

TEST_F(InspectProgram, PrintsATableForPeople) {
  const ProgramResult result = inspect(fixture("sony-digital8-ntsc-1-frame.dv"));
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("525/60, 1 frame, 1 scene\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("2024-07-08T19:55:58  4/3"), std::string::npos) << result.out;
}

TEST_F(InspectProgram, RefusesWhatIsNoTape) {
  writeText(folder / "letter.dv", std::string(300000, 'a'));
  for (const std::string& tape : {folder / "nowhere.dv", folder.path(), folder / "letter.dv"}) {
    const ProgramResult result = inspect(tape);
    EXPECT_EQ(result.exitCode, 1) << tape;
    EXPECT_EQ(result.out, "") << tape;
    EXPECT_NE(result.err.find(tape), std::string::npos) << result.err;
  }
}

TEST_F(InspectProgram, JsonAndCsvExcludeEachOther) {
  EXPECT_EQ(inspect(fixture("pal-undated-15-frames.dv"), {"--json", "--csv"}).exitCode, 2);
}

/// Spoils a frame in one of the ways that tapes are spoiled.
void spoil(FrameBytes& frame, std::mt19937& random) {
  const auto sequence = random() % 10;
  switch (random() % 6) {
    case 0:  // a lost sequence
      std::fill_n(frame.begin() + static_cast<std::ptrdiff_t>(sequence * 12000 + (sequence == 0 ? 240 : 0)), 11000,
                  std::uint8_t{0});
      break;
    case 1:  // a sequence number that names another sequence, maybe one past the end
      if (sequence > 0) frame[sequence * 12000 + 1] = static_cast<std::uint8_t>(random() % 16 << 4 | 0x7);
      break;
    case 2:  // an early date pack, before the half that usually has it
      setSubcodePack(frame, static_cast<int>(sequence), static_cast<int>(random() % 12),
                     {0x62, 0xFF, 0x31, 0x12, 0x99});
      setSubcodePack(frame, static_cast<int>(sequence), static_cast<int>(random() % 12),
                     {0x63, 0xFF, 0x45, 0x30, 0x13});
      break;
    case 3:  // no subcode at all
      for (int i = 0; i < 10; ++i) setSubcodePackInAllSlots(frame, i, kNoInformationPack);
      break;
    case 4:  // wide screen in one sequence
      setVideoSourceControlPack(frame, static_cast<int>(sequence), {0x61, 0x3F, 0x02, 0xFF, 0xFF});
      break;
    default:  // a lost timecode in the first sequences
      for (int i = 0; i < 5; ++i) setSubcodePackInAllSlots(frame, i, kNoInformationPack);
      break;
  }
}

// The command reads only a few blocks of each frame, with two threads and under a guess where frames lie; the decoder
// reading whole frames one by one is the naive way to the same rows.
TEST_F(InspectProgram, SaysOfSpoiledTapesWhatTheDecoderSaysOfTheirWholeFrames) {
  for (std::uint32_t seed = 1; seed <= 12; ++seed) {
    std::mt19937 random(seed);
    std::vector<ScriptScene> scenes;
    for (int i = 0; i < 4; ++i) {
      const DVSystem system = random() % 3 == 0 ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
      scenes.push_back({static_cast<int>(random() % 30 + 1), kFirst, timecodeOf(0, i, 0, 0), system});
    }
    auto frames = framesOf(scenes);
    for (ScriptFrame& frame : frames) {
      if (random() % 4 == 0) spoil(frame.bytes, random);
    }
    writeTape(folder / "tape.dv", frames);
    std::ostringstream expected;
    expected << "frame,offset,system,timecode,recordingDate,aspectRatio\n";
    std::size_t offset = 0;
    ::setenv("TZ", "UTC", 1);
    for (std::size_t i = 0; i < frames.size(); ++i) {
      const SharedBytes bytes = SharedBytes::copyOf(frames[i].bytes);
      const auto timecode = firstTimecode(bytes);
      const RecordingDateScan scan = scanRecordingDate(bytes);
      expected << i << ',' << offset << ',' << nameOf(*systemOfFrameSize(bytes.size())) << ','
               << (timecode ? timecodeText(timecode->time) : "") << ',' << (scan.date ? scan.date->isoString() : "")
               << ',' << scan.aspectRatio << '\n';
      offset += bytes.size();
    }
    EXPECT_EQ(inspect(folder / "tape.dv", {"--frames", "--csv"}).out, expected.str()) << "seed " << seed;
  }
}

}  // namespace
}  // namespace zq::test
