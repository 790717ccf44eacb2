#include "backends/deck/read_plan.h"

#include <algorithm>

namespace zq::backend {

void ReadPlan::finish(const Faults& faults, std::uint64_t passed) {
  if (!current_.mapped) {
    current_ = {true, kFirstMapped};
  } else if (faults.major == 0 && faults.minor > kOtherFaults + passed / kBytesPerFault) {
    refuse();
  } else {
    current_.length = std::min(current_.length * 2, kLongestMapped);
    unmapped_ = kFirstUnmapped;
  }
}

void ReadPlan::refuse() {
  current_ = {false, unmapped_};
  unmapped_ = std::min(unmapped_ * 2, kLongestUnmapped);
}

}  // namespace zq::backend
