#include "host/session_import.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/batch_list_text.h"
#include "host/catalogue_command_json.h"
#include "support/dv_frames.h"
#include "support/program.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

using nlohmann::json;

class SilentLog : public Log {
 public:
  void write(LogLevel /*level*/, std::string_view /*message*/) override {}
};

json clip(const char* name, const char* first, const char* last, int movieFrames) {
  return {{"clipId", "1"},
          {"clipRecordingDate", "2004-07-15T13:30:45"},
          {"clipStartTimecode", first},
          {"clipEndTimecode", last},
          {"clipDuration", nullptr},
          {"clipAspectRatio", 1},
          {"moviePath", std::string(name) + ".mov"},
          {"thumbnailPath", nullptr},
          {"movieFrames", movieFrames},
          {"thumbnailFrames", 0}};
}

json session(const json& clips) {
  return {{"device", "tape:/tapes/holiday.dv"}, {"format", "mov"}, {"clips", clips}};
}

Expected<ImportedTape> read(const std::string& text) {
  SilentLog log;
  const auto noPoster = [](const SharedBytes&, std::int32_t) -> Expected<std::vector<std::uint8_t>> {
    return Error{"none", ""};
  };
  return readTapeJson("/captures/first/session.json", text, noPoster, log);
}

std::string refusalOf(const json& file) {
  const auto tape = read(file.dump());
  EXPECT_FALSE(tape.ok()) << file;
  return tape.ok() ? "" : tape.error().text();
}

TEST(SessionImport, MakesOneSequenceWithAbsolutePaths) {
  const auto tape = read(session(json::array({clip("a", "00:00:00:00", "00:00:00:24", 25)})).dump());
  ASSERT_TRUE(tape.ok()) << tape.error().text();
  EXPECT_EQ(tape.value().name, "holiday");
  ASSERT_EQ(tape.value().sequences.size(), 1U);
  ASSERT_EQ(tape.value().sequences[0].clips.size(), 1U);
  const CatalogueClip& made = tape.value().sequences[0].clips[0];
  EXPECT_EQ(made.name, "a");
  EXPECT_EQ(made.moviePath, "/captures/first/a.mov");
  EXPECT_EQ(made.thumbnailPath, "");
  EXPECT_EQ(made.recordingDate->isoString(), "2004-07-15T13:30:45");
  EXPECT_EQ(timecodeText(*made.endTimecode), "00:00:00:24");
  EXPECT_EQ(made.timebase, 25);
  EXPECT_FALSE(made.marked);
}

TEST(SessionImport, FindsTheSystemByTheNumberOfFrames) {
  const auto tape = read(
      session(json::array({clip("a", "00:00:00:00", "00:00:01:00", 26), clip("b", "00:00:00:00", "00:00:01:00", 31),
                           clip("c", "00:00:00:00", "00:00:00:10", 11)}))
          .dump());
  ASSERT_TRUE(tape.ok()) << tape.error().text();
  EXPECT_EQ(tape.value().sequences[0].clips[0].timebase, 25);
  EXPECT_EQ(tape.value().sequences[0].clips[1].timebase, 30);
}

TEST(SessionImport, ThumbnailsTellTheSystemForCertain) {
  const test::ProgramFolder folder;
  const auto frame = test::makeFrameBytes(DVSystem::ntsc525_60, {});
  test::writeText(folder / "a.thumbnails.dv", std::string(frame.begin(), frame.end()));
  json pictures = clip("a", "00:00:00:00", "00:00:00:10", 11);
  pictures["thumbnailPath"] = "a.thumbnails.dv";
  SilentLog log;
  const auto noPoster = [](const SharedBytes&, std::int32_t) -> Expected<std::vector<std::uint8_t>> {
    return Error{"none", ""};
  };
  const auto tape = readTapeJson(folder / "session.json", session(json::array({pictures})).dump(), noPoster, log);
  ASSERT_TRUE(tape.ok()) << tape.error().text();
  EXPECT_EQ(tape.value().sequences[0].clips[0].timebase, 30);
}

TEST(SessionImport, AClipNamedAsUndatedIsUndated) {
  json unset = clip("holiday-0001", "00:00:00:00", "00:00:00:24", 25);
  unset["clipRecordingDate"] = "1999-11-30T00:00:00";
  const auto tape = read(session(json::array({unset})).dump());
  ASSERT_TRUE(tape.ok());
  EXPECT_EQ(tape.value().sequences[0].clips[0].recordingDate, nullptr) << "its camcorder's clock was never set";
}

TEST(SessionImport, TellsWhatTheCatalogueDoesNotKeep) {
  json twoFiles = clip("a", "00:00:00:00", "00:00:00:24", 25);
  twoFiles["movieContinuations"] = json::array({"a-part2.mov"});
  const auto tape = read(session(json::array({twoFiles})).dump());
  ASSERT_TRUE(tape.ok());
  ASSERT_EQ(tape.value().remarks.size(), 1U);
  EXPECT_NE(tape.value().remarks[0].find("a-part2.mov"), std::string::npos);
}

TEST(SessionImport, ASessionWithoutClipsHasNoSequence) {
  const auto tape = read(session(json::array()).dump());
  ASSERT_TRUE(tape.ok());
  EXPECT_TRUE(tape.value().sequences.empty());
}

TEST(SessionImport, NamesWhatIsWrong) {
  const auto with = [](const char* key, const json& value) {
    json wrong = clip("a", "00:00:00:00", "00:00:00:24", 25);
    wrong[key] = value;
    return session(json::array({clip("b", "00:00:00:00", "00:00:00:24", 25), wrong}));
  };
  EXPECT_NE(refusalOf(with("clipStartTimecode", "soon")).find("clip 2: clipStartTimecode \"soon\""), std::string::npos);
  EXPECT_NE(refusalOf(with("clipRecordingDate", "2004-02-31T00:00:00")).find("clipRecordingDate"), std::string::npos);
  EXPECT_NE(refusalOf(with("moviePath", 5)).find("clip 2: moviePath is not a text"), std::string::npos);
  EXPECT_NE(refusalOf(with("movieFrames", -1)).find("movieFrames"), std::string::npos);
  EXPECT_NE(refusalOf(with("movieFrames", 1.5)).find("movieFrames"), std::string::npos);
  EXPECT_NE(refusalOf(with("movieFrames", 18446744073709551615U)).find("movieFrames"), std::string::npos);
  EXPECT_NE(refusalOf(session(json::array({5}))).find("clip 1 is not an object"), std::string::npos);
  EXPECT_NE(refusalOf(session("none")).find("clips is not a list"), std::string::npos);
  EXPECT_NE(refusalOf({{"device", "tape:a.dv"}}).find("neither"), std::string::npos);
  EXPECT_NE(refusalOf(json::array()).find("not an object"), std::string::npos);
  const auto cut = read("{\"device\": ");
  ASSERT_FALSE(cut.ok());
  EXPECT_NE(cut.error().text().find("not JSON"), std::string::npos) << cut.error().text();
}

TEST(SessionImport, ReadsWhatAnExportWrote) {
  CatalogueClip full;
  full.id = 12;
  full.name = "a";
  full.recordingDate = dateOf("2004-07-15T13:30:45");
  full.startTimecode = timecodeAt(0, 30);
  full.endTimecode = timecodeAt(29, 30);
  full.duration = timecodeAt(29, 30);
  full.timebase = 30;
  full.aspectRatio = 1;
  full.moviePath = "/clips/a.mov";
  full.thumbnailPath = "/clips/a.thumbnails.dv";
  full.movieFrames = 30;
  full.thumbnailFrames = 2;
  full.recaptured = true;
  full.trashed = true;
  full.recapturedPath = "/again/a.mov";
  CatalogueClip bare;
  bare.marked = true;
  const CatalogueTape tape{1, "holiday", {{1, "first", {full, bare}}, {2, "second", {bare}}}};
  const auto again = read(printedJson(tapeJson(tape)));
  ASSERT_TRUE(again.ok()) << again.error().text();
  CatalogueTape made{1, again.value().name, again.value().sequences};
  for (std::size_t i = 0; i < made.sequences.size(); ++i) {
    made.sequences[i].id = tape.sequences[i].id;
    for (std::size_t k = 0; k < made.sequences[i].clips.size(); ++k) {
      made.sequences[i].clips[k].id = tape.sequences[i].clips[k].id;
    }
  }
  EXPECT_EQ(tapeJson(made), tapeJson(tape));
  EXPECT_EQ(made.sequences[0].clips[0].startTimecode->mType, 2U);
}

TEST(SessionImport, AFileThatIsAClipsAlreadyIsFound) {
  CatalogueClip one;
  one.id = 12;
  one.moviePath = "/clips/a.mov";
  CatalogueClip other;
  other.moviePath = "/clips/b.mov";
  CatalogueClip none;
  const CatalogueTape tape{1, "holiday", {{1, "first", {none, one}}}};
  EXPECT_TRUE(checkNotThere(tape, {{0, "", {other, none}}}).ok());
  const Status status = checkNotThere(tape, {{0, "", {other, one}}});
  ASSERT_FALSE(status.ok());
  EXPECT_NE(status.error().text().find("clip 12"), std::string::npos) << status.error().text();
}

TEST(SessionImport, AFileIsTheSameByAnotherPath) {
  const test::ProgramFolder folder;
  std::filesystem::create_directory(folder / "clips");
  test::writeText(folder / "clips/a.mov", "a");
  std::filesystem::create_directory_symlink(folder / "clips", folder / "linked");
  CatalogueClip one;
  one.id = 12;
  one.moviePath = folder / "clips/a.mov";
  CatalogueClip linked;
  linked.moviePath = folder / "linked/a.mov";
  EXPECT_FALSE(checkNotThere({1, "holiday", {{1, "first", {one}}}}, {{0, "", {linked}}}).ok());
}

}  // namespace
}  // namespace zq::host
