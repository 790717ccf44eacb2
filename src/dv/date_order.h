#pragma once
// Whether a displayed date has its day or its month first.

#include <optional>
#include <string>

namespace zq {

/// Decided when made, from the user's short-date format, and never again: the display does not change order while the
/// program runs.
class DateOrder {
 public:
  /// Day first when the format begins with "%d" or "%e"; month first in every other case.
  explicit DateOrder(std::optional<std::string> shortDateFormat);

  bool isMonthFirst() const { return monthFirst_; }

 private:
  std::optional<std::string> shortDateFormat_;
  bool monthFirst_;
};

}  // namespace zq
