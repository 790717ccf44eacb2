#include "controls/popup_button.h"

#include <QAbstractItemModel>
#include <QFocusEvent>
#include <QFontMetricsF>
#include <QPainter>
#include <QVariant>
#include <algorithm>
#include <cmath>

#include "controls/control_paint.h"
#include "skin/skin_image.h"

namespace zq {

namespace {

constexpr int kFontSize = 12;
constexpr int kGreyTag = 11;
constexpr qreal kLeftWidth = 7;
constexpr qreal kRightWidth = 15;
constexpr qreal kImageWidth = 16;
constexpr qreal kTitleAfterImage = 25;
constexpr qreal kTitleHeight = 17;

const char kMenuItemIndex[] = "NSMenuItemIndex";

SkinImage named(const char* name) {
  return imageNamedInFrameworkForClass(name, "ZQAccuratePopupButton");
}

struct Images {
  SkinImage left = named("popupButtonLeft");
  SkinImage middle = named("popupButtonMiddle");
  SkinImage right = named("popupButtonRight");
};

const Images& images() {
  static const Images all;
  return all;
}

// An item's picture fills its place, whatever its own shape.
void drawIcon(QPainter& painter, const QIcon& icon, const QRectF& rect) {
  if (rect.isEmpty()) return;
  const QPixmap pixmap = icon.pixmap(rect.size().toSize(), painter.device()->devicePixelRatioF());
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(rect, pixmap, QRectF(pixmap.rect()));
}

}  // namespace

ZQAccuratePopupButton::ZQAccuratePopupButton(QWidget* parent) : QComboBox(parent) {}

void ZQAccuratePopupButton::awakeFromNib() {
  connect(model(), &QAbstractItemModel::dataChanged, this, &ZQAccuratePopupButton::itemChanged, Qt::UniqueConnection);
}

void ZQAccuratePopupButton::itemChanged(const QModelIndex& first, const QModelIndex& /*last*/) {
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
  const qreal height = std::max(images().middle.size().height(), kTitleHeight);
  return {static_cast<int>(std::ceil(width + kLeftWidth + kRightWidth)) + 1, static_cast<int>(std::ceil(height))};
}

QSize ZQAccuratePopupButton::minimumSizeHint() const {
  const QSize size = sizeHint();
  return {std::min(size.width(), static_cast<int>(kLeftWidth + kRightWidth + kTitleAfterImage)), size.height()};
}

QFont ZQAccuratePopupButton::titleFont() const {
  return tag_ == kGreyTag ? helveticaOrBoldSystemFont(kFontSize) : helveticaFont(kFontSize);
}

void ZQAccuratePopupButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRectF bounds = rect();
  const QRectF middle(bounds.x() + kLeftWidth, 0, bounds.width() - kLeftWidth - kRightWidth, bounds.height());
  images().right.draw(painter, {bounds.width() - kRightWidth, 0, kRightWidth, bounds.height()});
  images().left.draw(painter, {bounds.x(), 0, kLeftWidth, bounds.height()});
  images().middle.draw(painter, middle);
  drawSelectedItem(painter, middle);
  focusRing_.draw(painter, *this);
}

void ZQAccuratePopupButton::drawSelectedItem(QPainter& painter, const QRectF& middle) const {
  const QIcon icon = itemIcon(currentIndex());
  if (icon.isNull()) {
    drawItemTitle(painter, {middle.x(), 0, middle.width(), kTitleHeight});
    return;
  }
  drawIcon(painter, icon, {middle.x(), 2, kImageWidth, middle.height() - 10});
  drawItemTitle(painter, {middle.x() + kTitleAfterImage, 0, middle.width() - kTitleAfterImage, kTitleHeight});
}

void ZQAccuratePopupButton::drawItemTitle(QPainter& painter, const QRectF& rect) const {
  if (rect.isEmpty()) return;
  painter.setFont(titleFont());
  painter.setPen(tag_ == kGreyTag ? grey() : deviceWhite(1.0));
  const QString title =
      QFontMetricsF(painter.font()).elidedText(itemText(currentIndex()), Qt::ElideRight, rect.width());
  painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title);
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
