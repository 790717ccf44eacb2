// Versions of the tables: what an older and what a later program left.

#include <gmock/gmock.h>

#include <array>

#include "host/catalogue/catalogue_places.h"

namespace zq::test {
namespace {

using host::CatalogueOptions;
using host::CatalogueStore;
using host::SchemaStep;
using testing::HasSubstr;

class CatalogueSchema : public CatalogueTest {
 protected:
  /// Opened by a program that knows one version more.
  Expected<std::unique_ptr<CatalogueStore>> openLater(const std::string& statement) const {
    std::vector<SchemaStep> steps(host::catalogueSchema().begin(), host::catalogueSchema().end());
    steps.push_back({{"ALTER TABLE clips ADD COLUMN note TEXT", statement}});
    CatalogueOptions options;
    options.create = create_;
    options.schema = steps;
    return host::openCatalogue(where_, options);
  }

  std::string tables() const { return GetParam() == Place::file ? "" : "deckhand."; }

  bool create_ = false;
};
ZQ_IN_BOTH_PLACES(CatalogueSchema);

constexpr char kHarmless[] = "CREATE INDEX clips_by_note ON clips (note)";

TEST_P(CatalogueSchema, AnOlderCatalogueGetsTheTablesOfToday) {
  stored(*open(), "Tape", 3);
  const Expected<std::unique_ptr<CatalogueStore>> store = openLater(kHarmless);
  ASSERT_TRUE(store.ok()) << store.error().text();
  EXPECT_EQ(store.value()->tape("Tape").value().sequences[0].clips.size(), 3U);
  EXPECT_EQ(askSql(where_, "SELECT count(note) FROM " + tables() + "clips"), 0);
  EXPECT_TRUE(openLater(kHarmless).ok());
}

TEST_P(CatalogueSchema, ANewCatalogueHasThemAtOnce) {
  create_ = true;
  ASSERT_TRUE(openLater(kHarmless).ok());
  EXPECT_EQ(askSql(where_, "SELECT count(note) FROM " + tables() + "clips"), 0);
}

TEST_P(CatalogueSchema, ALaterCatalogueIsLeftAsItIs) {
  stored(*open(), "Tape", 3);
  ASSERT_TRUE(openLater(kHarmless).ok());
  const std::string text = errorText(host::openCatalogue(where_, true));
  EXPECT_THAT(text, HasSubstr("was made by a later Deckhand"));
  EXPECT_THAT(text, HasSubstr("Its version is 2, and this program knows those up to 1"));
  EXPECT_THAT(errorText(host::openCatalogueToRead(where_)), HasSubstr("was made by a later Deckhand"));
  EXPECT_TRUE(openLater(kHarmless).ok());
}

TEST_P(CatalogueSchema, AStepThatFailsLeavesTheOlderCatalogue) {
  stored(*open(), "Tape", 3);
  EXPECT_FALSE(openLater("CREATE INDEX nonsense ON clips (no_such_column)").ok());
  EXPECT_THROW(askSql(where_, "SELECT count(note) FROM " + tables() + "clips"), host::CatalogueFailure);
  EXPECT_EQ(open()->tapes().value().at(0).clips, 3);
  EXPECT_TRUE(openLater(kHarmless).ok());
}

TEST_P(CatalogueSchema, ANewCatalogueWhoseStepsFailIsNoneAtAll) {
  create_ = true;
  EXPECT_FALSE(openLater("CREATE INDEX nonsense ON clips (no_such_column)").ok());
  EXPECT_THAT(errorText(host::openCatalogue(where_, false)), HasSubstr("There is no catalogue in"));
  EXPECT_EQ(open()->tapes().value().size(), 0U);
}

class CatalogueSchemaInAFile : public CatalogueSchema {};
INSTANTIATE_TEST_SUITE_P(Places, CatalogueSchemaInAFile, ::testing::Values(Place::file), placeName);

// On a server the plan depends on what the server knows of the tables' sizes.
TEST_P(CatalogueSchemaInAFile, TheCountsOfAllTapesAreReadFromAnIndex) {
  stored(*open(), "Tape", 1);
  const std::unique_ptr<host::CatalogueConnection> connection = connectionTo(where_);
  host::CatalogueStatement plan(*connection, QStringLiteral("EXPLAIN QUERY PLAN SELECT sequence_id, count(*), "
                                                            "sum(marked), sum(recaptured), sum(trashed) FROM clips "
                                                            "GROUP BY sequence_id"));
  ASSERT_TRUE(plan.run().next());
  EXPECT_THAT(plan.text(3), HasSubstr("COVERING INDEX clips_by_mark"));
}

}  // namespace
}  // namespace zq::test
