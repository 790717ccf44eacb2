#include "host/tape_watch.h"

#include <utility>

namespace zq::host {
namespace {

// Longer than the controller lets a tape stand on purpose, and than a deck takes to obey.
constexpr platform::Duration kStandsForGood = std::chrono::seconds(6);
// A tape that comes back to the end that it left after fewer frames does not get away from there.
constexpr std::int64_t kFewFrames = 25;

}  // namespace

void TapeWatch::transportChanged(const platform::AVCTransportControls& controls, platform::TimePoint now) {
  if (controls == platform::AVCTransportControls{0, 0}) {
    if (!standingSince_) standingSince_ = now;
    cameFromBeginning_ = cameFromBeginning_ || lastSpeed_ < 0;
    return;
  }
  standingSince_.reset();
  if (controls.speed == 0) return;
  lastSpeed_ = controls.speed;
  winds_ = winds_ || controls.playbackMode == 0;
}

TapeAdvice TapeWatch::look(const Session& session, platform::TimePoint now) {
  if (std::exchange(winds_, false)) framesBeforeWind_ = session.frames;
  if (isLate(session, now)) return TapeAdvice::giveUpClip;
  if (!standingSince_ || now - *standingSince_ < kStandsForGood) return TapeAdvice::none;
  standingSince_ = now;
  return atEndOfTape(session);
}

bool TapeWatch::isLate(const Session& session, platform::TimePoint now) {
  // Where clips follow each other, the next one's preroll begins before anyone looks.
  const bool anotherClip = session.recordedClips != recordedClips_;
  if (anotherClip) progressAt_ = now;
  recordedClips_ = session.recordedClips;
  if (anotherClip || !session.recording) recordingSince_.reset();
  if (session.recording && !recordingSince_) recordingSince_ = now;
  return now - progressAt_ > limits_.clip || (recordingSince_ && now - *recordingSince_ > limits_.recording);
}

// A tape that stands delivers no frames, and without frames nothing is decided any more.
TapeAdvice TapeWatch::atEndOfTape(const Session& session) {
  const bool atEnd = lastSpeed_ >= 0;
  if (session.recording && atEnd) return TapeAdvice::giveUpClip;
  if (!session.sequenceFound && atEnd && !winding_) return atEndWithoutDate();
  // A wind shows no picture: until frames come again, the place is that where it began.
  const bool placeIsOld = framesBeforeWind_ == session.frames;
  const bool searching = session.sequenceFound && !session.settling && !session.recording && !placeIsOld;
  if (searching && atEnd && session.place < 0) return TapeAdvice::giveUpAtEnd;
  if (searching && !atEnd && session.place > 0) return TapeAdvice::giveUpAtBeginning;
  return leave(session);
}

// A deck that is slow to obey may have begun to play near the end of the tape.
TapeAdvice TapeWatch::atEndWithoutDate() {
  if (cameFromBeginning_) return TapeAdvice::giveUpUndated;
  winding_ = true;
  return TapeAdvice::windToBeginning;
}

// There is one way to go from an end. A session that drives the tape back at once, as it does when it settles on a
// short tape, gets all of the tape from the other end.
TapeAdvice TapeWatch::leave(const Session& session) {
  const End end = lastSpeed_ < 0 ? End::beginning : End::end;
  const bool cameBackAtOnce =
      !winding_ && leftEnd_ == end && framesAtLeaving_ && session.frames - *framesAtLeaving_ < kFewFrames;
  if (cameBackAtOnce) {
    winding_ = true;
    return end == End::beginning ? TapeAdvice::windToEnd : TapeAdvice::windToBeginning;
  }
  winding_ = false;
  leftEnd_ = end;
  framesAtLeaving_ = session.frames;
  return end == End::beginning ? TapeAdvice::play : TapeAdvice::playBackwards;
}

}  // namespace zq::host
