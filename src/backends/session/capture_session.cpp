#include "backends/session/capture_session.h"

#include <mutex>
#include <utility>

#include "backends/session/frame_consumer.h"

namespace zq::backend {

using platform::QTCaptureDeviceInput;
using platform::QTCaptureOutput;

CaptureSession::CaptureSession(platform::Runtime& runtime, std::function<void(const Error&)> failed)
    : runtime_(runtime), failed_(std::move(failed)), mutex_(runtime.makeMutex("capture session")) {}

// A device that was removed a moment ago may still deliver.
CaptureSession::~CaptureSession() {
  if (input_) removeInput(input_);
  for (const auto& removed : removed_) {
    if (const auto device = removed.lock()) device->waitForDelivery();
  }
}

Status CaptureSession::addInput(std::shared_ptr<QTCaptureDeviceInput> input) {
  const std::lock_guard guard(*mutex_);
  if (input_) return Error{"The session has a device already", "Remove it before adding another."};
  if (!input->device()->isOpen()) {
    return Error{input->device()->localizedDisplayName() + " is not open", "Open the device before adding it."};
  }
  input_ = std::move(input);
  connectDevice(running_);
  return {};
}

void CaptureSession::removeInput(const std::shared_ptr<QTCaptureDeviceInput>& input) {
  const std::lock_guard guard(*mutex_);
  if (input_ != input) return;
  connectDevice(false);
  removed_.push_back(input_->device());
  input_.reset();
}

std::size_t CaptureSession::inputCount() const {
  const std::lock_guard guard(*mutex_);
  return input_ ? 1 : 0;
}

Status CaptureSession::addOutput(std::shared_ptr<QTCaptureOutput> output) {
  const std::lock_guard guard(*mutex_);
  outputs_.push_back(std::move(output));
  return {};
}

void CaptureSession::startRunning() {
  const std::lock_guard guard(*mutex_);
  running_ = true;
  connectDevice(true);
}

void CaptureSession::stopRunning() {
  const std::lock_guard guard(*mutex_);
  running_ = false;
  connectDevice(false);
}

bool CaptureSession::isRunning() const {
  const std::lock_guard guard(*mutex_);
  return running_;
}

void CaptureSession::connectDevice(bool running) {
  if (!input_) return;
  if (running) {
    input_->device()->startStreaming(*this);
  } else {
    input_->device()->stopStreaming();
  }
}

void CaptureSession::deliverFrame(const platform::QTFormatDescription& format, const SharedBytes& frame) {
  std::vector<std::shared_ptr<QTCaptureOutput>> outputs;
  bool canWait = false;
  {
    const std::lock_guard guard(*mutex_);
    if (!running_ || !input_) return;
    outputs = outputs_;
    canWait = input_->device()->canWait();
  }
  const platform::QTSampleBuffer buffer = attributes_.next(format, frame);
  for (const std::shared_ptr<QTCaptureOutput>& output : outputs) {
    if (auto* consumer = dynamic_cast<FrameConsumer*>(output.get())) consumer->consume(buffer, canWait);
  }
}

void CaptureSession::deliveryFailed(const Error& error) {
  if (failed_) runtime_.mainLoop().post([failed = failed_, error] { failed(error); });
}

}  // namespace zq::backend
