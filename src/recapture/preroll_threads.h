#pragma once
// Sets recordings up beside the delivery thread, which hands each one over through a condition lock.

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "platform/condition_lock.h"
#include "platform/runtime.h"

namespace zq {

class PrerollThreads {
 public:
  /// `startRecord` is called on a preroll thread for each request.
  PrerollThreads(platform::Runtime& runtime, std::function<void()> startRecord);
  ~PrerollThreads() { close(); }
  PrerollThreads(const PrerollThreads&) = delete;
  PrerollThreads& operator=(const PrerollThreads&) = delete;

  /// Main thread. Starts one more thread; those of earlier sessions wait for requests as well.
  void detach();
  /// Main thread. Wakes a thread, which then ends.
  void end();
  /// Main thread. Ends all threads, and waits for a recording that is being set up.
  void close();
  /// From any thread: have a recording set up, unless one is being set up already.
  void request();

 private:
  void post(bool startPreroll, int condition);
  void run();
  void setUp();

  // Constant after construction.
  platform::Runtime& runtime_;
  const std::function<void()> startRecord_;

  /// 0: idle; 1: work posted.
  platform::ConditionLock prerollLock_;
  // Guarded by prerollLock_.
  bool startPreroll_ = false;
  bool isSettingUp_ = false;

  std::atomic<bool> continuePreroll_ = false;
  std::atomic<bool> closing_ = false;

  // Main thread only.
  std::vector<std::unique_ptr<platform::Thread>> threads_;
};

}  // namespace zq
