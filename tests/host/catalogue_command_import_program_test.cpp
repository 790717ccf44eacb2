// Importing into the catalogue, as a user does it.

#include <gtest/gtest.h>

#include "support/catalogue_program.h"
#include "support/tape_script.h"

namespace zq::test {
namespace {

constexpr char kHeader[] = "name,tape,in,out\n";

class CatalogueImport : public CatalogueProgram {};

TEST_F(CatalogueImport, ARealCaptureBecomesASequenceWithItsFiles) {
  writeTape(folder / "beach.dv", framesOf({{30, StampDateTime{2004, 7, 15, 13, 30, 45}, timecodeOf(0, 0, 0, 0)},
                                           {20, StampDateTime{2004, 7, 15, 14, 0, 0}, timecodeOf(0, 0, 1, 5)}}));
  ASSERT_EQ(runDeckhand(folder, {"capture", "--device", "tape:" + folder / "beach.dv", "--output", folder / "clips"})
                .exitCode,
            0);
  const json result = runJson("import", {folder / "clips/session.json"});
  EXPECT_EQ(result, (json{{"imported", 2}, {"clips", {"1", "2"}}, {"skipped", json::array()}}));
  const json clips = clipsOf("beach");
  ASSERT_EQ(clips.size(), 2U);
  EXPECT_EQ(clips.at(0).at("clipRecordingDate"), "2004-07-15T13:30:45");
  EXPECT_EQ(clips.at(0).at("clipEndTimecode"), "00:00:01:04");
  EXPECT_EQ(clips.at(0).at("clipDuration"), "00:00:01:04");
  EXPECT_EQ(clips.at(0).at("movieFrames"), 30);
  EXPECT_EQ(clips.at(0).at("thumbnailPath"), folder / "clips/2004-07-15T13-30-45.thumbnails.dv");
  EXPECT_EQ(readText(clips.at(1).at("moviePath").get<std::string>()),
            readText(folder / "clips/2004-07-15T14-00-00.mov"));
}

TEST_F(CatalogueImport, ASessionIsImportedOnceUnderWhateverName) {
  const std::string session =
      writeSession("clips", "beach", {{"2004-07-15T13:30:45", "00:00:00:00", "00:00:03:24", "a"}});
  EXPECT_EQ(run("import", {"--tape", "Beach, 1st", session}).exitCode, 0);
  for (const Words& words : {Words{session}, Words{"--tape", "Beach, 1st", session}}) {
    const ProgramResult again = run("import", words);
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_NE(again.err.find("It is in the catalogue already"), std::string::npos) << again.err;
  }
  EXPECT_EQ(runJson("list").at("tapes").size(), 1U);
  EXPECT_EQ(clipsOf("Beach, 1st").size(), 1U);
}

TEST_F(CatalogueImport, RowsOfACsvThatTheTapeHoldsAreMarkedAndDated) {
  importHoliday();
  const json result =
      runJson("import", {write("best of.csv", std::string("\xEF\xBB\xBF") + "name;tape;in;out\r\n" +
                                                  "\"Dog; beach\";holiday;00:00:05:10;00:00:06:20\r\n")});
  EXPECT_EQ(result, (json{{"imported", 1}, {"clips", {"5"}}, {"skipped", json::array()}}));
  const json tape = runJson("show", {"--tape", "holiday"});
  ASSERT_EQ(tape.at("sequences").size(), 2U);
  EXPECT_EQ(tape.at("sequences").at(1).at("name"), "best of");
  const json& clip = tape.at("sequences").at(1).at("clips").at(0);
  EXPECT_EQ(clip.at("name"), "Dog; beach");
  EXPECT_EQ(clip.at("clipRecordingDate"), "2004-07-16T00:00:00") << "a second after the clip's first frame";
  EXPECT_EQ(clip.at("clipStartTimecode"), "00:00:05:10");
  EXPECT_EQ(clip.at("clipEndTimecode"), "00:00:06:19");
  EXPECT_EQ(clip.at("marked"), true);
  EXPECT_EQ(clip.at("moviePath"), nullptr);
}

TEST_F(CatalogueImport, WhatCannotBeRecapturedYetIsStoredAndToldByLine) {
  importHoliday();
  const std::string list =
      write("list.csv", std::string(kHeader) + "a,holiday,00:00:03:00,00:00:05:00\n" +
                            "b,holiday,00:00:00:00,00:00:01:00\n" + "c,winter,00:00:00:00,00:00:01:29\n");
  const json result = runJson("import", {list}, 3);
  EXPECT_EQ(result.at("imported"), 3);
  EXPECT_EQ(result.at("skipped"), json::array());
  ASSERT_EQ(result.at("unmarked").size(), 2U);
  EXPECT_EQ(result.at("unmarked").at(0).at("line"), 2);
  EXPECT_EQ(result.at("unmarked").at(0).at("clipId"), "5");
  EXPECT_EQ(result.at("unmarked").at(1).at("line"), 4);
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"6"}));
  const json winter = clipsOf("winter").at(0);
  EXPECT_EQ(winter.at("clipRecordingDate"), nullptr);
  EXPECT_EQ(winter.at("timebase"), 30);
  const ProgramResult again = run("import", {list});
  EXPECT_NE(again.err.find("list.csv: line 4: clip 10 cannot be recaptured yet: no captured clip of tape \"winter\""),
            std::string::npos)
      << again.err;
}

TEST_F(CatalogueImport, NothingIsImportedWhileARowIsWrong) {
  const std::string list = write("list.csv", std::string(kHeader) + "a,holiday,00:00:00:00,00:00:01:00\n" +
                                                 "b,holiday,00:61:00:00,00:00:01:00\nc,holiday,00:00:00:00\n");
  ProgramResult result = run("import", {list});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("list.csv: line 3: there is no timecode 00:61:00:00"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("list.csv: line 4: it has 3 fields"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("2 rows are wrong"), std::string::npos) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "tapes.db"));
  EXPECT_EQ(runJson("import", {list}, 1).at("imported"), 0);

  const json skipped = runJson("import", {"--skip-bad", list}, 3);
  EXPECT_EQ(skipped.at("imported"), 1);
  ASSERT_EQ(skipped.at("skipped").size(), 2U);
  EXPECT_EQ(skipped.at("skipped").at(1), (json{{"line", 4}, {"reason", "it has 3 fields, but the header has 4"}}));
  EXPECT_EQ(clipsOf("holiday").size(), 1U);
}

TEST_F(CatalogueImport, ReadsAnEdlWhoseReelsStandForTapes) {
  importHoliday();
  run("import",
      {writeSession("more", "Christmas at home", {{"2004-12-24T18:00:00", "00:00:00:00", "00:00:09:24", "x"}})});
  const std::string list = write("film.edl",
                                 "TITLE: Film\n"
                                 "FCM: NON-DROP FRAME\n"
                                 "001  HOLIDAY  V     C        00:00:00:00 00:00:01:00 01:00:00:00 01:00:01:00\n"
                                 "* FROM CLIP NAME: Beach\n"
                                 "002  CHRISTMA V     D    025 00:00:02:00 00:00:03:00 01:00:01:00 01:00:02:00\n"
                                 "003  BL       V     C        00:00:00:00 00:00:01:00 01:00:02:00 01:00:03:00\n"
                                 "004  R2       V     C        00:00:00:00 00:00:01:00 01:00:03:00 01:00:04:00\n"
                                 "* REEL R2 IS holiday\n");
  const json result = runJson("import", {list}, 3);
  EXPECT_EQ(result.at("imported"), 3);
  ASSERT_EQ(result.at("skipped").size(), 1U);
  EXPECT_EQ(result.at("skipped").at(0).at("line"), 6);
  EXPECT_EQ(result.count("unmarked"), 0U);
  EXPECT_EQ(clipsOf("holiday").at(4).at("name"), "Beach");
  EXPECT_EQ(clipsOf("holiday").at(5).at("name"), "004");
  EXPECT_EQ(clipsOf("Christmas at home").at(1).at("clipRecordingDate"), "2004-12-24T18:00:02");
}

TEST_F(CatalogueImport, TheTapeOfAListCanBeNamed) {
  importHoliday();
  const std::string one = write("one.csv", std::string(kHeader) + "a,reel 1,00:00:00:00,00:00:01:00\n");
  EXPECT_EQ(run("import", {"--tape", "holiday", one}).exitCode, 0);
  EXPECT_EQ(idsWith("holiday", "marked"), ids({"5"}));
  const std::string two = write(
      "two.csv", std::string(kHeader) + "a,reel 1,00:00:00:00,00:00:01:00\n" + "a,reel 2,00:00:00:00,00:00:01:00\n");
  const ProgramResult result = run("import", {"--tape", "holiday", two});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("\"reel 1\" and \"reel 2\""), std::string::npos) << result.err;
  EXPECT_EQ(clipsOf("holiday").size(), 5U);
}

TEST_F(CatalogueImport, RefusesWhatIsNoList) {
  std::filesystem::create_directory(folder / "clips");
  const Words lists{folder / "nowhere.csv",
                    folder / "clips",
                    write("empty.csv", ""),
                    write("header.csv", kHeader),
                    write("letter.txt", "Dear all,\nhow are you?\n"),
                    write("empty.edl", "TITLE: nothing\n"),
                    write("bad.csv", std::string(kHeader) + "a,,00:00:00:00,00:00:01:00\n"),
                    write("utf16.csv", std::string("\xFF\xFEn\0a\0", 6)),
                    write("movie.dv", std::string("\x1F\x07\x00\xBF", 4) + std::string(1000, '\0')),
                    write("cut.json", "{\"device\": \"tape:a.dv\", \"clips\": ["),
                    write("other.json", "{\"a\": 1}"),
                    write("tapeless.json", R"({"sequences": [{"name": "a", "clips": [{"timebase": 25}]}]})"),
                    writeSession("none", "none", {})};
  for (const std::string& list : lists) {
    const ProgramResult result = run("import", {"--skip-bad", list});
    EXPECT_EQ(result.exitCode, 1) << list;
    EXPECT_EQ(result.out, "") << list;
    EXPECT_NE(result.err.find(list), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder / "tapes.db")) << list;
  }
}

TEST_F(CatalogueImport, ACatalogueOfAnotherKindStaysAsItIs) {
  writeText(folder / "tapes.db", "my diary, not a catalogue at all, and longer than a header is\n");
  const std::string list = write("list.csv", std::string(kHeader) + "a,t,00:00:00:00,00:00:01:00\n");
  EXPECT_EQ(run("import", {list}).exitCode, 1);
  EXPECT_EQ(readText(folder / "tapes.db"), "my diary, not a catalogue at all, and longer than a header is\n");
}

}  // namespace
}  // namespace zq::test
