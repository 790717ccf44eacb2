#include "host/batch_list.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "host/batch_list_text.h"
#include "host/csv.h"
#include "support/program.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

constexpr char kHeader[] = "name,tape,in,out\n";

BatchList parsed(const std::string& text) {
  auto list = parseCsvList(text);
  EXPECT_TRUE(list.ok()) << (list.ok() ? "" : list.error().text());
  return list.ok() ? list.value() : BatchList();
}

/// "line: reason" of the only bad row.
std::string onlyBadRow(const std::string& text) {
  const BatchList list = parsed(text);
  EXPECT_EQ(list.bad.size(), 1U);
  return list.bad.empty() ? "" : std::to_string(list.bad[0].line) + ": " + list.bad[0].reason;
}

std::string refusalOf(const std::string& text) {
  const auto list = parseCsvList(text);
  EXPECT_FALSE(list.ok());
  return list.ok() ? "" : list.error().text();
}

TEST(BatchListCsv, ReadsTheColumnsInAnyOrderAmongOthers) {
  const BatchList list = parsed("Rating, OUT,tape,Name,in\n5,00:00:02:00,holiday,Beach,00:00:01:00\n");
  ASSERT_EQ(list.rows.size(), 1U);
  const BatchRow& row = list.rows[0];
  EXPECT_EQ(row.line, 2);
  EXPECT_EQ(row.name, "Beach");
  EXPECT_EQ(row.tape, "holiday");
  EXPECT_EQ(timecodeText(row.in), "00:00:01:00");
  EXPECT_EQ(timecodeText(row.out), "00:00:02:00");
  EXPECT_EQ(timecodeText(row.last(25)), "00:00:01:24") << "out is the frame after the last one";
  EXPECT_EQ(timecodeText(row.last(30)), "00:00:01:29");
}

TEST(BatchListCsv, RecognisesSemicolonsAndTabs) {
  for (const std::string separator : {";", "\t"}) {
    std::string text = "name,tape,in,out\nBeach, with dog,holiday,00:00:01:00,00:00:02:00\n";
    text.replace(text.find(", with"), 1, "&");
    for (char& c : text) c = c == ',' ? separator[0] : c == '&' ? ',' : c;
    const BatchList list = parsed(text);
    ASSERT_EQ(list.rows.size(), 1U) << separator;
    EXPECT_EQ(list.rows[0].name, "Beach, with dog");
  }
}

TEST(BatchListCsv, AHeaderThatLacksAColumnIsRefusedByName) {
  EXPECT_NE(refusalOf("name,tape,in\nBeach,holiday,00:00:01:00\n").find("line 1: there is no column \"out\""),
            std::string::npos);
  EXPECT_NE(refusalOf("Beach,holiday,00:00:01:00,00:00:02:00\n").find("\"tape\""), std::string::npos);
  EXPECT_NE(refusalOf("name,tape,in,out,Tape\n").find("\"tape\" stands there twice"), std::string::npos);
  EXPECT_NE(refusalOf("\"name,tape,in,out\n").find("never closed"), std::string::npos);
  EXPECT_NE(refusalOf("").find("empty"), std::string::npos);
}

TEST(BatchListCsv, TellsWhatIsWrongWithARowByItsLine) {
  const std::string header = kHeader;
  const std::string good = "a,holiday,00:00:01:00,00:00:02:00\n";
  EXPECT_EQ(onlyBadRow(header + good + "b,holiday,00:61:00:00,00:00:02:00\n"),
            "3: there is no timecode 00:61:00:00 (\"in\") at 25 frames per second");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,00:00:01:00,00:00:02:30\n"),
            "2: there is no timecode 00:00:02:30 (\"out\") at 25 frames per second");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,00:00:02:00,00:00:02:00\n"),
            "2: out 00:00:02:00 is not after in 00:00:02:00");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,1:2,00:00:02:00\n"), "2: in \"1:2\" is not a timecode HH:MM:SS:FF");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,00:00:01:00,\n"), "2: out \"\" is not a timecode HH:MM:SS:FF");
  EXPECT_EQ(onlyBadRow(header + "b,,00:00:01:00,00:00:02:00\n" + good), "2: no tape is named");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,00:00:01:00\n"), "2: it has 3 fields, but the header has 4");
  EXPECT_EQ(onlyBadRow(header + "b,holiday,00:00:01:00,00:00:02:00,more\n"),
            "2: it has 5 fields, but the header has 4");
  EXPECT_EQ(onlyBadRow(header + "b\"c,holiday,00:00:01:00,00:00:02:00\n"),
            "2: a quotation mark stands inside a field that does not begin with one");
  EXPECT_EQ(onlyBadRow(header + "Caf\xE9,holiday,00:00:01:00,00:00:02:00\n" + good), "2: its text is not UTF-8");
  EXPECT_EQ(onlyBadRow(header + "b,\"hol\niday\",00:00:01:00,00:00:02:00\n"),
            "2: the tape's name has a line end or a control character in it");
}

TEST(BatchListCsv, TellsBadRowsInTheirOrderAndKeepsTheGoodOnes) {
  const BatchList list = parsed(std::string(kHeader) + "b,holiday,00:61:00:00,00:00:02:00\nc,holiday\n" +
                                "a,holiday,00:00:01:00,00:00:02:00\nd,,00:00:01:00,00:00:02:00\n");
  ASSERT_EQ(list.bad.size(), 3U);
  EXPECT_EQ(list.bad[0].line, 2);
  EXPECT_EQ(list.bad[1].line, 3);
  EXPECT_EQ(list.bad[2].line, 5);
  ASSERT_EQ(list.rows.size(), 1U);
  EXPECT_EQ(list.rows[0].name, "a");
}

TEST(BatchListCsv, IsOf25FramesPerSecondUnlessAFrameNumberOrDropFrameSaysOtherwise) {
  const std::string header = kHeader;
  EXPECT_EQ(parsed(header + "a,t,00:00:01:00,00:00:02:24\n").timebase, 25);
  EXPECT_EQ(parsed(header + "a,t,00:00:01:00,00:00:02:25\n").timebase, 30);
  EXPECT_EQ(parsed(header + "a,t,00:00:01;00,00:00:02;00\n").timebase, 30);
  const BatchList wrongFrame = parsed(header + "a,t,00:00:01:00,00:00:02:99\nb,t,00:00:01:00,00:00:02:00\n");
  EXPECT_EQ(wrongFrame.timebase, 25) << "a number that no system has says nothing of the system";
  EXPECT_EQ(wrongFrame.bad.size(), 1U);
}

TEST(BatchListCsv, ARowMaySayItsTimebaseAndDate) {
  const BatchList list = parsed(
      "name,tape,in,out,timebase,recordingDate\n"
      "a,t,00:00:01:29,00:00:02:00,30,2004-07-15T13:30:45\n"
      "b,t,00:00:01:00,00:00:02:00,,15.07.2004\n"
      "c,t,00:00:01:27,00:00:02:00,25,\n");
  ASSERT_EQ(list.rows.size(), 2U);
  EXPECT_EQ(list.rows[0].timebase, 30);
  ASSERT_NE(list.rows[0].recordingDate, nullptr);
  EXPECT_EQ(list.rows[0].recordingDate->isoString(), "2004-07-15T13:30:45");
  EXPECT_EQ(list.rows[1].recordingDate, nullptr);
  EXPECT_EQ(list.timebase, 25) << "of the rows that do not say theirs";
  ASSERT_EQ(list.bad.size(), 1U);
  EXPECT_EQ(list.bad[0].reason, "there is no timecode 00:00:01:27 (\"in\") at 25 frames per second");
}

// Whatever a list consists of, each of its rows is good or told, and none is both.
TEST(BatchListCsv, TellsOfEachRowOfAnyListWhetherItIsGood) {
  const std::vector<std::string> pieces{",",           ",",           ",",   ",", "\n",   "\n", "\"",
                                        "00:00:01:00", "00:00:02:00", "99:", "t", "\xE9", ";"};
  for (std::uint32_t seed = 1; seed <= 500; ++seed) {
    std::mt19937 random(seed);
    std::string text = kHeader;
    for (auto length = random() % 60; length > 0; --length) text += pieces[random() % pieces.size()];
    const BatchList list = parsed(text);
    std::set<int> lines;
    for (const BatchRow& row : list.rows) EXPECT_TRUE(lines.insert(row.line).second) << "seed " << seed << text;
    for (const ListRemark& row : list.bad) EXPECT_TRUE(lines.insert(row.line).second) << "seed " << seed << text;
    EXPECT_EQ(lines.size(), parseCsv(text, ',').size() - 1) << "seed " << seed << text;
  }
}

TEST(BatchListCsv, TheEndOfTheDayMayBeAnOut) {
  const BatchList list = parsed(std::string(kHeader) + "a,t,23:59:59:00,24:00:00:00\nb,t,24:00:00:00,24:00:00:01\n");
  ASSERT_EQ(list.rows.size(), 1U);
  EXPECT_EQ(timecodeText(list.rows[0].last(25)), "23:59:59:24");
  EXPECT_EQ(list.bad.size(), 1U);
}

TEST(BatchList, TellsTheKindByTheContentFirst) {
  EXPECT_EQ(listKindOf("list.csv", " \n{\"device\": 1}"), ListKind::json);
  EXPECT_EQ(listKindOf("list.txt", "TITLE: x\n"), ListKind::edl);
  EXPECT_EQ(listKindOf("list.txt", "001  T  V  C  00:00:00:00 00:00:01:00 00:00:00:00 00:00:01:00\n"), ListKind::edl);
  EXPECT_EQ(listKindOf("list.EDL", "* a comment\n"), ListKind::edl);
  EXPECT_EQ(listKindOf("list.json", "oops"), ListKind::json);
  EXPECT_EQ(listKindOf("list.txt", "name,tape,in,out\n"), ListKind::csv);
}

TEST(BatchListText, KnowsUtf8) {
  for (const char* text : {"", "a", "ü", "日本", "\xF0\x9F\x93\xBC", "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isPlainText(text)) << text;
  }
  for (const char* text : {"\x80", "\xC3", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                           "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "a\xFF", "\xE2\x82"}) {
    EXPECT_FALSE(isPlainText(text)) << text;
  }
  EXPECT_FALSE(isPlainText(std::string_view("a\0b", 3)));
}

TEST(BatchListText, ReadsDatesOfTheCalendarOnly) {
  ASSERT_NE(dateOf("2004-02-29T23:59:59"), nullptr);
  EXPECT_EQ(dateOf("2004-02-29T23:59:59")->isoString(), "2004-02-29T23:59:59");
  for (const char* text : {"", "2004-02-29", "2003-02-29T00:00:00", "2004-13-01T00:00:00", "2004-00-01T00:00:00",
                           "2004-01-01T24:00:00", "2004-01-01T00:60:00", "2004-1-01T00:00:00", "2004-01-01 00:00:00",
                           "2004-01-01T00:00:00Z", "-004-01-01T00:00:00"}) {
    EXPECT_EQ(dateOf(text), nullptr) << text;
  }
}

TEST(BatchListText, ReadsTimecodes) {
  ASSERT_TRUE(timecodeOf("1:02:03:04"));
  EXPECT_EQ(timecodeText(*timecodeOf("1:02:03:04")), "01:02:03:04");
  EXPECT_TRUE(timecodeOf("01:02:03;04"));
  for (const char* text : {"", "01:02:03", "01:02:03:04:05", "01;02:03:04", "-1:02:03:04", "01:02:03:", "a:b:c:d",
                           "01:02:03:04 ", "99999:00:00:00"}) {
    EXPECT_FALSE(timecodeOf(text)) << text;
  }
}

TEST(BatchListText, CountsFramesBothWays) {
  for (const int timebase : {25, 30}) {
    for (const std::int64_t frames : {0, 1, 24, 25, 29, 30, 107999, 108000, 2159999, 2591999}) {
      EXPECT_EQ(framesTo(timecodeAt(frames, timebase), timebase), frames);
    }
  }
  EXPECT_EQ(timecodeAt(0, 25).mType, 1U);
  EXPECT_EQ(timecodeAt(0, 30).mType, 2U);
}

TEST(BatchListText, AFileLosesItsByteOrderMark) {
  const test::ProgramFolder folder;
  test::writeText(folder / "list.csv", "\xEF\xBB\xBFname");
  const auto text = readListFile(folder / "list.csv");
  ASSERT_TRUE(text.ok());
  EXPECT_EQ(text.value(), "name");
  EXPECT_FALSE(readListFile(folder / "nowhere.csv").ok());
  EXPECT_FALSE(readListFile(folder.path()).ok());
}

}  // namespace
}  // namespace zq::host
