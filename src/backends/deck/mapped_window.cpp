#include "backends/deck/mapped_window.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zq::backend {
namespace {

// Reading a mapped page whose bytes are gone raises SIGBUS. The handler lays a page of zeros there and goes on; what
// holds the window looks at its flag afterwards. Everything that it touches is lock-free, as a signal handler needs.

struct Slot {
  std::atomic<std::uintptr_t> start{0};
  std::atomic<std::uintptr_t> end{0};
  std::atomic<std::atomic<bool>*> damaged{nullptr};
  std::atomic<bool> used{false};
};

std::array<Slot, 1024> slots;     // NOLINT: a signal handler can reach nothing but globals
struct sigaction previousAction;  // NOLINT
std::uintptr_t pageSize = 4096;   // NOLINT

bool repair(std::uintptr_t address) {
  for (const Slot& slot : slots) {
    if (address < slot.start.load() || address >= slot.end.load()) continue;
    if (std::atomic<bool>* damaged = slot.damaged.load()) *damaged = true;
    void* page = reinterpret_cast<void*>(address & ~(pageSize - 1));  // NOLINT(performance-no-int-to-ptr)
    return ::mmap(page, pageSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED;
  }
  return false;
}

void onBusError(int number, siginfo_t* info, void* context) {
  const int savedErrno = errno;
  if (!repair(reinterpret_cast<std::uintptr_t>(info->si_addr))) {
    // Not ours: what stood there before decides, the default being to end the program.
    if ((previousAction.sa_flags & SA_SIGINFO) != 0 && previousAction.sa_sigaction != nullptr) {
      previousAction.sa_sigaction(number, info, context);
    } else {
      ::sigaction(SIGBUS, &previousAction, nullptr);
    }
  }
  errno = savedErrno;
}

void installHandler() {
  static const bool installed = [] {
    pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    struct sigaction action {};
    action.sa_sigaction = onBusError;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    ::sigemptyset(&action.sa_mask);
    return ::sigaction(SIGBUS, &action, &previousAction) == 0;
  }();
  static_cast<void>(installed);
}

int takeSlot(std::uintptr_t start, std::uintptr_t end, std::atomic<bool>* damaged) {
  for (std::size_t i = 0; i < slots.size(); ++i) {
    bool expected = false;
    if (!slots[i].used.compare_exchange_strong(expected, true)) continue;
    slots[i].damaged = damaged;
    slots[i].end = end;
    slots[i].start = start;
    return static_cast<int>(i);
  }
  return -1;
}

void freeSlot(int index) {
  Slot& slot = slots[static_cast<std::size_t>(index)];
  slot.end = 0;
  slot.start = 0;
  slot.used = false;
}

}  // namespace

Expected<std::shared_ptr<const MappedWindow>> MappedWindow::map(int descriptor, std::uint64_t offset,
                                                                std::size_t length, DamageFlag damaged) {
  installHandler();
  const std::uint64_t aligned = offset & ~static_cast<std::uint64_t>(pageSize - 1);
  const std::size_t whole = length + static_cast<std::size_t>(offset - aligned);
  void* start = ::mmap(nullptr, whole, PROT_READ, MAP_SHARED, descriptor, static_cast<off_t>(aligned));
  if (start == MAP_FAILED) return Error{"Cannot map the tape image into memory", std::strerror(errno)};
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const int slot = takeSlot(address, address + whole, damaged.get());
  if (slot < 0) {
    ::munmap(start, whole);
    return Error{"Cannot map the tape image into memory", "Too many parts of tape images are held at once."};
  }
  return std::shared_ptr<const MappedWindow>(
      new MappedWindow(static_cast<std::uint8_t*>(start), whole, aligned, slot, std::move(damaged)));
}

MappedWindow::MappedWindow(std::uint8_t* start, std::size_t length, std::uint64_t offset, int slot, DamageFlag damaged)
    : start_(start), length_(length), offset_(offset), slot_(slot), damaged_(std::move(damaged)) {}

MappedWindow::~MappedWindow() {
  freeSlot(slot_);
  ::munmap(start_, length_);
}

bool MappedWindow::covers(std::uint64_t offset, std::size_t length) const {
  return offset >= offset_ && offset + length <= offset_ + length_;
}

std::span<const std::uint8_t> MappedWindow::bytes(std::uint64_t offset, std::size_t length) const {
  return {start_ + (offset - offset_), length};
}

}  // namespace zq::backend
