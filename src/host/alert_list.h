#pragma once
// The alerts of a session that nobody sits in front of: told, kept for the report, and answered with their default
// button.

#include <memory>
#include <string>
#include <vector>

#include "base/status.h"
#include "host/console.h"
#include "platform/alerts.h"
#include "platform/runtime.h"

namespace zq::host {

/// From any thread.
class AlertList final : public platform::Alerts {
 public:
  AlertList(platform::Runtime& runtime, Console& console);

  int runModal(const std::string& messageText, const std::string& informativeText) override;
  std::vector<Error> shown() const;

 private:
  Console& console_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::vector<Error> shown_;
};

}  // namespace zq::host
