#pragma once
// The bar under a marked clip's poster: empty, filling while the clip is recaptured, full when that is done.

#include "catalogue/clip.h"
#include "platform/geometry.h"
#include "skin/skin_image.h"
#include "timecode/smpte_time.h"
#include "views/pixel_grid.h"

class QPainter;

namespace zq {

/// A left cap, a middle and a right cap of the skin.
struct ProgressBarSlices {
  SkinImage left;
  SkinImage middle;
  SkinImage right;
};

class ProgressBarDrawing {
 public:
  /// Before the first drawing: asks for the pictures that all bars share, once.
  static void initialize();

  /// `viewHeight` in points; the painter's origin is the upper left corner of the view.
  ProgressBarDrawing(QPainter& painter, float viewHeight)
      : painter_(painter), viewHeight_(viewHeight), pixels_(painter) {}

  /// Into the clip's progressBar(). `cursor` is the timecode of the frame that is played.
  void drawProgressBarInClip(const ZQACClip& clip, const ZQACClip* clipBeingRecap, const SMPTETime& cursor) const;

 private:
  void drawWhole(const ProgressBarSlices& slices, const platform::Rect& bar) const;
  void drawPart(const platform::Rect& bar, float fraction) const;
  void draw(const SkinImage& image, const platform::Rect& rect) const;

  QPainter& painter_;
  const float viewHeight_;
  const PixelGrid pixels_;
};

/// How much of the clip lies before `cursor`, as a part of 1; less than 0 or more than 1 outside of it.
float fractionDone(const ZQACClip& clip, const SMPTETime& cursor);

}  // namespace zq
