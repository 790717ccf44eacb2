#pragma once
// Whether a recaptured movie holds the frames that the catalogue says, and all of them.

#include <cstdint>
#include <optional>
#include <string>

#include "base/calendar_date.h"
#include "base/shared_bytes.h"
#include "host/catalogue/catalogue_store.h"
#include "host/frame_note.h"

namespace zq::host {

/// Told of each frame of the movie in turn. The movie has to begin with the frame at the clip's start timecode and to
/// end with the frame before the one at its end timecode, or with that one where a list brought the clip; in between
/// timecodes run on frame by frame, and recording dates with them. Frames that lost their timecode or date on the way
/// are borne out by those around them.
class MovieCheck {
 public:
  explicit MovieCheck(CatalogueClip clip) : clip_(std::move(clip)) {}

  void add(const FrameNote& frame);
  void add(const SharedBytes& frame) { add(noteOf(frame)); }
  std::int64_t frames() const { return frames_; }
  /// After the last frame: what is wrong, in words for the user; "" when all is right.
  std::string verdict() const;

 private:
  void checkTimecode(const SMPTETime& timecode);
  void checkDate(const DateValue& date);
  bool endsRight() const;
  /// Keeps the first thing that is wrong.
  void wrong(std::string what);
  std::string where() const;

  const CatalogueClip clip_;
  std::int64_t frames_ = 0;
  std::size_t frameSize_ = 0;
  std::optional<SMPTETime> lastTimecode_;
  std::int64_t lastTimecodeFrame_ = 0;
  DateValue lastDate_;
  std::int64_t lastDateFrame_ = 0;
  bool timecodeJumped_ = false;
  std::string wrong_;
};

}  // namespace zq::host
