#pragma once
// How a tape is laid out and drawn in the timeline. Coordinates have their origin at the lower left corner.

#include "catalogue/tape.h"
#include "platform/geometry.h"
#include "views/pixel_grid.h"
#include "views/track_row.h"

class QPainter;

namespace zq {

/// What the timeline shows, as it was when the drawing began.
struct TimelineContents {
  platform::Rect bounds;
  /// Null: nothing is drawn.
  TapeValue tape;
  ClipValue activeClip;
  /// The lower end of the cursor's line, and the area it was last drawn anew in; empty hides the cursor.
  float cursorHeadX = 0;
  float cursorHeadY = 0;
  platform::Rect cursorRect;
};

/// One drawing, on the main thread. It stores on the records where they are: on every sequence of the tape, and on the
/// clips of each sequence that meets the area to draw.
class TimelineDrawing {
 public:
  /// The painter's origin is the upper left corner of the view.
  TimelineDrawing(QPainter& painter, TimelineContents contents);

  /// Before the first drawing: asks for the pictures that all timelines share, once.
  static void initialize();

  void drawRect(const platform::Rect& area);

 private:
  void drawFrame();
  QRectF onWholePixels(const platform::Rect& rect) const;
  void drawSequences(const platform::Rect& track, const platform::Rect& area);
  void drawSequenceIntersectedRect(const ZQACSequence& sequence, const platform::Rect& area);
  void drawClipIntersectedRect(const ZQACClip& clip, const platform::Rect& area);
  void drawCursorIntersectedRect(const platform::Rect& cursor, const platform::Rect& area);

  QPainter& painter_;
  const TimelineContents contents_;
  const PixelGrid pixels_;
  TrackRow row_;
};

}  // namespace zq
