// Files that a failing disk left.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "host/catalogue/catalogue_places.h"

namespace zq::test {
namespace {

using host::CatalogueSequence;
using host::CatalogueStore;
using host::CatalogueTape;
using host::openCatalogue;
using host::openCatalogueToRead;
using host::ReadableCatalogue;
using testing::AllOf;
using testing::HasSubstr;

constexpr std::size_t kPage = 4096;
constexpr int kTapes = 20;
constexpr int kClipsPerTape = 30;

class CatalogueDamage : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::unique_ptr<CatalogueStore> store = std::move(openCatalogue(path_, true).value());
    for (int tape = 0; tape < kTapes; ++tape) {
      CatalogueSequence sequence = sequenceOf("sequence " + std::to_string(tape), kClipsPerTape);
      for (host::CatalogueClip& clip : sequence.clips) clip.poster.assign(100, static_cast<std::uint8_t>(tape));
      ASSERT_TRUE(store->addSequence(tapeName(tape), sequence).ok());
    }
    whole_ = bytesOfFile(path_);
  }

  static std::string tapeName(int tape) { return "Tape " + std::to_string(tape); }

  std::size_t pages() const { return whole_.size() / kPage; }
  std::size_t pageThatHolds(const std::string& text) const { return whole_.find(text) / kPage; }

  void writeWithPage(std::size_t page, const std::string& bytes) const {
    std::string damaged = whole_;
    damaged.replace(page * kPage, bytes.size(), bytes);
    writeFile(path_, damaged);
  }

  /// How many clips can be read, and how many of them have a date.
  static std::int64_t clipsOf(CatalogueStore& store, std::int64_t* dated = nullptr) {
    std::int64_t clips = 0;
    const std::vector<host::TapeSummary> tapes = store.tapes().value();
    for (const host::TapeSummary& tape : tapes) {
      const CatalogueTape read = store.tape(tape.name).value();
      for (const CatalogueSequence& sequence : read.sequences) {
        clips += std::ssize(sequence.clips);
        for (const host::CatalogueClip& clip : sequence.clips) {
          if (dated != nullptr && clip.recordingDate) ++*dated;
        }
      }
    }
    return clips;
  }

  ScratchFolder folder_;
  const std::string path_ = folder_.file("tapes.catalogue");
  std::string whole_;
};

TEST_F(CatalogueDamage, IsToldByTheOperationThatMeetsItWithWhatIsLeftAndHowToSaveIt) {
  writeWithPage(pageThatHolds("sequence 7-15.mov"), std::string(kPage, '\0'));
  const std::string damaged = bytesOfFile(path_);
  {
    const std::unique_ptr<CatalogueStore> store = std::move(openCatalogue(path_, false).value());
    EXPECT_TRUE(store->tape(tapeName(0)).ok());
    const std::string text = errorText(store->tape(tapeName(7)));
    EXPECT_THAT(text, AllOf(HasSubstr("The catalogue " + path_ + " is damaged"), HasSubstr("20 tapes and "),
                            HasSubstr("clips can still be read"), HasSubstr("deckhand catalogue export")));
    EXPECT_TRUE(store->tape(tapeName(0)).ok());
  }
  EXPECT_TRUE(bytesOfFile(path_) == damaged);
}

TEST_F(CatalogueDamage, LeavesWhatIsOnOtherPagesToBeRead) {
  writeWithPage(pageThatHolds("sequence 7-15.mov"), std::string(kPage, '\0'));
  const std::string damaged = bytesOfFile(path_);
  const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
  ASSERT_TRUE(catalogue.ok()) << catalogue.error().text();
  ASSERT_TRUE(catalogue.value().damage.has_value());
  CatalogueStore& store = *catalogue.value().store;
  const std::int64_t clips = clipsOf(store);
  EXPECT_THAT(catalogue.value().damage->text(),
              HasSubstr("20 tapes and " + std::to_string(clips) + " clips can still be read"));
  // A page holds some dozen clips.
  EXPECT_LT(clips, kTapes * kClipsPerTape);
  EXPECT_GT(clips, kTapes * kClipsPerTape - 60);
  const CatalogueTape tape = store.tape(tapeName(12)).value();
  ASSERT_EQ(tape.sequences.at(0).clips.size(), static_cast<std::size_t>(kClipsPerTape));
  EXPECT_EQ(tape.sequences[0].name, "sequence 12");
  EXPECT_EQ(store.poster(tape.sequences[0].clips[3].id).value(), std::vector<std::uint8_t>(100, 12));
  EXPECT_THAT(errorText(store.setMarked({tape.sequences[0].clips[3].id}, true)), HasSubstr("cannot be written to"));
  EXPECT_TRUE(bytesOfFile(path_) == damaged);
}

TEST_F(CatalogueDamage, OfTheTapesLeavesTheirClips) {
  writeWithPage(pageThatHolds("Tape 13"), std::string(kPage, '\xff'));
  const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
  ASSERT_TRUE(catalogue.ok()) << catalogue.error().text();
  EXPECT_THAT(catalogue.value().damage.value().text(), HasSubstr("0 tapes and 600 clips can still be read"));
  CatalogueStore& store = *catalogue.value().store;
  EXPECT_EQ(clipsOf(store), kTapes * kClipsPerTape);
  EXPECT_EQ(store.tape("(tape 14 unreadable)").value().sequences.at(0).name, "sequence 13");
}

TEST_F(CatalogueDamage, OfTheSequencesLeavesTheirClips) {
  // The names of sequences stand in the clips' names too, which are behind them in the file.
  writeWithPage(pageThatHolds("sequence 13"), std::string(kPage, '\xff'));
  const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
  ASSERT_TRUE(catalogue.ok()) << catalogue.error().text();
  CatalogueStore& store = *catalogue.value().store;
  EXPECT_EQ(clipsOf(store), kTapes * kClipsPerTape);
  const CatalogueTape tape = store.tape("(tape unreadable)").value();
  ASSERT_EQ(tape.sequences.size(), static_cast<std::size_t>(kTapes));
  EXPECT_EQ(tape.sequences[13].name, "(sequence unreadable)");
  EXPECT_EQ(tape.sequences[13].clips[0].name, "sequence 13-1");
}

TEST_F(CatalogueDamage, WithinADateLeavesTheClip) {
  runSql(path_, "UPDATE clips SET recording_date = '1999-12-31T23:59:58', duration = '00:00:01:00'");
  whole_ = bytesOfFile(path_);
  writeWithPage(pageThatHolds("sequence 7-15.mov"), std::string(kPage, '\0'));
  whole_ = bytesOfFile(path_);
  whole_.replace(whole_.find("1999-12-31T23:59:58"), 4, "year");
  writeFile(path_, whole_);
  const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
  ASSERT_TRUE(catalogue.ok()) << catalogue.error().text();
  std::int64_t dated = 0;
  const std::int64_t clips = clipsOf(*catalogue.value().store, &dated);
  EXPECT_EQ(dated, clips - 1);
}

TEST_F(CatalogueDamage, OfTheListOfTablesLeavesNothing) {
  std::string damaged = whole_;
  std::fill(damaged.begin() + 100, damaged.begin() + kPage, '\0');
  writeFile(path_, damaged);
  for (const std::string& text : {errorText(openCatalogue(path_, true)), errorText(openCatalogueToRead(path_))}) {
    EXPECT_THAT(text, AllOf(HasSubstr(path_ + " is damaged"), HasSubstr("Nothing of it can be read")));
  }
  EXPECT_TRUE(bytesOfFile(path_) == damaged);
}

TEST_F(CatalogueDamage, OfTheFilesHeaderIsTold) {
  std::string damaged = whole_;
  std::fill(damaged.begin() + 16, damaged.begin() + 100, '\xff');
  writeFile(path_, damaged);
  for (const std::string& text : {errorText(openCatalogue(path_, true)), errorText(openCatalogueToRead(path_))}) {
    EXPECT_THAT(text, HasSubstr(path_ + " is no Deckhand catalogue, or a damaged one"));
  }
  EXPECT_TRUE(bytesOfFile(path_) == damaged);
}

TEST_F(CatalogueDamage, OfAFileThatWasCutOffIsTold) {
  writeFile(path_, whole_.substr(0, whole_.size() / 2));
  const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
  ASSERT_TRUE(catalogue.ok()) << catalogue.error().text();
  EXPECT_THAT(catalogue.value().damage.value().text(), HasSubstr("is damaged"));
  EXPECT_GT(clipsOf(*catalogue.value().store), 0);
}

// Whatever page is lost, and to whatever bytes: an answer or an error.
TEST_F(CatalogueDamage, AnywhereIsSurvived) {
  std::mt19937 random(20240607);  // NOLINT: the same damage each time
  std::uniform_int_distribution<int> byte(0, 255);
  int savedSome = 0;
  for (std::size_t page = 0; page < pages(); ++page) {
    SCOPED_TRACE(page);
    std::string noise(kPage, '\0');
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(byte(random)); });
    for (const std::string& bytes :
         {std::string(kPage, '\0'), std::string(kPage, '\xff'), noise, noise.substr(0, 64)}) {
      writeWithPage(page, bytes);
      const std::string damaged = bytesOfFile(path_);
      const Expected<ReadableCatalogue> catalogue = openCatalogueToRead(path_);
      if (catalogue.ok()) {
        savedSome += clipsOf(*catalogue.value().store) > 0 ? 1 : 0;
      } else {
        EXPECT_EQ(page, 0U) << catalogue.error().text();
      }
      const Expected<std::unique_ptr<CatalogueStore>> store = openCatalogue(path_, false);
      for (int tape = 0; store.ok() && tape < kTapes; ++tape) {
        const Expected<CatalogueTape> read = store.value()->tape(tapeName(tape));
        if (!read.ok()) break;  // what it says takes a look at the whole file
      }
      EXPECT_TRUE(bytesOfFile(path_) == damaged);
    }
  }
  // All but the page of the list of tables and the one that leads to all clips.
  EXPECT_GE(savedSome, static_cast<int>(pages() - 2) * 4);
}

}  // namespace
}  // namespace zq::test
