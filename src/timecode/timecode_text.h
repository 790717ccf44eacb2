#pragma once
// The written form of a timecode.

#include <string>

#include "timecode/smpte_time.h"

namespace zq {

/// "HH:MM:SS:FF", at least two digits a field. Fields are written as they are, also those out of a clock's range.
std::string timecodeText(const SMPTETime& time);
void appendTimecodeText(std::string& out, const SMPTETime& time);

}  // namespace zq
