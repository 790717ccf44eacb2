#include "timecode/timecode_text.h"

#include "base/digits.h"

namespace zq {

std::string timecodeText(const SMPTETime& time) {
  std::string text;
  appendTimecodeText(text, time);
  return text;
}

void appendTimecodeText(std::string& out, const SMPTETime& time) {
  appendDigits(out, time.mHours, 2);
  out.push_back(':');
  appendDigits(out, time.mMinutes, 2);
  out.push_back(':');
  appendDigits(out, time.mSeconds, 2);
  out.push_back(':');
  appendDigits(out, time.mFrames, 2);
}

}  // namespace zq
