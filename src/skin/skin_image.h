#pragma once
// One picture of the skin, by its name.

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <utility>

class QPainter;

namespace zq {

/// A handle, cheap to copy. What is behind the name is asked of the skin in force at each call, so that a skin can be
/// exchanged while windows are open. Main thread only.
class SkinImage {
 public:
  /// No picture.
  SkinImage() = default;
  explicit SkinImage(QString name) : name_(std::move(name)) {}

  const QString& name() const { return name_; }
  /// Whether there is no such picture in any skin.
  bool isNull() const;
  /// Its own size, in points; empty when there is no picture.
  QSizeF size() const;
  /// Draws the whole picture, upright, scaled into `target` (the painter's coordinates, y downwards), source-over, its
  /// opacity (0 to 1) multiplied by the painter's. It is as sharp as the painter's device. Where there is no picture,
  /// or the target is empty or not finite, nothing is drawn. The painter's state is left as it was.
  void draw(QPainter& painter, const QRectF& target, qreal opacity = 1.0) const;
  /// The same, unscaled, its lower left corner at `corner`.
  void drawUnscaled(QPainter& painter, const QPointF& corner, qreal opacity = 1.0) const;

 private:
  QString name_;
};

/// The picture `name`. A class that draws it asks once, for all its instances; when it is missing everywhere, a log
/// line says so with `className`.
SkinImage imageNamedInFrameworkForClass(const QString& name, const char* className);

}  // namespace zq
