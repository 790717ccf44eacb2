#pragma once
// The status text of a recapture, in the log: what --verbose shows where there is no screen.

#include <memory>
#include <string>

#include "base/log.h"
#include "outlets/text_field.h"
#include "platform/runtime.h"

namespace zq::host {

/// From any thread.
class NoteLog final : public outlets::TextField {
 public:
  NoteLog(platform::Runtime& runtime, Log& log);

  /// Tells a text unless it is one of the last two: near a clip two of them take turns at every frame.
  void setStringValue(const std::string& text) override;
  void setBackgroundColor(const platform::Color& /*color*/) override {}

 private:
  Log& log_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::string last_;
  std::string lastButOne_;
};

}  // namespace zq::host
