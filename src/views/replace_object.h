#pragma once
// How a view takes a record that is known by which object it is.

#include <mutex>

#include "platform/thread.h"

namespace zq {

/// Replaces `member`, which `mutex` guards; whether it is another object now. The old one goes once the mutex is free.
template <typename Value>
bool replaceObject(platform::Mutex& mutex, Value& member, Value value) {
  const std::lock_guard guard(mutex);
  if (member == value) return false;
  member.swap(value);
  return true;
}

}  // namespace zq
