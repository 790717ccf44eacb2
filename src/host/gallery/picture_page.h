#pragma once
// Pictures of widgets below each other on one page, each with a line that says what it shows.

#include <QImage>
#include <QString>
#include <vector>

class QWidget;

namespace zq::host {

/// What the widget shows now, `scale` pixels a point.
QImage pictureOf(QWidget& widget, qreal scale);

class PicturePage {
 public:
  explicit PicturePage(qreal scale) : scale_(scale) {}

  void add(const QString& caption, QWidget& widget) { pictures_.push_back({caption, pictureOf(widget, scale_)}); }
  /// All that was added, on one picture.
  QImage composed() const;

 private:
  struct Picture {
    QString caption;
    QImage image;
  };

  const qreal scale_;
  std::vector<Picture> pictures_;
};

}  // namespace zq::host
