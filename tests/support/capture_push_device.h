#pragma once
// A device whose frames a test pushes, from a thread of its own, straight into the session.

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/capture_device.h"
#include "platform/runtime.h"
#include "platform/thread.h"

namespace zq::test {

/// From any thread, but push() from one at a time.
class PushDevice final : public platform::QTCaptureDevice {
 public:
  explicit PushDevice(platform::Runtime& runtime)
      : mutex_(runtime.makeMutex("push device")), delivered_(runtime.makeCondition("push device: delivery")) {}

  /// Delivers unless nobody listens.
  void push(const SharedBytes& frame) {
    platform::FrameSink* sink = nullptr;
    {
      const std::lock_guard guard(*mutex_);
      sink = sink_;
      delivering_ = sink != nullptr;
    }
    if (sink == nullptr) return;
    sink->deliverFrame({platform::QTMediaTypeVideo, platform::fourCharCode("dvcp")}, frame);
    const std::lock_guard guard(*mutex_);
    delivering_ = false;
    delivered_->notifyAll();
  }

  std::string uniqueID() const override { return "push"; }
  std::string localizedDisplayName() const override { return "Push device"; }
  std::vector<platform::QTFormatDescription> formatDescriptions() const override {
    return {{platform::QTMediaTypeVideo, platform::fourCharCode("dvcp")}};
  }
  Status open() override {
    const std::lock_guard guard(*mutex_);
    open_ = true;
    return {};
  }
  void close() override {
    const std::lock_guard guard(*mutex_);
    open_ = false;
  }
  bool isOpen() const override {
    const std::lock_guard guard(*mutex_);
    return open_;
  }

  std::optional<platform::AVCTransportControls> avcTransportControls() const override {
    const std::lock_guard guard(*mutex_);
    return controls_;
  }
  bool avcTransportControlsReadOnly() const override { return false; }
  void setAVCTransportControls(const platform::AVCTransportControls& controls) override {
    const std::lock_guard guard(*mutex_);
    controls_ = controls;
  }

  void startStreaming(platform::FrameSink& sink) override {
    const std::lock_guard guard(*mutex_);
    sink_ = &sink;
  }
  void stopStreaming() override {
    const std::lock_guard guard(*mutex_);
    sink_ = nullptr;
  }
  void waitForDelivery() override {
    const std::lock_guard guard(*mutex_);
    while (delivering_) delivered_->wait(*mutex_);
  }
  bool canWait() const override { return true; }

 private:
  // Constant after construction.
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<platform::Condition> delivered_;

  // Guarded by mutex_.
  platform::FrameSink* sink_ = nullptr;
  bool delivering_ = false;
  bool open_ = false;
  platform::AVCTransportControls controls_{1, 10000};
};

}  // namespace zq::test
