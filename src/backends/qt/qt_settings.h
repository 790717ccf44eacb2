#pragma once
// The user's settings, in a file that a person can read and edit.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/setting_observers.h"
#include "platform/settings.h"
#include "platform/thread.h"

class QSettings;

namespace zq::platform {
class Runtime;
}

namespace zq::backend {

/// From any thread. What another program writes to the same file is seen by the next operation; observers are told of
/// this program's own changes only. An observer may read and write the settings that it observes.
class QtSettings final : public platform::Settings {
 public:
  /// The user's own file: Deckhand/deckhand.ini in the configuration folder.
  explicit QtSettings(platform::Runtime& runtime);
  QtSettings(platform::Runtime& runtime, const std::string& path);
  ~QtSettings() override;

  std::optional<platform::SettingValue> objectForKey(const std::string& key) const override;
  /// On disk on return. What could not be written (see lastError()) still holds for this run, and the next write
  /// tries again.
  void setObjectForKey(const std::string& key, platform::SettingValue value) override;
  /// Without an object under `key`, does nothing and tells nobody.
  void removeObjectForKey(const std::string& key) override;
  platform::Observation observe(std::vector<std::string> keys,
                                std::function<void(const std::string& key)> changed) override;

  /// How the last write or removal went; before the first one, whether the file could be read.
  Status lastError() const;
  /// Where the settings are.
  std::string path() const;

 private:
  // Constant after construction. keeper_ does nothing but keep Qt's copy of the file alive: without it, a value that
  // could not be written would be gone with the operation that set it.
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<const QSettings> keeper_;

  // Guarded by mutex_.
  platform::SettingObservers observers_;
  Status lastError_;
};

}  // namespace zq::backend
