#pragma once
// A camcorder with a tape image in it: transport, picture and faults, on a delivery thread of its own.

#include <deque>
#include <memory>
#include <random>

#include "backends/deck/deck_options.h"
#include "backends/deck/frame_faults.h"
#include "backends/deck/tape_image.h"
#include "backends/deck/tape_motion.h"
#include "base/log.h"
#include "platform/capture_device.h"
#include "platform/notification_center.h"
#include "platform/runtime.h"

namespace zq::backend {

class SimulatedDeck : public platform::QTCaptureDevice {
 public:
  /// The tape stands at its beginning. Notifications go through `center`, on the main thread.
  SimulatedDeck(platform::Runtime& runtime, platform::NotificationCenter& center, std::shared_ptr<TapeImage> tape,
                const DeckOptions& options, Log& log);
  ~SimulatedDeck() override;

  std::string uniqueID() const override { return "tape:" + tape_->path(); }
  std::string localizedDisplayName() const override { return "Simulated deck with " + tape_->path(); }
  std::vector<platform::QTFormatDescription> formatDescriptions() const override;
  Status open() override;
  void close() override;
  bool isOpen() const override;
  std::optional<platform::AVCTransportControls> avcTransportControls() const override;
  bool avcTransportControlsReadOnly() const override { return false; }
  void setAVCTransportControls(const platform::AVCTransportControls& controls) override;
  void startStreaming(platform::FrameSink& sink) override;
  void stopStreaming() override;
  void waitForDelivery() override;
  bool canWait() const override { return !options_.live; }

 private:
  struct Command {
    platform::AVCTransportControls controls;
    platform::TimePoint effective;
  };

  void run();
  void obeyDueCommands();
  platform::Duration reactionTo(const platform::AVCTransportControls& controls) const;
  void apply(const platform::AVCTransportControls& controls);
  void changeControls(const platform::AVCTransportControls& controls);
  bool isTicking() const;
  platform::TimePoint nextTick() const;
  void waitForSomethingToDo();
  void playTick();
  void deliver(const FrameLocation& location);
  void sendToSink(const platform::QTFormatDescription& format, const SharedBytes& bytes);
  void scheduleNextTick(DVSystem system, bool heldUp);
  void stopAtEndOfTape(std::int64_t frame);
  void fail(const Error& error);
  void announceChanges();
  void announceAll();
  bool announceNext();

  // Constant after construction.
  platform::Runtime& runtime_;
  platform::NotificationCenter& center_;
  const std::shared_ptr<TapeImage> tape_;
  const DeckOptions options_;
  Log& log_;
  const std::unique_ptr<platform::Mutex> mutex_;
  const std::unique_ptr<platform::Condition> changed_;

  // Guarded by mutex_.
  TapeMotion motion_;
  std::deque<Command> commands_;
  platform::AVCTransportControls status_;                   // what the attribute says, which may lag behind motion_
  std::deque<platform::AVCTransportControls> unannounced_;  // what it will say, one after the other
  platform::FrameSink* sink_ = nullptr;
  bool delivering_ = false;
  bool open_ = false;
  bool cableLost_ = false;
  bool quit_ = false;
  std::mt19937_64 commandFaults_;
  // The ticks since the tape began to tick or its system changed, so that their times never drift.
  platform::TimePoint tickAnchor_;
  std::int64_t ticksSinceAnchor_ = 0;
  DVSystem tickSystem_;

  // Main thread only.
  bool announcing_ = false;

  // Delivery thread only.
  FrameFaults frameFaults_;
  std::int64_t framesPlayed_ = 0;

  /// Outlives the deck in tasks that wait on the main loop.
  std::shared_ptr<SimulatedDeck*> alive_;
  std::unique_ptr<platform::Thread> thread_;
};

}  // namespace zq::backend
