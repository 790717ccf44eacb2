#include "controls/momentary_button.h"

#include <QAccessible>
#include <QFocusEvent>
#include <QMetaObject>
#include <QPainter>
#include <utility>

#include "controls/accessible_controls.h"

namespace zq {

MomentaryButton::MomentaryButton(QWidget* parent) : QPushButton(parent), cell_(std::make_unique<ButtonCell>()) {
  installAccessibleControls();
  setCheckable(true);  // or Qt would keep it off
  connect(this, &QPushButton::toggled, this, [this] {
    if (!alternateTitle().isEmpty() && alternateTitle() != text()) emit shownTitleChanged();
  });
  connect(this, &MomentaryButton::shownTitleChanged, this, [this] {
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
  });
}

MomentaryButton::~MomentaryButton() = default;

void MomentaryButton::setState(bool on) {
  if (on_.exchange(on) == on) return;
  QMetaObject::invokeMethod(
      this, [this] { followState(); }, Qt::QueuedConnection);
}

// Asks what the state is now: another setState() may have come since this was posted.
void MomentaryButton::followState() {
  following_ = true;
  setChecked(on_);
  following_ = false;
  update();
}

void MomentaryButton::checkStateSet() {
  // Once: whoever is told of the change may set another state meanwhile.
  if (!std::exchange(following_, false)) on_ = isChecked();
}

void MomentaryButton::setAlternateTitle(const QString& title) {
  const QString before = shownTitle();
  cell_->setAlternateTitle(title);
  if (shownTitle() != before) emit shownTitleChanged();
  updateGeometry();
  update();
}

bool MomentaryButton::showsState() const {
  return isChecked() || !alternateTitle().isEmpty();
}

QString MomentaryButton::shownTitle() const {
  return cell_->shownTitle(*this);
}

void MomentaryButton::setTag(int tag) {
  tag_ = tag;
  updateGeometry();
  update();
}

QSize MomentaryButton::sizeHint() const {
  const QSize size = cell_->cellSize(*this).toSize();
  return size.isEmpty() ? QPushButton::sizeHint() : size;
}

QSize MomentaryButton::minimumSizeHint() const {
  return sizeHint();
}

std::unique_ptr<ButtonCell> MomentaryButton::replaceCell() {
  auto old = std::exchange(cell_, cellClass()());
  setCheckable(true);  // whatever the interface file says
  setFlat(true);
  updateGeometry();
  update();
  return old;
}

void MomentaryButton::paintEvent(QPaintEvent* event) {
  if (!cell_->isSkinned()) {
    QPushButton::paintEvent(event);
    return;
  }
  QPainter painter(this);
  cell_->drawWithFrameInView(painter, rect(), *this);
  focusRing_.draw(painter, *this);
}

void MomentaryButton::focusInEvent(QFocusEvent* event) {
  focusRing_.focusIn(*event);
  QPushButton::focusInEvent(event);
}

void MomentaryButton::focusOutEvent(QFocusEvent* event) {
  focusRing_.focusOut(*event);
  QPushButton::focusOutEvent(event);
}

}  // namespace zq
