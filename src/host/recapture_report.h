#pragma once
// What a recapture says when it is done.

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/recapture_run.h"

namespace zq::host {

class RecaptureReport {
 public:
  RecaptureReport(std::string tape, bool manual, const RecaptureOutcome& outcome)
      : tape_(std::move(tape)), manual_(manual), outcome_(outcome) {}

  /// The movies were compressed: their extension, the choice's name and, of a custom one, its settings and size.
  void setCompression(std::string format, std::string name, std::vector<std::string> settings, std::string size);
  /// The named configuration that was asked for; "" for none.
  void setConfiguration(std::string name) { configuration_ = std::move(name); }

  nlohmann::ordered_json json() const;
  /// Fits a terminal of 80 columns.
  void print() const;
  int count(RecapturedClip::Status status) const;
  /// "clips 3, 7: why they failed", a line for each reason.
  std::vector<std::string> failures() const;

 private:
  const std::string tape_;
  const bool manual_;
  const RecaptureOutcome& outcome_;
  std::string format_;
  std::string compression_;  // "" for movies as received
  std::vector<std::string> customCompression_;
  std::string pictureSize_;
  std::string configuration_;
};

}  // namespace zq::host
