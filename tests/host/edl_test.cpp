#include "host/edl.h"

#include <gtest/gtest.h>

#include <random>

#include "host/batch_list_text.h"
#include "host/edl_reels.h"
#include "host/edl_writer.h"
#include "timecode/timecode_text.h"

namespace zq::host {
namespace {

constexpr char kTimes[] = " 00:00:01:00 00:00:02:00 01:00:00:00 01:00:01:00\n";

std::string onlyBadLine(const std::string& text) {
  const BatchList list = parseEdl(text);
  EXPECT_EQ(list.bad.size(), 1U) << text;
  return list.bad.empty() ? "" : std::to_string(list.bad[0].line) + ": " + list.bad[0].reason;
}

TEST(Edl, ReadsEventsWithTheirNames) {
  const BatchList list = parseEdl(
      "TITLE: Holiday film\r\n"
      "FCM: NON-DROP FRAME\r\n"
      "\r\n"
      "001  TAPE7    V     C        00:00:01:00 00:00:02:00 01:00:00:00 01:00:01:00\r\n"
      "* FROM CLIP NAME:  Beach with dog \r\n"
      "* a remark\r\n"
      "002  TAPE8    AA/V  C        10:00:00:05 10:00:01:00 01:00:01:00 01:00:01:20\r\n");
  EXPECT_TRUE(list.bad.empty());
  ASSERT_EQ(list.rows.size(), 2U);
  EXPECT_EQ(list.timebase, 25);
  EXPECT_EQ(list.rows[0].line, 4);
  EXPECT_EQ(list.rows[0].name, "Beach with dog");
  EXPECT_EQ(list.rows[0].tape, "TAPE7");
  EXPECT_EQ(timecodeText(list.rows[0].in), "00:00:01:00");
  EXPECT_EQ(timecodeText(list.rows[0].last(25)), "00:00:01:24");
  EXPECT_EQ(list.rows[1].name, "002") << "an event without a name has its number";
  EXPECT_EQ(list.rows[1].tape, "TAPE8");
}

TEST(Edl, ACommentTellsTheTapeOfAReelWhereverItStands) {
  const BatchList list = parseEdl(std::string("001 HOLIDAY2 V C") + kTimes + "* REEL HOLIDAY2 IS Holiday 2004, 2nd\n" +
                                  "002 OTHER V C" + kTimes);
  ASSERT_EQ(list.rows.size(), 2U);
  EXPECT_EQ(list.rows[0].tape, "Holiday 2004, 2nd");
  EXPECT_EQ(list.rows[1].tape, "OTHER");
}

TEST(Edl, KnowsTheTransitions) {
  for (const char* words : {"V C", "B D 025", "A2/V W001 030", "V K B", "V K 010", "V K B 010", "AA K O", "NONE C"}) {
    EXPECT_EQ(parseEdl(std::string("001 T ") + words + kTimes).rows.size(), 1U) << words;
  }
  EXPECT_EQ(onlyBadLine(std::string("001 T V X") + kTimes), "1: there is no transition \"X\", only C, D, W and K");
  EXPECT_EQ(onlyBadLine(std::string("001 T V D") + kTimes), "1: the transition D wants one duration in frames");
  EXPECT_EQ(onlyBadLine(std::string("001 T V C 025") + kTimes), "1: a cut (C) has no duration");
  EXPECT_EQ(onlyBadLine(std::string("001 T Q C") + kTimes), "1: there is no track \"Q\"");
}

TEST(Edl, ATransitionNamesBothOfItsClips) {
  const BatchList list = parseEdl(
      "002 T1 V C     00:00:09:00 00:00:10:00 01:00:00:00 01:00:01:00\n"
      "002 T2 V D 025 00:00:20:00 00:00:22:00 01:00:01:00 01:00:03:00\n"
      "* FROM CLIP NAME: old\n"
      "* TO CLIP NAME: new\n");
  ASSERT_EQ(list.rows.size(), 2U);
  EXPECT_EQ(list.rows[0].name, "old");
  EXPECT_EQ(list.rows[1].name, "new");
}

TEST(Edl, ThePlaceWhereATransitionBeginsIsNoClip) {
  const BatchList list = parseEdl(
      "002 T1 V C     00:00:10:00 00:00:10:00 01:00:01:00 01:00:01:00\n"
      "002 T2 V D 025 00:00:20:00 00:00:22:00 01:00:01:00 01:00:03:00\n"
      "003 T1 V C     00:00:10:00 00:00:10:00 01:00:03:00 01:00:03:00\n");
  ASSERT_EQ(list.rows.size(), 1U);
  EXPECT_EQ(list.rows[0].tape, "T2");
  ASSERT_EQ(list.leftOut.size(), 1U);
  EXPECT_EQ(list.leftOut[0].line, 1);
  ASSERT_EQ(list.bad.size(), 1U) << "alone, an event without length is wrong";
  EXPECT_EQ(list.bad[0].line, 3);
}

TEST(Edl, BlackIsOnNoTape) {
  const BatchList list = parseEdl(std::string("001 BL V C") + kTimes + "002 T V C" + kTimes);
  EXPECT_EQ(list.rows.size(), 1U);
  ASSERT_EQ(list.leftOut.size(), 1U);
  EXPECT_EQ(list.leftOut[0].line, 1);
}

TEST(Edl, TellsWhatIsWrongWithALine) {
  EXPECT_EQ(onlyBadLine("TITLE: x\n001 T V C 00:00:01:00 00:00:02:00\n"),
            "2: an event has a number, a reel, a track, a transition and four timecodes, and this has 6 parts");
  EXPECT_EQ(onlyBadLine("001 T V C 00:00:01:00 00:00:02 01:00:00:00 01:00:01:00\n"),
            "1: source out \"00:00:02\" is not a timecode HH:MM:SS:FF");
  EXPECT_EQ(onlyBadLine("001 T V C 00:61:01:00 01:00:02:00 01:00:00:00 01:00:01:00\n"),
            "1: there is no timecode 00:61:01:00 (\"in\") at 25 frames per second");
  EXPECT_EQ(onlyBadLine("001 T V C 00:00:02:00 00:00:01:00 01:00:00:00 01:00:01:00\n"),
            "1: out 00:00:01:00 is not after in 00:00:02:00");
  EXPECT_EQ(onlyBadLine(std::string("OO1 T V C") + kTimes), "1: it has the timecodes of an event, but no event number");
  EXPECT_EQ(onlyBadLine("FCM: SOME FRAME\n"),
            "1: the frame code \"SOME FRAME\" is neither DROP FRAME nor NON-DROP FRAME");
  EXPECT_EQ(onlyBadLine(std::string("001 T V C") + kTimes + "* FROM CLIP NAME: Caf\xE9\n"), "2: its text is not UTF-8");
}

// A line that begins with a digit is an event, good or told.
TEST(Edl, TellsOfEachEventOfAnyListWhetherItIsGood) {
  const std::vector<std::string> words{"001",
                                       "002",
                                       "T",
                                       "BL",
                                       "V",
                                       "C",
                                       "D",
                                       "W1",
                                       "K",
                                       "025",
                                       "00:00:01:00",
                                       "00:00:02:00",
                                       "00:99:00:00",
                                       "*",
                                       "FCM:",
                                       "DROP",
                                       "FROM CLIP NAME:",
                                       "REEL T IS",
                                       "M2",
                                       "\xFF"};
  for (std::uint32_t seed = 1; seed <= 500; ++seed) {
    std::mt19937 random(seed);
    std::string text;
    std::size_t events = 0;
    for (auto lines = random() % 12; lines > 0; --lines) {
      std::string line;
      for (auto length = random() % 11; length > 0; --length) line += words[random() % words.size()] + " ";
      if (random() % 2 == 0) line = "003 T V C 00:00:01:00 00:00:02:00 00:00:01:00 00:00:02:00";
      if (!line.empty() && line[0] >= '0' && line[0] <= '9') ++events;
      text += line + "\n";
    }
    const BatchList list = parseEdl(text);
    EXPECT_GE(list.rows.size() + list.bad.size() + list.leftOut.size(), events) << "seed " << seed << "\n" << text;
  }
}

TEST(Edl, NotesToTheMachineAreNoEvents) {
  const BatchList list = parseEdl(std::string("001 T V C") + kTimes +
                                  "M2   T       050.0       00:00:01:00\n"
                                  "SPLIT:    AUDIO DELAY=  00:00:00:05\n"
                                  ">>> SOURCE T T\nAUD  3\n");
  EXPECT_EQ(list.rows.size(), 1U);
  EXPECT_TRUE(list.bad.empty());
}

TEST(Edl, DropFrameIs30FramesPerSecondAndItsOutSkipsNumbers) {
  const BatchList list = parseEdl(
      "FCM: DROP FRAME\n"
      "001 T V C 00:00:59:00 00:01:00:02 01:00:00:00 01:00:01:00\n"
      "002 T V C 00:09:59;00 00:10:00;02 01:00:00;00 01:00:01;02\n");
  ASSERT_EQ(list.rows.size(), 2U);
  EXPECT_EQ(list.timebase, 30);
  EXPECT_EQ(timecodeText(list.rows[0].last(30)), "00:00:59:29");
  EXPECT_EQ(timecodeText(list.rows[1].last(30)), "00:10:00:01") << "the tenth minute has all numbers";
}

TEST(EdlReels, AreEightLettersAndDigits) {
  EXPECT_EQ(plainReelName("Holiday 2004"), "HOLIDAY2");
  EXPECT_EQ(plainReelName("TAPE7"), "TAPE7");
  EXPECT_EQ(plainReelName("日本"), "TAPE");
  EXPECT_EQ(plainReelName("BL"), "TAPEBL") << "BL is black in a list";
}

TEST(EdlReels, AreAllDifferent) {
  const std::vector<std::string> tapes{"Holiday 2004 a", "Holiday 2004 b", "holiday2", "HOLIDAY3", "BL", "日", "本"};
  EXPECT_EQ(reelNames(tapes),
            (std::vector<std::string>{"HOLIDAY2", "HOLIDAY4", "HOLIDAY5", "HOLIDAY3", "TAPEBL", "TAPE", "TAPE2"}));
}

TEST(EdlReels, StayWhenTapesAreAdded) {
  std::vector<std::string> tapes;
  std::vector<std::string> before;
  for (int i = 0; i < 120; ++i) {
    tapes.push_back("Holiday number " + std::to_string(i));
    const std::vector<std::string> reels = reelNames(tapes);
    EXPECT_EQ(std::vector<std::string>(reels.begin(), reels.end() - 1), before);
    for (const std::string& reel : reels) EXPECT_LE(reel.size(), 8U);
    before = reels;
  }
}

TEST(EdlWriter, WritesEventsOneAfterTheOther) {
  EXPECT_EQ(edlText("Holiday 2004", "HOLIDAY2", 25,
                    {{"Beach", timecodeAt(25, 25), timecodeAt(49, 25)}, {"", timecodeAt(0, 25), timecodeAt(0, 25)}}),
            "TITLE: Holiday 2004\n"
            "FCM: NON-DROP FRAME\n"
            "* REEL HOLIDAY2 IS Holiday 2004\n"
            "001  HOLIDAY2 AA/V  C        00:00:01:00 00:00:02:00 01:00:00:00 01:00:01:00\n"
            "* FROM CLIP NAME: Beach\n"
            "002  HOLIDAY2 AA/V  C        00:00:00:00 00:00:00:01 01:00:01:00 01:00:01:01\n");
}

TEST(EdlWriter, LeavesTheNumbersOutThatDropFrameSkips) {
  const SMPTETime first = *timecodeOf("00:00:00:00");
  const SMPTETime last = *timecodeOf("00:00:59:29");
  EXPECT_EQ(edlText("T", "T", 30, {{"", first, last}, {"", first, *timecodeOf("00:01:00:02")}}),
            "TITLE: T\n"
            "FCM: DROP FRAME\n"
            "001  T        AA/V  C        00:00:00:00 00:01:00:02 01:00:00:00 01:01:00:02\n"
            "002  T        AA/V  C        00:00:00:00 00:01:00:03 01:01:00:02 01:02:00:05\n");
}

TEST(EdlWriter, ATapeWithANumberThatDropFrameSkipsCountsWithoutIt) {
  const std::string text = edlText("T", "T", 30, {{"", *timecodeOf("00:00:59:00"), *timecodeOf("00:01:00:00")}});
  EXPECT_NE(text.find("FCM: NON-DROP FRAME\n"), std::string::npos) << text;
  EXPECT_NE(text.find(" 00:00:59:00 00:01:00:01 "), std::string::npos) << text;
}

TEST(EdlWriter, ANameOfSeveralLinesIsOneLine) {
  const std::string text = edlText("a\nb", "AB", 25, {{"c\r\nd", timecodeAt(0, 25), timecodeAt(0, 25)}});
  EXPECT_NE(text.find("TITLE: a b\n"), std::string::npos) << text;
  EXPECT_NE(text.find("* FROM CLIP NAME: c  d\n"), std::string::npos) << text;
}

TEST(EdlWriter, WhatIsWrittenIsReadAgain) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    const int timebase = random() % 2 == 0 ? 25 : 30;
    // Around full minutes, where drop frame skips numbers, and at both ends of the day.
    const std::int64_t day = std::int64_t{86400} * timebase;
    std::vector<EdlEvent> events;
    for (auto count = random() % 5 + 1; count > 0; --count) {
      const std::int64_t minute = static_cast<std::int64_t>(random() % 1440) * 60 * timebase;
      const std::int64_t first = std::max<std::int64_t>(0, minute - static_cast<std::int64_t>(random() % 40));
      const std::int64_t last = std::min<std::int64_t>(day - 1, first + static_cast<std::int64_t>(random() % 80));
      events.push_back({"clip " + std::to_string(count), timecodeAt(first, timebase), timecodeAt(last, timebase)});
    }
    const BatchList list = parseEdl(edlText("Tape one", "TAPEONE", timebase, events));
    EXPECT_TRUE(list.bad.empty()) << "seed " << seed;
    ASSERT_EQ(list.rows.size(), events.size()) << "seed " << seed;
    for (std::size_t i = 0; i < events.size(); ++i) {
      EXPECT_EQ(list.rows[i].name, events[i].name);
      EXPECT_EQ(list.rows[i].tape, "Tape one");
      EXPECT_EQ(timecodeText(list.rows[i].in), timecodeText(events[i].first)) << "seed " << seed;
      EXPECT_EQ(timecodeText(list.rows[i].last(timebase)), timecodeText(events[i].last)) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace zq::host
