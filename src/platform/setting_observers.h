#pragma once
// Who wants to know when the object under a key changes.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/settings.h"
#include "platform/thread.h"

namespace zq::platform {

/// From any thread. Ending an observation does not wait for a call that is under way on another thread.
class SettingObservers {
 public:
  using Changed = std::function<void(const std::string& key)>;

  /// `mutex` guards the list; it is not held while observers run, so that these may use what it guards as well.
  explicit SettingObservers(Mutex& mutex) : mutex_(mutex) {}

  Observation add(std::vector<std::string> keys, Changed changed);
  /// Calls who observes `key`, in the order in which they came.
  void tell(const std::string& key);

 private:
  struct Entry {
    std::vector<std::string> keys;
    Changed changed;
  };

  std::vector<std::shared_ptr<Entry>> observersOf(const std::string& key);

  Mutex& mutex_;

  // Guarded by mutex_.
  std::vector<std::weak_ptr<Entry>> entries_;
};

}  // namespace zq::platform
