#pragma once
// What the gallery shows of the views, a page each, in virtual time.

#include <QImage>

#include "base/status.h"

namespace zq::host {

/// Empty, full, with a clip picked, while a clip is recaptured, with few clips.
Expected<QImage> tapePage(qreal scale);
/// The strip on its way to a clip that was picked.
Expected<QImage> glidingPage(qreal scale);
/// The pointer at either edge of the strip.
Expected<QImage> rollingPage(qreal scale);
/// Timecode and date over a picture.
Expected<QImage> overlayPage(qreal scale);

}  // namespace zq::host
