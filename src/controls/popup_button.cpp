#include "controls/popup_button.h"

#include <QAbstractItemModel>
#include <QFocusEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <QTransform>
#include <QVariant>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "controls/accessible_controls.h"
#include "controls/control_paint.h"
#include "skin/three_slices.h"

namespace zq {

namespace {

constexpr int kPopupFontSize = 12;
constexpr int kGreyTag = 11;
constexpr qreal kLeftWidth = 7;
constexpr qreal kRightWidth = 15;
constexpr qreal kImageWidth = 16;
constexpr qreal kTitleAfterImage = 25;
constexpr qreal kTitleHeight = 17;

const char kMenuItemIndex[] = "NSMenuItemIndex";

const ThreeSlices& popupSlices() {
  static const ThreeSlices all("popupButtonLeft", "popupButtonMiddle", "popupButtonRight", "ZQAccuratePopupButton");
  return all;
}

bool isShown(const QList<int>& roles) {
  return roles.isEmpty() || std::any_of(roles.begin(), roles.end(), [](int role) {
           return role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::DecorationRole;
         });
}

// An item's picture fills its place, whatever its own shape. The device says how many pixels that is: one that is drawn
// into a picture is not asked through the painter's device, which then is the widget.
void drawItemIcon(QPainter& painter, const QIcon& icon, const QRectF& rect) {
  if (rect.isEmpty()) return;
  const QTransform device = painter.deviceTransform();
  const QPixmap pixmap = icon.pixmap(rect.size().toSize(), std::hypot(device.m11(), device.m12()));
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(rect, pixmap, QRectF(pixmap.rect()));
}

}  // namespace

ZQAccuratePopupButton::ZQAccuratePopupButton(QWidget* parent) : QComboBox(parent) {
  installAccessibleControls();
  setFocusPolicy(Qt::StrongFocus);  // the wheel over it does not take the focus
  // Qt's own policy for this also resizes it by itself a moment later, over the layout's head.
  const auto resized = [this] { updateGeometry(); };
  connect(model(), &QAbstractItemModel::rowsInserted, this, resized);
  connect(model(), &QAbstractItemModel::rowsRemoved, this, resized);
  connect(model(), &QAbstractItemModel::dataChanged, this, resized);
  connect(model(), &QAbstractItemModel::modelReset, this, resized);
}

void ZQAccuratePopupButton::awakeFromNib() {
  connect(model(), &QAbstractItemModel::dataChanged, this, &ZQAccuratePopupButton::itemChanged, Qt::UniqueConnection);
}

void ZQAccuratePopupButton::itemChanged(const QModelIndex& first, const QModelIndex& /*last*/,
                                        const QList<int>& roles) {
  if (!first.isValid() || !isShown(roles)) return;
  changeMenuItem({{kMenuItemIndex, first.row()}});
}

void ZQAccuratePopupButton::changeMenuItem(const QVariantMap& notification) {
  bool isNumber = false;
  const int index = notification.value(kMenuItemIndex).toInt(&isNumber);
  if (isNumber) selectItemAtIndex(index);
}

// The object lies in the item's own data, so it goes where the item goes.
void ZQAccuratePopupButton::addItem(std::string title, std::any representedObject) {
  addItem(QString::fromStdString(title), QVariant::fromValue(representedObject));
  if (count() == 1) setCurrentIndex(0);  // Qt leaves this out where there is a placeholder
}

std::string ZQAccuratePopupButton::itemTitleAtIndex(int index) const {
  return itemText(index).toStdString();
}

std::any ZQAccuratePopupButton::representedObjectAtIndex(int index) const {
  return itemData(index).value<std::any>();
}

void ZQAccuratePopupButton::selectItemAtIndex(int index) {
  setCurrentIndex(index >= 0 && index < count() ? index : -1);
}

void ZQAccuratePopupButton::setTag(int tag) {
  tag_ = tag;
  updateGeometry();
  update();
}

QSize ZQAccuratePopupButton::sizeHint() const {
  const QFontMetricsF metrics(titleFont());
  qreal width = 0;
  for (int i = 0; i < count(); ++i) {
    const qreal before = itemIcon(i).isNull() ? 0 : kTitleAfterImage;
    width = std::max(width, before + metrics.horizontalAdvance(itemText(i)));
  }
  const qreal height = std::max(popupSlices().middle().size().height(), kTitleHeight);
  return {static_cast<int>(std::ceil(width + kLeftWidth + kRightWidth)) + 1, static_cast<int>(std::ceil(height))};
}

QSize ZQAccuratePopupButton::minimumSizeHint() const {
  const QSize size = sizeHint();
  return {std::min(size.width(), static_cast<int>(kLeftWidth + kRightWidth + kTitleAfterImage)), size.height()};
}

QFont ZQAccuratePopupButton::titleFont() const {
  return tag_ == kGreyTag ? helveticaOrBoldSystemFont(kPopupFontSize) : helveticaFont(kPopupFontSize);
}

QRectF ZQAccuratePopupButton::middleRect() const {
  return {kLeftWidth, 0, width() - kLeftWidth - kRightWidth, static_cast<qreal>(height())};
}

// Behind the picture, where there is one.
QRectF ZQAccuratePopupButton::titleRect() const {
  const QRectF middle = middleRect();
  const qreal before = itemIcon(currentIndex()).isNull() ? 0 : kTitleAfterImage;
  return {middle.x() + before, 0, middle.width() - before, kTitleHeight};
}

bool ZQAccuratePopupButton::isTitleCut() const {
  return QFontMetricsF(titleFont()).horizontalAdvance(currentText()) > titleRect().width();
}

// The right cap comes first, so that one too narrow for both still has its left.
void ZQAccuratePopupButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRectF bounds = rect();
  popupSlices().right().draw(painter, {bounds.width() - kRightWidth, 0, kRightWidth, bounds.height()});
  popupSlices().left().draw(painter, {bounds.x(), 0, kLeftWidth, bounds.height()});
  popupSlices().middle().draw(painter, middleRect());
  drawSelectedItem(painter);
  focusRing_.draw(painter, *this);
}

void ZQAccuratePopupButton::drawSelectedItem(QPainter& painter) const {
  const QIcon icon = itemIcon(currentIndex());
  const QRectF middle = middleRect();
  if (!icon.isNull()) drawItemIcon(painter, icon, {middle.x(), 2, kImageWidth, middle.height() - 10});
  drawItemTitle(painter, titleRect());
}

void ZQAccuratePopupButton::drawItemTitle(QPainter& painter, const QRectF& rect) const {
  if (rect.isEmpty()) return;
  painter.setFont(titleFont());
  painter.setPen(tag_ == kGreyTag ? grey() : deviceWhite(1.0));
  const QString title =
      QFontMetricsF(painter.font()).elidedText(itemText(currentIndex()), Qt::ElideRight, rect.width());
  painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title);
}

// A title that is cut is told in full, unless the interface tells something itself.
bool ZQAccuratePopupButton::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isTitleCut()) {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), currentText(), this);
    return true;
  }
  return QComboBox::event(event);
}

// Who scrolls the window that it is in does not choose.
void ZQAccuratePopupButton::wheelEvent(QWheelEvent* event) {
  if (hasFocus()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}

void ZQAccuratePopupButton::focusInEvent(QFocusEvent* event) {
  focusRing_.focusIn(*event);
  QComboBox::focusInEvent(event);
}

void ZQAccuratePopupButton::focusOutEvent(QFocusEvent* event) {
  focusRing_.focusOut(*event);
  QComboBox::focusOutEvent(event);
}

}  // namespace zq
