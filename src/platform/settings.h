#pragma once
// The per-user settings store, with observation of its keys.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zq::platform {

using SettingValue = std::variant<bool, std::int64_t, double, std::string, std::vector<std::uint8_t>>;

// Lenient reading, as settings edited by hand need it: an unreadable object is false or 0.
bool boolFrom(const SettingValue& value);
int integerFrom(const SettingValue& value);

/// Ends an observation when the last handle of it goes.
using Observation = std::shared_ptr<void>;

/// Safe to read from any thread. Observers are called on the thread that writes, after the value is stored.
class Settings {
 public:
  virtual ~Settings() = default;

  /// The stored object, or nothing when the store has none under this key.
  virtual std::optional<SettingValue> objectForKey(const std::string& key) const = 0;
  virtual void setObjectForKey(const std::string& key, SettingValue value) = 0;
  virtual void removeObjectForKey(const std::string& key) = 0;
  /// Calls `changed` with the key whenever the object under one of `keys` is set or removed.
  virtual Observation observe(std::vector<std::string> keys, std::function<void(const std::string& key)> changed) = 0;

  // As lenient; a missing object is false, 0 or "" as well.
  bool boolForKey(const std::string& key) const;
  int integerForKey(const std::string& key) const;
  float floatForKey(const std::string& key) const;
  std::string stringForKey(const std::string& key) const;

  void setBoolForKey(const std::string& key, bool value) { setObjectForKey(key, value); }
  void setIntegerForKey(const std::string& key, int value) { setObjectForKey(key, std::int64_t{value}); }
  void setFloatForKey(const std::string& key, float value) { setObjectForKey(key, static_cast<double>(value)); }
};

}  // namespace zq::platform
