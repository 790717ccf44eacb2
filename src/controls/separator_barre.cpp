#include "controls/separator_barre.h"

#include <QPaintEvent>
#include <QPainter>

#include "controls/accessible_controls.h"
#include "skin/skin_image.h"

namespace zq {

ZQRecaptureSeparatorBarre::ZQRecaptureSeparatorBarre(QWidget* parent) : QWidget(parent) {
  installAccessibleControls();
}

// The whole picture goes into whatever is redrawn, however small that is: the bar looks the same all along, and so a
// part of it needs no calculation.
void ZQRecaptureSeparatorBarre::paintEvent(QPaintEvent* event) {
  static const SkinImage bar = imageNamedInFrameworkForClass("separatorBarreInRecapture", "ZQRecaptureSeparatorBarre");
  QPainter painter(this);
  bar.draw(painter, event->rect());
}

}  // namespace zq
