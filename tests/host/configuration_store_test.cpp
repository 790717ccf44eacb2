#include "host/configuration_store.h"

#include <gtest/gtest.h>

#include "support/backend_module_fake.h"

namespace zq::host {
namespace {

StoredConfiguration named(const std::string& name, int leftOut = 0) {
  return {{{"optionsName", name}, {"nbDropFrame", std::int64_t{leftOut}}}, ""};
}

class ConfigurationStoreTest : public ::testing::Test {
 protected:
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    const auto all = store.all();
    EXPECT_TRUE(all.ok());
    if (!all.ok()) return found;
    for (const StoredConfiguration& held : all.value()) found.push_back(held.name());
    return found;
  }

  backend::RealRuntime runtime;
  backend::MemorySettings settings{runtime};
  test::FakeBackendModule module;
  ConfigurationStore store{settings, module};
};

TEST_F(ConfigurationStoreTest, KeepsTheOrder) {
  EXPECT_EQ(names(), std::vector<std::string>{});
  ASSERT_TRUE(store.replaceAll({named("b"), named("a"), named("c")}).ok());
  EXPECT_EQ(names(), (std::vector<std::string>{"b", "a", "c"}));
}

TEST_F(ConfigurationStoreTest, AReplacedOneKeepsItsPlace) {
  std::vector<StoredConfiguration> all{named("a"), named("b")};
  putConfiguration(all, named("a", 7));
  putConfiguration(all, named("c"));
  ASSERT_TRUE(store.replaceAll(all).ok());
  EXPECT_EQ(names(), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(store.named("a").value().values.at("nbDropFrame"), platform::SettingValue(std::int64_t{7}));
}

TEST_F(ConfigurationStoreTest, AnUnknownNameIsToldWithTheKnownOnes) {
  ASSERT_TRUE(store.replaceAll({named("a"), named("b")}).ok());
  const auto found = store.named("A");
  ASSERT_FALSE(found.ok());
  EXPECT_EQ(found.error().text(), "There is no configuration \"A\". Stored are: a, b.");
}

TEST_F(ConfigurationStoreTest, WhatCannotBeReadIsNotWrittenOver) {
  for (const platform::SettingValue& damaged :
       {platform::SettingValue(std::string("{\"deckhandConfigurations\": 1, \"configu")),
        platform::SettingValue(std::string(R"({"deckhandConfigurations": 2, "configurations": []})")),
        platform::SettingValue(std::int64_t{4})}) {
    settings.setObjectForKey("configurations", damaged);
    EXPECT_FALSE(store.all().ok());
    EXPECT_FALSE(store.replaceAll({named("a")}).ok());
    EXPECT_EQ(settings.objectForKey("configurations"), damaged);
  }
}

TEST_F(ConfigurationStoreTest, ASettingsFileWithDamagedLinesIsNotWritten) {
  module.settingsStatus = Error{"could not be read in full", ""};
  EXPECT_FALSE(store.replaceAll({named("a")}).ok());
  EXPECT_EQ(settings.objectForKey("configurations"), std::nullopt);
}

TEST_F(ConfigurationStoreTest, WhatCouldNotBeReadAgainIsNotWritten) {
  ASSERT_TRUE(store.replaceAll({named("a")}).ok());
  EXPECT_FALSE(store.replaceAll({named("a", -5)}).ok());
  EXPECT_EQ(names(), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace zq::host
