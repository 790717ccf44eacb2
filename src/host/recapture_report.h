#pragma once
// What a recapture says when it is done.

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/recapture_run.h"

namespace zq::host {

class RecaptureReport {
 public:
  RecaptureReport(std::string tape, bool manual, const RecaptureOutcome& outcome)
      : tape_(std::move(tape)), manual_(manual), outcome_(outcome) {}

  nlohmann::ordered_json json() const;
  /// Fits a terminal of 80 columns, but for long reasons.
  void print() const;
  int count(RecapturedClip::Status status) const;

 private:
  const std::string tape_;
  const bool manual_;
  const RecaptureOutcome& outcome_;
};

}  // namespace zq::host
