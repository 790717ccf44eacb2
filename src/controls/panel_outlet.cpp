#include "controls/panel_outlet.h"

#include <QMetaObject>

namespace zq {

PanelOutlet::PanelOutlet(QWidget& widget) : shown_(!widget.isHidden()), widget_(&widget) {}

void PanelOutlet::setShown(bool shown) {
  shown_ = shown;
  QMetaObject::invokeMethod(
      this, [this] { followShown(); }, Qt::QueuedConnection);
}

// Asks what holds now: another setShown() may have come since this was posted.
void PanelOutlet::followShown() {
  if (widget_) widget_->setVisible(shown_);
}

}  // namespace zq
