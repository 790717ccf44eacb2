#include "platform/notification_center.h"

#include <utility>

namespace zq::platform {

Observation NotificationCenter::addObserver(std::string name, Observer observer) {
  auto entry = std::make_shared<Entry>(Entry{std::move(name), std::move(observer)});
  entries_.push_back(entry);
  return entry;
}

void NotificationCenter::post(const Notification& notification) {
  std::erase_if(entries_, [](const std::weak_ptr<Entry>& entry) { return entry.expired(); });
  // A copy: an observer may add or end observations.
  const std::vector<std::weak_ptr<Entry>> entries = entries_;
  for (const std::weak_ptr<Entry>& held : entries) {
    const std::shared_ptr<Entry> entry = held.lock();
    if (entry && entry->name == notification.name) entry->observer(notification);
  }
}

}  // namespace zq::platform
