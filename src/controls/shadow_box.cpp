#include "controls/shadow_box.h"

#include <QPainter>

#include "skin/skin_image.h"

namespace zq {

void ZQAccurateShadowBox::paintEvent(QPaintEvent* /*event*/) {
  static const SkinImage shadow = imageNamedInFrameworkForClass("univBoxShadow", "ZQAccurateShadowBox");
  QPainter painter(this);
  shadow.draw(painter, rect());
}

}  // namespace zq
