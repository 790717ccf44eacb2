#pragma once
// What the scheduler of virtual time knows of one thread.

#include <cstddef>
#include <optional>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/clock.h"

namespace zq::backend {

/// What a thread can wait for.
class Waitable {
 public:
  /// Completes "waits for".
  virtual std::string description() const = 0;

 protected:
  ~Waitable() = default;
};

/// One thread that takes turns with the others; waiting for it is waiting for its end.
class VirtualParticipant final : public Waitable {
 public:
  /// Aside: at work beside the others, without the baton, which it will want back.
  enum class State { kReady, kRunning, kWaiting, kAside, kFinished };

  VirtualParticipant(std::string participantName, std::size_t participantNumber)
      : name(std::move(participantName)), number(participantNumber) {}
  std::string description() const override { return "the end of thread '" + name + "'"; }

  // Constant after construction.
  const std::string name;
  const std::size_t number;

  /// Released by whoever hands the baton to this thread.
  std::binary_semaphore turn{0};

  // For the holder of the baton.
  std::thread::id id;
  State state = State::kReady;
  const Waitable* waitsFor = nullptr;  // While waiting; null is for time to pass.
  std::optional<platform::TimePoint> deadline;
  platform::TimePoint asideSince;  // while kAside
  bool waitsForWorkAside = false;
  std::vector<VirtualParticipant*> joiners;
  VirtualParticipant* unwinder = nullptr;  // Who gets the baton back when this thread has been unwound.

  /// For whoever joins, and the scheduler's destructor. Empty for the main thread.
  std::thread thread;
};

/// A place in a list of waiting threads, for as long as the thread waits, however its wait ends.
class WaitingPlace {
 public:
  WaitingPlace(std::vector<VirtualParticipant*>& list, VirtualParticipant& participant)
      : list_(list), participant_(&participant) {
    list_.push_back(participant_);
  }
  ~WaitingPlace() { std::erase(list_, participant_); }
  WaitingPlace(const WaitingPlace&) = delete;
  WaitingPlace& operator=(const WaitingPlace&) = delete;

 private:
  std::vector<VirtualParticipant*>& list_;
  VirtualParticipant* const participant_;
};

}  // namespace zq::backend
