#pragma once
// What the user must see before anything goes on.

#include <string>

namespace zq::platform {

class Alerts {
 public:
  virtual ~Alerts() = default;
  /// The answer of an alert's default button.
  static constexpr int kDefaultButton = 1;

  /// Shows a modal alert with its default button only, and returns when it was answered: kDefaultButton, or another
  /// number when it was taken away without an answer. From any thread.
  virtual int runModal(const std::string& messageText, const std::string& informativeText) = 0;
};

}  // namespace zq::platform
