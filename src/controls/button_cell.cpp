#include "controls/button_cell.h"

#include <QAbstractButton>

namespace zq {

QString ButtonCell::shownTitle(const QAbstractButton& view) const {
  return view.isChecked() && !alternateTitle_.isEmpty() ? alternateTitle_ : view.text();
}

}  // namespace zq
