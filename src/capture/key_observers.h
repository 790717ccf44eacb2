#pragma once
// Observers of a controller's keys, told before and after each change.

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/settings.h"

namespace zq {

enum class KeyChange { willChange, didChange };

/// Main thread only.
class KeyObservers {
 public:
  using Observer = std::function<void(const std::string& key, KeyChange change)>;

  /// Until the returned handle goes.
  platform::Observation addObserver(Observer observer);
  /// A change of `key` also announces changes of `dependents`.
  void setDependentKeys(const std::string& key, std::vector<std::string> dependents);

  void willChangeValueForKey(const std::string& key) const { announce(key, KeyChange::willChange); }
  void didChangeValueForKey(const std::string& key) const { announce(key, KeyChange::didChange); }

 private:
  void announce(const std::string& key, KeyChange change) const;

  std::vector<std::weak_ptr<Observer>> observers_;
  std::vector<std::pair<std::string, std::vector<std::string>>> dependents_;
};

}  // namespace zq
