#include "platform/setting_observers.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace zq::platform {

Observation SettingObservers::add(std::vector<std::string> keys, Changed changed) {
  auto entry = std::make_shared<Entry>(Entry{std::move(keys), std::move(changed)});
  const std::lock_guard guard(mutex_);
  entries_.push_back(entry);
  return entry;
}

void SettingObservers::tell(const std::string& key) {
  for (const std::shared_ptr<Entry>& entry : observersOf(key)) entry->changed(key);
}

std::vector<std::shared_ptr<SettingObservers::Entry>> SettingObservers::observersOf(const std::string& key) {
  std::vector<std::shared_ptr<Entry>> observers;
  const std::lock_guard guard(mutex_);
  std::erase_if(entries_, [](const std::weak_ptr<Entry>& entry) { return entry.expired(); });
  for (const std::weak_ptr<Entry>& held : entries_) {
    std::shared_ptr<Entry> entry = held.lock();
    if (entry && std::ranges::find(entry->keys, key) != entry->keys.end()) observers.push_back(std::move(entry));
  }
  return observers;
}

}  // namespace zq::platform
