#pragma once
// Writing an edit decision list of the CMX 3600 form.

#include <string>
#include <vector>

#include "timecode/smpte_time.h"

namespace zq::host {

struct EdlEvent {
  std::string name;
  SMPTETime first;
  SMPTETime last;
};

/// Of one tape and one system, 25 or 30 frames per second. The first timecodes are not after the last ones, and all are
/// on a clock. Events follow one another from 01:00:00:00 on.
//
// At 30 frames per second the list is in drop frame, as the tapes are; its durations leave out the numbers that drop
// frame skips. A tape that has one of these numbers counts without drop frame, and so does its list.
std::string edlText(const std::string& tape, const std::string& reel, int timebase,
                    const std::vector<EdlEvent>& events);

}  // namespace zq::host
