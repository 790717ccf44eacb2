#include "platform/notification_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zq::platform {
namespace {

using testing::ElementsAre;

class NotificationCenterTest : public testing::Test {
 protected:
  Observation observe(const char* name, int number) {
    return center_.addObserver(name, [this, number](const Notification&) { seen_.push_back(number); });
  }

  NotificationCenter center_;
  std::vector<int> seen_;
};

TEST_F(NotificationCenterTest, CallsTheObserversOfTheNameInTheOrderInWhichTheyWereAdded) {
  const Observation first = observe("name", 1);
  const Observation other = observe("other", 2);
  const Observation second = observe("name", 3);
  center_.post({"name", nullptr, ""});
  EXPECT_THAT(seen_, ElementsAre(1, 3));
}

TEST_F(NotificationCenterTest, HandsTheNotificationOver) {
  const int sender = 0;
  Notification received;
  const Observation observation =
      center_.addObserver("name", [&](const Notification& notification) { received = notification; });
  center_.post({"name", &sender, "attribute"});
  EXPECT_EQ(received.name, "name");
  EXPECT_EQ(received.object, &sender);
  EXPECT_EQ(received.changedAttribute, "attribute");
}

TEST_F(NotificationCenterTest, AnObservationEndsWithItsHandle) {
  Observation first = observe("name", 1);
  const Observation second = observe("name", 2);
  first.reset();
  center_.post({"name", nullptr, ""});
  EXPECT_THAT(seen_, ElementsAre(2));
}

TEST_F(NotificationCenterTest, AHandleMayOutliveTheCenter) {
  Observation observation;
  {
    NotificationCenter center;
    observation = center.addObserver("name", [](const Notification&) {});
  }
  observation.reset();
}

TEST_F(NotificationCenterTest, AnObserverMayEndItsOwnObservation) {
  Observation observation;
  observation = center_.addObserver("name", [&](const Notification&) {
    observation.reset();
    seen_.push_back(1);
  });
  center_.post({"name", nullptr, ""});
  center_.post({"name", nullptr, ""});
  EXPECT_THAT(seen_, ElementsAre(1));
}

TEST_F(NotificationCenterTest, AnObserverEndedByAnEarlierOneIsNotCalled) {
  Observation second;
  const Observation first = center_.addObserver("name", [&](const Notification&) { second.reset(); });
  second = observe("name", 2);
  center_.post({"name", nullptr, ""});
  EXPECT_TRUE(seen_.empty());
}

TEST_F(NotificationCenterTest, AnObserverAddedByAnotherIsCalledFromTheNextNotificationOn) {
  Observation second;
  const Observation first = center_.addObserver("name", [&](const Notification&) {
    if (!second) second = observe("name", 2);
  });
  center_.post({"name", nullptr, ""});
  EXPECT_TRUE(seen_.empty());
  center_.post({"name", nullptr, ""});
  EXPECT_THAT(seen_, ElementsAre(2));
}

TEST_F(NotificationCenterTest, AnObserverMayPost) {
  const Observation outer = center_.addObserver("outer", [&](const Notification&) {
    seen_.push_back(1);
    center_.post({"inner", nullptr, ""});
    seen_.push_back(3);
  });
  const Observation inner = observe("inner", 2);
  center_.post({"outer", nullptr, ""});
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace zq::platform
