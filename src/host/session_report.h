#pragma once
// The report of a capture: session.json in the output folder.

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "base/status.h"
#include "host/clip_files.h"
#include "host/clip_ledger.h"
#include "platform/settings.h"

namespace zq::host {

struct SessionReport {
  std::string device;
  std::string format;  // the movies' extension
  /// How movies are compressed, with the settings of a custom compression, and the named configuration that was asked
  /// for; in the report when there is any.
  std::string compression;
  std::vector<std::string> customCompression;
  std::string configuration;
  std::vector<CapturedClip> clips;
  std::int64_t delivered = 0;
  std::int64_t recorded = 0;
  std::int64_t dropped = 0;
  /// "endOfTape", "interrupted" or "error".
  std::string ended;
  /// What the tape's owner should look at, and why the capture ended early; in the report when there is any.
  std::vector<std::string> findings;
  std::string error;

  nlohmann::ordered_json json(const platform::Settings& settings) const;
};

/// The file that will hold the report. Its room on the disk is taken before the first frame, so that a disk that fills
/// up still has it.
class ReportFile {
 public:
  explicit ReportFile(const ClipFiles& files) : files_(files) {}
  ~ReportFile();
  ReportFile(const ReportFile&) = delete;
  ReportFile& operator=(const ReportFile&) = delete;

  Status reserve();
  /// Writes the report under its name, "session.json" or with a counter where that is taken, and returns the path.
  Expected<std::string> write(const std::string& text);

 private:
  const ClipFiles& files_;
  std::string workingPath_;
  int descriptor_ = -1;
};

}  // namespace zq::host
