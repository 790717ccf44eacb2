#pragma once
// What the overlay's labels say and look like.

#include <QFont>
#include <string>

#include "timecode/smpte_time.h"

namespace zq {

/// "HH:MM:SS.FF": a stop before the frames. At least two digits a field.
std::string timecodeLabel(const SMPTETime& timecode);

/// The font of the timecode's and of the date's label.
QFont labelFont();

}  // namespace zq
