#pragma once
// A capture platform whose sessions serve the second file output before the first. In a compressed recapture the
// controller goes by the second, which carries DV, and writes the first, which it adds before it: a movie that it
// starts or ends with a frame would else begin and end one frame late.

#include <memory>
#include <string>
#include <vector>

#include "platform/capture_session.h"

namespace zq::host {

class DecidingOutputFirst final : public platform::CapturePlatform {
 public:
  /// `platform` outlives it.
  explicit DecidingOutputFirst(platform::CapturePlatform& platform) : platform_(platform) {}

  std::shared_ptr<platform::QTCaptureSession> makeSession() override;
  std::shared_ptr<platform::QTCaptureDeviceInput> makeDeviceInput(
      std::shared_ptr<platform::QTCaptureDevice> device) override;
  std::shared_ptr<platform::QTCaptureMovieFileOutput> makeMovieFileOutput() override;
  std::shared_ptr<platform::QTCaptureVideoPreviewOutput> makeVideoPreviewOutput() override;
  std::shared_ptr<platform::QTCaptureAudioPreviewOutput> makeAudioPreviewOutput() override;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> inputDevicesWithMediaType(
      const std::string& mediaType) override;

 private:
  platform::CapturePlatform& platform_;
};

}  // namespace zq::host
