#pragma once
// Asks the user for a file or folder.

#include <string>

namespace zq::outlets {

/// What runModal() returns when the user chose.
inline constexpr int kOKButton = 1;

/// Main thread only.
class OpenPanel {
 public:
  virtual ~OpenPanel() = default;
  /// Returns when the user has answered.
  virtual int runModal() = 0;
  /// The chosen one; empty before there is one.
  virtual std::string filename() const = 0;
};

}  // namespace zq::outlets
