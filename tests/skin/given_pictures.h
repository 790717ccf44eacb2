#pragma once
// Every picture that something draws: its name, and its size in points.

#include <QSizeF>
#include <QString>
#include <ostream>
#include <vector>

namespace zq::test {

struct GivenPicture {
  const char* name;
  int width;
  int height;

  QString qName() const { return QString::fromLatin1(name); }
  QSizeF size() const { return QSizeF(width, height); }
};

inline void PrintTo(const GivenPicture& picture, std::ostream* out) {
  *out << picture.name;
}

inline std::vector<GivenPicture> givenPictures() {
  return {
      {"timelineLeft", 9, 40},
      {"timelineMiddle", 1, 40},
      {"timelineRight", 9, 40},
      {"timelineShadow", 100, 34},
      {"progressBarEmptyLeft", 2, 6},
      {"progressBarEmptyMiddle", 1, 6},
      {"progressBarEmptyRight", 2, 6},
      {"progressBarFullLeft", 2, 6},
      {"progressBarFullMiddle", 1, 6},
      {"progressBarFullRight", 2, 6},
      {"univButtonLeft", 8, 22},
      {"univButtonMiddle", 1, 22},
      {"univButtonRight", 8, 22},
      {"univButtonLeftClicked", 8, 22},
      {"univButtonMiddleClicked", 1, 22},
      {"univButtonRightClicked", 8, 22},
      {"recordingIcon", 15, 15},
      {"recordingIconHL", 15, 15},
      {"checkBoxOff", 14, 14},
      {"checkBoxOn", 14, 14},
      {"popupButtonLeft", 7, 20},
      {"popupButtonMiddle", 1, 20},
      {"popupButtonRight", 15, 20},
      {"sliderTrackLeft", 4, 6},
      {"sliderTrackMiddle", 1, 6},
      {"sliderTrackRight", 4, 6},
      {"sliderKnob", 15, 15},
      {"sliderKnobAvecTick", 13, 16},
      {"textFieldLeft", 5, 22},
      {"textFieldMiddle", 1, 22},
      {"textFieldRight", 5, 22},
      {"bigTextFieldLeft", 5, 40},
      {"bigTextFieldMiddle", 1, 40},
      {"bigTextFieldRight", 5, 40},
      {"univBoxShadow", 100, 100},
      {"separatorBarreInRecapture", 400, 2},
      {"controlPanelBG", 45, 48},
      {"controlPanelBGClicked", 45, 48},
      {"controlPanelLeft", 11, 48},
      {"controlPanelLeftClicked", 11, 48},
      {"controlPanelRight", 11, 48},
      {"controlPanelRightClicked", 11, 48},
      {"controlPanelSeparator", 1, 48},
      {"controlPanelRewind", 39, 48},
      {"controlPanelRewindRollOver", 39, 48},
      {"controlPanelPlay", 39, 48},
      {"controlPanelPlayRollOver", 39, 48},
      {"controlPanelRecord", 39, 48},
      {"controlPanelRecordRollOver", 39, 48},
      {"controlPanelStop", 39, 48},
      {"controlPanelStopRollOver", 39, 48},
      {"controlPanelFastForward", 39, 48},
      {"controlPanelFastForwardRollOver", 39, 48},
      {"controlPanelPreviousFrame", 39, 48},
      {"controlPanelPreviousFrameRO", 39, 48},
      {"controlPanelNextFrame", 39, 48},
      {"controlPanelNextFrameRO", 39, 48},
  };
}

}  // namespace zq::test
