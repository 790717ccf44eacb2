// Capturing into a catalogue, as a user runs it; the catalogue is read back through the store.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "backends/media/poster_maker.h"
#include "host/catalogue/catalogue_store.h"
#include "support/program.h"
#include "support/tape_script.h"

namespace zq::test {
namespace {

using host::CatalogueClip;
using host::CatalogueSequence;
using host::CatalogueStore;
using host::CatalogueTape;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const StampDateTime kFirst{2004, 7, 15, 13, 30, 45};
const StampDateTime kLater{2004, 7, 15, 14, 0, 0};
const StampDateTime kEarlier{2003, 1, 1, 9, 0, 0};

std::string dateOf(const CatalogueClip& clip) {
  return clip.recordingDate ? clip.recordingDate->isoString() : "none";
}

class CaptureCatalogue : public ::testing::Test {
 protected:
  std::vector<std::string> words(std::vector<std::string> more = {}) const {
    std::vector<std::string> all{"capture",     "--device", "tape:" + folder / "tape.dv", "--output", folder / "clips",
                                 "--catalogue", catalogue()};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  ProgramResult capture(const std::vector<ScriptFrame>& frames, std::vector<std::string> more = {}) {
    writeTape(folder / "tape.dv", frames);
    return runDeckhand(folder, words(std::move(more)));
  }
  /// Plays a long tape at its own pace, until a movie is being written.
  RunningProgram startCapture(std::vector<std::string> more = {}) {
    writeTape(folder / "tape.dv", framesOf({{250, kFirst, timecodeOf(0, 0, 0, 0)}}));
    std::vector<std::string> all = words({"--real-time", "--format", "dv"});
    all.insert(all.begin(), DECKHAND_PROGRAM);
    all.insert(all.end(), more.begin(), more.end());
    const RunningProgram program(folder, std::move(all));
    waitForBytes(folder / "clips/capturing-0002.dv");
    return program;
  }
  std::string catalogue() const { return folder / "tapes.db"; }
  std::unique_ptr<CatalogueStore> openStore() const {
    auto store = host::openCatalogue(catalogue(), false);
    if (!store.ok()) throw std::runtime_error(store.error().text());
    return std::move(store.value());
  }
  CatalogueTape tape(const std::string& name) const {
    const auto found = openStore()->tape(name);
    if (!found.ok()) throw std::runtime_error(found.error().text());
    return found.value();
  }
  CatalogueSequence onlySequence(const std::string& name = "tape") const { return tape(name).sequences.at(0); }
  json report() const { return json::parse(readText(folder / "clips/session.json")); }

  ProgramFolder folder;
};

TEST_F(CaptureCatalogue, ASessionIsOneSequenceOfTheTapeInTapeOrder) {
  const auto frames = framesOf({{30, kFirst, timecodeOf(0, 0, 0, 0)}, {20, kEarlier, timecodeOf(0, 0, 1, 5)}});
  const ProgramResult result = capture(frames, {"--tape", "Tape 7"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const auto tapes = openStore()->tapes();
  ASSERT_TRUE(tapes.ok());
  ASSERT_THAT(tapes.value(), SizeIs(1));
  EXPECT_EQ(tapes.value()[0].name, "Tape 7");
  const CatalogueTape stored = tape("Tape 7");
  ASSERT_THAT(stored.sequences, SizeIs(1));
  EXPECT_EQ(stored.sequences[0].name, "2004-07-15T13:30:45");
  const auto& clips = stored.sequences[0].clips;
  ASSERT_THAT(clips, SizeIs(2));
  EXPECT_EQ(clips[0].name, "2004-07-15T13-30-45");
  EXPECT_EQ(dateOf(clips[0]), "2004-07-15T13:30:45");
  EXPECT_EQ(clips[1].name, "2003-01-01T09-00-00");
  EXPECT_EQ(dateOf(clips[1]), "2003-01-01T09:00:00");
}

TEST_F(CaptureCatalogue, AClipIsStoredWithAllThatIsKnownOfIt) {
  capture(framesOf({{30, kFirst, timecodeOf(1, 2, 3, 4)}}));
  const CatalogueClip clip = onlySequence().clips.at(0);
  EXPECT_EQ(clip.startTimecode, timecodeOf(1, 2, 3, 4, 1));
  EXPECT_EQ(clip.endTimecode, timecodeOf(1, 2, 4, 8, 1));
  EXPECT_EQ(clip.duration, timecodeOf(0, 0, 1, 4, 1));
  EXPECT_EQ(clip.timebase, 25);
  EXPECT_EQ(clip.aspectRatio, 1);
  EXPECT_EQ(clip.moviePath, folder / "clips/2004-07-15T13-30-45.mov");
  EXPECT_EQ(clip.thumbnailPath, folder / "clips/2004-07-15T13-30-45.thumbnails.dv");
  EXPECT_TRUE(std::filesystem::exists(clip.moviePath) && std::filesystem::exists(clip.thumbnailPath));
  EXPECT_EQ(clip.movieFrames, 30);
  EXPECT_EQ(clip.thumbnailFrames, 2);
  EXPECT_FALSE(clip.marked || clip.recaptured || clip.trashed);
}

TEST_F(CaptureCatalogue, TimecodesOf525LinesCountThirtyFrames) {
  capture(framesOf({{40, kFirst, timecodeOf(0, 0, 0, 20), DVSystem::ntsc525_60}}));
  const CatalogueClip clip = onlySequence().clips.at(0);
  EXPECT_EQ(clip.startTimecode, timecodeOf(0, 0, 0, 20, 2));
  EXPECT_EQ(clip.endTimecode, timecodeOf(0, 0, 1, 29, 2));
  EXPECT_EQ(clip.duration, timecodeOf(0, 0, 1, 9, 2));
  EXPECT_EQ(clip.timebase, 30);
}

TEST_F(CaptureCatalogue, EachClipOfATapeOfBothSystemsHasItsOwn) {
  capture(framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}, {10, kLater, timecodeOf(0, 0, 0, 0), DVSystem::ntsc525_60}}));
  const auto clips = onlySequence().clips;
  ASSERT_THAT(clips, SizeIs(2));
  EXPECT_THAT((std::vector{clips[0].timebase, clips[1].timebase}), ElementsAre(25, 30));
  EXPECT_EQ(clips[0].startTimecode, timecodeOf(0, 0, 0, 0, 1));
  EXPECT_EQ(clips[1].startTimecode, timecodeOf(0, 0, 0, 0, 2));
}

TEST_F(CaptureCatalogue, TwoSessionsOfOneTapeAreTwoSequences) {
  capture(framesOf({{10, kLater, timecodeOf(0, 0, 0, 0)}}));
  capture(framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}}));
  const CatalogueTape stored = tape("tape");
  ASSERT_THAT(stored.sequences, SizeIs(2));
  EXPECT_EQ(stored.sequences[0].name, "2004-07-15T14:00:00");
  EXPECT_EQ(stored.sequences[1].name, "2004-07-15T13:30:45");
}

TEST_F(CaptureCatalogue, UndatedClipsHaveNoDateAndTheFolderNamesASequenceOfThem) {
  auto frames = framesOf({{6, std::nullopt, std::nullopt}});
  EXPECT_EQ(capture(frames).exitCode, 3);
  const CatalogueSequence sequence = onlySequence();
  EXPECT_EQ(sequence.name, "clips");
  const CatalogueClip clip = sequence.clips.at(0);
  EXPECT_EQ(clip.name, "tape-0001");
  EXPECT_EQ(dateOf(clip), "none");
  EXPECT_EQ(clip.startTimecode, std::nullopt);
  EXPECT_EQ(clip.endTimecode, std::nullopt);
}

TEST_F(CaptureCatalogue, WhatAnUnsetClockWroteIsNoDate) {
  auto frames = framesOf({{6, kFirst, timecodeOf(0, 0, 0, 0)}});
  for (ScriptFrame& frame : frames) {
    for (int sequence = 0; sequence < 12; ++sequence) {
      setSubcodePackInAllSlots(frame.bytes, sequence, {0x13, 0x00, 0x00, 0x00, 0x00});
      setSubcodePack(frame.bytes, sequence, 1, {0x62, 0xFF, 0xFF, 0xFF, 0xFF});
      setSubcodePack(frame.bytes, sequence, 2, {0x63, 0xFF, 0xFF, 0xFF, 0xFF});
    }
  }
  EXPECT_EQ(capture(frames).exitCode, 3);
  EXPECT_EQ(dateOf(onlySequence().clips.at(0)), "none");
  EXPECT_NE(report().at("clips").at(0).at("clipRecordingDate"), nullptr) << "the report says what the tape says";
}

class CaptureCatalogueSystems : public CaptureCatalogue, public ::testing::WithParamInterface<DVSystem> {};

INSTANTIATE_TEST_SUITE_P(Both, CaptureCatalogueSystems, ::testing::Values(DVSystem::ntsc525_60, DVSystem::pal625_50));

TEST_P(CaptureCatalogueSystems, EachClipHasThePosterOfItsFirstFrame) {
  const std::string system = GetParam() == DVSystem::pal625_50 ? "pal" : "ntsc";
  const ProgramResult made = runDeckhand(folder, {"make-tape", folder / "tape.dv", "--system", system, "--scene",
                                                  "2004-07-15T13:30:45,2", "--scene", "2004-07-15T14:00:00,1"});
  ASSERT_EQ(made.exitCode, 0) << made.err;
  const ProgramResult result = runDeckhand(folder, words());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.err, "");
  const auto frames = framesOf(folder / "tape.dv", GetParam());
  const auto store = openStore();
  const auto clips = onlySequence().clips;
  ASSERT_THAT(clips, SizeIs(2));
  std::size_t first = 0;
  std::vector<std::vector<std::uint8_t>> posters;
  for (const CatalogueClip& clip : clips) {
    const auto poster = store->poster(clip.id);
    ASSERT_TRUE(poster.ok()) << poster.error().text();
    EXPECT_EQ(poster.value(), media::PosterMaker().make(frames.at(first), clip.aspectRatio).value());
    posters.push_back(poster.value());
    first += static_cast<std::size_t>(clip.movieFrames);
  }
  EXPECT_NE(posters[0], posters[1]);
}

TEST_F(CaptureCatalogue, AClipThatBeginsWithABlankFrameHasNoPosterAndIsStored) {
  auto frames = framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}, {10, kLater, timecodeOf(0, 0, 0, 10)}});
  // Blank but for what says when it was recorded.
  for (std::size_t byte = 0; byte < 80; ++byte) frames[10].bytes[byte] = 0;
  const ProgramResult result = capture(frames);
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.err, HasSubstr("Cannot make a poster of the frame"));
  const auto clips = onlySequence().clips;
  ASSERT_THAT(clips, SizeIs(2));
  EXPECT_THAT(openStore()->poster(clips[0].id).value(), Not(IsEmpty()));
  EXPECT_THAT(openStore()->poster(clips[1].id).value(), IsEmpty());
}

TEST_F(CaptureCatalogue, ThePrintedReportSaysWhereItWasStoredAndTheFileStaysAsItIs) {
  const auto frames = framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}, {10, kLater, timecodeOf(0, 0, 0, 10)}});
  const ProgramResult result = capture(frames, {"--json", "--tape", "Tape 7"});
  json printed = json::parse(result.out);
  const CatalogueSequence sequence = onlySequence("Tape 7");
  EXPECT_EQ(printed.at("catalogue"),
            (json{{"tape", "Tape 7"},
                  {"sequenceId", std::to_string(sequence.id)},
                  {"clips", {std::to_string(sequence.clips.at(0).id), std::to_string(sequence.clips.at(1).id)}}}));
  printed.erase("catalogue");
  EXPECT_EQ(printed, report());
}

TEST_F(CaptureCatalogue, TheSummarySaysInOneLineWhereItWasStored) {
  const ProgramResult result = capture(framesOf({{10, kFirst, timecodeOf(0, 0, 0, 0)}}));
  EXPECT_THAT(result.out, HasSubstr("\nCatalogue: 1 clip of tape \"tape\", sequence \"2004-07-15T13:30:45\", in " +
                                    catalogue() + "\n"));
}

TEST_F(CaptureCatalogue, ACaptureThatIsInterruptedIsStored) {
  const RunningProgram program = startCapture();
  program.interrupt();
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 130) << result.err;
  const CatalogueClip clip = onlySequence().clips.at(0);
  EXPECT_EQ(clip.moviePath, folder / "clips/2004-07-15T13-30-45.dv");
  EXPECT_EQ(clip.movieFrames, report().at("clips").at(0).at("movieFrames"));
}

TEST_F(CaptureCatalogue, ACaptureThatEndedEarlyIsStored) {
  const RunningProgram program = startCapture();
  std::filesystem::resize_file(folder / "tape.dv", 144000);
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("became shorter while it was read"));
  EXPECT_EQ(onlySequence().clips.at(0).movieFrames, report().at("clips").at(0).at("movieFrames"));
}

TEST_F(CaptureCatalogue, WhenStoringFailsTheFilesAreCompleteAndTheErrorSaysHowToDoItLater) {
  const RunningProgram program = startCapture({"--json"});
  writeText(catalogue(), std::string(100000, 'x'));
  program.interrupt();
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("The clips are not in the catalogue; they are complete in " + folder / "clips"));
  EXPECT_THAT(result.err, HasSubstr("deckhand catalogue import"));
  EXPECT_EQ(json::parse(result.out), report());
  const auto frames = report().at("clips").at(0).at("movieFrames").get<std::size_t>();
  EXPECT_GT(frames, 0U);
  EXPECT_EQ(readText(folder / "clips/2004-07-15T13-30-45.dv").size(), frames * 144000);
}

TEST_F(CaptureCatalogue, ACatalogueThatIsGoneWhenTheTapeEndsIsMadeAnew) {
  const RunningProgram program = startCapture();
  std::filesystem::remove(catalogue());
  program.interrupt();
  EXPECT_EQ(program.wait().exitCode, 130);
  EXPECT_THAT(onlySequence().clips, SizeIs(1));
}

}  // namespace
}  // namespace zq::test
