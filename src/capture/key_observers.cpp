#include "capture/key_observers.h"

namespace zq {

platform::Observation KeyObservers::addObserver(Observer observer) {
  std::erase_if(observers_, [](const std::weak_ptr<Observer>& held) { return held.expired(); });
  auto held = std::make_shared<Observer>(std::move(observer));
  observers_.push_back(held);
  return held;
}

void KeyObservers::setDependentKeys(const std::string& key, std::vector<std::string> dependents) {
  dependents_.emplace_back(key, std::move(dependents));
}

void KeyObservers::announce(const std::string& key, KeyChange change) const {
  std::vector<std::string> keys{key};
  for (const auto& [source, dependents] : dependents_) {
    if (source == key) keys.insert(keys.end(), dependents.begin(), dependents.end());
  }
  // A copy: an observer may add or end observations.
  const std::vector<std::weak_ptr<Observer>> observers = observers_;
  for (const std::string& changed : keys) {
    for (const std::weak_ptr<Observer>& held : observers) {
      if (const auto observer = held.lock()) (*observer)(changed, change);
    }
  }
}

}  // namespace zq
