#include "backends/deck/guarded_copy.h"

#include <ucontext.h>

#include <csetjmp>
#include <csignal>
#include <cstring>

namespace zq::backend {
namespace {

// Where this thread goes on when the bytes that it is copying are not to be had; null while it copies nothing.
// Volatile, as the handler reads it in the midst of a copy, which a compiler cannot know.
thread_local sigjmp_buf* volatile t_escape = nullptr;

struct sigaction g_before {};

/// A bus error outside of a copy is met again as if this handler had never been: the instruction runs once more.
void onBusError(int signal, siginfo_t* /*info*/, void* context) {
  if (t_escape == nullptr) {
    ::sigaction(signal, &g_before, nullptr);
    return;
  }
  // A handler that is left by a jump keeps its signals blocked, and the next bus error would be deadly. A mask kept
  // with the place to jump to would be put back too, but keeping it costs each copy a call of the system.
  ::sigprocmask(SIG_SETMASK, &static_cast<const ucontext_t*>(context)->uc_sigmask, nullptr);
  siglongjmp(*t_escape, 1);
}

bool install() {
  struct sigaction action {};
  action.sa_sigaction = &onBusError;
  action.sa_flags = SA_SIGINFO;
  sigemptyset(&action.sa_mask);
  return ::sigaction(SIGBUS, &action, &g_before) == 0;
}

}  // namespace

bool copyGuarded(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
  static const bool kInstalled = install();
  if (!kInstalled) return false;
  sigjmp_buf escape;
  // Only the copy lies between here and the jump, so no destructor is passed over.
  if (sigsetjmp(escape, 0) != 0) {
    t_escape = nullptr;
    return false;
  }
  t_escape = &escape;
  std::memcpy(to, from, size);
  t_escape = nullptr;
  return true;
}

}  // namespace zq::backend
