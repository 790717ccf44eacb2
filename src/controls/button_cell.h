#pragma once
// What paints a button, and what of its settings Qt's own button has no place for.

#include <QIcon>
#include <QRectF>
#include <QString>
#include <memory>

class QAbstractButton;
class QPainter;
class QWidget;

namespace zq {

/// Title, image, state, whether it is enabled or pressed, and whom a click tells are the button's own: a cell reads
/// them there, so they outlive any exchange of cells. This one is the platform's, and leaves the painting to Qt. Main
/// thread only.
class ButtonCell {
 public:
  virtual ~ButtonCell() = default;

  virtual bool isSkinned() const { return false; }
  /// `frame` in the view's coordinates.
  virtual void drawWithFrameInView(QPainter& /*painter*/, const QRectF& /*frame*/,
                                   const QAbstractButton& /*view*/) const {}
  /// What the skin's pictures and the title take; empty when Qt is to say.
  virtual QSizeF cellSize(const QAbstractButton& /*view*/) const { return {}; }

  /// The alternate title while the view is on and there is one, otherwise the title.
  QString shownTitle(const QAbstractButton& view) const;

  /// The pointer came over the view, or left it.
  virtual void mouseEntered(QWidget& /*view*/) {}
  virtual void mouseExited(QWidget& /*view*/) {}

  const QString& alternateTitle() const { return alternateTitle_; }
  void setAlternateTitle(const QString& title) { alternateTitle_ = title; }
  const QIcon& alternateImage() const { return alternateImage_; }
  void setAlternateImage(const QIcon& image) { alternateImage_ = image; }

 private:
  QString alternateTitle_;
  QIcon alternateImage_;
};

/// Makes a cell: what a control answers when it is asked for its cell's class.
using ButtonCellClass = std::unique_ptr<ButtonCell> (*)();

}  // namespace zq
