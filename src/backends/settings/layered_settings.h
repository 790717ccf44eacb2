#pragma once
// One run's changes over the settings that are stored: what `--set` on the command line gives.

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

/// From any thread. A key that was overlaid is this run's: writing or removing it never reaches the base, and what
/// happens to it there is not seen. Every other key is the base's. Outlives the handles that observe() returns.
class LayeredSettings final : public platform::Settings {
 public:
  /// Nothing is overlaid at first. `base` outlives this object.
  LayeredSettings(platform::Runtime& runtime, platform::Settings& base);

  /// Puts `value` over what the base has under `key`.
  void overlayObjectForKey(const std::string& key, platform::SettingValue value);

  std::optional<platform::SettingValue> objectForKey(const std::string& key) const override;
  void setObjectForKey(const std::string& key, platform::SettingValue value) override;
  /// An overlaid key has no object afterwards, even where the base has one.
  void removeObjectForKey(const std::string& key) override;
  platform::Observation observe(std::vector<std::string> keys,
                                std::function<void(const std::string& key)> changed) override;

 private:
  bool isOverlaid(const std::string& key) const;

  // Constant after construction.
  platform::Settings& base_;
  const std::unique_ptr<platform::Mutex> mutex_;

  platform::SettingObservers observers_;

  // Guarded by mutex_. No value: overlaid, then removed.
  std::map<std::string, std::optional<platform::SettingValue>> layer_;
};

}  // namespace zq::backend
