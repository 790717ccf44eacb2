#include "backends/settings/layered_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/settings/memory_settings.h"
#include "backends/time/real_runtime.h"

namespace zq::backend {
namespace {

using platform::Observation;
using testing::ElementsAre;

class LayeredSettingsTest : public testing::Test {
 protected:
  RealRuntime runtime_;
  MemorySettings base_{runtime_};
  LayeredSettings settings_{runtime_, base_};
  std::vector<std::string> told_;

  Observation observe(const std::string& key) {
    return settings_.observe({key}, [this](const std::string& changed) { told_.push_back(changed); });
  }
};

TEST_F(LayeredSettingsTest, WithoutALayerEverythingIsTheBase) {
  base_.setIntegerForKey("stored", 1);
  settings_.setIntegerForKey("written", 2);
  EXPECT_EQ(settings_.integerForKey("stored"), 1);
  EXPECT_EQ(base_.integerForKey("written"), 2);
  settings_.removeObjectForKey("stored");
  EXPECT_EQ(base_.objectForKey("stored"), std::nullopt);
}

TEST_F(LayeredSettingsTest, TheLayerIsReadFirst) {
  base_.setIntegerForKey("key", 1);
  settings_.overlayObjectForKey("key", std::int64_t{2});
  EXPECT_EQ(settings_.integerForKey("key"), 2);
  EXPECT_EQ(base_.integerForKey("key"), 1);
}

TEST_F(LayeredSettingsTest, AWriteOfAnOverlaidKeyStaysInTheLayer) {
  base_.setIntegerForKey("key", 1);
  settings_.overlayObjectForKey("key", std::int64_t{2});
  settings_.setIntegerForKey("key", 3);
  EXPECT_EQ(settings_.integerForKey("key"), 3);
  EXPECT_EQ(base_.integerForKey("key"), 1);
}

TEST_F(LayeredSettingsTest, ARemovedOverlaidKeyHidesTheBase) {
  base_.setIntegerForKey("key", 1);
  settings_.overlayObjectForKey("key", std::int64_t{2});
  settings_.removeObjectForKey("key");
  EXPECT_EQ(settings_.objectForKey("key"), std::nullopt);
  EXPECT_EQ(base_.integerForKey("key"), 1);
}

TEST_F(LayeredSettingsTest, AWriteAfterTheRemovalStillStaysInTheLayer) {
  settings_.overlayObjectForKey("key", std::int64_t{2});
  settings_.removeObjectForKey("key");
  settings_.setIntegerForKey("key", 3);
  EXPECT_EQ(settings_.integerForKey("key"), 3);
  EXPECT_EQ(base_.objectForKey("key"), std::nullopt);
}

TEST_F(LayeredSettingsTest, TellsOfChangesOfEither) {
  const Observation ofStored = observe("stored");
  const Observation ofLayered = observe("layered");
  base_.setIntegerForKey("stored", 1);
  settings_.setIntegerForKey("stored", 2);
  settings_.overlayObjectForKey("layered", std::int64_t{3});
  settings_.setIntegerForKey("layered", 4);
  settings_.removeObjectForKey("layered");
  EXPECT_THAT(told_, ElementsAre("stored", "stored", "layered", "layered", "layered"));
}

TEST_F(LayeredSettingsTest, DoesNotTellOfWhatTheLayerHides) {
  settings_.overlayObjectForKey("key", std::int64_t{1});
  const Observation observation = observe("key");
  base_.setIntegerForKey("key", 2);
  EXPECT_THAT(told_, ElementsAre());
}

TEST_F(LayeredSettingsTest, RemovingAHiddenKeyAgainTellsNobody) {
  settings_.overlayObjectForKey("key", std::int64_t{1});
  settings_.removeObjectForKey("key");
  const Observation observation = observe("key");
  settings_.removeObjectForKey("key");
  EXPECT_THAT(told_, ElementsAre());
}

TEST_F(LayeredSettingsTest, TellsNobodyOnceTheObservationEnded) {
  Observation observation = observe("key");
  observation.reset();
  base_.setIntegerForKey("key", 1);
  settings_.overlayObjectForKey("key", std::int64_t{2});
  EXPECT_THAT(told_, ElementsAre());
}

TEST_F(LayeredSettingsTest, MayBeUsedFromSeveralThreads) {
  constexpr int kRounds = 300;
  const auto write = [this](const char* key) {
    settings_.overlayObjectForKey(key, std::int64_t{0});
    for (int i = 1; i <= kRounds; ++i) {
      const Observation observation = settings_.observe({"stored"}, [](const std::string&) {});
      settings_.setIntegerForKey(key, i);
      settings_.setIntegerForKey("stored", i);
    }
  };
  const auto one = runtime_.startThread("one", [&] { write("one"); });
  const auto two = runtime_.startThread("two", [&] { write("two"); });
  one->join();
  two->join();
  EXPECT_EQ(settings_.integerForKey("one"), kRounds);
  EXPECT_EQ(settings_.integerForKey("two"), kRounds);
  EXPECT_EQ(base_.objectForKey("one"), std::nullopt);
}

}  // namespace
}  // namespace zq::backend
