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

// How long the delivery of frames may be held up before the tape waits, or, in a live deck, frames are lost.
constexpr Duration kPatience = std::chrono::seconds(1);

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
  announceChanges();
}

Duration SimulatedDeck::reactionTo(const AVCTransportControls& controls) const {
  const DeckReactions& reactions = options_.reactions;
  const AVCTransportControls& now = motion_.controls();
  Duration reaction = reactions.command;
  if (now == kStopped && controls != kStopped) reaction += reactions.threadUp;
  if (now.playbackMode == 0 && now.speed != 0) reaction += reactions.spinDown;
  return reaction;
}

// A tape that moves already keeps its ticks, so that no sequence of commands makes it pass faster than its speed.
void SimulatedDeck::apply(const AVCTransportControls& controls) {
  const bool wasTicking = isTicking();
  changeControls(controls);
  if (!wasTicking) {
    tickAnchor_ = runtime_.clock().now();
    ticksSinceAnchor_ = 0;
  }
  changed_->notifyAll();
}

void SimulatedDeck::changeControls(const AVCTransportControls& controls) {
  motion_.setControls(controls);
  unannounced_.push_back(controls);
}

bool SimulatedDeck::isTicking() const {
  return (motion_.isMoving() || motion_.isPaused()) && !cableLost_;
}

TimePoint SimulatedDeck::nextTick() const {
  return tickAnchor_ + tickTime(tickSystem_, ticksSinceAnchor_);
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
    if (isTicking() && runtime_.clock().now() >= nextTick()) {
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
    announceChanges();
    mutex_->lock();
  }
}

void SimulatedDeck::waitForSomethingToDo() {
  std::optional<TimePoint> deadline;
  if (isTicking()) deadline = nextTick();
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
  const bool heldUp = runtime_.clock().now() - nextTick() > kPatience;
  scheduleNextTick(location.value()->system, heldUp);
  const bool missed = heldUp && options_.live;
  if (motion_.showsPicture() && !missed) deliver(*location.value());
}

// Whoever held a tape image up made it wait: it does not catch up what it stood still. A live deck went on.
void SimulatedDeck::scheduleNextTick(DVSystem system, bool heldUp) {
  const bool waited = heldUp && !options_.live;
  const TimePoint due = waited ? runtime_.clock().now() : nextTick();
  if (waited || system != tickSystem_) {
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
  unannounced_.push_back(kStopped);
  mutex_->unlock();
  announceChanges();
  mutex_->lock();
}

void SimulatedDeck::fail(const Error& error) {
  changeControls(kStopped);
  platform::FrameSink* sink = sink_;
  log_.write(sink != nullptr ? LogLevel::info : LogLevel::error, error.text());
  delivering_ = sink != nullptr;
  mutex_->unlock();
  if (sink != nullptr) sink->deliveryFailed(error);
  announceChanges();
  mutex_->lock();
  delivering_ = false;
  changed_->notifyAll();
}

// The attribute changes on the main thread, between its two notifications, in the order in which the transport did: a
// command that takes effect there at once does not overtake what the delivery thread has posted.
void SimulatedDeck::announceChanges() {
  platform::MainLoop& loop = runtime_.mainLoop();
  const Duration delay = options_.faults.lateStatus;
  const bool late = delay.count() > 0;
  if (loop.isCurrent() && !late) return announceAll();
  auto task = [alive = std::weak_ptr(alive_), late] {
    const auto self = alive.lock();
    if (self == nullptr) return;
    late ? static_cast<void>((*self)->announceNext()) : (*self)->announceAll();
  };
  if (late) {
    loop.post([&loop, delay, task = std::move(task)] { loop.startTimer(delay, task); });
  } else {
    loop.post(std::move(task));
  }
}

// Whoever hears of a change may command the next one, which is announced after this one, not in the middle of it.
void SimulatedDeck::announceAll() {
  if (announcing_) return;
  announcing_ = true;
  while (announceNext()) {
  }
  announcing_ = false;
}

bool SimulatedDeck::announceNext() {
  AVCTransportControls controls;
  {
    const std::lock_guard guard(*mutex_);
    if (unannounced_.empty()) return false;
    controls = unannounced_.front();
    unannounced_.pop_front();
  }
  const char* attribute = platform::QTCaptureDeviceAVCTransportControlsAttribute;
  center_.post({platform::QTCaptureDeviceAttributeWillChangeNotification, this, attribute});
  {
    const std::lock_guard guard(*mutex_);
    status_ = controls;
  }
  center_.post({platform::QTCaptureDeviceAttributeDidChangeNotification, this, attribute});
  return true;
}

}  // namespace zq::backend
