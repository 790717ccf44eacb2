#pragma once
// The capture session: what joins a device to the outputs that its frames go to.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/capture_device.h"
#include "platform/compression.h"
#include "platform/sample_buffer.h"

namespace zq::platform {

class QTCaptureFileOutput;
class QTCaptureOutput;

/// The path of one kind of media into an output.
struct QTCaptureConnection {
  std::string mediaType;
};

/// What an output tells, on the session's delivery thread unless it says otherwise.
class QTCaptureOutputDelegate {
 public:
  virtual ~QTCaptureOutputDelegate() = default;
  /// A frame reached the output. recordToOutputFileURL() from here takes effect on this very frame.
  virtual void captureOutputDidOutputSampleBufferFromConnection(QTCaptureOutput& output, const QTSampleBuffer& buffer,
                                                                const QTCaptureConnection& connection) = 0;
  /// The file cannot take what comes next (the signal system changes), so another one must follow it. Comes before
  /// the frame itself.
  virtual void captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
      QTCaptureFileOutput& output, const std::string& path, const std::vector<QTCaptureConnection>& connections,
      const Error& error) = 0;
  /// A file is complete on disk. On the main thread.
  virtual void captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(
      QTCaptureFileOutput& /*output*/, const std::string& /*path*/,
      const std::vector<QTCaptureConnection>& /*connections*/, const std::optional<Error>& /*error*/) {}
};

class QTCaptureOutput {
 public:
  virtual ~QTCaptureOutput() = default;
};

class QTCaptureFileOutput : public QTCaptureOutput {
 public:
  /// Not retained; null for none.
  virtual void setDelegate(QTCaptureOutputDelegate* delegate) = 0;
  /// Starts a new file at this path, ending the one before; no path ends it and starts none. The path that is being
  /// written goes on.
  virtual void recordToOutputFileURL(const std::optional<std::string>& path) = 0;
  /// The file that is being written.
  virtual std::optional<std::string> outputFileURL() const = 0;
  virtual std::vector<QTCaptureConnection> connections() const = 0;
  virtual void setCompressionOptionsForConnection(std::shared_ptr<const QTCompressionOptions> options,
                                                  const QTCaptureConnection& connection) = 0;
};

class QTCaptureMovieFileOutput : public QTCaptureFileOutput {};

/// Shows the picture.
class QTCaptureVideoPreviewOutput : public QTCaptureOutput {};

/// Plays the sound; volume 0 to 1.
class QTCaptureAudioPreviewOutput : public QTCaptureOutput {
 public:
  virtual void setVolume(float volume) = 0;
  virtual float volume() const = 0;
};

class QTCaptureDeviceInput {
 public:
  virtual ~QTCaptureDeviceInput() = default;
  virtual const std::shared_ptr<QTCaptureDevice>& device() const = 0;
};

class QTCaptureSession {
 public:
  virtual ~QTCaptureSession() = default;
  virtual Status addInput(std::shared_ptr<QTCaptureDeviceInput> input) = 0;
  virtual void removeInput(const std::shared_ptr<QTCaptureDeviceInput>& input) = 0;
  virtual std::size_t inputCount() const = 0;
  /// Frames reach the outputs in the order in which these were added.
  virtual Status addOutput(std::shared_ptr<QTCaptureOutput> output) = 0;
  /// Neither waits for the delivery thread, so both may be called on it.
  virtual void startRunning() = 0;
  virtual void stopRunning() = 0;
  virtual bool isRunning() const = 0;
};

/// Makes the objects of a session.
class CapturePlatform {
 public:
  virtual ~CapturePlatform() = default;
  virtual std::shared_ptr<QTCaptureSession> makeSession() = 0;
  virtual std::shared_ptr<QTCaptureDeviceInput> makeDeviceInput(std::shared_ptr<QTCaptureDevice> device) = 0;
  virtual std::shared_ptr<QTCaptureMovieFileOutput> makeMovieFileOutput() = 0;
  virtual std::shared_ptr<QTCaptureVideoPreviewOutput> makeVideoPreviewOutput() = 0;
  virtual std::shared_ptr<QTCaptureAudioPreviewOutput> makeAudioPreviewOutput() = 0;
  /// The devices that are connected and deliver this type of media. On the main thread.
  virtual std::vector<std::shared_ptr<QTCaptureDevice>> inputDevicesWithMediaType(const std::string& mediaType) = 0;
};

}  // namespace zq::platform
