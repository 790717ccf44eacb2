#pragma once
// The bar that shows a tape as a row of sequences and clips, with a cursor at the frame that is played.

#include "base/calendar_date.h"
#include "catalogue/clip.h"
#include "catalogue/sequence.h"
#include "catalogue/tape.h"
#include "platform/geometry.h"
#include "timecode/smpte_time.h"

namespace zq::outlets {

class ThumbnailStrip;

/// From any thread, but for setThumbnailView() and myMethodeWhenClipClicked(), which are the main thread's. Null is for
/// none.
class Timeline {
 public:
  virtual ~Timeline() = default;
  virtual void setThumbnailView(ThumbnailStrip* view) = 0;
  virtual void refreshWithTape(TapeValue tape) = 0;
  virtual void setCurrentSequence(SequenceValue sequence) = 0;
  virtual void setCurrentClip(ClipValue clip) = 0;
  virtual void setCursorTimecode(const SMPTETime& timecode) = 0;
  virtual void setCursorDate(DateValue date) = 0;
  /// The empty rectangle hides the cursor.
  virtual void setCursorRect(const platform::Rect& rect) = 0;
  /// Draws anew, as soon as the main thread is free.
  virtual void refresh() = 0;
  /// Whether the mouse may pick a clip.
  virtual void setIsMouseDownActive(bool active) = 0;
  /// What follows when a clip was picked, by the mouse or by the tape: its picture comes into view.
  virtual void myMethodeWhenClipClicked() = 0;
};

}  // namespace zq::outlets
