#pragma once
// What is said of a clip where the pointer rests on it.

#include <QString>

#include "catalogue/clip.h"

namespace zq {

/// Its name, when it was recorded, and how long it is, a line each, as rich text: a name is never taken for markup.
/// Empty when nothing is known.
QString clipToolTip(const ZQACClip& clip);

}  // namespace zq
