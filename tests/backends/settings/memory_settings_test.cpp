#include "backends/settings/memory_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/time/real_runtime.h"

namespace zq::backend {
namespace {

using platform::Observation;
using platform::SettingValue;
using testing::ElementsAre;

class MemorySettingsTest : public testing::Test {
 protected:
  RealRuntime runtime_;
  MemorySettings settings_{runtime_};
  std::vector<std::string> told_;

  Observation observe(std::vector<std::string> keys) {
    return settings_.observe(std::move(keys), [this](const std::string& key) { told_.push_back(key); });
  }
};

TEST_F(MemorySettingsTest, KeepsEveryKind) {
  const std::vector<SettingValue> values = {true, std::int64_t{-7}, 0.25, std::string("tape 3"),
                                            std::vector<std::uint8_t>{0, 255}};
  for (const SettingValue& value : values) {
    settings_.setObjectForKey("key", value);
    EXPECT_EQ(settings_.objectForKey("key"), value);
  }
}

TEST_F(MemorySettingsTest, HasNothingUnderAKeyThatWasNeverSetOrIsRemoved) {
  EXPECT_EQ(settings_.objectForKey("key"), std::nullopt);
  settings_.setBoolForKey("key", true);
  settings_.removeObjectForKey("key");
  EXPECT_EQ(settings_.objectForKey("key"), std::nullopt);
}

TEST_F(MemorySettingsTest, TellsOfTheObservedKeysOnly) {
  const Observation observation = observe({"one", "two"});
  settings_.setIntegerForKey("one", 1);
  settings_.setIntegerForKey("three", 3);
  settings_.setIntegerForKey("two", 2);
  settings_.removeObjectForKey("one");
  EXPECT_THAT(told_, ElementsAre("one", "two", "one"));
}

TEST_F(MemorySettingsTest, TellsOfTheSameValueSetAgain) {
  const Observation observation = observe({"key"});
  settings_.setIntegerForKey("key", 1);
  settings_.setIntegerForKey("key", 1);
  EXPECT_THAT(told_, ElementsAre("key", "key"));
}

TEST_F(MemorySettingsTest, RemovingNothingTellsNobody) {
  const Observation observation = observe({"key"});
  settings_.removeObjectForKey("key");
  EXPECT_THAT(told_, ElementsAre());
}

TEST_F(MemorySettingsTest, TellsNobodyOnceTheObservationEnded) {
  Observation observation = observe({"key"});
  observation.reset();
  settings_.setIntegerForKey("key", 1);
  EXPECT_THAT(told_, ElementsAre());
}

TEST_F(MemorySettingsTest, AnObserverSeesTheNewValueAndMayWrite) {
  const Observation observation = settings_.observe({"width"}, [this](const std::string&) {
    settings_.setIntegerForKey("double width", settings_.integerForKey("width") * 2);
  });
  settings_.setIntegerForKey("width", 360);
  EXPECT_EQ(settings_.integerForKey("double width"), 720);
}

TEST_F(MemorySettingsTest, AnObserverMayEndItsOwnObservation) {
  Observation observation;
  observation = settings_.observe({"key"}, [&](const std::string& key) {
    told_.push_back(key);
    observation.reset();
  });
  settings_.setIntegerForKey("key", 1);
  settings_.setIntegerForKey("key", 2);
  EXPECT_THAT(told_, ElementsAre("key"));
}

TEST_F(MemorySettingsTest, AnObservationMayOutliveTheSettings) {
  auto settings = std::make_unique<MemorySettings>(runtime_);
  const Observation observation = settings->observe({"key"}, [](const std::string&) {});
  settings.reset();
}

TEST_F(MemorySettingsTest, MayBeUsedFromSeveralThreads) {
  constexpr int kRounds = 500;
  const auto write = [this](const char* key) {
    for (int i = 1; i <= kRounds; ++i) {
      settings_.setIntegerForKey(key, i);
      const Observation observation = settings_.observe({key}, [](const std::string&) {});
      settings_.removeObjectForKey("shared");
      settings_.setIntegerForKey("shared", i);
    }
  };
  const auto one = runtime_.startThread("one", [&] { write("one"); });
  const auto two = runtime_.startThread("two", [&] { write("two"); });
  one->join();
  two->join();
  EXPECT_EQ(settings_.integerForKey("one"), kRounds);
  EXPECT_EQ(settings_.integerForKey("two"), kRounds);
}

}  // namespace
}  // namespace zq::backend
