// What holds for every catalogue, wherever it is kept.

#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "host/catalogue/catalogue_places.h"

namespace zq::test {
namespace {

using host::CatalogueClip;
using host::CatalogueSequence;
using host::CatalogueStore;
using host::CatalogueTape;
using host::TapeSummary;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CatalogueContract : public CatalogueTest {};
ZQ_IN_BOTH_PLACES(CatalogueContract);

/// As the store reads it back.
void expectSame(const CatalogueClip& read, const CatalogueClip& written) {
  EXPECT_EQ(read.name, written.name);
  ASSERT_EQ(read.recordingDate != nullptr, written.recordingDate != nullptr);
  if (read.recordingDate) {
    EXPECT_EQ(read.recordingDate->isoString(), written.recordingDate->isoString());
  }
  EXPECT_EQ(read.startTimecode, written.startTimecode);
  EXPECT_EQ(read.endTimecode, written.endTimecode);
  EXPECT_EQ(read.duration, written.duration);
  EXPECT_EQ(read.timebase, written.timebase);
  EXPECT_EQ(read.aspectRatio, written.aspectRatio);
  EXPECT_EQ(read.moviePath, written.moviePath);
  EXPECT_EQ(read.thumbnailPath, written.thumbnailPath);
  EXPECT_EQ(read.movieFrames, written.movieFrames);
  EXPECT_EQ(read.thumbnailFrames, written.thumbnailFrames);
  EXPECT_EQ(read.marked, written.marked);
  EXPECT_EQ(read.recaptured, written.recaptured);
  EXPECT_EQ(read.trashed, written.trashed);
  EXPECT_EQ(read.recapturedPath, written.recapturedPath);
}

CatalogueClip clipWithEverything() {
  CatalogueClip clip;
  clip.name = "Anna's \"first\" steps; DROP TABLE clips; \\ % ä 旅行 🎬";
  clip.recordingDate = std::make_shared<const CalendarDate>(1999, 12, 31, 23, 59, 58);
  clip.startTimecode = timecode(0, 59, 59, 24);
  clip.endTimecode = timecode(1, 0, 9, 0);
  clip.duration = timecode(0, 0, 9, 2, 0);
  clip.timebase = 30;
  clip.aspectRatio = 7;
  clip.moviePath = "/tapes/one 'two'/\n.mov";
  clip.thumbnailPath = "/tapes/one.thumbnails";
  clip.movieFrames = std::numeric_limits<std::int64_t>::max();
  clip.thumbnailFrames = 12;
  clip.marked = true;
  clip.recaptured = true;
  clip.trashed = true;
  clip.recapturedPath = "/again.mov";
  for (int byte = 0; byte < 256; ++byte) clip.poster.push_back(static_cast<std::uint8_t>(byte));
  return clip;
}

TEST_P(CatalogueContract, ANewCatalogueHasNoTapes) {
  EXPECT_THAT(open()->tapes().value(), IsEmpty());
}

TEST_P(CatalogueContract, AClipIsReadAsItWasWritten) {
  CatalogueSequence sequence;
  sequence.name = "Holiday 'è'";
  sequence.clips = {clipWithEverything(), CatalogueClip()};
  ASSERT_TRUE(open()->addSequence("Tape 1", sequence).ok());

  const CatalogueTape tape = open()->tape("Tape 1").value();
  EXPECT_EQ(tape.name, "Tape 1");
  ASSERT_EQ(tape.sequences.size(), 1U);
  EXPECT_EQ(tape.sequences[0].name, sequence.name);
  ASSERT_EQ(tape.sequences[0].clips.size(), 2U);
  expectSame(tape.sequences[0].clips[0], sequence.clips[0]);
  expectSame(tape.sequences[0].clips[1], sequence.clips[1]);
}

TEST_P(CatalogueContract, AddingReturnsWhatReadingReturns) {
  const std::unique_ptr<CatalogueStore> store = open();
  CatalogueSequence sequence = sequenceOf("One", 3);
  sequence.id = 77;
  sequence.clips[0].id = 88;
  sequence.clips[1].poster = {1, 2, 3};
  const CatalogueSequence added = store->addSequence("Tape", sequence).value();
  const CatalogueTape tape = store->tape("Tape").value();
  EXPECT_EQ(tape.sequences[0].id, added.id);
  ASSERT_EQ(added.clips.size(), 3U);
  for (std::size_t index = 0; index < 3; ++index) {
    expectSame(tape.sequences[0].clips[index], added.clips[index]);
    EXPECT_EQ(tape.sequences[0].clips[index].id, added.clips[index].id);
    EXPECT_THAT(added.clips[index].poster, IsEmpty());
  }
}

TEST_P(CatalogueContract, TimecodesKeepTheirSystemAndFieldsBeyondAClocks) {
  CatalogueClip clip;
  clip.startTimecode = timecode(0, 0, 0, 0, 2);
  clip.endTimecode = timecode(-1, -32768, 32767, 29, 2);
  clip.duration = timecode(100, 0, 0, 0, 0);
  CatalogueSequence sequence;
  sequence.clips = {clip};
  const std::unique_ptr<CatalogueStore> store = open();
  ASSERT_TRUE(store->addSequence("Tape", sequence).ok());
  expectSame(store->tape("Tape").value().sequences[0].clips[0], clip);
}

TEST_P(CatalogueContract, ClipsAndSequencesStayInTheOrderInWhichTheyCame) {
  const std::unique_ptr<CatalogueStore> store = open();
  for (const char* name : {"c", "a", "b"}) ASSERT_TRUE(store->addSequence("Tape", sequenceOf(name, 12)).ok());
  const CatalogueTape tape = store->tape("Tape").value();
  std::vector<std::string> names;
  for (const CatalogueSequence& sequence : tape.sequences) {
    names.push_back(sequence.name);
    for (std::size_t index = 0; index < 12; ++index) {
      EXPECT_EQ(sequence.clips[index].name, sequence.name + "-" + std::to_string(index + 1));
    }
  }
  EXPECT_THAT(names, ElementsAre("c", "a", "b"));
}

TEST_P(CatalogueContract, ASequenceMayHaveNoClips) {
  const std::unique_ptr<CatalogueStore> store = open();
  ASSERT_TRUE(store->addSequence("Tape", CatalogueSequence()).ok());
  EXPECT_THAT(store->tape("Tape").value().sequences.at(0).clips, IsEmpty());
  EXPECT_EQ(store->tapes().value().at(0).sequences, 1);
}

TEST_P(CatalogueContract, TapesAreCountedAndInTheOrderOfTheBytesOfTheirNames) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "b", 3);
  stored(*store, "b", 2);
  stored(*store, "ä", 1);
  stored(*store, "B", 0);
  ASSERT_TRUE(store->setMarked({ids[0], ids[1]}, true).ok());
  ASSERT_TRUE(store->setTrashed({ids[0], ids[1], ids[2]}, true).ok());
  ASSERT_TRUE(store->setRecaptured(ids[1], "/again.mov").ok());

  const std::vector<TapeSummary> tapes = store->tapes().value();
  ASSERT_EQ(tapes.size(), 3U);
  EXPECT_EQ(tapes[0].name, "B");
  EXPECT_EQ(tapes[0].sequences, 1);
  EXPECT_EQ(tapes[0].clips, 0);
  EXPECT_EQ(tapes[1].name, "b");
  EXPECT_EQ(tapes[1].id, store->tape("b").value().id);
  EXPECT_EQ(tapes[1].sequences, 2);
  EXPECT_EQ(tapes[1].clips, 5);
  EXPECT_EQ(tapes[1].marked, 1);
  EXPECT_EQ(tapes[1].recaptured, 1);
  EXPECT_EQ(tapes[1].trashed, 3);
  EXPECT_EQ(tapes[2].name, "ä");
}

TEST_P(CatalogueContract, AnUnknownTapeIsNamed) {
  const std::unique_ptr<CatalogueStore> store = open();
  stored(*store, "Tape", 1);
  EXPECT_THAT(errorText(store->tape("tape")), HasSubstr("There is no tape \"tape\""));
  EXPECT_THAT(errorText(store->tape("")), HasSubstr("There is no tape \"\""));
}

TEST_P(CatalogueContract, ClipsComeInTheOrderThatWasAskedFor) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 3);
  const std::vector<CatalogueClip> clips = store->clips({ids[2], ids[0], ids[2]}).value();
  ASSERT_EQ(clips.size(), 3U);
  EXPECT_EQ(clips[0].name, "of Tape-3");
  EXPECT_EQ(clips[1].name, "of Tape-1");
  EXPECT_EQ(clips[2].id, ids[2]);
  EXPECT_THAT(store->clips({}).value(), IsEmpty());
}

TEST_P(CatalogueContract, ManyClipsAreReadAndChangedAtOnce) {
  const std::unique_ptr<CatalogueStore> store = open();
  std::vector<std::int64_t> ids = stored(*store, "Tape", 1203);
  EXPECT_EQ(store->clips(ids).value().size(), 1203U);
  EXPECT_EQ(store->setMarked(ids, true).value(), 1203);
  EXPECT_EQ(store->tapes().value()[0].marked, 1203);
  ids.push_back(ids.back() + 1);
  EXPECT_THAT(errorText(store->setMarked(ids, false)), HasSubstr("no clip " + std::to_string(ids.back())));
  EXPECT_EQ(store->tapes().value()[0].marked, 1203);
}

TEST_P(CatalogueContract, TheFirstUnknownClipIsNamedAndNothingChanges) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 2);
  const std::vector<std::int64_t> wrong{ids[0], 4711, -1, ids[1]};
  EXPECT_THAT(errorText(store->clips(wrong)), HasSubstr("There is no clip 4711"));
  EXPECT_THAT(errorText(store->setMarked(wrong, true)), HasSubstr("There is no clip 4711"));
  EXPECT_THAT(errorText(store->setTrashed(wrong, true)), HasSubstr("There is no clip 4711"));
  EXPECT_THAT(errorText(store->setRecaptured(4711, "/a.mov")), HasSubstr("There is no clip 4711"));
  EXPECT_THAT(errorText(store->poster(4711)), HasSubstr("There is no clip 4711"));
  const TapeSummary tape = store->tapes().value().at(0);
  EXPECT_EQ(tape.marked + tape.trashed + tape.recaptured, 0);
}

TEST_P(CatalogueContract, OnlyClipsThatChangeAreCounted) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 3);
  EXPECT_EQ(store->setMarked({ids[0], ids[0]}, true).value(), 1);
  EXPECT_EQ(store->setMarked(ids, true).value(), 2);
  EXPECT_EQ(store->setMarked(ids, true).value(), 0);
  EXPECT_EQ(store->setMarked({}, true).value(), 0);
  EXPECT_EQ(store->setMarked({ids[1]}, false).value(), 1);
  EXPECT_EQ(store->setTrashed({ids[1]}, true).value(), 1);
  const std::vector<CatalogueClip> clips = store->clips(ids).value();
  EXPECT_TRUE(clips[0].marked);
  EXPECT_FALSE(clips[1].marked);
  EXPECT_TRUE(clips[1].trashed);
  EXPECT_FALSE(clips[2].trashed);
}

TEST_P(CatalogueContract, ARecapturedClipIsNoLongerMarked) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 2);
  ASSERT_TRUE(store->setMarked(ids, true).ok());
  ASSERT_TRUE(store->setRecaptured(ids[0], "/first.mov").ok());
  ASSERT_TRUE(store->setRecaptured(ids[0], "/second.mov").ok());
  const std::vector<CatalogueClip> clips = store->clips(ids).value();
  EXPECT_TRUE(clips[0].recaptured);
  EXPECT_FALSE(clips[0].marked);
  EXPECT_EQ(clips[0].recapturedPath, "/second.mov");
  EXPECT_TRUE(clips[1].marked);
  EXPECT_FALSE(clips[1].recaptured);
}

TEST_P(CatalogueContract, ARecapturedMovieNeedsAPath) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 1);
  EXPECT_THAT(errorText(store->setRecaptured(ids[0], "")), HasSubstr("needs a path"));
  EXPECT_FALSE(store->clips(ids).value()[0].recaptured);
}

TEST_P(CatalogueContract, APosterIsReadByItself) {
  const std::unique_ptr<CatalogueStore> store = open();
  CatalogueSequence sequence = sequenceOf("One", 2);
  sequence.clips[0].poster = clipWithEverything().poster;
  sequence.clips[0].poster.resize(100'000, 0);
  const CatalogueSequence added = store->addSequence("Tape", sequence).value();
  EXPECT_EQ(store->poster(added.clips[0].id).value(), sequence.clips[0].poster);
  EXPECT_THAT(store->poster(added.clips[1].id).value(), IsEmpty());
  EXPECT_THAT(store->clips({added.clips[0].id}).value()[0].poster, IsEmpty());
}

TEST_P(CatalogueContract, ATapeNeedsAName) {
  const std::unique_ptr<CatalogueStore> store = open();
  EXPECT_THAT(errorText(store->addSequence("", sequenceOf("One", 1))), HasSubstr("needs a name"));
  EXPECT_THAT(store->tapes().value(), IsEmpty());
}

TEST_P(CatalogueContract, ATextThatIsNotUtf8IsRefusedAndNothingOfItsSequenceStored) {
  const std::unique_ptr<CatalogueStore> store = open();
  CatalogueSequence sequence = sequenceOf("One", 3);
  sequence.clips[2].moviePath = "/movies/caf\xe9.mov";
  EXPECT_THAT(
      errorText(store->addSequence("Tape", sequence)),
      AllOf(HasSubstr("The movie path of clip 3 cannot be kept"), HasSubstr("/movies/caf"), HasSubstr("UTF-8")));
  EXPECT_THAT(errorText(store->addSequence(std::string("a\0b", 3), sequenceOf("One", 1))),
              HasSubstr("The tape's name"));
  EXPECT_THAT(errorText(store->setRecaptured(1, "/\xff")), HasSubstr("path"));
  EXPECT_THAT(store->tapes().value(), IsEmpty());
}

TEST_P(CatalogueContract, AnIdIsNeverGivenTwice) {
  std::vector<std::int64_t> first;
  {
    const std::unique_ptr<CatalogueStore> store = open();
    first = stored(*store, "Tape", 2);
  }
  const std::string schema = GetParam() == Place::file ? "" : "deckhand.";
  runSql(where_, "DELETE FROM " + schema + "clips");
  const std::vector<std::int64_t> second = stored(*open(), "Tape", 1);
  EXPECT_GT(second.at(0), first.at(1));
}

TEST_P(CatalogueContract, APersonCanReadTheDatesAndTimecodes) {
  CatalogueSequence sequence;
  sequence.clips = {clipWithEverything()};
  ASSERT_TRUE(open()->addSequence("Tape", sequence).ok());
  const std::unique_ptr<host::CatalogueConnection> connection = connectionTo(where_);
  host::CatalogueStatement row(*connection,
                               QStringLiteral("SELECT recording_date, start_timecode, start_system FROM clips"));
  ASSERT_TRUE(row.run().next());
  EXPECT_EQ(row.text(0), "1999-12-31T23:59:58");
  EXPECT_EQ(row.text(1), "00:59:59:24");
  EXPECT_EQ(row.integer(2), 1);
}

TEST_P(CatalogueContract, ADateOrTimecodeThatSomebodyBrokeIsToldWithItsClip) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 2);
  const std::string schema = GetParam() == Place::file ? "" : "deckhand.";
  for (const auto& [column, value] : std::vector<std::pair<std::string, std::string>>{
           {"recording_date", "yesterday"},
           {"recording_date", "1999-12-31"},
           {"recording_date", "1999-12-31T23:59:58Z"},
           {"start_timecode", "00:00:00"},
           {"end_timecode", "00:00:00:00:00"},
           {"duration", "00:00:00:99999"},
       }) {
    const std::string ofSecond = " WHERE id = " + std::to_string(ids[1]);
    runSql(where_, "UPDATE " + schema + "clips SET " + column + " = '" + value + "'" + ofSecond);
    const std::string text = errorText(store->tape("Tape"));
    EXPECT_THAT(text, HasSubstr("clip " + std::to_string(ids[1])));
    EXPECT_THAT(text, HasSubstr("\"" + value + "\""));
    EXPECT_TRUE(store->clips({ids[0]}).ok());
    runSql(where_, "UPDATE " + schema + "clips SET " + column + " = NULL" + ofSecond);
  }
  EXPECT_TRUE(store->tape("Tape").ok());
}

TEST_P(CatalogueContract, TheDatabaseItselfKeepsClipsFromLosingTheirSequence) {
  stored(*open(), "Tape", 1);
  const std::string schema = GetParam() == Place::file ? "" : "deckhand.";
  EXPECT_THROW(runSql(where_, "DELETE FROM " + schema + "sequences"), host::CatalogueFailure);
  EXPECT_THROW(runSql(where_, "DELETE FROM " + schema + "tapes"), host::CatalogueFailure);
  EXPECT_THROW(runSql(where_, "INSERT INTO " + schema + "tapes (name) VALUES ('Tape')"), host::CatalogueFailure);
  EXPECT_EQ(open()->tapes().value().at(0).clips, 1);
}

TEST_P(CatalogueContract, OpenToReadOnlyReads) {
  const std::vector<std::int64_t> ids = stored(*open(), "Tape", 2);
  const host::ReadableCatalogue catalogue = [&] {
    Expected<host::ReadableCatalogue> opened = host::openCatalogueToRead(where_);
    EXPECT_TRUE(opened.ok());
    return std::move(opened.value());
  }();
  EXPECT_FALSE(catalogue.damage.has_value());
  EXPECT_EQ(catalogue.store->tape("Tape").value().sequences[0].clips.size(), 2U);
  EXPECT_THAT(errorText(catalogue.store->setMarked(ids, true)), HasSubstr("cannot be written to"));
  EXPECT_THAT(errorText(catalogue.store->addSequence("Other", sequenceOf("One", 1))),
              HasSubstr("cannot be written to"));
  EXPECT_EQ(open()->tapes().value().at(0).marked, 0);
}

TEST_P(CatalogueContract, OpenToReadMakesNoCatalogue) {
  EXPECT_FALSE(host::openCatalogueToRead(where_).ok());
  EXPECT_THAT(errorText(host::openCatalogue(where_, false)), HasSubstr("There is no catalogue"));
}

}  // namespace
}  // namespace zq::test
