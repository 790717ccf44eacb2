#include "controls/univ_button.h"

#include "controls/univ_button_cell.h"

namespace zq {

ZQCaptureUnivButton::ZQCaptureUnivButton(QWidget* parent) : MomentaryButton(parent) {}

ButtonCellClass ZQCaptureUnivButton::cellClass() const {
  return [] { return std::unique_ptr<ButtonCell>(std::make_unique<ZQCaptureUnivButtonCell>()); };
}

void ZQCaptureUnivButton::awakeFromNib() {
  const auto old = replaceCell();
  cell().setAlternateTitle(old->alternateTitle());
  cell().setAlternateImage(old->alternateImage());
  setChecked(false);  // the state is what the controllers say, not what the interface was drawn with
}

}  // namespace zq
