#pragma once
// Makes the objects of a capture session, and tells the host what becomes of its files and its device.

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "backends/session/capture_session.h"
#include "backends/session/movie_file_output.h"
#include "base/log.h"
#include "platform/capture_session.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"

namespace zq::backend {

class SessionPlatform : public platform::CapturePlatform {
 public:
  /// What the host is told, on the main thread.
  struct Observer {
    RecorderObserver files;
    std::function<void(const Error&)> deviceFailed;
    /// Not on the main thread but on the delivery thread, see MovieFileOutput.
    FrameHook frameSeen;
  };

  /// 8 s of frames at 30 frames a second wait for the disk at most.
  static constexpr std::size_t kQueueFrames = 240;

  SessionPlatform(platform::Runtime& runtime, platform::MovieWriterFactory& writers, Log& log, Observer observer,
                  std::size_t queueFrames = kQueueFrames);

  std::shared_ptr<platform::QTCaptureSession> makeSession() override;
  std::shared_ptr<platform::QTCaptureDeviceInput> makeDeviceInput(
      std::shared_ptr<platform::QTCaptureDevice> device) override;
  std::shared_ptr<platform::QTCaptureMovieFileOutput> makeMovieFileOutput() override;
  std::shared_ptr<platform::QTCaptureVideoPreviewOutput> makeVideoPreviewOutput() override;
  std::shared_ptr<platform::QTCaptureAudioPreviewOutput> makeAudioPreviewOutput() override;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> inputDevicesWithMediaType(
      const std::string& mediaType) override;

  /// Says what is connected; the host knows.
  void setInputDevices(std::vector<std::shared_ptr<platform::QTCaptureDevice>> devices);

  /// Writes what is queued, completes the open files and ends the writers. Once, when no session runs any more.
  void finishFiles();

  struct FrameCounts {
    std::int64_t recorded = 0;
    std::int64_t dropped = 0;
  };
  /// Over all outputs that it made. From any thread.
  FrameCounts frameCounts() const;

  struct QueueLevel {
    std::size_t held = 0;
    std::size_t capacity = 0;
  };
  /// Of the output whose movie queue is fullest. From any thread.
  QueueLevel queueLevel() const;

 private:
  // Constant after construction.
  platform::Runtime& runtime_;
  platform::MovieWriterFactory& writers_;
  Log& log_;
  const Observer observer_;
  const std::size_t queueFrames_;

  // Main thread only.
  std::vector<std::shared_ptr<MovieFileOutput>> fileOutputs_;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> inputDevices_;
};

}  // namespace zq::backend
