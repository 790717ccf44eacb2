#include "backends/settings/memory_settings.h"

#include <mutex>
#include <utility>

#include "platform/runtime.h"

namespace zq::backend {

MemorySettings::MemorySettings(platform::Runtime& runtime)
    : mutex_(runtime.makeMutex("memory settings")), observers_(*mutex_) {}

std::optional<platform::SettingValue> MemorySettings::objectForKey(const std::string& key) const {
  const std::lock_guard guard(*mutex_);
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

void MemorySettings::setObjectForKey(const std::string& key, platform::SettingValue value) {
  {
    const std::lock_guard guard(*mutex_);
    values_.insert_or_assign(key, std::move(value));
  }
  observers_.tell(key);
}

void MemorySettings::removeObjectForKey(const std::string& key) {
  {
    const std::lock_guard guard(*mutex_);
    if (values_.erase(key) == 0) return;
  }
  observers_.tell(key);
}

platform::Observation MemorySettings::observe(std::vector<std::string> keys,
                                              std::function<void(const std::string& key)> changed) {
  return observers_.add(std::move(keys), std::move(changed));
}

}  // namespace zq::backend
