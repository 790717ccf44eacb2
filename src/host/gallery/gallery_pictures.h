#pragma once
// The gallery as PNG files.

#include <QString>
#include <vector>

#include "base/status.h"

namespace zq::host {

/// Draws every view and control in every state into `folder`, which is made if need be: NAME.png, and NAME@2x.png at
/// twice the resolution. Nothing is overwritten: a file that is there already is an error, and then none is written.
/// Time is virtual, so the same program makes the same pictures. Returns the files, in order.
Expected<std::vector<QString>> saveGalleryPictures(const QString& folder);

}  // namespace zq::host
