#pragma once
// Takes what the device delivers, and hands each frame to the outputs in their order.

#include <functional>
#include <memory>
#include <vector>

#include "backends/session/sample_attributes.h"
#include "platform/capture_session.h"
#include "platform/runtime.h"

namespace zq::backend {

class CaptureSession final : public platform::QTCaptureSession, public platform::FrameSink {
 public:
  /// `failed` is called on the main thread when the device cannot go on.
  CaptureSession(platform::Runtime& runtime, std::function<void(const Error&)> failed);
  ~CaptureSession() override;

  Status addInput(std::shared_ptr<platform::QTCaptureDeviceInput> input) override;
  void removeInput(const std::shared_ptr<platform::QTCaptureDeviceInput>& input) override;
  std::size_t inputCount() const override;
  Status addOutput(std::shared_ptr<platform::QTCaptureOutput> output) override;
  void startRunning() override;
  void stopRunning() override;
  bool isRunning() const override;

  void deliverFrame(const platform::QTFormatDescription& format, const SharedBytes& frame) override;
  void deliveryFailed(const Error& error) override;

 private:
  void connectDevice(bool running);

  // Constant after construction.
  platform::Runtime& runtime_;
  const std::function<void(const Error&)> failed_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::shared_ptr<platform::QTCaptureDeviceInput> input_;
  std::vector<std::weak_ptr<platform::QTCaptureDevice>> removed_;
  std::vector<std::shared_ptr<platform::QTCaptureOutput>> outputs_;
  bool running_ = false;

  // Delivery thread only.
  SampleAttributes attributes_;
};

}  // namespace zq::backend
