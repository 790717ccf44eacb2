#pragma once
// A push button that shows what it is told, and does not change by being clicked.

#include <QPushButton>
#include <atomic>
#include <memory>

#include "controls/awakes_from_nib.h"
#include "controls/button_cell.h"
#include "controls/focus_ring.h"
#include "outlets/button.h"

namespace zq {

/// Keys, mouse, focus and signals are those of QPushButton. It is on or off by setState(), or setChecked() on the main
/// thread, which are one state; a click is only told. Main thread only but for the outlet.
class MomentaryButton : public QPushButton, public AwakesFromNib, public outlets::Button {
  Q_OBJECT
  Q_PROPERTY(QString alternateTitle READ alternateTitle WRITE setAlternateTitle)
  Q_PROPERTY(int tag READ tag WRITE setTag)

 public:
  explicit MomentaryButton(QWidget* parent);
  ~MomentaryButton() override;

  /// From any thread. Qt's checked state, and with it the look, follow on the main thread.
  void setState(bool on) override;
  bool state() const override { return on_; }

  /// The class of the cell that awakeFromNib() puts in.
  virtual ButtonCellClass cellClass() const = 0;

  /// Shown instead of the title while the button is on, when it is not empty.
  QString alternateTitle() const { return cell_->alternateTitle(); }
  void setAlternateTitle(const QString& title);
  QIcon alternateImage() const { return cell_->alternateImage(); }
  void setAlternateImage(const QIcon& image) { cell_->setAlternateImage(image); }
  /// The title or the alternate title, whichever holds now.
  QString shownTitle() const;
  /// Whether one can see that it is on, or off.
  virtual bool showsState() const;
  /// Tells buttons of a kind apart.
  int tag() const { return tag_; }
  virtual void setTag(int tag);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  /// By its state, or another alternate title.
  void shownTitleChanged();

 protected:
  /// Puts in a new cell of cellClass() and answers the one before.
  std::unique_ptr<ButtonCell> replaceCell();
  ButtonCell& cell() { return *cell_; }

  void nextCheckState() override {}  // a click is told, and whoever acts on it says what the state is then
  void checkStateSet() override;
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void followState();

  // Written from any thread.
  std::atomic<bool> on_ = false;

  // Main thread only.
  std::unique_ptr<ButtonCell> cell_;
  FocusRing focusRing_;
  int tag_ = 0;
  bool following_ = false;
};

}  // namespace zq
