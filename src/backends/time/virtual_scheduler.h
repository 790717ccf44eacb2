#pragma once
// Who runs, and what time it is, in virtual time.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "backends/time/virtual_options.h"
#include "backends/time/virtual_participant.h"
#include "platform/clock.h"

namespace zq::backend {

/// Passes a baton among threads: one runs, the others wait for their turn. Every operation is for the thread that has
/// the baton, and ends the program on any other. Everything "for the holder of the baton" therefore needs no other
/// guard.
class VirtualScheduler {
 public:
  /// The calling thread is the main thread, and has the baton.
  explicit VirtualScheduler(VirtualOptions options);
  ~VirtualScheduler();
  VirtualScheduler(const VirtualScheduler&) = delete;
  VirtualScheduler& operator=(const VirtualScheduler&) = delete;

  /// Unwinds the threads that have not finished; nothing can wait from here on.
  void end();

  platform::TimePoint now() const { return now_; }
  VirtualParticipant& running() const;
  std::shared_ptr<VirtualParticipant> start(const std::string& name, std::function<void()> run);
  /// Lets others run until wake(), or until `deadline`. Leaves by an exception when the runtime is stuck, and returns
  /// at once when it is and the thread is being unwound.
  void block(const Waitable* waitsFor, std::optional<platform::TimePoint> deadline);
  void wake(VirtualParticipant& participant);
  /// Gives the baton away for the time of `work`, if another thread can use it.
  void runAside(const std::function<void()>& work);
  /// `wait` blocks until work aside has been done; no time passes while that goes on.
  void waitForWorkAside(const std::function<void()>& wait);
  void join(VirtualParticipant& target);
  /// For destructors: as join(), but leaves a stop of the runtime to be thrown by the next call that blocks.
  void joinQuietly(VirtualParticipant& target);
  /// The seeded generator's choice among 0 ... `count` - 1.
  std::size_t choose(std::size_t count);
  /// Whether the threads are being unwound, or have been: then nothing excludes anybody any more.
  bool comesApart() const { return comesApart_; }
  [[noreturn]] void misuse(std::string_view what) const;

  std::uint64_t steps() const { return steps_; }
  std::uint64_t traceHash() const { return traceHash_; }

 private:
  VirtualParticipant& mainThread() const { return *living_.front(); }
  void runThread(VirtualParticipant& self, std::function<void()> run);
  void suspend(const Waitable* waitsFor, std::optional<platform::TimePoint> deadline);
  VirtualParticipant& chooseNext();
  bool mayPassTime() const;
  void passTime();
  std::optional<platform::TimePoint> nextDeadline() const;
  void takeBack(bool waitForOne);
  void comeBack(VirtualParticipant& self);
  void handOver(VirtualParticipant& self, VirtualParticipant& next);
  void release(VirtualParticipant& next);
  void finish(VirtualParticipant& self);
  VirtualParticipant& stop(const std::string& why);
  std::string reportOf(const std::string& why) const;
  void unwind(VirtualParticipant& target);
  void unwindOthers();
  void giveUp();

  // Constant after construction.
  const VirtualOptions options_;

  /// The holder of the baton. Atomic only so that a thread that must not call finds out that it is not the one.
  std::atomic<VirtualParticipant*> running_;

  // For the holder of the baton.
  platform::TimePoint now_{};
  std::mt19937_64 generator_;
  std::vector<std::shared_ptr<VirtualParticipant>> all_;  // For good: a lock may name a holder that has ended.
  std::vector<VirtualParticipant*> living_;               // In the order in which they were started; main first.
  std::vector<VirtualParticipant*> ready_;
  std::uint64_t steps_ = 0;
  std::uint64_t stepsAtThisInstant_ = 0;
  std::uint64_t traceHash_;
  int aside_ = 0;  // How many threads are.
  bool comesApart_ = false;
  std::string report_;
  bool told_ = false;         // The report was thrown, printed or given to onStuck.
  std::uint64_t passes_ = 0;  // Calls that returned at once because their thread is being unwound.

  // Guarded by backMutex_: the one place where a thread without the baton says something.
  std::mutex backMutex_;
  std::condition_variable cameBack_;
  std::vector<VirtualParticipant*> back_;  // Threads whose work aside is done.
};

}  // namespace zq::backend
