#include "dv/date_order.h"

#include <utility>

namespace zq {
namespace {

bool beginsWithDay(const std::string& format) {
  return format.starts_with("%d") || format.starts_with("%e");
}

}  // namespace

DateOrder::DateOrder(std::optional<std::string> shortDateFormat)
    : shortDateFormat_(std::move(shortDateFormat)),
      monthFirst_(!(shortDateFormat_.has_value() && beginsWithDay(*shortDateFormat_))) {}

}  // namespace zq
