#include "backends/settings/layered_settings.h"

#include <mutex>
#include <utility>

#include "platform/runtime.h"

namespace zq::backend {

LayeredSettings::LayeredSettings(platform::Runtime& runtime, platform::Settings& base)
    : base_(base), mutex_(runtime.makeMutex("layered settings")), observers_(*mutex_) {}

void LayeredSettings::overlayObjectForKey(const std::string& key, platform::SettingValue value) {
  {
    const std::lock_guard guard(*mutex_);
    layer_.insert_or_assign(key, std::move(value));
  }
  observers_.tell(key);
}

std::optional<platform::SettingValue> LayeredSettings::objectForKey(const std::string& key) const {
  {
    const std::lock_guard guard(*mutex_);
    const auto found = layer_.find(key);
    if (found != layer_.end()) return found->second;
  }
  return base_.objectForKey(key);
}

void LayeredSettings::setObjectForKey(const std::string& key, platform::SettingValue value) {
  // An overlaid key stays one, so the answer cannot go stale before the write.
  if (isOverlaid(key)) {
    overlayObjectForKey(key, std::move(value));
  } else {
    base_.setObjectForKey(key, std::move(value));
  }
}

void LayeredSettings::removeObjectForKey(const std::string& key) {
  if (!isOverlaid(key)) {
    base_.removeObjectForKey(key);
    return;
  }
  {
    const std::lock_guard guard(*mutex_);
    std::optional<platform::SettingValue>& held = layer_[key];
    if (!held) return;
    held.reset();
  }
  observers_.tell(key);
}

platform::Observation LayeredSettings::observe(std::vector<std::string> keys,
                                               std::function<void(const std::string& key)> changed) {
  auto tellUnlessOverlaid = [this, changed](const std::string& key) {
    if (!isOverlaid(key)) changed(key);
  };
  using Both = std::pair<platform::Observation, platform::Observation>;
  platform::Observation ofBase = base_.observe(keys, std::move(tellUnlessOverlaid));
  platform::Observation ofLayer = observers_.add(std::move(keys), std::move(changed));
  return std::make_shared<Both>(std::move(ofBase), std::move(ofLayer));
}

bool LayeredSettings::isOverlaid(const std::string& key) const {
  const std::lock_guard guard(*mutex_);
  return layer_.contains(key);
}

}  // namespace zq::backend
