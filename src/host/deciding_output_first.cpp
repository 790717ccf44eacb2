#include "host/deciding_output_first.h"

#include <utility>

namespace zq::host {
namespace {

using platform::QTCaptureOutput;

/// Hands on all that it is asked, but keeps the first file output back until the second has been added.
class Session final : public platform::QTCaptureSession {
 public:
  explicit Session(std::shared_ptr<platform::QTCaptureSession> session) : session_(std::move(session)) {}

  Status addInput(std::shared_ptr<platform::QTCaptureDeviceInput> input) override {
    return session_->addInput(std::move(input));
  }
  void removeInput(const std::shared_ptr<platform::QTCaptureDeviceInput>& input) override {
    session_->removeInput(input);
  }
  std::size_t inputCount() const override { return session_->inputCount(); }
  Status addOutput(std::shared_ptr<QTCaptureOutput> output) override {
    const bool writesFiles = dynamic_cast<platform::QTCaptureFileOutput*>(output.get()) != nullptr;
    if (writesFiles && fileOutputs_++ == 0) {
      keptBack_ = std::move(output);
      return {};
    }
    Status added = session_->addOutput(std::move(output));
    if (!writesFiles || !keptBack_ || !added.ok()) return added;
    return session_->addOutput(std::exchange(keptBack_, nullptr));
  }
  void startRunning() override { session_->startRunning(); }
  void stopRunning() override { session_->stopRunning(); }
  bool isRunning() const override { return session_->isRunning(); }

 private:
  const std::shared_ptr<platform::QTCaptureSession> session_;
  int fileOutputs_ = 0;
  std::shared_ptr<QTCaptureOutput> keptBack_;
};

}  // namespace

std::shared_ptr<platform::QTCaptureSession> DecidingOutputFirst::makeSession() {
  return std::make_shared<Session>(platform_.makeSession());
}

std::shared_ptr<platform::QTCaptureDeviceInput> DecidingOutputFirst::makeDeviceInput(
    std::shared_ptr<platform::QTCaptureDevice> device) {
  return platform_.makeDeviceInput(std::move(device));
}

std::shared_ptr<platform::QTCaptureMovieFileOutput> DecidingOutputFirst::makeMovieFileOutput() {
  return platform_.makeMovieFileOutput();
}

std::shared_ptr<platform::QTCaptureVideoPreviewOutput> DecidingOutputFirst::makeVideoPreviewOutput() {
  return platform_.makeVideoPreviewOutput();
}

std::shared_ptr<platform::QTCaptureAudioPreviewOutput> DecidingOutputFirst::makeAudioPreviewOutput() {
  return platform_.makeAudioPreviewOutput();
}

std::vector<std::shared_ptr<platform::QTCaptureDevice>> DecidingOutputFirst::inputDevicesWithMediaType(
    const std::string& mediaType) {
  return platform_.inputDevicesWithMediaType(mediaType);
}

}  // namespace zq::host
