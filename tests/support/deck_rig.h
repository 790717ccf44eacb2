#pragma once
// A simulated deck in virtual time, with somebody who writes down what it delivers and announces.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "backends/deck/simulated_deck.h"
#include "backends/time/virtual_runtime.h"
#include "platform/notification_center.h"
#include "support/deck_tapes.h"
#include "support/dv_recording_log.h"

namespace zq::test {

struct DeckDelivery {
  std::int64_t number;
  platform::Duration at;

  bool operator==(const DeckDelivery&) const = default;
};

inline void PrintTo(const DeckDelivery& delivery, std::ostream* out) {
  *out << "frame " << delivery.number << " at " << delivery.at.count() << " ns";
}

class DeckSink : public platform::FrameSink {
 public:
  explicit DeckSink(platform::Clock& clock) : clock_(clock) {}

  void deliverFrame(const platform::QTFormatDescription& format, const SharedBytes& frame) override {
    deliveries.push_back({deckFrameNumber(frame.bytes()), clock_.now().time_since_epoch()});
    sizes.push_back(frame.size());
    formats.push_back(format);
    if (keepFrames) frames.push_back(frame);
    if (onFrame) onFrame(deliveries.back().number);
  }
  void deliveryFailed(const Error& error) override {
    errors.push_back(error);
    if (onError) onError();
  }

  std::vector<std::int64_t> numbers() const {
    std::vector<std::int64_t> result;
    for (const DeckDelivery& delivery : deliveries) result.push_back(delivery.number);
    return result;
  }

  std::vector<DeckDelivery> deliveries;
  std::vector<std::size_t> sizes;
  std::vector<platform::QTFormatDescription> formats;
  std::vector<SharedBytes> frames;
  std::vector<Error> errors;
  bool keepFrames = false;
  std::function<void(std::int64_t number)> onFrame;
  std::function<void()> onError;

 private:
  platform::Clock& clock_;
};

/// One notification, and what the transport attribute was when it came.
struct DeckNotice {
  bool did;
  std::optional<platform::AVCTransportControls> status;
  platform::Duration at;

  bool operator==(const DeckNotice&) const = default;
};

inline constexpr platform::AVCTransportControls kDeckStop{0, 0};
inline constexpr platform::AVCTransportControls kDeckPlay{1, 10000};
inline constexpr platform::AVCTransportControls kDeckReverse{1, -10000};
inline constexpr platform::AVCTransportControls kDeckPause{1, 0};
inline constexpr platform::AVCTransportControls kDeckWind{0, 13000};
inline constexpr platform::AVCTransportControls kDeckRewind{0, -13000};

/// The main thread is the test's own; it hears the deck in runFor() only.
class DeckRig {
 public:
  explicit DeckRig(const std::string& tapePath, const backend::DeckOptions& options = {}, std::uint64_t seed = 0)
      : runtime([seed] {
          backend::VirtualOptions virtualOptions;
          virtualOptions.seed = seed;
          return virtualOptions;
        }()),
        sink(runtime.clock()) {
    auto tape = backend::TapeImage::open(tapePath);
    if (!tape.ok()) throw std::runtime_error(tape.error().text());
    image = tape.value();
    deck = std::make_shared<backend::SimulatedDeck>(runtime, center, image, options, log);
    will_ = observe(platform::QTCaptureDeviceAttributeWillChangeNotification, false);
    did_ = observe(platform::QTCaptureDeviceAttributeDidChangeNotification, true);
    deck->startStreaming(sink);
  }

  void runFor(platform::Duration duration) {
    runtime.mainLoop().startTimer(duration, [this] { runtime.mainLoop().quit(); });
    runtime.mainLoop().run();
  }
  void command(const platform::AVCTransportControls& controls) { deck->setAVCTransportControls(controls); }
  platform::Duration now() { return runtime.clock().now().time_since_epoch(); }

  /// The statuses that were announced, in their order.
  std::vector<platform::AVCTransportControls> announced() const {
    std::vector<platform::AVCTransportControls> result;
    for (const DeckNotice& notice : notices) {
      if (notice.did && notice.status) result.push_back(*notice.status);
    }
    return result;
  }

  backend::VirtualRuntime runtime;
  platform::NotificationCenter center;
  DVRecordingLog log;
  DeckSink sink;
  std::vector<DeckNotice> notices;
  std::vector<platform::Notification> rawNotices;
  bool allOnMainThread = true;
  std::function<void()> onWillChange;
  std::shared_ptr<backend::TapeImage> image;
  std::shared_ptr<backend::SimulatedDeck> deck;

 private:
  platform::Observation observe(const char* name, bool did) {
    return center.addObserver(name, [this, did](const platform::Notification& notification) {
      notices.push_back({did, deck->avcTransportControls(), now()});
      rawNotices.push_back(notification);
      allOnMainThread = allOnMainThread && runtime.mainLoop().isCurrent();
      if (!did && onWillChange) onWillChange();
    });
  }

  platform::Observation will_;
  platform::Observation did_;
};

/// When tick `tick` of a deck is due that began to tick at 0.
inline platform::Duration deckTick(DVSystem system, std::int64_t tick) {
  if (system == DVSystem::pal625_50) return std::chrono::milliseconds(40) * tick;
  return platform::Duration(tick * 1'001'000'000 / 30);
}

/// A test with a scratch folder for its tape.
class DeckTest : public testing::Test {
 protected:
  std::string tapeOf(std::int64_t frames, DVSystem system = DVSystem::pal625_50) const {
    return DeckTape(folder_.file("tape.dv")).add(system, frames).path();
  }

  ScratchFolder folder_;
};

}  // namespace zq::test
