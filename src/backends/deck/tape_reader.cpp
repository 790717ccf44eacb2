#include "backends/deck/tape_reader.h"

#include <sys/resource.h>

#include <algorithm>

#include "dv/dv_constants.h"

namespace zq::backend {
namespace {

// Windows begin where the system's largest pages do.
constexpr std::uint64_t kAlignment = std::uint64_t{2} << 20U;

ReadPlan::Faults faultsOfThisThread() {
  struct rusage usage {};
  ::getrusage(RUSAGE_THREAD, &usage);
  return {static_cast<std::uint64_t>(usage.ru_minflt), static_cast<std::uint64_t>(usage.ru_majflt)};
}

std::uint64_t roundedDown(std::uint64_t offset) {
  return offset / kAlignment * kAlignment;
}

}  // namespace

Status TapeReader::read(std::span<std::uint8_t> destination, std::uint64_t offset) {
  const std::uint64_t end = offset + destination.size();
  if (end > end_) {
    if (end_ != 0) leave();
    enter(offset, end);
  }
  last_ = end;
  if (window_.holds(offset, destination.size()) && window_.copy(destination, offset)) {
    // A sequence is likely to be followed by the next.
    window_.fetch(offset + SEQUENCE_SIZE, destination.size());
    return {};
  }
  // What the window cannot give, this can, or says why not.
  return file_.read(destination, offset);
}

void TapeReader::leave() {
  const ReadPlan::Faults now = faultsOfThisThread();
  plan_.finish({now.minor - before_.minor, now.major - before_.major}, last_ > begun_ ? last_ - begun_ : 0);
}

void TapeReader::enter(std::uint64_t offset, std::uint64_t end) {
  begun_ = offset;
  window_ = {};
  before_ = faultsOfThisThread();
  const std::uint64_t start = roundedDown(offset);
  if (plan_.current().mapped) {
    end_ = std::max(start + plan_.current().length, end);
    window_ = file_.window(start, end_ - start);
    if (!window_.isEmpty()) return;
    plan_.refuse();
  }
  end_ = std::max(start + plan_.current().length, end);
}

}  // namespace zq::backend
