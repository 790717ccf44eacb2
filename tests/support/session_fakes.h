#pragma once
// What surrounds a capture session in a test: a device whose frames the test delivers, writers that keep their frames
// in memory, and delegates.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/session/movie_recorder.h"
#include "platform/capture_session.h"
#include "platform/movie_writer.h"
#include "platform/runtime.h"
#include "support/dv_frames.h"

namespace zq::test {

/// Delivers what the test tells it to, on the thread of the test.
class SessionDevice : public platform::QTCaptureDevice {
 public:
  std::string uniqueID() const override { return "fake"; }
  std::string localizedDisplayName() const override { return "The fake camcorder"; }
  std::vector<platform::QTFormatDescription> formatDescriptions() const override { return {format}; }
  Status open() override {
    isOpened = true;
    return {};
  }
  void close() override { isOpened = false; }
  bool isOpen() const override { return isOpened; }
  std::optional<platform::AVCTransportControls> avcTransportControls() const override { return std::nullopt; }
  bool avcTransportControlsReadOnly() const override { return true; }
  void setAVCTransportControls(const platform::AVCTransportControls&) override {}
  void startStreaming(platform::FrameSink& newSink) override { sink = &newSink; }
  void stopStreaming() override { sink = nullptr; }
  void waitForDelivery() override {
    if (onWait) onWait();
  }
  bool canWait() const override { return waits; }

  void deliver(const SharedBytes& frame) {
    if (sink != nullptr) sink->deliverFrame(format, frame);
  }

  platform::QTFormatDescription format{platform::QTMediaTypeVideo, platform::fourCharCode("dvcp")};
  platform::FrameSink* sink = nullptr;
  bool isOpened = true;
  bool waits = true;
  std::function<void()> onWait;
};

class SessionInput : public platform::QTCaptureDeviceInput {
 public:
  explicit SessionInput(std::shared_ptr<platform::QTCaptureDevice> device) : device_(std::move(device)) {}
  const std::shared_ptr<platform::QTCaptureDevice>& device() const override { return device_; }

 private:
  const std::shared_ptr<platform::QTCaptureDevice> device_;
};

/// A movie in memory, and what shall go wrong with it.
struct SessionMovie {
  std::vector<SharedBytes> frames;
  bool created = false;
  bool finished = false;

  bool failsToCreate = false;
  std::optional<std::size_t> failsAtFrame;
  bool failsToFinish = false;
};

/// Its movies are the writer thread's while one is written; a test reads them when the recorder has finished.
class SessionMovies : public platform::MovieWriterFactory {
 public:
  Expected<std::unique_ptr<platform::MovieWriter>> create(
      const std::string& path, const std::shared_ptr<const platform::QTCompressionOptions>& compression) override {
    order.push_back(path);
    compressions[path] = compression;
    SessionMovie& movie = movies[path];
    if (onCreate) onCreate(path);
    if (movie.failsToCreate) return Error{"Cannot create " + path, "The disk is full."};
    if (movie.created) return Error{"Cannot create " + path, "The file exists."};
    movie.created = true;
    return std::unique_ptr<platform::MovieWriter>(new Writer(*this, path, movie));
  }

  SessionMovie& operator[](const std::string& path) { return movies[path]; }

  std::map<std::string, SessionMovie> movies;
  std::map<std::string, std::shared_ptr<const platform::QTCompressionOptions>> compressions;
  std::vector<std::string> order;  // of creation
  bool keepsBytes = true;
  std::function<void(const std::string& path)> onCreate;
  std::function<void(const SharedBytes& frame)> onAppend;

 private:
  class Writer : public platform::MovieWriter {
   public:
    Writer(SessionMovies& owner, std::string path, SessionMovie& movie)
        : owner_(owner), path_(std::move(path)), movie_(movie) {}
    Status append(const platform::QTSampleBuffer& frame) override {
      if (owner_.onAppend) owner_.onAppend(frame.bytesForAllSamples);
      if (movie_.failsAtFrame == movie_.frames.size()) return Error{"Cannot write " + path_, "The disk is full."};
      movie_.frames.push_back(owner_.keepsBytes ? frame.bytesForAllSamples : SharedBytes());
      return {};
    }
    Status finish() override {
      if (movie_.failsToFinish) return Error{"Cannot complete " + path_, "The disk is full."};
      movie_.finished = true;
      return {};
    }

   private:
    SessionMovies& owner_;
    const std::string path_;
    SessionMovie& movie_;
  };
};

/// Writes down what a recorder tells.
struct SessionReports {
  struct Failure {
    std::string path;
    std::string message;
    bool operator==(const Failure&) const = default;
  };

  backend::RecorderObserver observer(platform::Runtime& runtime) {
    return {[this, &runtime](const backend::FinishedFile& file) {
              finished.push_back(file);
              allOnMainThread = allOnMainThread && runtime.mainLoop().isCurrent();
              if (onFinished) onFinished(file);
            },
            [this, &runtime](const std::string& path, const Error& error) {
              failures.push_back({path, error.message});
              allOnMainThread = allOnMainThread && runtime.mainLoop().isCurrent();
            }};
  }

  std::vector<backend::FinishedFile> finished;
  std::vector<Failure> failures;
  bool allOnMainThread = true;
  std::function<void(const backend::FinishedFile&)> onFinished;
};

/// Calls back for each of what an output tells.
class SessionDelegate : public platform::QTCaptureOutputDelegate {
 public:
  void captureOutputDidOutputSampleBufferFromConnection(platform::QTCaptureOutput& output,
                                                        const platform::QTSampleBuffer& buffer,
                                                        const platform::QTCaptureConnection& connection) override {
    if (onFrame) onFrame(output, buffer, connection);
  }
  void captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
      platform::QTCaptureFileOutput& output, const std::string& path,
      const std::vector<platform::QTCaptureConnection>& connections, const Error& error) override {
    if (onMustChange) onMustChange(output, path, connections, error);
  }

  std::function<void(platform::QTCaptureOutput&, const platform::QTSampleBuffer&, const platform::QTCaptureConnection&)>
      onFrame;
  std::function<void(platform::QTCaptureFileOutput&, const std::string&,
                     const std::vector<platform::QTCaptureConnection>&, const Error&)>
      onMustChange;
};

/// A log for several threads.
class SessionLog : public Log {
 public:
  void write(LogLevel level, std::string_view message) override {
    const std::lock_guard guard(mutex_);
    lines_.emplace_back(level, message);
  }
  std::vector<std::string> messages() const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> result;
    for (const auto& [level, message] : lines_) result.push_back(message);
    return result;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::pair<LogLevel, std::string>> lines_;
};

/// A frame that is known by its number; small ones save time where nobody looks inside.
inline SharedBytes sessionBytes(int number, std::size_t size = 4) {
  std::vector<std::uint8_t> bytes(size);
  for (std::size_t i = 0; i < 4 && i < size; ++i) bytes[i] = static_cast<std::uint8_t>(number >> (8 * i));
  return SharedBytes::copyOf(bytes);
}

inline int sessionNumber(const SharedBytes& frame) {
  return frame.data()[0] | frame.data()[1] << 8 | frame.data()[2] << 16;
}

inline platform::QTSampleBuffer sessionFrame(int number, std::size_t size = 4) {
  platform::QTSampleBuffer buffer;
  buffer.bytesForAllSamples = sessionBytes(number, size);
  return buffer;
}

inline std::vector<int> sessionNumbers(const std::vector<SharedBytes>& frames) {
  std::vector<int> numbers;
  for (const SharedBytes& frame : frames) numbers.push_back(sessionNumber(frame));
  return numbers;
}

/// `from`, `from` + 1, ... up to but without `to`.
inline std::vector<int> sessionRange(int from, int to) {
  std::vector<int> numbers;
  for (int number = from; number < to; ++number) numbers.push_back(number);
  return numbers;
}

/// Runs what has been posted to the main thread by now.
inline void sessionDrain(platform::Runtime& runtime) {
  runtime.mainLoop().post([&runtime] { runtime.mainLoop().quit(); });
  runtime.mainLoop().run();
}

}  // namespace zq::test
