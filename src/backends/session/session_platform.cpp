#include "backends/session/session_platform.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace zq::backend {
namespace {

class DeviceInput : public platform::QTCaptureDeviceInput {
 public:
  explicit DeviceInput(std::shared_ptr<platform::QTCaptureDevice> device) : device_(std::move(device)) {}
  const std::shared_ptr<platform::QTCaptureDevice>& device() const override { return device_; }

 private:
  const std::shared_ptr<platform::QTCaptureDevice> device_;
};

/// Without a window there is nothing to show.
class VideoPreviewOutput : public platform::QTCaptureVideoPreviewOutput {};

/// Keeps the volume; without a sound device there is nothing to play.
class AudioPreviewOutput : public platform::QTCaptureAudioPreviewOutput {
 public:
  void setVolume(float volume) override { volume_ = volume; }
  float volume() const override { return volume_; }

 private:
  std::atomic<float> volume_{1.0F};
};

}  // namespace

SessionPlatform::SessionPlatform(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log,
                                 Observer observer, std::size_t queueFrames)
    : runtime_(runtime), writers_(writers), log_(log), observer_(std::move(observer)), queueFrames_(queueFrames) {}

std::shared_ptr<platform::QTCaptureSession> SessionPlatform::makeSession() {
  return std::make_shared<CaptureSession>(runtime_, observer_.deviceFailed);
}

std::shared_ptr<platform::QTCaptureDeviceInput> SessionPlatform::makeDeviceInput(
    std::shared_ptr<platform::QTCaptureDevice> device) {
  return std::make_shared<DeviceInput>(std::move(device));
}

std::shared_ptr<platform::QTCaptureMovieFileOutput> SessionPlatform::makeMovieFileOutput() {
  fileOutputs_.push_back(
      std::make_shared<MovieFileOutput>(runtime_, writers_, log_, observer_.files, observer_.frameSeen, queueFrames_));
  return fileOutputs_.back();
}

std::shared_ptr<platform::QTCaptureVideoPreviewOutput> SessionPlatform::makeVideoPreviewOutput() {
  return std::make_shared<VideoPreviewOutput>();
}

std::shared_ptr<platform::QTCaptureAudioPreviewOutput> SessionPlatform::makeAudioPreviewOutput() {
  return std::make_shared<AudioPreviewOutput>();
}

std::vector<std::shared_ptr<platform::QTCaptureDevice>> SessionPlatform::inputDevicesWithMediaType(
    const std::string& mediaType) {
  // Every device that is known here delivers DV, in which picture and sound are one stream.
  return mediaType == platform::QTMediaTypeMuxed ? inputDevices_
                                                 : std::vector<std::shared_ptr<platform::QTCaptureDevice>>();
}

void SessionPlatform::setInputDevices(std::vector<std::shared_ptr<platform::QTCaptureDevice>> devices) {
  inputDevices_ = std::move(devices);
}

void SessionPlatform::finishFiles() {
  for (const auto& output : fileOutputs_) output->finish();
}

SessionPlatform::FrameCounts SessionPlatform::frameCounts() const {
  FrameCounts counts;
  for (const auto& output : fileOutputs_) {
    counts.recorded += output->recorder().recordedFrames();
    counts.dropped += output->recorder().droppedFrames();
  }
  return counts;
}

SessionPlatform::QueueLevel SessionPlatform::queueLevel() const {
  QueueLevel level{0, queueFrames_};
  for (const auto& output : fileOutputs_) level.held = std::max(level.held, output->recorder().heldFrames());
  return level;
}

}  // namespace zq::backend
