#include "outlets/plain_outlets.h"

#include <mutex>
#include <utility>

#include "platform/runtime.h"

namespace zq::outlets {

PlainOverlay::PlainOverlay(platform::Runtime& runtime) : mutex_(runtime.makeMutex("overlay")) {}

void PlainOverlay::setTimecode(const SMPTETime& timecode) {
  const std::lock_guard guard(*mutex_);
  timecode_ = timecode;
}

void PlainOverlay::setDate(DateValue date) {
  const std::lock_guard guard(*mutex_);
  date_ = std::move(date);
}

void PlainOverlay::setHidden(bool hidden) {
  const std::lock_guard guard(*mutex_);
  hidden_ = hidden;
}

SMPTETime PlainOverlay::timecode() const {
  const std::lock_guard guard(*mutex_);
  return timecode_;
}

DateValue PlainOverlay::date() const {
  const std::lock_guard guard(*mutex_);
  return date_;
}

bool PlainOverlay::isHidden() const {
  const std::lock_guard guard(*mutex_);
  return hidden_;
}

void PlainPopUp::addItem(std::string title, std::any representedObject) {
  items_.push_back({std::move(title), std::move(representedObject)});
  if (itemCount() == 1) selected_ = 0;
}

void PlainPopUp::removeAllItems() {
  items_.clear();
  selected_ = -1;
}

int PlainPopUp::itemCount() const {
  return static_cast<int>(items_.size());
}

std::string PlainPopUp::itemTitleAtIndex(int index) const {
  const Item* item = itemAtIndex(index);
  return item ? item->title : "";
}

std::any PlainPopUp::representedObjectAtIndex(int index) const {
  const Item* item = itemAtIndex(index);
  return item ? item->representedObject : std::any();
}

void PlainPopUp::selectItemAtIndex(int index) {
  selected_ = itemAtIndex(index) ? index : -1;
}

const PlainPopUp::Item* PlainPopUp::itemAtIndex(int index) const {
  if (index < 0 || index >= itemCount()) return nullptr;
  return &items_[static_cast<std::size_t>(index)];
}

void PlainSheet::beginSheet(std::function<void()> didEnd) {
  didEnd_ = std::move(didEnd);
  onScreen_ = true;
}

void PlainSheet::endSheet() {
  if (const auto didEnd = std::exchange(didEnd_, nullptr)) didEnd();
}

}  // namespace zq::outlets
