#include "host/catalogue_export.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "host/batch_list.h"
#include "host/batch_list_dating.h"
#include "host/batch_list_text.h"
#include "host/text.h"

namespace zq::host {
namespace {

/// Any clip that a list can hold.
CatalogueClip randomClip(std::mt19937& random) {
  const std::vector<std::string> pieces{",", ";", "\t", "\"", "\n", "\r\n", " ", "a", "ü", "日", "\xF0\x9F\x93\xBC"};
  CatalogueClip clip;
  clip.timebase = random() % 2 == 0 ? 25 : 30;
  for (auto length = random() % 6; length > 0; --length) clip.name += pieces[random() % pieces.size()];
  const auto day = static_cast<std::int64_t>(86400) * clip.timebase;
  std::uniform_int_distribution<std::int64_t> anyFrame(0, day - 1);
  const std::int64_t first = anyFrame(random);
  const std::int64_t last = random() % 2 == 0 ? std::max(first, anyFrame(random)) : std::min(day - 1, first + 2);
  clip.startTimecode = timecodeAt(first, clip.timebase);
  clip.endTimecode = timecodeAt(last, clip.timebase);
  clip.duration = timecodeAt(last - first, clip.timebase);
  if (random() % 3 != 0) {
    clip.recordingDate = std::make_shared<const CalendarDate>(2004, 7, static_cast<int>(random() % 31 + 1),
                                                              static_cast<int>(random() % 24), 30, 45);
    clip.marked = true;
  }
  return clip;
}

TEST(ExportedTape, WhatIsExportedAsCsvIsReadAgain) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    CatalogueTape tape{
        1, random() % 2 == 0 ? "holiday" : "Jülich, \"1st\"; a", {{1, "one", {}}, {2, "two, three", {}}}};
    std::vector<CatalogueClip> clips;
    for (auto count = random() % 6 + 1; count > 0; --count) {
      clips.push_back(randomClip(random));
      tape.sequences[count % 2 == 0 ? 1 : 0].clips.push_back(clips.back());
    }
    clips = tape.sequences[0].clips;
    clips.insert(clips.end(), tape.sequences[1].clips.begin(), tape.sequences[1].clips.end());
    const ExportedTape exported = exportCsv(tape);
    EXPECT_EQ(exported.clips, static_cast<std::int64_t>(clips.size()));
    const auto list = parseCsvList(exported.text);
    ASSERT_TRUE(list.ok()) << list.error().text();
    EXPECT_TRUE(list.value().bad.empty()) << "seed " << seed << " " << list.value().bad[0].reason;
    ASSERT_EQ(list.value().rows.size(), clips.size()) << "seed " << seed << "\n" << exported.text;
    for (std::size_t i = 0; i < clips.size(); ++i) {
      EXPECT_EQ(list.value().rows[i].tape, tape.name);
      const CatalogueClip again = placeRow(list.value().rows[i], list.value().timebase, nullptr).clip;
      EXPECT_EQ(again.name, clips[i].name) << "seed " << seed;
      EXPECT_EQ(again.timebase, clips[i].timebase) << "seed " << seed;
      EXPECT_EQ(again.startTimecode, clips[i].startTimecode) << "seed " << seed;
      EXPECT_EQ(again.endTimecode, clips[i].endTimecode) << "seed " << seed;
      EXPECT_EQ(again.duration, clips[i].duration) << "seed " << seed;
      EXPECT_EQ(textOf(again.recordingDate), textOf(clips[i].recordingDate)) << "seed " << seed;
      EXPECT_EQ(again.marked, clips[i].marked) << "seed " << seed;
    }
  }
}

TEST(ExportedTape, AnEdlHoldsOneSystem) {
  CatalogueClip pal;
  pal.id = 1;
  pal.startTimecode = pal.endTimecode = timecodeAt(0, 25);
  CatalogueClip ntsc;
  ntsc.id = 2;
  ntsc.timebase = 30;
  ntsc.startTimecode = ntsc.endTimecode = timecodeAt(0, 30);
  const ExportedTape exported = exportEdl({1, "holiday", {{1, "one", {pal, ntsc, pal}}}}, "HOLIDAY");
  EXPECT_EQ(exported.clips, 2);
  ASSERT_EQ(exported.leftOut.size(), 1U);
  EXPECT_EQ(exported.leftOut[0].clip, 2);
  EXPECT_EQ(exported.leftOut[0].reason, "it has 30 frames per second, and the list is of 25");
}

}  // namespace
}  // namespace zq::host
