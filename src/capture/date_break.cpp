#include "capture/date_break.h"

namespace zq {

// Consecutive frames show the same second or the next one, so a step of exactly one second is the clock running on.
// With no current date the distance is that from the reference date, 1 January 2001; a tape recorded before it steps
// backwards, so every first date is a break, but for the first second of 2001.
bool isDateBreak(const DateValue& current, const DateValue& next) {
  if (!next) return false;
  const double seconds = current ? next->timeIntervalSinceDate(*current) : next->timeIntervalSinceReferenceDate();
  return seconds > 1.0 || seconds < 0.0;
}

}  // namespace zq
