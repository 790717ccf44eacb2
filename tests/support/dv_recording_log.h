#pragma once
// A log that keeps its lines.

#include <string>
#include <string_view>
#include <vector>

#include "base/log.h"

namespace zq::test {

class DVRecordingLog final : public Log {
 public:
  struct Line {
    LogLevel level;
    std::string message;
  };

  void write(LogLevel level, std::string_view message) override { lines.push_back({level, std::string(message)}); }

  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const Line& line : lines) messages.push_back(line.message);
    return messages;
  }

  std::vector<Line> lines;
};

}  // namespace zq::test
