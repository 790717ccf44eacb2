// Which compressed movies of a recapture are believed: by the frames that went in, and the pictures that are there.

#include <gtest/gtest.h>

#include <fstream>

#include "backends/files/system_files.h"
#include "backends/time/real_runtime.h"
#include "host/recapture_ledger.h"
#include "support/dv_recording_log.h"
#include "support/scratch_folder.h"
#include "support/tape_script.h"

namespace zq::host {
namespace {

using test::framesOf;
using test::timecodeOf;

/// Leaves an empty file, whose pictures the test counts.
class EmptyFiles final : public platform::MovieWriterFactory {
 public:
  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& /*none*/) override {
    std::ofstream(path) << "movie";
    return std::unique_ptr<platform::MovieWriter>(std::make_unique<Writer>());
  }

 private:
  class Writer final : public platform::MovieWriter {
   public:
    Status append(const platform::QTSampleBuffer& /*frame*/) override { return {}; }
    Status finish() override { return {}; }
  };
};

class CompressedLedger : public ::testing::Test {
 protected:
  /// From 00:00:01:00 to 00:00:03:00, its last frame: 50 frames before that.
  static CatalogueClip clip() {
    CatalogueClip clip;
    clip.id = 7;
    clip.recordingDate = std::make_shared<const CalendarDate>(2004, 7, 15, 13, 30, 45);
    clip.startTimecode = timecodeOf(0, 0, 1, 0, 1);
    clip.endTimecode = timecodeOf(0, 0, 3, 0, 1);
    clip.timebase = 25;
    clip.moviePath = "/captures/clip.mov";
    return clip;
  }

  /// What becomes of a movie that these many frames from `first` on were written to.
  RecapturedClip record(int frames, std::int64_t pictures, int picturesPerFrame = 1,
                        const SMPTETime& first = timecodeOf(0, 0, 1, 0)) {
    CompressedMovies compressed{1, 0, &witness, [=](const std::string&) { return Expected<std::int64_t>(pictures); },
                                picturesPerFrame};
    RecaptureLedger ledger({runtime, files,
                            [](const auto&, const auto&) {
                              return Status(Error{"no DV", ""});
                            },
                            [](const auto&, const auto&) { return Status(); }, log, compressed},
                           clips, {clip()});
    EXPECT_TRUE(ledger.makeAliasFolder().ok());
    const std::string path = ledger.open("7");
    auto writer = witness.create(path, nullptr);
    EXPECT_TRUE(writer.ok());
    for (const test::ScriptFrame& frame : framesOf({{frames, StampDateTime{2004, 7, 15, 13, 30, 45}, first}})) {
      platform::QTSampleBuffer buffer;
      buffer.bytesForAllSamples = SharedBytes::copyOf(frame.bytes);
      EXPECT_TRUE(writer.value()->append(buffer).ok());
    }
    EXPECT_TRUE(writer.value()->finish().ok());
    ledger.close();
    ledger.movieFinished({path, frames, dropped, std::nullopt});
    return ledger.clips().at(0);
  }

  test::ScratchFolder folder;
  backend::RealRuntime runtime;
  backend::SystemFiles files;
  EmptyFiles writers;
  FrameWitness witness{runtime, writers};
  test::DVRecordingLog log;
  ClipFiles clips{folder.path(), "mp4", "tape"};
  std::int64_t dropped = 0;
};

TEST_F(CompressedLedger, AMovieWithAPictureForEachFrameIsRightAndItsAliasHasItsExtension) {
  const RecapturedClip entry = record(50, 50);
  EXPECT_EQ(entry.status, RecapturedClip::Status::recaptured) << entry.reason;
  EXPECT_EQ(entry.moviePath, "2004-07-15T13-30-45.mp4");
  EXPECT_EQ(entry.recapturePath, "7.mp4");
  EXPECT_EQ(entry.movieFrames, 50);
}

TEST_F(CompressedLedger, TwoPicturesAFrameAreRightWhereEachFieldBecomesOne) {
  EXPECT_EQ(record(50, 100, 2).status, RecapturedClip::Status::recaptured);
  const RecapturedClip entry = record(50, 99, 2);
  EXPECT_EQ(entry.status, RecapturedClip::Status::failed);
  EXPECT_EQ(entry.reason, "The movie is not right: it has 99 pictures of 50 frames.");
  EXPECT_EQ(entry.moviePath, "2004-07-15T13-30-45.wrong.mp4");
}

TEST_F(CompressedLedger, WhereTheNumberOfPicturesIsTheUsersOwnThereHaveToBeSome) {
  EXPECT_EQ(record(50, 13, 0).status, RecapturedClip::Status::recaptured);
  EXPECT_EQ(record(50, 0, 0).status, RecapturedClip::Status::failed);
}

TEST_F(CompressedLedger, TheFramesThatWentInAreCheckedAsThoseOfAMovieAsReceived) {
  EXPECT_EQ(record(49, 49).reason,
            "The movie is not right: it ends after 00:00:02:23, not before the clip's end 00:00:03:00.");
  EXPECT_EQ(record(50, 50, 1, timecodeOf(0, 0, 1, 1)).reason,
            "The movie is not right: it begins at 00:00:01:01, not at the clip's start 00:00:01:00.");
}

TEST_F(CompressedLedger, AMovieWithLostFramesIsNotRight) {
  dropped = 2;
  EXPECT_EQ(record(50, 50).reason,
            "The movie is not right: 2 frames were lost: compression does not keep up with the tape.");
}

}  // namespace
}  // namespace zq::host
