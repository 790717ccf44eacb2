// Exporting from the catalogue, as a user does it, and importing what came out.

#include <gtest/gtest.h>

#include <fstream>

#include "support/catalogue_program.h"

namespace zq::test {
namespace {

class CatalogueExport : public CatalogueProgram {
 protected:
  void SetUp() override { importHoliday(); }

  /// An import of the file into a catalogue of its own.
  void importElsewhere(const std::string& list, int exitCode) {
    const ProgramResult result =
        runDeckhand(folder, {"catalogue", "import", "--catalogue", folder / "elsewhere.db", list});
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
  }

  json elsewhere(const std::string& tape) {
    return json::parse(
        runDeckhand(folder, {"catalogue", "export", "--catalogue", folder / "elsewhere.db", "--tape", tape}).out,
        nullptr, false);
  }

  /// Without what only the place in a catalogue says.
  static json withoutIds(json tape) {
    for (json& sequence : tape.at("sequences")) {
      sequence.erase("sequenceId");
      for (json& clip : sequence.at("clips")) clip.erase("clipId");
    }
    return tape;
  }

  /// Name, first and last timecode, and timebase of each clip that has timecodes.
  static json ranges(const json& tape) {
    json list = json::array();
    for (const json& sequence : tape.at("sequences")) {
      for (const json& clip : sequence.at("clips")) {
        if (clip.at("clipStartTimecode").is_null() || clip.at("trashed") == true) continue;
        list.push_back(
            {clip.at("name"), clip.at("clipStartTimecode"), clip.at("clipEndTimecode"), clip.at("timebase")});
      }
    }
    return list;
  }
};

TEST_F(CatalogueExport, JsonIsAllThereIsAndComesBackAsItWas) {
  run("mark", {"--clip", "1"});
  run("trash", {"--clip", "3"});
  run("import", {write("list.csv", "name,tape,in,out\n\"a\nb\",holiday,00:00:00:00,00:00:01:00\n")});
  EXPECT_EQ(run("export", {"--tape", "holiday", "--output", folder / "out.json"}).out,
            folder / "out.json" + ": 5 clips\n");
  importElsewhere(folder / "out.json", 0);
  const json tape = runJson("show", {"--tape", "holiday"});
  EXPECT_EQ(json::parse(readText(folder / "out.json")), tape);
  EXPECT_EQ(withoutIds(elsewhere("holiday")), withoutIds(tape));
}

TEST_F(CatalogueExport, CsvHasARowForEachClipAndComesBack) {
  run("mark", {"--clip", "2"});
  run("trash", {"--clip", "3"});
  const ProgramResult result = run("export", {"--tape", "holiday", "--format", "csv"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out.rfind("name,tape,in,out,clipId,sequence,recordingDate,", 0), 0U) << result.out;
  EXPECT_NE(result.out.find("\nb,holiday,00:00:04:00,00:00:07:00,2,2004-07-15T13:30:45,2004-07-15T23:59:59,00:00:03:00,"
                            "25,1," +
                            folder / "clips/b.mov" + ",,,0,0,true,false\n"),
            std::string::npos)
      << result.out;
  EXPECT_EQ(result.out.find("\nc,"), std::string::npos) << "it is trashed";
  importElsewhere(write("out.csv", result.out), 3);
  const json again = elsewhere("holiday");
  EXPECT_EQ(ranges(again), ranges(runJson("show", {"--tape", "holiday"})));
  const json& clips = again.at("sequences").at(0).at("clips");
  EXPECT_EQ(clips.at(1).at("clipRecordingDate"), "2004-07-15T23:59:59");
  EXPECT_EQ(clips.at(1).at("marked"), true);
  EXPECT_EQ(clips.at(2).at("marked"), false) << "it has no date";
}

TEST_F(CatalogueExport, EdlHasAnEventForEachClipAndComesBack) {
  run("import", {"--tape", "Holiday 2004, second",
                 writeSession("ntsc", "ntsc",
                              {{"2004-07-20T00:00:00", "00:00:58:00", "00:00:59:29", "n"},
                               {"2004-07-21T00:00:00", "00:01:00:02", "00:01:01:05", "m"}})});
  const ProgramResult result = run("export", {"--tape", "Holiday 2004, second", "--format", "edl"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "TITLE: Holiday 2004, second\n"
            "FCM: DROP FRAME\n"
            "* REEL HOLIDAY2 IS Holiday 2004, second\n"
            "001  HOLIDAY2 AA/V  C        00:00:58:00 00:01:00:02 01:00:00:00 01:00:02:00\n"
            "* FROM CLIP NAME: n\n"
            "002  HOLIDAY2 AA/V  C        00:01:00:02 00:01:01:06 01:00:02:00 01:00:03:04\n"
            "* FROM CLIP NAME: m\n");
  importElsewhere(write("out.edl", result.out), 3);
  EXPECT_EQ(ranges(elsewhere("Holiday 2004, second")), ranges(runJson("show", {"--tape", "Holiday 2004, second"})));
  // In the catalogue that it came from, the clips are found on their tape.
  const json back = runJson("import", {folder / "out.edl"});
  EXPECT_EQ(back.at("imported"), 2);
  EXPECT_EQ(idsWith("Holiday 2004, second", "marked"), back.at("clips"));
}

TEST_F(CatalogueExport, TapesWithNamesAlikeHaveDifferentReels) {
  const auto importTape = [&](const std::string& tape) {
    run("import", {"--tape", tape,
                   writeSession("of " + tape, "x", {{"2004-07-15T13:30:45", "00:00:00:00", "00:00:03:24", "a"}})});
  };
  importTape("Holidays in July, first");
  importTape("Holidays in July, second");
  EXPECT_NE(run("export", {"--tape", "Holidays in July, first", "--format", "edl"}).out.find("* REEL HOLIDAYS IS"),
            std::string::npos);
  EXPECT_NE(run("export", {"--tape", "Holidays in July, second", "--format", "edl"}).out.find("* REEL HOLIDAY2 IS"),
            std::string::npos);
}

TEST_F(CatalogueExport, OnlyTheMarkedOnesWhenAsked) {
  run("mark", {"--clip", "2"});
  const json tape = json::parse(run("export", {"--tape", "holiday", "--marked"}).out);
  ASSERT_EQ(tape.at("sequences").size(), 1U);
  ASSERT_EQ(tape.at("sequences").at(0).at("clips").size(), 1U);
  EXPECT_EQ(tape.at("sequences").at(0).at("clips").at(0).at("clipId"), "2");
  const std::string edl = run("export", {"--tape", "holiday", "--marked", "--format", "edl"}).out;
  EXPECT_NE(edl.find("\n001  "), std::string::npos) << edl;
  EXPECT_EQ(edl.find("\n002  "), std::string::npos) << edl;
}

TEST_F(CatalogueExport, ClipsThatAListCannotHoldAreLeftOutAndTold) {
  run("import", {writeSession("odd", "odd",
                              {{"2004-07-15T13:30:45", "00:00:00:00", "00:00:00:24", "good"},
                               {"2004-07-15T14:00:00", "", "", "untimed"},
                               {"2004-07-15T15:00:00", "00:00:05:00", "00:00:04:00", "back"},
                               {"2004-07-15T16:00:00", "00:99:00:00", "00:99:00:01", "wild"}})});
  for (const char* format : {"csv", "edl"}) {
    const ProgramResult result = run("export", {"--tape", "odd", "--format", format});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.err.find("clip 6 is left out: it has no timecodes"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("clip 7 is left out: its timecodes run backwards"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("clip 8 is left out: its timecodes are none of a clock"), std::string::npos);
    EXPECT_EQ(run("import", {write(std::string("odd.") + format, result.out)}).exitCode, 0);
  }
  const json told = runJson("export", {"--tape", "odd", "--format", "csv", "--output", folder / "odd2.csv"}, 3);
  EXPECT_EQ(told.at("output"), folder / "odd2.csv");
  EXPECT_EQ(told.at("skipped").size(), 3U);
}

TEST_F(CatalogueExport, AFileThatExistsIsNotTouched) {
  writeText(folder / "mine.json", "mine");
  const ProgramResult result = run("export", {"--tape", "holiday", "--output", folder / "mine.json"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("mine.json exists already"), std::string::npos) << result.err;
  EXPECT_EQ(readText(folder / "mine.json"), "mine");
  EXPECT_EQ(run("export", {"--tape", "holiday", "--output", folder / "no/such.json"}).exitCode, 1);
}

TEST_F(CatalogueExport, WhatIsLeftOfADamagedCatalogueIsSaved) {
  // Enough clips for many pages, one of which is lost.
  std::string list = "name,tape,in,out\n";
  for (int i = 0; i < 900; ++i) list += "clip " + std::to_string(i) + ",winter,00:00:01:00,00:00:02:00\n";
  run("import", {write("list.csv", list)});
  std::string bytes = readText(folder / "tapes.db");
  const std::size_t page = bytes.find("clip 450") / 4096 * 4096;
  writeText(folder / "tapes.db", bytes.replace(page, 4096, std::string(4096, '\0')));
  for (const Words& words : {Words{"show", "--tape", "winter"}, Words{"export", "--tape", "winter"}}) {
    const ProgramResult result = run(words[0], Words(words.begin() + 1, words.end()));
    EXPECT_EQ(result.exitCode, 3) << words[0] << result.err;
    EXPECT_NE(result.err.find("damaged"), std::string::npos) << result.err;
    EXPECT_NE(result.out.find("winter"), std::string::npos) << result.out;
  }
  importElsewhere(write("rest.json", run("export", {"--tape", "winter"}).out), 0);
  const std::size_t saved = elsewhere("winter").at("sequences").at(0).at("clips").size();
  EXPECT_LT(saved, 900U);
  EXPECT_GT(saved, 700U);
}

}  // namespace
}  // namespace zq::test
