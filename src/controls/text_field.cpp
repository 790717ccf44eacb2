#include "controls/text_field.h"

#include <QMetaObject>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <utility>

#include "controls/control_paint.h"
#include "controls/text_field_cell.h"

namespace zq {

namespace {

constexpr int kTextMargin = 3;  // clear of the round caps
constexpr int kHeight = 22;

QColor toQt(const platform::Color& color) {
  const auto part = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
  return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

}  // namespace

ZQAccurateTextField::ZQAccurateTextField(QWidget* parent)
    : QLineEdit(parent), cell_(std::make_unique<PlainTextFieldCell>()) {
  // In a field that is only read, Qt shows no insertion point, and redraws none that moved.
  connect(this, &QLineEdit::cursorPositionChanged, this, [this] { update(); });
}

ZQAccurateTextField::CellClass ZQAccurateTextField::cellClass() const {
  return [] { return std::unique_ptr<PlainTextFieldCell>(std::make_unique<ZQAccurateTextFieldCell>()); };
}

// A line edit always is one line that scrolls, so there is nothing to copy of how it breaks its text.
void ZQAccurateTextField::awakeFromNib() {
  const auto old = std::exchange(cell_, cellClass()());
  setFrame(false);
  setTextMargins(kTextMargin, 0, kTextMargin, 0);
  setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  cell_->setSelectable(old->isSelectable());
  cell_->setUpFieldEditorAttributes(*this);
  updateGeometry();
  update();
}

void ZQAccurateTextField::setStringValue(const std::string& text) {
  QMetaObject::invokeMethod(
      this, [this, text = QString::fromStdString(text)] { setText(text); }, Qt::QueuedConnection);
}

void ZQAccurateTextField::setBackgroundColor(const platform::Color& color) {
  cell_->setBackgroundColor(toQt(color));
  if (!cell_->isSkinned()) setFieldColors(*this, toQt(color), palette().color(QPalette::Text));
  update();
}

void ZQAccurateTextField::setSelectable(bool selectable) {
  cell_->setSelectable(selectable);
  if (!selectable) {
    setReadOnly(true);
    deselect();
  }
  setFocusPolicy(selectable ? Qt::StrongFocus : Qt::NoFocus);
  setCursor(selectable ? Qt::IBeamCursor : Qt::ArrowCursor);
}

QSize ZQAccurateTextField::sizeHint() const {
  const QSize size = QLineEdit::sizeHint();
  return cell_->isSkinned() ? size.expandedTo({0, kHeight}) : size;
}

void ZQAccurateTextField::paintEvent(QPaintEvent* event) {
  if (!cell_->isSkinned()) {
    QLineEdit::paintEvent(event);
    return;
  }
  {
    QPainter behind(this);
    cell_->drawWithFrameInView(behind, rect(), *this);
  }
  QLineEdit::paintEvent(event);
  if (!hasFocus() || !isSelectable()) return;
  QPainter over(this);
  cell_->drawInsertionPoint(over, caretRect());
}

// What Qt calls so has room on the left and at the right for blinking neighbours: 5 and 4 points, and one below.
QRectF ZQAccurateTextField::caretRect() const {
  return QRectF(cursorRect()).adjusted(5, 0, -4, -1);
}

void ZQAccurateTextField::mousePressEvent(QMouseEvent* event) {
  if (isSelectable()) {
    QLineEdit::mousePressEvent(event);
  } else {
    event->ignore();
  }
}

void ZQAccurateTextField::mouseDoubleClickEvent(QMouseEvent* event) {
  if (isSelectable()) {
    QLineEdit::mouseDoubleClickEvent(event);
  } else {
    event->ignore();
  }
}

}  // namespace zq
