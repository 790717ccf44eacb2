#include "controls/control_panel_button_cell.h"

#include <QPainter>

#include "controls/momentary_button.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr qreal kHeight = 48;
constexpr qreal kEndWidth = 51;
constexpr qreal kMiddleWidth = 46;

const char kClass[] = "ZQAccurateControlPanelButtonCell";

/// A picture and the one that takes its place: while lit, or while the pointer is over it.
struct Pair {
  Pair(const char* normalName, const char* otherName)
      : normal(imageNamedInFrameworkForClass(normalName, kClass)),
        other(imageNamedInFrameworkForClass(otherName, kClass)) {}

  SkinImage normal;
  SkinImage other;
};

struct Images {
  Pair background{"controlPanelBG", "controlPanelBGClicked"};
  Pair left{"controlPanelLeft", "controlPanelLeftClicked"};
  Pair right{"controlPanelRight", "controlPanelRightClicked"};
  SkinImage separator = imageNamedInFrameworkForClass("controlPanelSeparator", kClass);
  Pair rewind{"controlPanelRewind", "controlPanelRewindRollOver"};
  Pair play{"controlPanelPlay", "controlPanelPlayRollOver"};
  Pair record{"controlPanelRecord", "controlPanelRecordRollOver"};
  Pair stop{"controlPanelStop", "controlPanelStopRollOver"};
  Pair fastForward{"controlPanelFastForward", "controlPanelFastForwardRollOver"};
  Pair previousFrame{"controlPanelPreviousFrame", "controlPanelPreviousFrameRO"};
  Pair nextFrame{"controlPanelNextFrame", "controlPanelNextFrameRO"};
};

const Images& images() {
  static const Images all;
  return all;
}

// Tags of the panel that drives the tape while recapturing: these light up only while they are pressed.
constexpr int kRecaptureRewind = 30;
constexpr int kRecaptureFastForward = 34;

QRectF iconRect(const QRectF& frame, qreal inset, qreal lift) {
  return frame.adjusted(inset, 0, -inset, 0).translated(0, -lift);
}

}  // namespace

/// What one drawing needs of the button.
struct ZQAccurateControlPanelButtonCell::View {
  QPainter& painter;
  int tag;
  bool isOn;
  bool isHighlighted;
  bool isRollOver;

  void drawBackground(const Pair& pair, bool isLit, const QRectF& rect) const {
    (isLit ? pair.other : pair.normal).draw(painter, rect);
  }
  void drawIcon(const Pair& pair, const QRectF& rect) const {
    (isRollOver ? pair.other : pair.normal).draw(painter, rect);
  }
  void drawSeparator(qreal x) const { images().separator.draw(painter, {x, 0, 1, kHeight}); }

  /// A segment between the ends.
  void drawMiddle(bool isLit, const Pair& icon, const QRectF& rect) const {
    drawBackground(images().background, isLit, {0, 0, 45, kHeight});
    drawIcon(icon, rect);
    drawSeparator(45);
  }
};

ZQAccurateControlPanelButtonCell::Kind ZQAccurateControlPanelButtonCell::kindOfTag(int tag) {
  switch (tag) {
    case 10:
    case kRecaptureRewind:
      return Kind::kRewind;
    case 11:
      return Kind::kPlay;
    case 12:
      return Kind::kRecord;
    case 13:
      return Kind::kStop;
    case 14:
    case kRecaptureFastForward:
      return Kind::kFastForward;
    case 20:
      return Kind::kPreviousFrame;
    case 24:
      return Kind::kNextFrame;
    default:
      return Kind::kNone;
  }
}

bool ZQAccurateControlPanelButtonCell::isLitByState(int tag) {
  switch (kindOfTag(tag)) {
    case Kind::kPlay:
    case Kind::kRecord:
      return true;
    case Kind::kRewind:
      return tag != kRecaptureRewind;
    case Kind::kFastForward:
      return tag != kRecaptureFastForward;
    default:
      return false;
  }
}

void ZQAccurateControlPanelButtonCell::drawWithFrameInView(QPainter& painter, const QRectF& frame,
                                                           const QAbstractButton& view) const {
  const auto* button = dynamic_cast<const MomentaryButton*>(&view);
  if (button == nullptr) return;
  const View now{painter, button->tag(), view.isChecked(), view.isDown(), isRollOver_};
  painter.save();
  switch (kindOfTag(now.tag)) {
    case Kind::kRewind:
      drawRewindButtonInRect(now, frame);
      break;
    case Kind::kPreviousFrame:
      drawPreviousFrameButtonInRect(now, frame);
      break;
    case Kind::kPlay:
      drawPlayButtonInRect(now, frame);
      break;
    case Kind::kStop:
      drawStopButtonInRect(now, frame);
      break;
    case Kind::kRecord:
      drawRecordButtonInRect(now, frame);
      break;
    case Kind::kNextFrame:
      drawNextFrameButtonInRect(now, frame);
      break;
    case Kind::kFastForward:
      drawFastForwardButtonInRect(now, frame);
      break;
    case Kind::kNone:
      break;
  }
  painter.restore();
}

void ZQAccurateControlPanelButtonCell::drawRewindButtonInRect(const View& view, const QRectF& frame) const {
  const bool isLit = isLitByState(view.tag) ? view.isOn : view.isHighlighted;
  view.drawBackground(images().left, isLit, {0, 0, 11, kHeight});
  view.drawBackground(images().background, isLit, {11, 0, 39, kHeight});
  view.drawIcon(images().rewind, iconRect(frame, 6, 1));
  view.drawSeparator(50);
}

void ZQAccurateControlPanelButtonCell::drawPreviousFrameButtonInRect(const View& view, const QRectF& frame) const {
  view.drawMiddle(view.isHighlighted, images().previousFrame, iconRect(frame, 3, 3));
}

void ZQAccurateControlPanelButtonCell::drawPlayButtonInRect(const View& view, const QRectF& frame) const {
  view.drawMiddle(view.isOn, images().play, iconRect(frame, 3, 0));
}

void ZQAccurateControlPanelButtonCell::drawStopButtonInRect(const View& view, const QRectF& frame) const {
  view.drawMiddle(view.isHighlighted, images().stop, iconRect(frame, 3, 0));
}

void ZQAccurateControlPanelButtonCell::drawRecordButtonInRect(const View& view, const QRectF& frame) const {
  view.drawMiddle(view.isOn, images().record, iconRect(frame, 3, 0));
}

void ZQAccurateControlPanelButtonCell::drawNextFrameButtonInRect(const View& view, const QRectF& frame) const {
  view.drawMiddle(view.isHighlighted, images().nextFrame, iconRect(frame, 3, 3));
}

// The panel's right end: the rounded cap comes first, so that a background that reaches into it lies on top.
void ZQAccurateControlPanelButtonCell::drawFastForwardButtonInRect(const View& view, const QRectF& frame) const {
  const bool isLit = isLitByState(view.tag) ? view.isOn : view.isHighlighted;
  view.drawBackground(images().right, isLit, {40, 0, 11, kHeight});
  view.drawBackground(images().background, isLit, {0, 0, 40, kHeight});
  view.drawIcon(images().fastForward, iconRect(frame, 6, 1));
}

QSizeF ZQAccurateControlPanelButtonCell::cellSize(const QAbstractButton& view) const {
  const auto* button = dynamic_cast<const MomentaryButton*>(&view);
  const Kind kind = button != nullptr ? kindOfTag(button->tag()) : Kind::kNone;
  const bool isEnd = kind == Kind::kRewind || kind == Kind::kFastForward;
  return {isEnd ? kEndWidth : kMiddleWidth, kHeight};
}

void ZQAccurateControlPanelButtonCell::mouseEntered(QWidget& view) {
  isRollOver_ = true;
  view.update();
}

void ZQAccurateControlPanelButtonCell::mouseExited(QWidget& view) {
  isRollOver_ = false;
  view.update();
}

}  // namespace zq
