#pragma once
// Settings that last as long as the program runs.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/setting_observers.h"
#include "platform/settings.h"
#include "platform/thread.h"

namespace zq::platform {
class Runtime;
}

namespace zq::backend {

/// From any thread. An observer may read and write the settings that it observes.
class MemorySettings final : public platform::Settings {
 public:
  explicit MemorySettings(platform::Runtime& runtime);

  std::optional<platform::SettingValue> objectForKey(const std::string& key) const override;
  void setObjectForKey(const std::string& key, platform::SettingValue value) override;
  /// Without an object under `key`, does nothing and tells nobody.
  void removeObjectForKey(const std::string& key) override;
  platform::Observation observe(std::vector<std::string> keys,
                                std::function<void(const std::string& key)> changed) override;

 private:
  // Constant after construction.
  const std::unique_ptr<platform::Mutex> mutex_;

  platform::SettingObservers observers_;

  // Guarded by mutex_.
  std::map<std::string, platform::SettingValue> values_;
};

}  // namespace zq::backend
