#include "recapture/preroll_threads.h"

#include <utility>

namespace zq {
namespace {

constexpr int kIdle = 0;
constexpr int kWorkPosted = 1;

}  // namespace

PrerollThreads::PrerollThreads(platform::Runtime& runtime, std::function<void()> startRecord)
    : runtime_(runtime), startRecord_(std::move(startRecord)), prerollLock_(runtime, "preroll lock", kIdle) {}

void PrerollThreads::close() {
  closing_ = true;
  end();
  for (const auto& thread : threads_) thread->join();
  threads_.clear();
}

void PrerollThreads::detach() {
  continuePreroll_ = true;
  post(false, kIdle);
  threads_.push_back(runtime_.startThread("preroll", [this] { run(); }));
}

void PrerollThreads::end() {
  continuePreroll_ = false;
  post(false, kWorkPosted);
}

// A frame may ask again between the moment when a thread takes its request and the one when the preroll begins. That
// second request would be made after the first, and disarm the recording that it set up.
void PrerollThreads::request() {
  prerollLock_.lock();
  if (isSettingUp_) return prerollLock_.unlock();
  startPreroll_ = true;
  prerollLock_.unlockWithCondition(kWorkPosted);
}

void PrerollThreads::post(bool startPreroll, int condition) {
  prerollLock_.lock();
  startPreroll_ = startPreroll;
  prerollLock_.unlockWithCondition(condition);
}

// When all is closed, the word is passed on, since every thread has to hear it.
void PrerollThreads::run() {
  while (continuePreroll_) {
    prerollLock_.lockWhenCondition(kWorkPosted);
    const bool startPreroll = startPreroll_;
    isSettingUp_ = isSettingUp_ || startPreroll;
    prerollLock_.unlockWithCondition(closing_ ? kWorkPosted : kIdle);
    if (startPreroll) setUp();
  }
}

void PrerollThreads::setUp() {
  if (continuePreroll_) startRecord_();
  prerollLock_.lock();
  isSettingUp_ = false;
  prerollLock_.unlock();
}

}  // namespace zq
