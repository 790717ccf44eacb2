#include "backends/time/virtual_scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

namespace zq::backend {
namespace {

/// Thrown through a thread that has nothing to wait for any more. No std::exception: handlers of errors let it pass.
struct Unwinding {};

/// A destructor that waits in a loop for what will never come would keep the process for ever.
constexpr std::uint64_t kMaxPasses = 1'000'000;

// FNV-1a, a word at a time.
constexpr std::uint64_t kHashBasis = 0xcbf29ce484222325;
constexpr std::uint64_t kHashPrime = 0x100000001b3;

std::string inSeconds(platform::TimePoint time) {
  const long long nanoseconds = time.time_since_epoch().count();
  char text[40];
  std::snprintf(text, sizeof text, "%lld.%09lld s", nanoseconds / 1'000'000'000, nanoseconds % 1'000'000'000);
  return text;
}

std::string situationOf(const VirtualParticipant& participant) {
  std::string text = "'" + participant.name + "' ";
  if (participant.state == VirtualParticipant::State::kAside) return text + "works aside";
  if (participant.state != VirtualParticipant::State::kWaiting) return text + "is ready to run";
  text += participant.waitsFor ? "waits for " + participant.waitsFor->description() : "sleeps";
  if (participant.deadline) text += " until " + inSeconds(*participant.deadline);
  return text;
}

}  // namespace

VirtualScheduler::VirtualScheduler(VirtualOptions options)
    : options_(std::move(options)), generator_(options_.seed), traceHash_(kHashBasis) {
  const auto main = std::make_shared<VirtualParticipant>("main", 0);
  main->id = std::this_thread::get_id();
  main->state = VirtualParticipant::State::kRunning;
  all_.push_back(main);
  living_.push_back(main.get());
  running_ = main.get();
}

VirtualScheduler::~VirtualScheduler() {
  end();
  for (const std::shared_ptr<VirtualParticipant>& participant : all_) {
    if (participant->thread.joinable()) participant->thread.join();
  }
}

void VirtualScheduler::end() {
  if (!comesApart_) {
    stop("Destroyed");
  } else if (!told_) {
    // It came to a stop while the main thread was in a destructor, and made no call since that could throw.
    std::fprintf(stderr, "%s\n", report_.c_str());
  }
  told_ = true;
  unwindOthers();
}

VirtualParticipant& VirtualScheduler::running() const {
  VirtualParticipant& holder = *running_.load(std::memory_order_relaxed);
  if (holder.id != std::this_thread::get_id()) misuse("called by a thread that it did not make");
  return holder;
}

std::shared_ptr<VirtualParticipant> VirtualScheduler::start(const std::string& name, std::function<void()> run) {
  running();
  const auto participant = std::make_shared<VirtualParticipant>(name, all_.size());
  all_.push_back(participant);
  if (comesApart_) {
    participant->state = VirtualParticipant::State::kFinished;
    return participant;
  }
  participant->thread = std::thread(&VirtualScheduler::runThread, this, std::ref(*participant), std::move(run));
  living_.push_back(participant.get());
  ready_.push_back(participant.get());
  return participant;
}

void VirtualScheduler::block(const Waitable* waitsFor, std::optional<platform::TimePoint> deadline) {
  if (!comesApart_) suspend(waitsFor, deadline);
  if (comesApart_) giveUp();
}

void VirtualScheduler::wake(VirtualParticipant& participant) {
  if (participant.state != VirtualParticipant::State::kWaiting) return;
  participant.state = VirtualParticipant::State::kReady;
  ready_.push_back(&participant);
}

// Without somebody else who could run, the baton stays, and the work is done as if it were not aside.
void VirtualScheduler::runAside(const std::function<void()>& work) {
  VirtualParticipant& self = running();
  if (aside_ > 0) takeBack(false);
  const bool othersMayRun = !ready_.empty() || (nextDeadline() && mayPassTime());
  if (!options_.overlapsWorkAside || comesApart_ || !othersMayRun) return work();
  self.state = VirtualParticipant::State::kAside;
  self.asideSince = now_;
  ++aside_;
  VirtualParticipant& next = chooseNext();
  if (&next == &self) {  // The main thread, as the runtime comes to a stop.
    self.state = VirtualParticipant::State::kRunning;
    unwindOthers();
    return giveUp();
  }
  release(next);
  std::exception_ptr thrown;
  try {
    work();
  } catch (...) {
    thrown = std::current_exception();
  }
  comeBack(self);
  if (thrown) std::rethrow_exception(thrown);
}

void VirtualScheduler::waitForWorkAside(const std::function<void()>& wait) {
  /// Until the wait ends, by an exception too.
  struct Mark {
    explicit Mark(VirtualParticipant& waiting) : participant(waiting) { participant.waitsForWorkAside = true; }
    ~Mark() { participant.waitsForWorkAside = false; }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;
    VirtualParticipant& participant;
  };
  const Mark mark(running());
  wait();
}

// Whoever has the baton finds this thread among those that are back, or unwinds it, and gives it the turn.
void VirtualScheduler::comeBack(VirtualParticipant& self) {
  {
    const std::lock_guard guard(backMutex_);
    back_.push_back(&self);
  }
  cameBack_.notify_one();
  self.turn.acquire();
  self.state = VirtualParticipant::State::kRunning;
  if (!comesApart_) return;
  if (&self == &mainThread()) unwindOthers();
  giveUp();
}

void VirtualScheduler::takeBack(bool waitForOne) {
  std::unique_lock lock(backMutex_);
  if (waitForOne) cameBack_.wait(lock, [this] { return !back_.empty(); });
  for (VirtualParticipant* participant : std::exchange(back_, {})) {
    participant->state = VirtualParticipant::State::kReady;
    ready_.push_back(participant);
    --aside_;
  }
}

void VirtualScheduler::join(VirtualParticipant& target) {
  if (target.state == VirtualParticipant::State::kFinished) return;
  joinQuietly(target);
  if (comesApart_) giveUp();
}

void VirtualScheduler::joinQuietly(VirtualParticipant& target) {
  VirtualParticipant& self = running();
  while (target.state != VirtualParticipant::State::kFinished && !comesApart_) {
    const WaitingPlace place(target.joiners, self);
    suspend(&target, std::nullopt);
  }
  // Whoever joins may go on to destroy what the target uses, so the target is unwound first.
  unwind(target);
}

std::size_t VirtualScheduler::choose(std::size_t count) {
  return count > 1 ? static_cast<std::size_t>(generator_() % count) : 0;
}

void VirtualScheduler::misuse(std::string_view what) const {
  std::fprintf(stderr, "virtual runtime: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

void VirtualScheduler::runThread(VirtualParticipant& self, std::function<void()> run) {
  self.turn.acquire();
  self.id = std::this_thread::get_id();
  try {
    // What the function holds goes here too: under the baton, and in the course of unwinding.
    const std::function<void()> call = std::exchange(run, nullptr);
    if (!comesApart_) call();
  } catch (const Unwinding&) {
  }
  finish(self);
}

// Returns with the baton back. When the runtime is found stuck meanwhile, the main thread gets it first, and unwinds
// the others one after the other before it goes on itself: what the main thread owns, they may be using.
void VirtualScheduler::suspend(const Waitable* waitsFor, std::optional<platform::TimePoint> deadline) {
  VirtualParticipant& self = running();
  self.state = VirtualParticipant::State::kWaiting;
  self.waitsFor = waitsFor;
  self.deadline = deadline;
  if (deadline && *deadline <= now_) wake(self);
  handOver(self, chooseNext());
  if (comesApart_ && &self == &mainThread()) unwindOthers();
}

VirtualParticipant& VirtualScheduler::chooseNext() {
  if (options_.maxSteps != 0 && steps_ == options_.maxSteps) {
    return stop("More than " + std::to_string(options_.maxSteps) + " steps");
  }
  if (aside_ > 0) takeBack(false);
  while (ready_.empty() && aside_ > 0 && !mayPassTime()) takeBack(true);
  if (ready_.empty()) passTime();
  while (ready_.empty() && aside_ > 0) takeBack(true);
  if (ready_.empty()) return stop("Deadlock");
  if (options_.maxStepsAtOneInstant != 0 && stepsAtThisInstant_ == options_.maxStepsAtOneInstant) {
    return stop("More than " + std::to_string(options_.maxStepsAtOneInstant) + " steps with no time passing");
  }
  const std::size_t choice = choose(ready_.size());
  VirtualParticipant& next = *ready_[choice];
  ready_[choice] = ready_.back();
  ready_.pop_back();
  ++steps_;
  ++stepsAtThisInstant_;
  traceHash_ = (traceHash_ ^ next.number) * kHashPrime;
  traceHash_ = (traceHash_ ^ static_cast<std::uint64_t>(now_.time_since_epoch().count())) * kHashPrime;
  return next;
}

// Looks at every thread, without an index of the deadlines to keep: there are dozens of threads, not thousands.
std::optional<platform::TimePoint> VirtualScheduler::nextDeadline() const {
  std::optional<platform::TimePoint> next;
  for (const VirtualParticipant* participant : living_) {
    if (participant->deadline && (!next || *participant->deadline < *next)) next = participant->deadline;
  }
  return next;
}

// Timers go on while a thread works aside. Without a bound they would see hours pass while the others wait for it.
bool VirtualScheduler::mayPassTime() const {
  const std::optional<platform::TimePoint> next = nextDeadline();
  return std::ranges::none_of(living_, [&](const VirtualParticipant* participant) {
    if (participant->waitsForWorkAside) return true;
    return participant->state == VirtualParticipant::State::kAside && next &&
           *next > participant->asideSince + options_.aheadOfWorkAside;
  });
}

void VirtualScheduler::passTime() {
  const std::optional<platform::TimePoint> next = nextDeadline();
  if (!next) return;
  now_ = *next;
  stepsAtThisInstant_ = 0;
  for (VirtualParticipant* participant : living_) {
    if (participant->deadline == next) wake(*participant);
  }
}

void VirtualScheduler::handOver(VirtualParticipant& self, VirtualParticipant& next) {
  if (&next != &self) {
    release(next);
    self.turn.acquire();
  }
  self.state = VirtualParticipant::State::kRunning;
  self.waitsFor = nullptr;
  self.deadline.reset();
}

void VirtualScheduler::release(VirtualParticipant& next) {
  running_.store(&next, std::memory_order_relaxed);
  next.turn.release();
}

void VirtualScheduler::finish(VirtualParticipant& self) {
  self.state = VirtualParticipant::State::kFinished;
  std::erase(living_, &self);
  for (VirtualParticipant* joiner : self.joiners) wake(*joiner);
  release(self.unwinder ? *self.unwinder : chooseNext());
}

VirtualParticipant& VirtualScheduler::stop(const std::string& why) {
  comesApart_ = true;
  report_ = reportOf(why);
  return mainThread();
}

std::string VirtualScheduler::reportOf(const std::string& why) const {
  std::string text = why + " at " + inSeconds(now_) + ", seed " + std::to_string(options_.seed) + ", step " +
                     std::to_string(steps_) + ":";
  for (const VirtualParticipant* participant : living_) text += "\n  " + situationOf(*participant);
  return text;
}

void VirtualScheduler::unwind(VirtualParticipant& target) {
  // A thread with an unwinder is one on whose behalf, further up, this is being done.
  if (target.state == VirtualParticipant::State::kFinished || target.unwinder) return;
  VirtualParticipant& self = running();
  target.unwinder = &self;
  handOver(self, target);
}

void VirtualScheduler::unwindOthers() {
  if (options_.onStuck && !std::exchange(told_, true)) options_.onStuck(report_);
  while (living_.size() > 1) unwind(*living_.back());
}

// The call at hand can never be satisfied. An exception must not leave a destructor that runs because of another one,
// so a thread that is being unwound goes on instead; a thread that caught the exception gets it again.
void VirtualScheduler::giveUp() {
  if (std::uncaught_exceptions() > 0) {
    if (++passes_ > kMaxPasses) misuse("a destructor waits for ever after this stop:\n" + report_);
    return;
  }
  if (&running() != &mainThread()) throw Unwinding{};
  told_ = true;
  throw StuckError(report_);
}

}  // namespace zq::backend
