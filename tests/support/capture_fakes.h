#pragma once
// A capture platform without devices or threads: it keeps a journal, and delivers what a test hands it.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/capture_session.h"
#include "platform/notification_center.h"
#include "support/capture_buffers.h"
#include "support/capture_journal.h"

namespace zq::test {

/// Obeys each command at once. Each member may be set at any time.
class FakeCaptureDevice final : public platform::QTCaptureDevice {
 public:
  explicit FakeCaptureDevice(CaptureJournal& journal) : journal_(journal) {}

  std::string uniqueID() const override { return "fake"; }
  std::string localizedDisplayName() const override { return "Fake camcorder"; }
  std::vector<platform::QTFormatDescription> formatDescriptions() const override { return formats; }

  Status open() override {
    journal_.add("device", "open");
    if (openError) return *openError;
    open_ = true;
    return {};
  }
  void close() override {
    journal_.add("device", "close");
    open_ = false;
  }
  bool isOpen() const override { return open_; }

  std::optional<platform::AVCTransportControls> avcTransportControls() const override { return controls; }
  bool avcTransportControlsReadOnly() const override { return readOnly; }
  void setAVCTransportControls(const platform::AVCTransportControls& command) override {
    journal_.add("device", "mode " + std::to_string(command.playbackMode) + " speed " + std::to_string(command.speed));
    if (beforeObeying) beforeObeying(command);
    announce(platform::QTCaptureDeviceAttributeWillChangeNotification);
    controls = command;
    announce(platform::QTCaptureDeviceAttributeDidChangeNotification);
  }

  void startStreaming(platform::FrameSink& /*sink*/) override {}
  void stopStreaming() override {}
  void waitForDelivery() override { journal_.add("device", "wait for delivery"); }
  bool canWait() const override { return true; }

  std::vector<platform::QTFormatDescription> formats{{platform::QTMediaTypeVideo, platform::fourCharCode("dvcp")}};
  std::optional<platform::AVCTransportControls> controls = platform::AVCTransportControls{0, 0};
  bool readOnly = false;
  std::optional<Error> openError;
  std::function<void(const platform::AVCTransportControls&)> beforeObeying;
  /// Where changes of the transport attribute are announced; null for nowhere.
  platform::NotificationCenter* center = nullptr;

 private:
  void announce(const char* name) {
    if (center != nullptr) center->post({name, this, platform::QTCaptureDeviceAVCTransportControlsAttribute});
  }

  CaptureJournal& journal_;
  bool open_ = false;
};

class FakeMovieFileOutput final : public platform::QTCaptureMovieFileOutput {
 public:
  explicit FakeMovieFileOutput(CaptureJournal& journal) : journal_(journal) {}

  void setDelegate(platform::QTCaptureOutputDelegate* newDelegate) override { delegate = newDelegate; }
  void recordToOutputFileURL(const std::optional<std::string>& newPath) override {
    journal_.add("movie", newPath.value_or("none"));
    path = newPath;
  }
  std::optional<std::string> outputFileURL() const override { return path; }
  std::vector<platform::QTCaptureConnection> connections() const override {
    return {{platform::QTMediaTypeVideo}, {platform::QTMediaTypeSound}};
  }
  /// Goes into the journal when there is or was compression.
  void setCompressionOptionsForConnection(std::shared_ptr<const platform::QTCompressionOptions> options,
                                          const platform::QTCaptureConnection& connection) override {
    auto& held = compression[connection.mediaType];
    if (options || held) {
      journal_.add("compression", connection.mediaType + " " + (options ? options->localizedDisplayName() : "none"));
    }
    held = std::move(options);
  }

  /// Tells the delegate of the frame, then writes it if there is a path.
  void deliver(const platform::QTSampleBuffer& frame) {
    if (delegate != nullptr) {
      delegate->captureOutputDidOutputSampleBufferFromConnection(*this, frame, {frame.formatDescription.mediaType});
    }
    if (path) movies[*path].push_back(frame.bytesForAllSamples);
  }

  /// As when the next frame does not fit into the file.
  void demandOtherFile() {
    delegate->captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(*this, path.value_or(""), connections(),
                                                                             {"The signal system changes", ""});
  }

  platform::QTCaptureOutputDelegate* delegate = nullptr;
  std::optional<std::string> path;
  std::map<std::string, std::shared_ptr<const platform::QTCompressionOptions>> compression;  // by media type
  std::map<std::string, std::vector<SharedBytes>> movies;

 private:
  CaptureJournal& journal_;
};

class FakeVideoPreviewOutput final : public platform::QTCaptureVideoPreviewOutput {};

class FakeAudioPreviewOutput final : public platform::QTCaptureAudioPreviewOutput {
 public:
  void setVolume(float newVolume) override { volume_ = newVolume; }
  float volume() const override { return volume_; }

 private:
  float volume_ = 1.0F;
};

class FakeDeviceInput final : public platform::QTCaptureDeviceInput {
 public:
  explicit FakeDeviceInput(std::shared_ptr<platform::QTCaptureDevice> device) : device_(std::move(device)) {}
  const std::shared_ptr<platform::QTCaptureDevice>& device() const override { return device_; }

 private:
  const std::shared_ptr<platform::QTCaptureDevice> device_;
};

/// What a platform made and what its session holds; outlives the session.
struct FakeCaptureParts {
  std::vector<std::shared_ptr<FakeMovieFileOutput>> fileOutputs;
  std::shared_ptr<FakeAudioPreviewOutput> audioPreview;
  std::shared_ptr<FakeVideoPreviewOutput> videoPreview;
  std::vector<std::shared_ptr<platform::QTCaptureOutput>> outputs;
  std::vector<std::shared_ptr<platform::QTCaptureDeviceInput>> inputs;
  bool running = false;
  std::optional<Error> addInputError;
};

class FakeCaptureSession final : public platform::QTCaptureSession {
 public:
  FakeCaptureSession(CaptureJournal& journal, FakeCaptureParts& parts) : journal_(journal), parts_(parts) {}

  Status addInput(std::shared_ptr<platform::QTCaptureDeviceInput> input) override {
    journal_.add("session", "add input");
    if (parts_.addInputError) return *parts_.addInputError;
    parts_.inputs.push_back(std::move(input));
    return {};
  }
  void removeInput(const std::shared_ptr<platform::QTCaptureDeviceInput>& input) override {
    journal_.add("session", "remove input");
    std::erase(parts_.inputs, input);
  }
  std::size_t inputCount() const override { return parts_.inputs.size(); }
  Status addOutput(std::shared_ptr<platform::QTCaptureOutput> output) override {
    parts_.outputs.push_back(std::move(output));
    return {};
  }
  void startRunning() override {
    journal_.add("session", "start");
    parts_.running = true;
  }
  void stopRunning() override {
    journal_.add("session", "stop");
    parts_.running = false;
  }
  bool isRunning() const override { return parts_.running; }

 private:
  CaptureJournal& journal_;
  FakeCaptureParts& parts_;
};

/// Makes one session.
class FakeCapturePlatform final : public platform::CapturePlatform {
 public:
  explicit FakeCapturePlatform(CaptureJournal& journal) : journal_(journal) {}

  std::shared_ptr<platform::QTCaptureSession> makeSession() override {
    return std::make_shared<FakeCaptureSession>(journal_, parts);
  }
  std::shared_ptr<platform::QTCaptureDeviceInput> makeDeviceInput(
      std::shared_ptr<platform::QTCaptureDevice> device) override {
    return std::make_shared<FakeDeviceInput>(std::move(device));
  }
  std::shared_ptr<platform::QTCaptureMovieFileOutput> makeMovieFileOutput() override {
    parts.fileOutputs.push_back(std::make_shared<FakeMovieFileOutput>(journal_));
    return parts.fileOutputs.back();
  }
  std::shared_ptr<platform::QTCaptureVideoPreviewOutput> makeVideoPreviewOutput() override {
    return parts.videoPreview = std::make_shared<FakeVideoPreviewOutput>();
  }
  std::shared_ptr<platform::QTCaptureAudioPreviewOutput> makeAudioPreviewOutput() override {
    return parts.audioPreview = std::make_shared<FakeAudioPreviewOutput>();
  }
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> inputDevicesWithMediaType(
      const std::string& mediaType) override {
    return mediaType == platform::QTMediaTypeMuxed ? muxedDevices
                                                   : std::vector<std::shared_ptr<platform::QTCaptureDevice>>();
  }

  /// Hands the frame to the file outputs in the order in which they were added to the session.
  void deliver(const platform::QTSampleBuffer& frame) {
    for (const auto& output : std::vector(parts.outputs)) {
      if (auto* file = dynamic_cast<FakeMovieFileOutput*>(output.get())) file->deliver(frame);
    }
  }

  FakeCaptureParts parts;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> muxedDevices;

 private:
  CaptureJournal& journal_;
};

}  // namespace zq::test
