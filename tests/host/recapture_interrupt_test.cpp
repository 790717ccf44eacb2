// Ctrl-C in a recapture at the deck's own pace.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/recapture_program.h"

namespace zq::test {
namespace {

using testing::HasSubstr;

class RecaptureInterrupt : public RecaptureProgram {
 protected:
  /// Starts a recapture of clip 1, the only one.
  RunningProgram start() {
    const Frames frames = framesOf({{250, kFirst, timecodeOf(0, 0, 0, 0)}});
    captureTape(frames);
    mark({"1"});
    catalogue_ = readText(folder / "tapes.db");
    Words words = recaptureWords({"--real-time", "--json"});
    words.insert(words.begin(), DECKHAND_PROGRAM);
    return {folder, words};
  }
  /// Whether the file came while the program ran.
  bool waitFor(const std::string& path) const {
    while (!std::filesystem::exists(path)) {
      if (!readText(folder / "stdout.txt").empty()) return false;  // it has reported already
      ::usleep(1000);
    }
    return true;
  }
  void expectCancelled(const ProgramResult& result) const {
    EXPECT_EQ(result.exitCode, 130) << result.err;
    EXPECT_THAT(result.err, HasSubstr("Recapture has been canceled!"));
    json report = json::parse(result.out, nullptr, false);
    ASSERT_TRUE(report.is_object()) << result.out;
    report.erase("tapeSeconds");
    EXPECT_EQ(report, (json{{"tape", "holiday"},
                            {"mode", "automatic"},
                            {"clips",
                             {{{"clipId", "1"},
                               {"status", "cancelled"},
                               {"moviePath", nullptr},
                               {"recapturePath", nullptr},
                               {"movieFrames", 0},
                               {"reason", "The recapture was stopped."}}}},
                            {"recaptured", 0},
                            {"failed", 0},
                            {"alerts",
                             {{{"message", "Recapture has been canceled!"},
                               {"informative", "You have lost the recapture of the last clip."}}}}}));
    EXPECT_EQ(filesOfAgain(), Words{});
    EXPECT_TRUE(readText(folder / "tapes.db") == catalogue_) << "the catalogue changed";
  }

 private:
  std::string catalogue_;
};

TEST_F(RecaptureInterrupt, WhileTheClipIsSearchedLeavesNothing) {
  const RunningProgram program = start();
  ASSERT_TRUE(waitFor(folder / "again"));
  program.interrupt();
  expectCancelled(program.wait());
}

// The search of a clip takes the deck some time, so this test has to wait for it.
TEST_F(RecaptureInterrupt, InTheRecordingOfAClipDeletesItsMovie) {
  const RunningProgram program = start();
  ASSERT_TRUE(waitFor(folder / "again/capturing-0001.mov"));
  program.interrupt();
  expectCancelled(program.wait());
}

}  // namespace
}  // namespace zq::test
