// What only a server does: refuse, go away, hold other things too.

#include <gmock/gmock.h>

#include "host/catalogue/catalogue_places.h"

namespace zq::test {
namespace {

using host::CatalogueStore;
using host::openCatalogue;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class CatalogueServer : public CatalogueTest {};
INSTANTIATE_TEST_SUITE_P(Places, CatalogueServer, ::testing::Values(Place::server), placeName);

TEST(CatalogueServerUrl, OfNoServerIsToldWithoutThePassword) {
  const ScratchFolder folder;
  const std::string text =
      errorText(openCatalogue("postgresql://anna:secret@/tapes?host=" + folder.path() + "&port=5499", true));
  EXPECT_THAT(text,
              AllOf(HasSubstr("The catalogue postgresql://anna@:5499/tapes?host=" + folder.path()),
                    HasSubstr("cannot be reached"), HasSubstr("Is the server running"), Not(HasSubstr("secret"))));
}

TEST_P(CatalogueServer, WithoutTheDatabaseOrTheUserSaysSo) {
  EXPECT_THAT(errorText(openCatalogue(server_->url("no_such_database"), true)),
              AllOf(HasSubstr("cannot be reached"), HasSubstr("database \"no_such_database\" does not exist")));
  EXPECT_THAT(errorText(openCatalogue(server_->url("postgres", "stranger"), true)),
              AllOf(HasSubstr("cannot be reached"), HasSubstr("\"stranger\" does not exist")));
}

TEST_P(CatalogueServer, MayHoldOtherTablesOfTheSameNames) {
  runSql(where_, "SET search_path = public; CREATE TABLE tapes (length INT); INSERT INTO tapes VALUES (60)");
  stored(*open(), "Tape", 2);
  EXPECT_EQ(open()->tapes().value().at(0).clips, 2);
  EXPECT_EQ(askSql(where_, "SELECT sum(length) FROM public.tapes"), 60);
}

TEST_P(CatalogueServer, WithAnotherProgramsTablesOfTheSameNamespaceIsLeftAsItIs) {
  runSql(where_, "CREATE SCHEMA deckhand; CREATE TABLE deckhand.tapes (length INT)");
  EXPECT_THAT(errorText(openCatalogue(where_, true)), HasSubstr("is no Deckhand catalogue"));
  EXPECT_EQ(askSql(where_, "SELECT count(*) FROM pg_tables WHERE schemaname = 'deckhand'"), 1);
}

TEST_P(CatalogueServer, AUserWhoMayOnlyReadReadsAndWritingSaysWhy) {
  const std::vector<std::int64_t> ids = stored(*open(), "Tape", 2);
  runSql(where_,
         "DROP ROLE IF EXISTS reader; CREATE ROLE reader LOGIN; GRANT USAGE ON SCHEMA deckhand TO reader; "
         "GRANT SELECT ON ALL TABLES IN SCHEMA deckhand TO reader");
  const std::string asReader = server_->url(host::parseServerUrl(where_).value().database, "reader");
  {
    const std::unique_ptr<CatalogueStore> store = std::move(openCatalogue(asReader, true).value());
    EXPECT_EQ(store->tapes().value().at(0).clips, 2);
    EXPECT_THAT(errorText(store->setMarked(ids, true)),
                AllOf(HasSubstr("cannot be written to"), HasSubstr("permission denied")));
    EXPECT_THAT(errorText(store->addSequence("Tape", sequenceOf("One", 1))), HasSubstr("cannot be written to"));
    EXPECT_EQ(store->tapes().value().at(0).clips, 2);
  }
  runSql(where_, "DROP OWNED BY reader; DROP ROLE reader");
}

TEST_P(CatalogueServer, AUserWhoMayNotMakeTablesIsTold) {
  runSql(where_, "DROP ROLE IF EXISTS guest; CREATE ROLE guest LOGIN");
  const std::string asGuest = server_->url(host::parseServerUrl(where_).value().database, "guest");
  EXPECT_THAT(errorText(openCatalogue(asGuest, true)),
              AllOf(HasSubstr("cannot be written to"), HasSubstr("permission")));
  EXPECT_THAT(errorText(openCatalogue(asGuest, false)), HasSubstr("There is no catalogue in"));
  runSql(where_, "DROP ROLE guest");
}

TEST_P(CatalogueServer, ALostConnectionIsToldAndTheNextOperationConnectsAgain) {
  const std::unique_ptr<CatalogueStore> store = open();
  const std::vector<std::int64_t> ids = stored(*store, "Tape", 2);
  runSql(where_,
         "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = current_database() "
         "AND pid <> pg_backend_pid()");
  const std::string text = errorText(store->setMarked(ids, true));
  EXPECT_THAT(text, AllOf(HasSubstr("The connection to the catalogue postgresql://"), HasSubstr("failed")));
  EXPECT_EQ(store->setMarked(ids, true).value(), 2);
}

TEST_P(CatalogueServer, AConnectionThatIsLostWithinATransactionIsToldOnce) {
  stored(*open(), "Tape", 2);
  const std::unique_ptr<host::CatalogueConnection> connection = connectionTo(where_);
  const qint64 process = connection->ask(QStringLiteral("SELECT pg_backend_pid()")).toLongLong();
  const auto work = [&] {
    host::CatalogueTransaction transaction(*connection, host::CatalogueTransaction::Purpose::write);
    host::CatalogueStatement clips(*connection, QStringLiteral("UPDATE clips SET marked = ? WHERE id = ?"));
    clips.run(1, 1);
    runSql(where_, "SELECT pg_terminate_backend(" + std::to_string(process) + ")");
    clips.run(1, 2);
  };
  EXPECT_THROW(work(), host::CatalogueFailure);
  EXPECT_EQ(open()->tapes().value().at(0).marked, 0);
}

TEST_P(CatalogueServer, TakesOptionsOfTheConnection) {
  EXPECT_TRUE(openCatalogue(where_ + "&connect_timeout=3&sslmode=prefer&sslrootcert=/it%27s%20%5C", true).ok());
  EXPECT_FALSE(openCatalogue(where_ + "&sslmode=nonsense", true).ok());
}

}  // namespace
}  // namespace zq::test
