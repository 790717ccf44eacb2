#pragma once
// Where diagnostics go. What logs is given a sink, so that a test or a host decides what becomes of the lines.

#include <string_view>

namespace zq {

enum class LogLevel { info, warning, error };

class Log {
 public:
  virtual ~Log() = default;
  /// May be called from any thread; `message` is valid during the call only.
  virtual void write(LogLevel level, std::string_view message) = 0;
};

}  // namespace zq
