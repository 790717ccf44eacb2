// Capturing into a catalogue that cannot be used: told before the tape plays, with nothing written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include "host/catalogue/catalogue_store.h"
#include "support/program.h"
#include "support/tape_script.h"

namespace zq::test {
namespace {

using testing::HasSubstr;

class CaptureCatalogueRefusals : public ::testing::Test {
 protected:
  std::vector<std::string> words(const std::string& catalogue, std::vector<std::string> more = {}) const {
    std::vector<std::string> all{"capture",     "--device", "tape:" + folder / "tape.dv", "--output", folder / "clips",
                                 "--catalogue", catalogue};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  void writeAnyTape() const {
    writeTape(folder / "tape.dv", framesOf({{5, StampDateTime{2004, 7, 15, 13, 30, 45}, timecodeOf(0, 0, 0, 0)}}));
  }
  ProgramResult capture(const std::string& catalogue, std::vector<std::string> more = {}) const {
    writeAnyTape();
    return runDeckhand(folder, words(catalogue, std::move(more)));
  }
  std::string catalogue() const { return folder / "tapes.db"; }
  void expectRefused(const ProgramResult& result, int exitCode, const std::string& message) const {
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(std::filesystem::exists(folder / "clips")) << "nothing was to be captured";
  }

  ProgramFolder folder;
};

TEST_F(CaptureCatalogueRefusals, AFolderAsACatalogue) {
  std::filesystem::create_directory(catalogue());
  expectRefused(capture(catalogue()), 1, catalogue());
  EXPECT_TRUE(std::filesystem::is_empty(catalogue()));
}

TEST_F(CaptureCatalogueRefusals, AFileThatIsNoCatalogue) {
  const std::string letter(10000, 'a');
  writeText(catalogue(), letter);
  expectRefused(capture(catalogue()), 1, catalogue());
  EXPECT_EQ(readText(catalogue()), letter);
}

TEST_F(CaptureCatalogueRefusals, TheTapeImageAsTheCatalogue) {
  writeAnyTape();
  const std::string before = readText(folder / "tape.dv");
  expectRefused(runDeckhand(folder, words(folder / "tape.dv")), 1, folder / "tape.dv");
  EXPECT_EQ(readText(folder / "tape.dv"), before);
}

TEST_F(CaptureCatalogueRefusals, ACatalogueInAFolderThatIsNotThere) {
  expectRefused(capture(folder / "nowhere/tapes.db"), 1, folder / "nowhere/tapes.db");
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
}

TEST_F(CaptureCatalogueRefusals, ACatalogueThatMayOnlyBeRead) {
  // The owner of the machine may write into any file, so it takes a disk that nobody may write to.
  const std::string disk = folder / "disk";
  std::filesystem::create_directory(disk);
  if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=9m") != 0) GTEST_SKIP() << "may not mount a small disk here";
  EXPECT_TRUE(host::openCatalogue(disk + "/tapes.db", true).ok());
  EXPECT_EQ(::mount("tmpfs", disk.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  expectRefused(capture(disk + "/tapes.db"), 1, disk + "/tapes.db cannot be written to");
  ::umount(disk.c_str());
}

TEST_F(CaptureCatalogueRefusals, ATapeWithoutACatalogue) {
  writeAnyTape();
  expectRefused(runDeckhand(folder, {"capture", "--device", "tape:" + folder / "tape.dv", "--output", folder / "clips",
                                     "--tape", "Tape 7"}),
                2, "--catalogue");
}

TEST_F(CaptureCatalogueRefusals, EmptyNames) {
  expectRefused(capture(catalogue(), {"--tape", ""}), 2, "--tape");
  expectRefused(capture(""), 2, "--catalogue");
  EXPECT_FALSE(std::filesystem::exists(catalogue()));
}

TEST_F(CaptureCatalogueRefusals, ATapeNameThatIsNoText) {
  expectRefused(capture(catalogue(), {"--tape", "Tape \xFF"}), 1, "The tape's name cannot be kept in a catalogue");
  EXPECT_FALSE(std::filesystem::exists(catalogue()));
}

TEST_F(CaptureCatalogueRefusals, ATapeImageThatIsNotThereMakesNoCatalogue) {
  expectRefused(runDeckhand(folder, words(catalogue())), 1, "No such tape image");
  EXPECT_FALSE(std::filesystem::exists(catalogue()));
}

}  // namespace
}  // namespace zq::test
