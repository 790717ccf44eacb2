#pragma once
// Catalogues to test with, in a file or on a server, and what is put into them.

#include <gtest/gtest.h>

#include <QString>
#include <QtGlobal>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "host/catalogue/catalogue_connection.h"
#include "host/catalogue/catalogue_store.h"
#include "host/catalogue/open_catalogue.h"
#include "host/catalogue/postgresql_server.h"
#include "host/catalogue/server_address.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// What Qt says would stand in a user's terminal: it has nothing to say.
inline const QtMessageHandler qtMessages =
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
      ADD_FAILURE() << "Qt says: " << message.toStdString();
    });

enum class Place { file, server };

inline void PrintTo(Place place, std::ostream* out) {
  *out << (place == Place::file ? "File" : "Server");
}

/// A connection beside the stores', to do what another program would.
inline std::unique_ptr<host::CatalogueConnection> connectionTo(const std::string& where) {
  if (!host::isServerUrl(where)) {
    auto connection = std::make_unique<host::CatalogueConnection>(host::SqlDialect::sqlite, where);
    connection->openFile(where, host::CatalogueConnection::FileMode::mayBeCreated);
    return connection;
  }
  auto connection = std::make_unique<host::CatalogueConnection>(host::SqlDialect::postgresql, where);
  connection->openServer(host::parseServerUrl(where).value());
  return connection;
}

inline void runSql(const std::string& where, const std::string& sql) {
  connectionTo(where)->run(QString::fromStdString(sql));
}

inline std::int64_t askSql(const std::string& where, const std::string& sql) {
  return connectionTo(where)->ask(QString::fromStdString(sql)).toLongLong();
}

/// A place for a catalogue that nothing is in yet. Without a server the test is skipped.
class CatalogueTest : public ::testing::TestWithParam<Place> {
 protected:
  void SetUp() override {
    if (GetParam() == Place::file) {
      where_ = folder_.file("tapes.catalogue");
      return;
    }
    server_ = PostgresqlEnvironment::instance().server();
    if (server_ == nullptr) GTEST_SKIP() << "No PostgreSQL server is installed in /usr/lib/postgresql";
    static int databases = 0;
    const std::string database = "catalogue" + std::to_string(++databases);
    runSql(server_->url("postgres"), "CREATE DATABASE " + database);
    where_ = server_->url(database);
  }

  /// The catalogue, made if need be.
  std::unique_ptr<host::CatalogueStore> open() const {
    Expected<std::unique_ptr<host::CatalogueStore>> store = host::openCatalogue(where_, true);
    EXPECT_TRUE(store.ok()) << store.error().text();
    return store.ok() ? std::move(store.value()) : nullptr;
  }

  ScratchFolder folder_;
  const PostgresqlServer* server_ = nullptr;
  std::string where_;
};

inline std::string placeName(const ::testing::TestParamInfo<Place>& info) {
  return info.param == Place::file ? "File" : "Server";
}

#define ZQ_IN_BOTH_PLACES(suite) \
  INSTANTIATE_TEST_SUITE_P(Places, suite, ::testing::Values(Place::file, Place::server), placeName)

inline std::string bytesOfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline SMPTETime timecode(int hours, int minutes, int seconds, int frames, std::uint32_t system = 1) {
  SMPTETime time;
  time.mType = system;
  time.mHours = static_cast<std::int16_t>(hours);
  time.mMinutes = static_cast<std::int16_t>(minutes);
  time.mSeconds = static_cast<std::int16_t>(seconds);
  time.mFrames = static_cast<std::int16_t>(frames);
  return time;
}

inline host::CatalogueClip clipNamed(const std::string& name) {
  host::CatalogueClip clip;
  clip.name = name;
  clip.moviePath = "/movies/" + name + ".mov";
  return clip;
}

inline host::CatalogueSequence sequenceOf(const std::string& name, int clips) {
  host::CatalogueSequence sequence;
  sequence.name = name;
  for (int index = 1; index <= clips; ++index) {
    sequence.clips.push_back(clipNamed(name + "-" + std::to_string(index)));
  }
  return sequence;
}

/// The ids of a sequence that was stored now.
inline std::vector<std::int64_t> stored(host::CatalogueStore& store, const std::string& tape, int clips) {
  const Expected<host::CatalogueSequence> sequence = store.addSequence(tape, sequenceOf("of " + tape, clips));
  EXPECT_TRUE(sequence.ok()) << sequence.error().text();
  std::vector<std::int64_t> ids;
  if (!sequence.ok()) return ids;
  for (const host::CatalogueClip& clip : sequence.value().clips) ids.push_back(clip.id);
  return ids;
}

/// Both texts of the error; fails the test when there is none.
template <typename Result>
std::string errorText(const Result& result) {
  if (!result.ok()) return result.error().text();
  ADD_FAILURE() << "it succeeded";
  return "";
}

}  // namespace zq::test
