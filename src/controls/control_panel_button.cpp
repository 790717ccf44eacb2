#include "controls/control_panel_button.h"

#include <QEnterEvent>
#include <QKeySequence>

#include "controls/control_panel_button_cell.h"

namespace zq {

ZQAccurateControlPanelButton::ZQAccurateControlPanelButton(QWidget* parent) : MomentaryButton(parent) {}

ButtonCellClass ZQAccurateControlPanelButton::cellClass() const {
  return [] { return std::unique_ptr<ButtonCell>(std::make_unique<ZQAccurateControlPanelButtonCell>()); };
}

void ZQAccurateControlPanelButton::awakeFromNib() {
  replaceCell();
  const QKeySequence keys = shortcut();
  setText({});  // takes a shortcut with it
  setShortcut(keys);
  setIcon({});
  nameByTag();
}

void ZQAccurateControlPanelButton::nameByTag() {
  using Cell = ZQAccurateControlPanelButtonCell;
  const QString name = [this] {
    switch (Cell::kindOfTag(tag())) {
      case Cell::Kind::kRewind:
        return tr("Rewind");
      case Cell::Kind::kPreviousFrame:
        return tr("Previous frame");
      case Cell::Kind::kPlay:
        return tr("Play");
      case Cell::Kind::kStop:
        return tr("Stop");
      case Cell::Kind::kRecord:
        return tr("Record");
      case Cell::Kind::kNextFrame:
        return tr("Next frame");
      case Cell::Kind::kFastForward:
        return tr("Fast forward");
      case Cell::Kind::kNone:
        break;
    }
    return QString();
  }();
  if (accessibleName().isEmpty() || accessibleName() == ownName_) setAccessibleName(name);
  if (toolTip().isEmpty() || toolTip() == ownName_) setToolTip(name);
  ownName_ = name;
}

void ZQAccurateControlPanelButton::setTag(int tag) {
  MomentaryButton::setTag(tag);
  if (cell().isSkinned()) nameByTag();
}

bool ZQAccurateControlPanelButton::showsState() const {
  return MomentaryButton::showsState() || ZQAccurateControlPanelButtonCell::isLitByState(tag());
}

void ZQAccurateControlPanelButton::enterEvent(QEnterEvent* event) {
  MomentaryButton::enterEvent(event);
  cell().mouseEntered(*this);
}

void ZQAccurateControlPanelButton::leaveEvent(QEvent* event) {
  MomentaryButton::leaveEvent(event);
  cell().mouseExited(*this);
}

}  // namespace zq
