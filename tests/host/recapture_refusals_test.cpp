// The recapture command on bad input and the wrong tape: one clear message, a non-zero exit status, and nothing lost,
// changed or written over.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include "host/catalogue/catalogue_store.h"
#include "support/recapture_program.h"

namespace zq::test {
namespace {

using testing::HasSubstr;

class RecaptureRefusals : public RecaptureProgram {
 protected:
  void captureHoliday() { captureTape(holidayFrames()); }
  void captureAndMark(const Words& clips = {"1", "2", "3"}) {
    captureHoliday();
    mark(clips);
    catalogue_ = readText(folder / "tapes.db");
  }
  /// Puts these frames in the deck in place of the tape.
  void putInTheDeck(const Frames& frames) const { writeTape(tapePath(), frames); }

  void expectRefused(const ProgramResult& result, int exitCode, const std::string& message) const {
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(filesOfAgain(), Words{}) << "nothing was to be written";
    expectCatalogueUnchanged();
  }
  void expectCatalogueUnchanged() const {
    if (catalogue_.empty()) return;
    EXPECT_TRUE(readText(folder / "tapes.db") == catalogue_) << "the catalogue changed";
  }
  /// All marked clips failed for this reason, and nothing was written.
  void expectNoneFound(const std::string& reason, const Words& more = {}) const {
    const json report = recaptureJson(more, 1);
    ASSERT_FALSE(report.at("clips").empty());
    for (const json& clip : report.at("clips")) {
      json expected = {{"clipId", clip.at("clipId")}, {"status", "failed"}, {"moviePath", nullptr},
                       {"recapturePath", nullptr},    {"movieFrames", 0},   {"reason", reason}};
      EXPECT_EQ(clip, expected);
    }
    EXPECT_EQ(report.at("recaptured"), 0);
    EXPECT_EQ(report.at("failed"), report.at("clips").size());
    EXPECT_EQ(filesOfAgain(), Words{});
    expectCatalogueUnchanged();
  }
  /// Clip 2 failed for this reason, and its movie was set aside; the others came out right.
  void expectSecondSetAside(const Frames& first, const Frames& third, const std::string& reason) {
    const json report = recaptureJson({}, 3);
    expectMovie(report, "1", bytesOf(first, 0, 149));
    expectMovie(report, "3", bytesOf(third, 250, 374));
    EXPECT_EQ(entryOf(report, "2"), (json{{"clipId", "2"},
                                          {"status", "failed"},
                                          {"moviePath", "2004-07-15T14-00-00.wrong.mov"},
                                          {"recapturePath", nullptr},
                                          {"movieFrames", entryOf(report, "2").at("movieFrames")},
                                          {"reason", "The movie is not right: " + reason + "."}}));
    EXPECT_GT(entryOf(report, "2").at("movieFrames"), 0);
    EXPECT_EQ(report.at("recaptured"), 2);
    EXPECT_EQ(report.at("failed"), 1);
    EXPECT_EQ(filesOfAgain(), (Words{"1.mov", "2004-07-15T13-30-45.mov", "2004-07-15T14-00-00.wrong.mov",
                                     "2004-07-16T09-00-00.mov", "3.mov"}));
    EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
    EXPECT_EQ(idsWith("holiday", "recaptured"), ids({"1", "3"}));
  }
  static Frames without(Frames frames, std::size_t first, std::size_t count) {
    const auto begin = frames.begin() + static_cast<std::ptrdiff_t>(first);
    frames.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
    return frames;
  }
  static Frames datedTape(int year) {
    const SMPTETime zero = timecodeOf(0, 0, 0, 0);
    return framesOf({{150, {{year, 7, 15, 13, 30, 45}}, zero}, {125, {{year, 7, 16, 9, 0, 0}}, zero}});
  }

 private:
  std::string catalogue_;
};

// What cannot be begun.

TEST_F(RecaptureRefusals, ACatalogueThatIsNotThere) {
  writeTape(tapePath(), holidayFrames());
  expectRefused(recapture(), 1, "There is no catalogue " + folder / "tapes.db");
  EXPECT_FALSE(std::filesystem::exists(folder / "tapes.db"));
}

TEST_F(RecaptureRefusals, AFileThatIsNoCatalogue) {
  writeTape(tapePath(), holidayFrames());
  const std::string letter(10000, 'a');
  writeText(folder / "tapes.db", letter);
  expectRefused(recapture(), 1, folder / "tapes.db");
  EXPECT_EQ(readText(folder / "tapes.db"), letter);
}

TEST_F(RecaptureRefusals, ATapeThatTheCatalogueDoesNotHave) {
  captureAndMark();
  writeTape(tapePath("other"), holidayFrames());
  expectRefused(recapture({}, "other"), 1, "There is no tape \"other\" in the catalogue");
}

TEST_F(RecaptureRefusals, ATapeWithoutMarkedClips) {
  captureHoliday();
  const ProgramResult result = recapture({"--json"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("There is no clip to be recaptured in current tape! Please select another tape."));
  EXPECT_THAT(result.err, HasSubstr("No clip of tape \"holiday\" is marked"));
  EXPECT_EQ(json::parse(result.out), (json{{"tape", "holiday"},
                                           {"mode", "automatic"},
                                           {"clips", json::array()},
                                           {"recaptured", 0},
                                           {"failed", 0},
                                           {"alerts",
                                            {{{"message", "There is no clip to be recaptured in current tape!"},
                                              {"informative", "Please select another tape."}}}},
                                           {"tapeSeconds", 0.0}}));
  EXPECT_EQ(filesOfAgain(), Words{});
}

TEST_F(RecaptureRefusals, ATapeWithoutMarkedClipsInManualMode) {
  captureHoliday();
  const ProgramResult result = recapture({"--manual"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("There is no clip to be recaptured in current tape!"));
  EXPECT_EQ(result.out, "");
}

TEST_F(RecaptureRefusals, AMarkedClipThatWasTrashed) {
  captureAndMark({"2"});
  ASSERT_EQ(run("trash", {"--clip", "2"}).exitCode, 0);
  const ProgramResult result = recapture();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("No clip of tape \"holiday\" is marked"));
}

TEST_F(RecaptureRefusals, ADeviceOfAnotherKind) {
  captureAndMark();
  Words words = recaptureWords();
  words[2] = tapePath();
  expectRefused(runDeckhand(folder, words), 1, "A tape image is played as tape:PATH");
}

TEST_F(RecaptureRefusals, ATapeImageThatIsNotThereOrNone) {
  captureAndMark();
  std::filesystem::remove(tapePath());
  expectRefused(recapture(), 1, "No such tape image");
  writeText(tapePath(), std::string(400000, 'a'));
  expectRefused(recapture(), 1, "is not a raw DV tape image");
  writeText(tapePath(), "");
  expectRefused(recapture(), 1, "is empty");
}

TEST_F(RecaptureRefusals, AnOutputFolderThatIsAFile) {
  captureAndMark();
  writeText(folder / "again", "mine");
  const ProgramResult result = recapture();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr(folder / "again"));
  EXPECT_EQ(readText(folder / "again"), "mine");
  expectCatalogueUnchanged();
}

TEST_F(RecaptureRefusals, AnOutputFolderThatCannotBeMade) {
  captureAndMark();
  Words words = recaptureWords();
  words.back() = "/proc/again";
  expectRefused(runDeckhand(folder, words), 1, "Cannot make the output folder /proc/again");
}

TEST_F(RecaptureRefusals, AnOutputFolderThatMayOnlyBeRead) {
  captureAndMark();
  std::filesystem::create_directory(folder / "again");
  // The owner of the machine may write into any folder, so it takes a disk that nobody may write to.
  if (::mount("tmpfs", (folder / "again").c_str(), "tmpfs", MS_RDONLY, "size=1m") != 0) {
    GTEST_SKIP() << "may not mount a small disk here";
  }
  expectRefused(recapture(), 1, folder / "again");
  ::umount((folder / "again").c_str());
}

TEST_F(RecaptureRefusals, MissingOptions) {
  captureAndMark();
  for (const std::size_t left : {1U, 3U, 5U, 7U}) {
    Words words = recaptureWords();
    const std::string option = words[left];
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(left),
                words.begin() + static_cast<std::ptrdiff_t>(left) + 2);
    expectRefused(runDeckhand(folder, words), 2, option + " is required");
  }
}

TEST_F(RecaptureRefusals, EmptyNamesAndUnknownFormats) {
  captureAndMark();
  expectRefused(recapture({}, ""), 2, "--tape");
  Words words = recaptureWords();
  words[4] = "";
  expectRefused(runDeckhand(folder, words), 2, "--catalogue");
  expectRefused(recapture({"--format", "wmv"}), 2, "--format");
}

// Clips that no deck can be driven to.

TEST_F(RecaptureRefusals, AClipWithoutADateIsToldOfAndTheOthersAreRecaptured) {
  const SMPTETime zero = timecodeOf(0, 0, 0, 0);
  const Frames frames = framesOf({{50, std::nullopt, zero}, {100, kSecond, timecodeOf(0, 0, 2, 0)}});
  captureTape(frames);
  // The catalogue command marks no such clip, but another program may have done so.
  const auto store = host::openCatalogue(folder / "tapes.db", false);
  ASSERT_TRUE(store.ok());
  ASSERT_TRUE(store.value()->setMarked({1, 2}, true).ok());
  const json report = recaptureJson({}, 3);
  EXPECT_EQ(entryOf(report, "1").at("status"), "failed");
  EXPECT_EQ(entryOf(report, "1").at("reason"), "It has no recording date to find it by.");
  expectMovie(report, "2", bytesOf(frames, 50, 149));
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"1"}));
}

TEST_F(RecaptureRefusals, AClipOfOneFrame) {
  captureTape(framesOf({{100, kFirst, timecodeOf(0, 0, 0, 0)}, {1, kSecond, timecodeOf(0, 0, 4, 0)}}));
  mark({"2"});
  const ProgramResult result = recapture({"--json"});
  EXPECT_EQ(result.exitCode, 1);
  const json report = json::parse(result.out);
  ASSERT_EQ(report.at("clips").size(), 1U);
  EXPECT_EQ(report.at("clips").at(0).at("reason"),
            "It is one frame long, and the frame at the end timecode is not recorded.");
  EXPECT_EQ(filesOfAgain(), Words{});
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
}

// The deck is driven by dates, so it does not come by a clip behind a later date.
TEST_F(RecaptureRefusals, AClipBehindADateThatGoesBackIsNotFound) {
  const Frames frames = framesOf({{150, kThird, timecodeOf(0, 0, 0, 0)}, {150, kFirst, timecodeOf(0, 0, 6, 0)}});
  captureTape(frames);
  mark({"1", "2"});
  const json report = recaptureJson({}, 3);
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  EXPECT_EQ(entryOf(report, "2").at("reason"),
            "The tape begins with a later recording date, so no way leads to it. Is it the right tape?");
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
}

// The wrong tape in the deck.

TEST_F(RecaptureRefusals, ATapeWhoseDatesAreAllLater) {
  captureAndMark();
  putInTheDeck(datedTape(2010));
  expectNoneFound("The tape begins with a later recording date, so no way leads to it. Is it the right tape?");
}

TEST_F(RecaptureRefusals, ATapeWhoseDatesAreAllEarlier) {
  captureAndMark();
  putInTheDeck(datedTape(2001));
  expectNoneFound("The tape ends with an earlier recording date. Is it the right tape?");
}

TEST_F(RecaptureRefusals, ATapeWhoseDatesAreOnBothSides) {
  captureAndMark({"2"});
  const SMPTETime zero = timecodeOf(0, 0, 0, 0);
  putInTheDeck(framesOf({{50, {{2001, 7, 15, 13, 30, 45}}, zero}, {50, {{2010, 7, 16, 9, 0, 0}}, zero}}));
  expectNoneFound("It was not found, or the frames at its start did not come by as the catalogue says.");
}

TEST_F(RecaptureRefusals, ATapeWithoutDates) {
  captureAndMark();
  putInTheDeck(framesOf({{150, std::nullopt, timecodeOf(0, 0, 0, 0)}}));
  expectNoneFound("The tape has no frames with a recording date and a timecode to find it by.");
  expectNoneFound("The tape has no frames with a recording date and a timecode to find it by.", {"--manual"});
}

TEST_F(RecaptureRefusals, ATapeWithoutTimecodes) {
  captureAndMark();
  putInTheDeck(framesOf({{150, kFirst, std::nullopt}}));
  expectNoneFound("The tape has no frames with a recording date and a timecode to find it by.");
}

TEST_F(RecaptureRefusals, AnotherTapeInManualMode) {
  captureAndMark();
  putInTheDeck(datedTape(2010));
  const json report = recaptureJson({"--manual"}, 1);
  EXPECT_EQ(report.at("alerts"), (json{{{"message", "There is no sequence to be recaptured in this position!"},
                                        {"informative", "Please move the tape to another position."}}}));
  for (const json& clip : report.at("clips")) EXPECT_EQ(clip.at("status"), "failed");
  EXPECT_EQ(filesOfAgain(), Words{});
}

TEST_F(RecaptureRefusals, ATapeOfTheOtherSystemWithTheSameDates) {
  captureAndMark({"2"});
  const SMPTETime zero = timecodeOf(0, 0, 0, 0);
  constexpr DVSystem kNtsc = DVSystem::ntsc525_60;
  putInTheDeck(framesOf({{180, kFirst, zero, kNtsc}, {120, kSecond, zero, kNtsc}, {150, kThird, zero, kNtsc}}));
  const json report = recaptureJson({}, 1);
  EXPECT_EQ(entryOf(report, "2").at("reason"), "The movie is not right: it is of 525/60, and the clip of 625/50.");
  EXPECT_EQ(filesOfAgain(), (Words{"2004-07-15T14-00-00.wrong.mov"}));
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
}

// A tape whose frames are not those that the catalogue has any more.

TEST_F(RecaptureRefusals, FramesThatAreMissingInAClip) {
  captureAndMark();
  const Frames frames = holidayFrames();
  const Frames fewer = without(frames, 200, 3);
  putInTheDeck(fewer);
  expectSecondSetAside(frames, frames, "it has 96 frames where the clip had 99 before its last frame");
}

TEST_F(RecaptureRefusals, AClipWhoseFirstFrameIsMissing) {
  captureAndMark();
  const Frames frames = holidayFrames();
  putInTheDeck(without(frames, 150, 1));
  expectSecondSetAside(frames, frames, "it begins at 00:00:00:01, not at the clip's start 00:00:00:00");
}

TEST_F(RecaptureRefusals, AClipWhoseEndIsMissing) {
  captureAndMark();
  const Frames frames = holidayFrames();
  putInTheDeck(without(frames, 200, 50));
  expectSecondSetAside(frames, frames, "at frame 50 its timecode goes back to 00:00:00:00");
}

TEST_F(RecaptureRefusals, AClipWhoseBeginningIsMissingIsNotFoundAndTheOthersAre) {
  captureAndMark();
  const Frames frames = holidayFrames();
  putInTheDeck(without(frames, 150, 20));
  const json report = recaptureJson({}, 3);
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  expectMovie(report, "3", bytesOf(frames, 250, 374));
  EXPECT_EQ(entryOf(report, "2").at("reason"),
            "It was not found, or the frames at its start did not come by as the catalogue says.");
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2"}));
}

TEST_F(RecaptureRefusals, ATapeImageThatEndsInAClip) {
  captureAndMark();
  const Frames frames = holidayFrames();
  putInTheDeck(without(frames, 200, 175));
  const json report = recaptureJson({}, 3);
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  EXPECT_EQ(entryOf(report, "2").at("moviePath"), "2004-07-15T14-00-00.wrong.mov");
  EXPECT_EQ(entryOf(report, "2").at("reason"),
            "The movie is not right: it ends after 00:00:01:24, not before the clip's end 00:00:03:24.");
  EXPECT_EQ(entryOf(report, "3").at("reason"), "The tape ends with an earlier recording date. Is it the right tape?");
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2", "3"}));
}

TEST_F(RecaptureRefusals, AMovieThatIsSetAsideWritesNothingOver) {
  captureAndMark({"2"});
  const Frames frames = holidayFrames();
  putInTheDeck(without(frames, 200, 3));
  recaptureJson({}, 1);
  const std::string first = readText(folder / "again/2004-07-15T14-00-00.wrong.mov");
  EXPECT_EQ(entryOf(recaptureJson({}, 1), "2").at("moviePath"), "2004-07-15T14-00-00.wrong-2.mov");
  EXPECT_TRUE(readText(folder / "again/2004-07-15T14-00-00.wrong.mov") == first);
  putInTheDeck(frames);
  expectMovie(recaptureJson(), "2", bytesOf(frames, 150, 249));
}

// Disks and catalogues that give out on the way.

TEST_F(RecaptureRefusals, ADiskThatIsFullEndsItAndKeepsWhatIsDone) {
  captureAndMark();
  const Frames frames = holidayFrames();
  std::filesystem::create_directory(folder / "again");
  if (::mount("tmpfs", (folder / "again").c_str(), "tmpfs", 0, "size=30m") != 0) {
    GTEST_SKIP() << "may not mount a small disk here";
  }
  const ProgramResult result = recapture({"--json", "--format", "dv"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("No space left on device"));
  const json report = json::parse(result.out, nullptr, false);
  expectMovie(report, "1", bytesOf(frames, 0, 149));
  for (const char* id : {"2", "3"}) {
    EXPECT_EQ(entryOf(report, id).at("status"), "failed");
    EXPECT_THAT(entryOf(report, id).at("reason").get<std::string>(), HasSubstr("No space left on device"));
  }
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"2", "3"}));
  ::umount((folder / "again").c_str());
}

TEST_F(RecaptureRefusals, ACatalogueWhoseDiskIsFullIsToldAndTheMovieStays) {
  captureAndMark({"2"});
  std::filesystem::create_directory(folder / "disk");
  // Room for the catalogue, and none for a change of it.
  const std::string size = "size=" + std::to_string(std::filesystem::file_size(folder / "tapes.db"));
  if (::mount("tmpfs", (folder / "disk").c_str(), "tmpfs", 0, size.c_str()) != 0) {
    GTEST_SKIP() << "may not mount a small disk here";
  }
  std::filesystem::copy_file(folder / "tapes.db", folder / "disk/tapes.db");
  Words words = recaptureWords({"--json"});
  words[4] = folder / "disk/tapes.db";
  const ProgramResult result = runDeckhand(folder, words);
  EXPECT_EQ(result.exitCode, 3) << result.err;
  EXPECT_THAT(result.err, HasSubstr("again/2004-07-15T14-00-00.mov is right, but the catalogue was not told"));
  const json entry = entryOf(json::parse(result.out, nullptr, false), "2");
  EXPECT_EQ(entry.at("status"), "recaptured");
  EXPECT_TRUE(entry.contains("reason"));
  EXPECT_TRUE(picturesIn(inAgain(entry.at("moviePath"))) == bytesOf(holidayFrames(), 150, 249));
  EXPECT_TRUE(readText(folder / "disk/tapes.db") == readText(folder / "tapes.db"));
  ::umount((folder / "disk").c_str());
}

TEST_F(RecaptureRefusals, ACatalogueThatMayOnlyBeReadIsToldBeforeTheTapePlays) {
  captureAndMark();
  std::filesystem::create_directory(folder / "disk");
  if (::mount("tmpfs", (folder / "disk").c_str(), "tmpfs", 0, "size=9m") != 0) {
    GTEST_SKIP() << "may not mount a small disk here";
  }
  std::filesystem::copy_file(folder / "tapes.db", folder / "disk/tapes.db");
  EXPECT_EQ(::mount("tmpfs", (folder / "disk").c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  Words words = recaptureWords();
  words[4] = folder / "disk/tapes.db";
  expectRefused(runDeckhand(folder, words), 1, folder / "disk/tapes.db");
  ::umount((folder / "disk").c_str());
}

}  // namespace
}  // namespace zq::test
