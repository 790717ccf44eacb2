#pragma once
// Whether the next stretch of a file is read through a mapping or by calls of the system.

#include <cstdint>

namespace zq::backend {

/// A small read by a call costs the same everywhere. Through a mapping it costs nothing where the system keeps the file
/// in large pieces, as it does with what it read from a disk in one go, and three times as much where it keeps single
/// pages, as it does with what was just written in small pieces. Nobody tells which; the page faults of a stretch do.
/// So one stretch is tried, and where that was dear, calls read ever longer stretches before the next trial.
class ReadPlan {
 public:
  /// Page faults of one thread.
  struct Faults {
    std::uint64_t minor = 0;
    std::uint64_t major = 0;  // those that waited for the disk
  };
  struct Stretch {
    bool mapped = true;
    std::uint64_t length = 0;  // bytes
  };

  static constexpr std::uint64_t kFirstMapped = std::uint64_t{4} << 20U;
  static constexpr std::uint64_t kLongestMapped = std::uint64_t{32} << 20U;
  static constexpr std::uint64_t kFirstUnmapped = std::uint64_t{256} << 20U;
  static constexpr std::uint64_t kLongestUnmapped = std::uint64_t{1024} << 20U;
  /// A mapped stretch with more minor faults than one for this many bytes was dear; a few more may come from elsewhere.
  static constexpr std::uint64_t kBytesPerFault = std::uint64_t{224} << 10U;
  static constexpr std::uint64_t kOtherFaults = 12;

  Stretch current() const { return current_; }
  /// Goes on to the next stretch, given the faults of this one and how many of its bytes were passed by. Data that came
  /// from the disk is no sign of a dear mapping: waiting for it costs more than the faults, and the system reads
  /// further ahead for a mapping.
  void finish(const Faults& faults, std::uint64_t passed);
  /// As if this stretch had been dear: the system refused to map it.
  void refuse();

 private:
  Stretch current_{true, kFirstMapped};
  std::uint64_t unmapped_ = kFirstUnmapped;  // the length of the next unmapped stretch
};

}  // namespace zq::backend
