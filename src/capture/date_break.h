#pragma once
// The rule that cuts a tape into scenes: where the recording date jumps.

#include "base/calendar_date.h"

namespace zq {

/// Whether a frame dated `next` begins a new scene after one dated `current`: the date jumps by more than one second or
/// goes backwards. A frame without a date never does; the first dated frame, with nothing before it, always does.
bool isDateBreak(const DateValue& current, const DateValue& next);

}  // namespace zq
