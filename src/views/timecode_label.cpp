#include "views/timecode_label.h"

#include <QFontDatabase>
#include <QString>

namespace zq {
namespace {

constexpr int kFontSize = 11;

}  // namespace

std::string timecodeLabel(const SMPTETime& timecode) {
  return QString::asprintf("%02d:%02d:%02d.%02d", timecode.mHours, timecode.mMinutes, timecode.mSeconds,
                           timecode.mFrames)
      .toStdString();
}

// Helvetica, or a font of the same widths by another name, so that a timecode fits its label; or else the
// application's. In pixels, which are points here: the labels do not grow with the font settings of the desktop.
QFont labelFont() {
  QFont font;
  for (const char* family : {"Helvetica", "Nimbus Sans", "Liberation Sans", "Arimo", "Arial"}) {
    if (!QFontDatabase::hasFamily(family)) continue;
    font = QFont(family);
    break;
  }
  font.setPixelSize(kFontSize);
  return font;
}

}  // namespace zq
