#include "backends/deck/simulated_deck.h"

#include <fmt/format.h>

#include <mutex>
#include <utility>

namespace zq::backend {

using platform::AVCTransportControls;
using platform::Duration;
using platform::QTFormatDescription;
using platform::TimePoint;

namespace {

constexpr AVCTransportControls kStopped{0, 0};

QTFormatDescription formatOf(DVSystem system) {
  const auto code = system == DVSystem::pal625_50 ? platform::fourCharCode("dvcp") : platform::fourCharCode("dvc ");
  return {platform::QTMediaTypeVideo, code};
}

/// The time of tick `tick` after the anchor, in whole nanoseconds, exact at any distance.
Duration tickTime(DVSystem system, std::int64_t tick) {
  const FrameRate rate = frameRateOf(system);
  const std::int64_t seconds = tick / rate.numerator * rate.denominator;
  const std::int64_t rest = tick % rate.numerator;
  return Duration(seconds * 1'000'000'000 + rest * rate.denominator * 1'000'000'000 / rate.numerator);
}

}  // namespace

SimulatedDeck::SimulatedDeck(platform::Runtime& runtime, platform::NotificationCenter& center,
                             std::shared_ptr<TapeImage> tape, const DeckOptions& options, Log& log)
    : runtime_(runtime),
      center_(center),
      tape_(std::move(tape)),
      options_(options),
      log_(log),
      mutex_(runtime.makeMutex("deck")),
      changed_(runtime.makeCondition("deck: a command, a listener or the next tick")),
      motion_(options.speeds),
      commandFaults_(options.seed),
      tickSystem_(tape_->system()),
      frameFaults_(options.faults, options.seed + 1),
      alive_(std::make_shared<SimulatedDeck*>(this)) {
  thread_ = runtime.startThread("deck", [this] { run(); });
}

SimulatedDeck::~SimulatedDeck() {
  {
    const std::lock_guard guard(*mutex_);
    quit_ = true;
    sink_ = nullptr;
    changed_->notifyAll();
  }
  thread_->join();
}

std::vector<QTFormatDescription> SimulatedDeck::formatDescriptions() const {
  return {formatOf(tape_->system())};
}

Status SimulatedDeck::open() {
  const std::lock_guard guard(*mutex_);
  if (cableLost_) return Error{localizedDisplayName() + " does not answer", "Its cable was pulled."};
  if (open_) return Error{localizedDisplayName() + " is in use", "Close it where it is open."};
  open_ = true;
  return {};
}

void SimulatedDeck::close() {
  const std::lock_guard guard(*mutex_);
  open_ = false;
}

bool SimulatedDeck::isOpen() const {
  const std::lock_guard guard(*mutex_);
  return open_;
}

std::optional<AVCTransportControls> SimulatedDeck::avcTransportControls() const {
  const std::lock_guard guard(*mutex_);
  if (cableLost_) return std::nullopt;
  return status_;
}

void SimulatedDeck::setAVCTransportControls(const AVCTransportControls& controls) {
  {
    const std::lock_guard guard(*mutex_);
    if (cableLost_) return;
    if (options_.faults.refusedCommands > 0 &&
        std::uniform_real_distribution<double>(0, 1)(commandFaults_) < options_.faults.refusedCommands) {
      log_.write(LogLevel::warning,
                 fmt::format("The deck refused the command mode {} speed {}", controls.playbackMode, controls.speed));
      return;
    }
    const Duration reaction = reactionTo(controls);
    if (reaction.count() > 0) {
      commands_.push_back({controls, runtime_.clock().now() + reaction});
      changed_->notifyAll();
      return;
    }
    commands_.clear();
    apply(controls);
  }
  publishStatus();
}

Duration SimulatedDeck::reactionTo(const AVCTransportControls& controls) const {
  const DeckReactions& reactions = options_.reactions;
  const AVCTransportControls& now = motion_.controls();
  Duration reaction = reactions.command;
  if (now == kStopped && controls != kStopped) reaction += reactions.threadUp;
  if (now.playbackMode == 0 && now.speed != 0) reaction += reactions.spinDown;
  return reaction;
}

void SimulatedDeck::apply(const AVCTransportControls& controls) {
  motion_.setControls(controls);
  tickAnchor_ = runtime_.clock().now();
  ticksSinceAnchor_ = 0;
  changed_->notifyAll();
}

void SimulatedDeck::startStreaming(platform::FrameSink& sink) {
  const std::lock_guard guard(*mutex_);
  sink_ = &sink;
  changed_->notifyAll();
}

void SimulatedDeck::stopStreaming() {
  const std::lock_guard guard(*mutex_);
  sink_ = nullptr;
}

void SimulatedDeck::waitForDelivery() {
  const std::lock_guard guard(*mutex_);
  while (delivering_) changed_->wait(*mutex_);
}

void SimulatedDeck::run() {
  mutex_->lock();
  while (!quit_) {
    obeyDueCommands();
    const bool ticking = (motion_.isMoving() || motion_.isPaused()) && !cableLost_;
    if (ticking && runtime_.clock().now() >= tickAnchor_ + tickTime(tickSystem_, ticksSinceAnchor_)) {
      playTick();
    } else {
      waitForSomethingToDo();
    }
  }
  mutex_->unlock();
}

void SimulatedDeck::obeyDueCommands() {
  while (!commands_.empty() && commands_.front().effective <= runtime_.clock().now()) {
    const Command command = commands_.front();
    commands_.pop_front();
    apply(command.controls);
    mutex_->unlock();
    publishStatus();
    mutex_->lock();
  }
}

void SimulatedDeck::waitForSomethingToDo() {
  std::optional<TimePoint> deadline;
  if ((motion_.isMoving() || motion_.isPaused()) && !cableLost_) {
    deadline = tickAnchor_ + tickTime(tickSystem_, ticksSinceAnchor_);
  }
  if (!commands_.empty() && (!deadline || commands_.front().effective < *deadline)) {
    deadline = commands_.front().effective;
  }
  if (deadline) {
    changed_->waitUntil(*mutex_, *deadline);
  } else {
    changed_->wait(*mutex_);
  }
}

// One tick of the frame rate: the frame under the head is shown, and the tape moves on.
void SimulatedDeck::playTick() {
  const std::optional<std::int64_t> frame = motion_.frameUnderHead();
  if (!frame) return stopAtEndOfTape(0);
  auto location = tape_->locate(*frame);
  if (!location.ok()) return fail(location.error());
  if (!location.value()) {
    std::int64_t end = *frame;
    while (end > 0 && tape_->locate(end - 1).ok() && !tape_->locate(end - 1).value()) --end;
    return stopAtEndOfTape(end);
  }
  if (motion_.isMoving()) motion_.tick();
  scheduleNextTick(location.value()->system);
  if (motion_.showsPicture()) deliver(*location.value());
}

void SimulatedDeck::scheduleNextTick(DVSystem system) {
  const TimePoint now = runtime_.clock().now();
  TimePoint due = tickAnchor_ + tickTime(tickSystem_, ticksSinceAnchor_);
  // Whoever held the tape up made it wait; it does not catch up what it stood still.
  const bool heldUp = now - due > std::chrono::seconds(1);
  if (heldUp) due = now;
  if (heldUp || system != tickSystem_) {
    tickAnchor_ = due;
    ticksSinceAnchor_ = 0;
    tickSystem_ = system;
  }
  ++ticksSinceAnchor_;
}

void SimulatedDeck::deliver(const FrameLocation& location) {
  if (sink_ == nullptr) return;
  auto bytes = tape_->frameBytes(location);
  if (!bytes.ok()) return fail(bytes.error());
  const std::optional<SharedBytes> passed = frameFaults_.pass(bytes.value(), motion_.isSearching());
  if (!passed) return;
  sendToSink(formatOf(location.system), *passed);
  if (options_.faults.cableLostAfterFrames && ++framesPlayed_ >= *options_.faults.cableLostAfterFrames && !cableLost_) {
    cableLost_ = true;
    fail({localizedDisplayName() + " does not answer any more", "Its cable was pulled."});
  }
}

void SimulatedDeck::sendToSink(const QTFormatDescription& format, const SharedBytes& bytes) {
  platform::FrameSink* sink = sink_;
  if (sink == nullptr) return;
  delivering_ = true;
  mutex_->unlock();
  sink->deliverFrame(format, bytes);
  mutex_->lock();
  delivering_ = false;
  changed_->notifyAll();
}

void SimulatedDeck::stopAtEndOfTape(std::int64_t frame) {
  motion_.stopAt(frame);
  commands_.clear();
  mutex_->unlock();
  publishStatus();
  mutex_->lock();
}

void SimulatedDeck::fail(const Error& error) {
  motion_.setControls(kStopped);
  log_.write(LogLevel::error, error.text());
  platform::FrameSink* sink = sink_;
  delivering_ = sink != nullptr;
  mutex_->unlock();
  if (sink != nullptr) sink->deliveryFailed(error);
  publishStatus();
  mutex_->lock();
  delivering_ = false;
  changed_->notifyAll();
}

// The attribute changes on the main thread, between its two notifications.
void SimulatedDeck::publishStatus() {
  AVCTransportControls controls;
  {
    const std::lock_guard guard(*mutex_);
    controls = motion_.controls();
  }
  platform::MainLoop& loop = runtime_.mainLoop();
  if (loop.isCurrent() && options_.faults.lateStatus.count() == 0) return announce(controls);
  const std::weak_ptr<SimulatedDeck*> alive = alive_;
  auto task = [alive, controls] {
    if (const auto self = alive.lock()) (*self)->announce(controls);
  };
  if (options_.faults.lateStatus.count() == 0) {
    loop.post(std::move(task));
  } else {
    loop.post([&loop, delay = options_.faults.lateStatus, task = std::move(task)] { loop.startTimer(delay, task); });
  }
}

void SimulatedDeck::announce(const AVCTransportControls& controls) {
  const char* attribute = platform::QTCaptureDeviceAVCTransportControlsAttribute;
  center_.post({platform::QTCaptureDeviceAttributeWillChangeNotification, this, attribute});
  {
    const std::lock_guard guard(*mutex_);
    status_ = controls;
  }
  center_.post({platform::QTCaptureDeviceAttributeDidChangeNotification, this, attribute});
}

}  // namespace zq::backend
