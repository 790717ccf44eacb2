#include "backends/qt/qt_main_loop.h"

#include <QEventLoop>
#include <QMetaObject>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <cassert>
#include <chrono>
#include <mutex>
#include <utility>

#include "platform/clock.h"
#include "platform/runtime.h"

namespace zq::backend {

namespace {

// Qt counts a timer's milliseconds in an int. A longer wait is taken in parts.
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(24);

}  // namespace

QtMainLoop::QtMainLoop(platform::Runtime& system)
    : clock_(system.clock()), mutex_(system.makeMutex("Qt main loop")), context_(std::make_unique<QObject>()) {}

// Again until nothing is left: what goes with a task may post another. Nothing is dropped under the lock.
QtMainLoop::~QtMainLoop() {
  for (;;) {
    decltype(tasks_) tasks;
    {
      const std::lock_guard guard(*mutex_);
      tasks.swap(tasks_);
    }
    if (tasks.empty()) return;
  }
}

// Qt would go on with all that was posted when run() is to return. So the tasks wait here, and Qt is only told of them.
void QtMainLoop::post(std::function<void()> task) {
  const std::lock_guard guard(*mutex_);
  tasks_.push_back(std::move(task));
  wakeForOneTask();
}

// With the mutex held: whoever frees what is posted here has held it since.
void QtMainLoop::wakeForOneTask() {
  QMetaObject::invokeMethod(
      context_.get(), [this] { runOneTask(); }, Qt::QueuedConnection);
}

void QtMainLoop::runOneTask() {
  std::function<void()> task;
  {
    const std::lock_guard guard(*mutex_);
    if ((quit_ && runs_ > 0) || tasks_.empty()) return;
    task = std::move(tasks_.front());
    tasks_.pop_front();
  }
  task();
}

bool QtMainLoop::isCurrent() const {
  return QThread::currentThread() == context_->thread();
}

std::shared_ptr<platform::Timer> QtMainLoop::startTimer(platform::Duration delay, std::function<void()> fire) {
  auto timer = std::make_shared<platform::OneShotTimer>(std::move(fire));
  const platform::TimePoint now = clock_.now();
  const auto wait = std::max(delay, platform::Duration::zero());
  const platform::TimePoint deadline =
      wait > platform::TimePoint::max() - now ? platform::TimePoint::max() : now + wait;
  if (isCurrent()) {
    arm(timer, deadline);
  } else {
    post([this, timer, deadline] { arm(timer, deadline); });
  }
  return timer;
}

void QtMainLoop::arm(const std::shared_ptr<platform::OneShotTimer>& timer, platform::TimePoint deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(
      std::clamp<platform::Duration>(deadline - clock_.now(), platform::Duration::zero(), kLongestWait));
  // Due at once: as a task, behind those that wait already.
  if (left == std::chrono::milliseconds::zero()) return post([timer] { timer->fire(); });
  QTimer::singleShot(left, Qt::PreciseTimer, context_.get(), [this, timer, deadline] { fireWhenDue(timer, deadline); });
}

// Qt may be a moment early, and a long wait comes in parts.
void QtMainLoop::fireWhenDue(const std::shared_ptr<platform::OneShotTimer>& timer, platform::TimePoint deadline) {
  if (!timer->isValid()) return;
  if (clock_.now() < deadline) return arm(timer, deadline);
  timer->fire();
}

void QtMainLoop::run() {
  assert(isCurrent());
  ++runs_;
  // Those that an earlier quit() left.
  {
    const std::lock_guard guard(*mutex_);
    for (std::size_t task = 0; task < tasks_.size(); ++task) wakeForOneTask();
  }
  QEventLoop loop;
  while (!mustReturn()) loop.processEvents(QEventLoop::WaitForMoreEvents);
  --runs_;
}

bool QtMainLoop::mustReturn() {
  const std::lock_guard guard(*mutex_);
  return std::exchange(quit_, false);
}

void QtMainLoop::quit() {
  const std::lock_guard guard(*mutex_);
  quit_ = true;
  wakeForOneTask();  // which it will not run: it ends Qt's waiting
}

}  // namespace zq::backend
