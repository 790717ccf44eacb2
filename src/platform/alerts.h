#pragma once
// What the user must see before anything goes on.

#include <string>

namespace zq::platform {

class Alerts {
 public:
  virtual ~Alerts() = default;
  /// Shows a modal alert with its default button only, and returns when it was answered. From any thread.
  virtual void runModal(const std::string& messageText, const std::string& informativeText) = 0;
};

}  // namespace zq::platform
