#pragma once
// The panels' push button.

#include "controls/momentary_button.h"

namespace zq {

class ZQCaptureUnivButton : public MomentaryButton {
  Q_OBJECT

 public:
  explicit ZQCaptureUnivButton(QWidget* parent = nullptr);

  ButtonCellClass cellClass() const override;
  /// Keeps title, alternate title, whether it is enabled, both images and whom a click tells. It is off afterwards.
  void awakeFromNib() override;
};

}  // namespace zq
