#include "host/interrupts.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <string_view>

#include "host/exit_codes.h"

namespace zq::host {
namespace {

std::atomic<int> asked{0};  // NOLINT: a signal handler can reach nothing but globals

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};
constexpr std::string_view kStopping = "\ndeckhand: stopping, what is complete stays\n";
constexpr std::string_view kAlready = "\ndeckhand: already stopping (once more abandons the open files)\n";

void say(std::string_view text) {
  static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

void onSignal(int /*number*/) {
  const int count = ++asked;
  if (count == 1) return say(kStopping);
  if (count == 2) return say(kAlready);
  ::_exit(kExitInterrupted);
}

}  // namespace

Interrupts::Interrupts() {
  asked = 0;
  struct sigaction action {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  for (const int number : kSignals) ::sigaction(number, &action, nullptr);
}

Interrupts::~Interrupts() {
  for (const int number : kSignals) ::signal(number, SIG_DFL);
}

bool Interrupts::wasAsked() {
  return asked > 0;
}

}  // namespace zq::host
