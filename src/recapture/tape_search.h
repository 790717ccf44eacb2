#pragma once
// Where on a tape a recording date is. Timecodes repeat on a tape, recording dates do not.

#include "base/calendar_date.h"
#include "catalogue/clip.h"
#include "catalogue/sequence.h"
#include "catalogue/tape.h"

namespace zq {

/// -1 when `one` is earlier, 1 when it is later, 0 when both are the same second or one is null.
int compareDates(const DateValue& one, const DateValue& other);

/// The first sequence with clips left to recapture that the date lies in, its first and last second included.
SequenceValue sequenceOnDate(const ZQACTape& tape, const DateValue& date);
/// The first clip that the date lies in, its first and last second included, apart from `current`; null when there is
/// none.
ClipValue otherClipOnDate(const ZQACSequence& sequence, const DateValue& date, const ClipValue& current);
/// The first clip that is marked and not finished; null when none is left.
ClipValue nextClipToBeRecaptured(const ZQACSequence& sequence);
/// The one before `clip` by its index; null when it is the first, or either is null.
ClipValue clipBefore(const SequenceValue& sequence, const ClipValue& clip);

}  // namespace zq
