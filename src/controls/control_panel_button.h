#pragma once
// One of the transport's buttons: a segment of the panel under the picture.

#include "controls/momentary_button.h"

namespace zq {

/// Which one it is, its tag says: 10 or 30 rewind, 11 play, 12 record, 13 stop, 14 or 34 fast forward, 20 previous
/// frame, 24 next frame.
class ZQAccurateControlPanelButton : public MomentaryButton {
  Q_OBJECT

 public:
  explicit ZQAccurateControlPanelButton(QWidget* parent = nullptr);

  ButtonCellClass cellClass() const override;
  /// Keeps whether it is enabled, its state and whom a click tells. It has an icon only, so it gets a name for
  /// assistive programs and a tool tip where the interface gives none.
  void awakeFromNib() override;
  /// Once awake, it changes the names that it gave itself.
  void setTag(int tag) override;
  bool showsState() const override;

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void nameByTag();

  QString ownName_;  // empty until it names itself
};

}  // namespace zq
