// Small reads of a tape's file, through a mapping where that is cheap, of files that others cut short too.

#include "backends/deck/tape_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

#include "support/scratch_folder.h"

namespace zq::backend {
namespace {

using test::ScratchFolder;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t kMegabyte = 1 << 20;

class TapeReading : public testing::Test {
 protected:
  std::shared_ptr<TapeFile> open() const {
    auto file = TapeFile::open(path_);
    EXPECT_TRUE(file.ok()) << file.error().text();
    return file.value();
  }
  void write(const Bytes& bytes) const { folder_.fileWith("tape.dv", bytes); }
  void resize(std::uint64_t size) const { std::filesystem::resize_file(path_, size); }

  static Bytes randomBytes(std::size_t count) {
    std::mt19937 random(7);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
  }

  const ScratchFolder folder_;
  const std::string path_ = folder_.file("tape.dv");
};

TEST_F(TapeReading, GivesTheBytesOfTheFileInWhateverOrderTheyAreAskedFor) {
  const Bytes bytes = randomBytes(9 * kMegabyte + 12345);
  write(bytes);
  const auto file = open();
  std::mt19937 random(1);
  for (int pass = 0; pass < 3; ++pass) {
    TapeReader reader(*file);
    std::uint64_t offset = 0;
    for (int i = 0; i < 3000; ++i) {
      const std::size_t length = 1 + random() % 500;
      // On along the tape, sometimes back, sometimes far away.
      offset = random() % 50 == 0 ? random() : random() % 10 == 0 && offset > 30000 ? offset - 30000 : offset + 12000;
      offset %= bytes.size() - length;
      Bytes read(length);
      ASSERT_TRUE(reader.read(read, offset).ok());
      ASSERT_TRUE(std::equal(read.begin(), read.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset)))
          << length << " bytes at " << offset;
    }
  }
}

TEST_F(TapeReading, ReadsAFileThatIsLongerThanAnyStretch) {
  constexpr std::uint64_t kSize = 300 * kMegabyte;
  write({1});
  resize(kSize);
  {
    std::ofstream out(path_, std::ios::binary | std::ios::in);
    for (std::uint64_t mark = 0; mark < kSize; mark += kMegabyte) {
      out.seekp(static_cast<std::streamoff>(mark));
      out.put(static_cast<char>(mark / kMegabyte % 251));
    }
  }
  const auto file = open();
  TapeReader reader(*file);
  for (std::uint64_t mark = 0; mark < kSize; mark += kMegabyte) {
    std::array<std::uint8_t, 3> read{9, 9, 9};
    const std::uint64_t offset = mark == 0 ? 0 : mark - 1;
    ASSERT_TRUE(reader.read(read, offset).ok());
    EXPECT_EQ(read[mark - offset], mark / kMegabyte % 251) << "at " << mark;
    EXPECT_EQ(read[2], 0) << "at " << mark;
  }
}

TEST_F(TapeReading, AFileThatIsCutShortMeanwhileIsAnErrorAndNoSignal) {
  write(randomBytes(kMegabyte));
  const auto file = open();
  TapeReader reader(*file);
  Bytes read(240);
  ASSERT_TRUE(reader.read(read, 0).ok());
  resize(100'000);
  for (const std::uint64_t lost : {500'000, 300'000, 900'000}) {
    const Status status = reader.read(read, lost);
    ASSERT_FALSE(status.ok()) << "at " << lost;
    EXPECT_THAT(status.error().text(), HasSubstr("tape.dv became shorter while it was read"));
  }
  EXPECT_TRUE(reader.read(read, 50'000).ok()) << "what the file still has is read";
  EXPECT_FALSE(reader.checkFile().ok());
}

TEST_F(TapeReading, EachThreadMeetsTheEndOfAFileThatWasCutShort) {
  write(randomBytes(2 * kMegabyte));
  const auto file = open();
  resize(4096);
  const auto readLost = [&](int& errors) {
    TapeReader reader(*file);
    Bytes read(240);
    for (std::uint64_t offset = 8192; offset < 2 * kMegabyte; offset += 12000) {
      if (!reader.read(read, offset).ok()) ++errors;
    }
  };
  int errors = 0;
  int others = 0;
  std::thread other([&] { readLost(others); });
  readLost(errors);
  other.join();
  EXPECT_EQ(errors, (2 * kMegabyte - 8192 + 11999) / 12000);
  EXPECT_EQ(others, errors);
}

// Less than a page is lost, so the mapped page stays and its end reads as zeros.
TEST_F(TapeReading, AFileThatLostTheEndOfItsLastPageTellsByItsSize) {
  write(randomBytes(kMegabyte));
  const auto file = open();
  TapeReader reader(*file);
  Bytes read(240);
  ASSERT_TRUE(reader.read(read, 0).ok());
  EXPECT_TRUE(reader.checkFile().ok());
  resize(kMegabyte - 100);
  const Status status = reader.checkFile();
  ASSERT_FALSE(status.ok());
  EXPECT_THAT(status.error().text(), HasSubstr("became shorter while it was read"));
}

TEST_F(TapeReading, AFileThatGrewIsReadAsFarAsItWent) {
  write(randomBytes(kMegabyte));
  const auto file = open();
  resize(2 * kMegabyte);
  TapeReader reader(*file);
  Bytes read(240);
  EXPECT_TRUE(reader.read(read, kMegabyte - 240).ok());
  EXPECT_TRUE(reader.checkFile().ok());
}

TEST_F(TapeReading, BytesBehindTheEndAreAnError) {
  write(randomBytes(1000));
  const auto file = open();
  TapeReader reader(*file);
  Bytes read(240);
  EXPECT_TRUE(reader.read(read, 760).ok());
  EXPECT_FALSE(reader.read(read, 761).ok());
  EXPECT_FALSE(reader.read(read, 50 * kMegabyte).ok());
}

TEST_F(TapeReading, AWindowKnowsWhatItHolds) {
  write(randomBytes(10000));
  const auto file = open();
  const TapeWindow window = file->window(4096, kMegabyte);
  EXPECT_FALSE(window.isEmpty());
  EXPECT_TRUE(window.holds(4096, 10000 - 4096));
  EXPECT_FALSE(window.holds(4096, 10000 - 4096 + 1));
  EXPECT_FALSE(window.holds(4095, 1));
  EXPECT_FALSE(window.holds(10000, 1));
  EXPECT_FALSE(window.holds(~std::uint64_t{0}, 2));
  EXPECT_TRUE(file->window(12288, 4096).isEmpty()) << "behind the end";
  EXPECT_FALSE(TapeWindow().holds(0, 0) && !TapeWindow().isEmpty());
}

/// By the signal, or by a sanitizer that met it.
bool endedByABusError(int status) {
  return WIFSIGNALED(status) ? WTERMSIG(status) == SIGBUS : WEXITSTATUS(status) != 0;
}

TEST(GuardedCopyDeathTest, ABusErrorOutsideOfACopyIsDeadlyAsEver) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const ScratchFolder folder;
  const std::string path = folder.fileWith("tape.dv", std::array<std::uint8_t, 1>{1});
  const auto file = TapeFile::open(path);
  ASSERT_TRUE(file.ok());
  EXPECT_EXIT(
      {
        std::uint8_t byte = 1;
        const TapeWindow window = file.value()->window(0, 1);
        const bool copied = window.copy({&byte, 1}, 0);
        std::FILE* stream = std::fopen(path.c_str(), "rb");
        const void* mapped = ::mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fileno(stream), 0);
        if (!copied || mapped == MAP_FAILED) std::_Exit(0);
        std::filesystem::resize_file(path, 0);
        byte = *static_cast<const volatile std::uint8_t*>(mapped);
        std::_Exit(0);
      },
      endedByABusError, "");
}

}  // namespace
}  // namespace zq::backend
