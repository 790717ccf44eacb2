// Several programs at one catalogue, and programs that are killed at it.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <functional>
#include <random>
#include <set>

#include "host/catalogue/catalogue_places.h"

namespace zq::test {
namespace {

using host::CatalogueSequence;
using host::CatalogueStore;
using host::CatalogueTape;
using host::CatalogueTransaction;
using testing::AllOf;
using testing::HasSubstr;

/// A program of its own that does `work` and ends; work that returns false makes it fail.
class OtherProgram {
 public:
  explicit OtherProgram(const std::function<bool()>& work) : process_(::fork()) {
    if (process_ == 0) ::_exit(work() ? 0 : 1);
  }
  /// As wait() gives it.
  int wait() const {
    int status = -1;
    ::waitpid(process_, &status, 0);
    return status;
  }

 private:
  pid_t process_ = 0;
};

class CatalogueSharing : public CatalogueTest {
 protected:
  Expected<std::unique_ptr<CatalogueStore>> openImpatient() const {
    host::CatalogueOptions options;
    options.create = true;
    options.patience = 1;
    return host::openCatalogue(where_, options);
  }

  std::unique_ptr<host::CatalogueConnection> locked() const {
    std::unique_ptr<host::CatalogueConnection> connection = connectionTo(where_);
    connection->run(GetParam() == Place::file ? QStringLiteral("BEGIN EXCLUSIVE") : QStringLiteral("BEGIN"));
    if (GetParam() == Place::server) connection->run(QStringLiteral("LOCK TABLE tapes, sequences, clips"));
    return connection;
  }
};
ZQ_IN_BOTH_PLACES(CatalogueSharing);

TEST_P(CatalogueSharing, TwoStoresSeeEachOthersChanges) {
  const std::unique_ptr<CatalogueStore> one = open();
  const std::unique_ptr<CatalogueStore> other = open();
  const std::vector<std::int64_t> ids = stored(*one, "Tape", 2);
  EXPECT_EQ(other->setMarked(ids, true).value(), 2);
  EXPECT_EQ(one->tapes().value().at(0).marked, 2);
  stored(*other, "Tape", 1);
  EXPECT_EQ(one->tapes().value().at(0).sequences, 2);
}

TEST_P(CatalogueSharing, ACatalogueThatStaysLockedIsToldAndNothingChanges) {
  const std::vector<std::int64_t> ids = stored(*open(), "Tape", 2);
  const std::unique_ptr<CatalogueStore> store = std::move(openImpatient().value());
  {
    const std::unique_ptr<host::CatalogueConnection> other = locked();
    const std::string where = GetParam() == Place::file ? where_ : host::parseServerUrl(where_).value().shown();
    for (const std::string& text :
         {errorText(store->addSequence("Tape", sequenceOf("One", 1))), errorText(store->setMarked(ids, true)),
          errorText(store->setRecaptured(ids[0], "/again.mov")), errorText(store->tapes())}) {
      EXPECT_THAT(text,
                  AllOf(HasSubstr("Another program is writing to the catalogue " + where), HasSubstr("try again")));
    }
    // A server gives up the locks of a connection that was closed in its own time, and this store has no patience.
    other->run(QStringLiteral("ROLLBACK"));
  }
  EXPECT_EQ(store->tapes().value().at(0).sequences, 1);
  EXPECT_EQ(store->setMarked(ids, true).value(), 2);
}

TEST_P(CatalogueSharing, ProgramsThatWriteInTurnLoseNothing) {
  static_cast<void>(open());
  const auto work = [&](const std::string& name) {
    const Expected<std::unique_ptr<CatalogueStore>> store = host::openCatalogue(where_, true);
    if (!store.ok()) return false;
    for (int round = 0; round < 15; ++round) {
      const auto added = store.value()->addSequence("Tape", sequenceOf(name, 20));
      if (!added.ok() || !store.value()->setMarked({added.value().clips[0].id}, true).ok()) return false;
      if (!store.value()->tape("Tape").ok()) return false;
    }
    return true;
  };
  const OtherProgram one([&] { return work("one"); });
  const OtherProgram two([&] { return work("two"); });
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);

  const CatalogueTape tape = open()->tape("Tape").value();
  EXPECT_EQ(tape.sequences.size(), 30U);
  std::set<std::int64_t> ids;
  for (const CatalogueSequence& sequence : tape.sequences) {
    ASSERT_EQ(sequence.clips.size(), 20U);
    for (std::size_t index = 0; index < 20; ++index) {
      ids.insert(sequence.clips[index].id);
      EXPECT_EQ(sequence.clips[index].name, sequence.name + "-" + std::to_string(index + 1));
    }
    EXPECT_TRUE(sequence.clips[0].marked);
  }
  EXPECT_EQ(ids.size(), 600U);
}

// Both mark all clips, each in another order: on a server they would wait for each other's rows for ever.
TEST_P(CatalogueSharing, ProgramsThatMarkTheSameClipsDoNotHoldEachOtherUp) {
  const std::vector<std::int64_t> ids = stored(*open(), "Tape", 600);
  const std::vector<std::int64_t> reversed(ids.rbegin(), ids.rend());
  const auto work = [&](const std::vector<std::int64_t>& order) {
    const Expected<std::unique_ptr<CatalogueStore>> store = host::openCatalogue(where_, false);
    if (!store.ok()) return false;
    for (int round = 0; round < 10; ++round) {
      if (!store.value()->setMarked(order, round % 2 == 0).ok()) return false;
    }
    return true;
  };
  const OtherProgram one([&] { return work(ids); });
  const OtherProgram two([&] { return work(reversed); });
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);
}

TEST_P(CatalogueSharing, ProgramsMayMakeTheCatalogueAtTheSameTime) {
  std::vector<OtherProgram> programs;
  for (int number = 0; number < 6; ++number) {
    programs.emplace_back([&, number] {
      const Expected<std::unique_ptr<CatalogueStore>> store = host::openCatalogue(where_, true);
      return store.ok() && store.value()->addSequence("Tape", sequenceOf(std::to_string(number), 2)).ok();
    });
  }
  for (const OtherProgram& program : programs) EXPECT_EQ(program.wait(), 0);
  EXPECT_EQ(open()->tape("Tape").value().sequences.size(), 6U);
}

/// Adds sequences of 40 clips with posters until it is killed; writes a byte into the pipe for each that is stored.
bool addUntilKilled(const std::string& where, int told) {
  const Expected<std::unique_ptr<CatalogueStore>> store = host::openCatalogue(where, true);
  CatalogueSequence sequence = sequenceOf("One", 40);
  for (host::CatalogueClip& clip : sequence.clips) clip.poster.assign(3000, 7);
  while (store.ok() && store.value()->addSequence("Tape", sequence).ok()) {
    if (::write(told, "+", 1) != 1) return false;
  }
  return false;
}

/// Runs the above as a program of its own, with what is to kill it; returns how many sequences it says are stored.
std::int64_t storedByAKilledProgram(const std::string& where, int signal, const std::function<void()>& prepareDeath) {
  std::array<int, 2> pipe{};
  EXPECT_EQ(::pipe(pipe.data()), 0);
  const OtherProgram program([&] {
    prepareDeath();
    return addUntilKilled(where, pipe[1]);
  });
  ::close(pipe[1]);
  std::int64_t told = 0;
  for (char byte = 0; ::read(pipe[0], &byte, 1) == 1;) ++told;
  ::close(pipe[0]);
  const int status = program.wait();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
  return told;
}

void expectWholeSequences(CatalogueStore& store, std::int64_t atLeast) {
  const std::vector<host::TapeSummary> tapes = store.tapes().value();
  if (tapes.empty()) {
    EXPECT_EQ(atLeast, 0);
    return;
  }
  const CatalogueTape tape = store.tape("Tape").value();
  EXPECT_GE(std::ssize(tape.sequences), atLeast);
  for (const CatalogueSequence& sequence : tape.sequences) {
    EXPECT_EQ(sequence.clips.size(), 40U);
    EXPECT_EQ(store.poster(sequence.clips.at(39).id).value().size(), 3000U);
  }
}

TEST_P(CatalogueSharing, AProgramMayBeKilledAtAnyMoment) {
  static_cast<void>(open());
  std::mt19937 random(4);  // NOLINT: the same moments each time, as far as time goes
  std::int64_t told = 0;
  for (int round = 0; round < 15; ++round) {
    const auto microseconds = std::uniform_int_distribution<suseconds_t>(1000, 60'000)(random);
    told += storedByAKilledProgram(where_, SIGALRM, [&] {
      // Its alarm ends the program as a kill does: nothing of it runs any more.
      const itimerval alarm{{0, 0}, {0, microseconds}};
      ::setitimer(ITIMER_REAL, &alarm, nullptr);
    });
    expectWholeSequences(*open(), told);
    if (GetParam() == Place::file) {
      const std::unique_ptr<host::CatalogueConnection> connection = connectionTo(where_);
      EXPECT_EQ(connection->ask(QStringLiteral("PRAGMA integrity_check")).toString(), "ok");
      EXPECT_FALSE(connection->ask(QStringLiteral("PRAGMA foreign_key_check")).isValid());
    }
  }
}

class CatalogueInAFile : public CatalogueSharing {};
INSTANTIATE_TEST_SUITE_P(Places, CatalogueInAFile, ::testing::Values(Place::file), placeName);

// The system kills it in the middle of a change, when the file reaches a size: half of the change is in the file then.
TEST_P(CatalogueInAFile, AProgramMayBeKilledWhileTheFileIsHalfWritten) {
  static_cast<void>(open());
  std::int64_t told = 0;
  for (int round = 0; round < 10; ++round) {
    SCOPED_TRACE(round);
    const rlim_t limit = std::filesystem::file_size(where_) + 50'000 + static_cast<rlim_t>(round) * 13'007;
    told += storedByAKilledProgram(where_, SIGXFSZ, [&] {
      const rlimit noCore{0, 0};
      const rlimit size{limit, limit};
      ::setrlimit(RLIMIT_CORE, &noCore);
      ::setrlimit(RLIMIT_FSIZE, &size);
    });
    EXPECT_TRUE(std::filesystem::exists(where_ + "-journal"));
    expectWholeSequences(*open(), told);
    EXPECT_FALSE(std::filesystem::exists(where_ + "-journal"));
    EXPECT_EQ(connectionTo(where_)->ask(QStringLiteral("PRAGMA integrity_check")).toString(), "ok");
  }
}

TEST_P(CatalogueInAFile, ThatHasNoRoomToGrowSaysSoAndKeepsWhatItHas) {
  stored(*open(), "Tape", 2);
  const std::size_t size = std::filesystem::file_size(where_);
  const OtherProgram program([&] {
    ::signal(SIGXFSZ, SIG_IGN);  // the system refuses to write instead, as on a full disk
    const rlimit limit{size + 20'000, size + 20'000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::unique_ptr<CatalogueStore> store = std::move(host::openCatalogue(where_, false).value());
    CatalogueSequence sequence = sequenceOf("One", 40);
    for (host::CatalogueClip& clip : sequence.clips) clip.poster.assign(3000, 7);
    const auto added = store->addSequence("Tape", sequence);
    return !added.ok() && added.error().message.find(where_) != std::string::npos && store->tapes().ok() &&
           store->addSequence("Tape", sequenceOf("Small", 1)).ok();
  });
  EXPECT_EQ(program.wait(), 0);
  EXPECT_EQ(open()->tapes().value().at(0).clips, 3);
}

}  // namespace
}  // namespace zq::test
