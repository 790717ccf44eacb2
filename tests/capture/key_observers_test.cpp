#include "capture/key_observers.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace zq::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeyObserversTest : public testing::Test {
 protected:
  platform::Observation observe(const std::string& name) {
    return keys_.addObserver([this, name](const std::string& key, KeyChange change) {
      told_.push_back(name + (change == KeyChange::willChange ? ": will " : ": did ") + key);
    });
  }

  KeyObservers keys_;
  std::vector<std::string> told_;
};

TEST_F(KeyObserversTest, AreToldBeforeAndAfterTheChange) {
  const auto observation = observe("a");
  keys_.willChangeValueForKey("x");
  keys_.didChangeValueForKey("x");
  EXPECT_THAT(told_, ElementsAre("a: will x", "a: did x"));
}

TEST_F(KeyObserversTest, AreToldInTheOrderInWhichTheyCame) {
  const auto first = observe("a");
  const auto second = observe("b");
  keys_.didChangeValueForKey("x");
  EXPECT_THAT(told_, ElementsAre("a: did x", "b: did x"));
}

TEST_F(KeyObserversTest, AreToldOfTheKeysThatFollowAnother) {
  keys_.setDependentKeys("x", {"y", "z"});
  const auto observation = observe("a");
  keys_.willChangeValueForKey("x");
  keys_.didChangeValueForKey("y");
  EXPECT_THAT(told_, ElementsAre("a: will x", "a: will y", "a: will z", "a: did y"));
}

TEST_F(KeyObserversTest, AreNotToldOnceTheirHandleIsGone) {
  observe("a").reset();
  keys_.didChangeValueForKey("x");
  EXPECT_THAT(told_, IsEmpty());
}

TEST_F(KeyObserversTest, MayEndAnotherObservationWhileTheyAreTold) {
  platform::Observation second;
  const auto first = keys_.addObserver([&second](const std::string&, KeyChange) { second.reset(); });
  second = observe("b");
  keys_.didChangeValueForKey("x");
  EXPECT_THAT(told_, IsEmpty());
}

TEST_F(KeyObserversTest, OneThatIsAddedMeanwhileHearsOfTheNextChange) {
  platform::Observation second;
  const auto first = keys_.addObserver([&](const std::string&, KeyChange) {
    if (!second) second = observe("b");
  });
  keys_.willChangeValueForKey("x");
  keys_.didChangeValueForKey("x");
  EXPECT_THAT(told_, ElementsAre("b: did x"));
}

}  // namespace
}  // namespace zq::test
