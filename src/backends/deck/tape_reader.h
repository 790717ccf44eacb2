#pragma once
// Many small reads of a tape's file, in about the order of the tape.

#include <cstdint>
#include <span>

#include "backends/deck/read_plan.h"
#include "backends/deck/tape_file.h"
#include "backends/deck/tape_window.h"

namespace zq::backend {

/// One thread at a time, and the same one throughout: its page faults decide how the file is read.
class TapeReader {
 public:
  explicit TapeReader(const TapeFile& file) : file_(file) {}

  /// As TapeFile::read.
  Status read(std::span<std::uint8_t> destination, std::uint64_t offset);
  /// As TapeFile::checkSize: whether all that was read can be trusted.
  Status checkFile() const { return file_.checkSize(); }

 private:
  void leave();
  void enter(std::uint64_t offset, std::uint64_t end);

  const TapeFile& file_;
  ReadPlan plan_;
  ReadPlan::Faults before_;  // the thread's, when it entered the stretch
  TapeWindow window_;        // empty in a stretch that is not mapped
  std::uint64_t begun_ = 0;  // where the first read of the stretch was
  std::uint64_t last_ = 0;   // where the last one ended
  std::uint64_t end_ = 0;    // of the stretch; 0 before the first
};

}  // namespace zq::backend
