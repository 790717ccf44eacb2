#pragma once
// A test that draws with the skin in force, and leaves the built-in one behind.

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QString>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/log.h"
#include "skin/skin.h"
#include "skin/skin_image.h"
#include "support/qt_application.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// What the skin told.
struct LogLines : Log {
  void write(LogLevel, std::string_view message) override { lines.emplace_back(message); }
  std::vector<std::string> lines;
};

class SkinTest : public QtTest {
 protected:
  SkinTest() {
    clear();
    skin.setLog(&log);
  }
  ~SkinTest() override { clear(); }

  void clear() {
    skin.setLog(nullptr);
    skin.setCacheLimit(32 << 20);
    EXPECT_TRUE(skin.setFolder(QString()).ok());
  }

  QString folderPath() const { return QString::fromStdString(folder.path()); }
  void useFolder() { ASSERT_TRUE(skin.setFolder(folderPath()).ok()); }

  void write(const std::string& name, const QByteArray& bytes) const {
    folder.fileWith(name, std::span(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                    static_cast<std::size_t>(bytes.size())));
  }
  void writePng(const std::string& name, QSize size, QColor color) const {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    ASSERT_TRUE(image.save(QString::fromStdString(folder.file(name)), "png"));
  }

  ScratchFolder folder;
  LogLines log;
  Skin& skin = Skin::current();
};

/// An SVG of this size, filled with one colour.
inline QByteArray svgOf(const char* color, int width = 14, int height = 14) {
  return QStringLiteral(
             "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%2\" viewBox=\"0 0 %1 %2\">"
             "<rect width=\"%1\" height=\"%2\" fill=\"%3\"/></svg>")
      .arg(width)
      .arg(height)
      .arg(QLatin1String(color))
      .toUtf8();
}

/// A device of this size in points with nothing on it.
inline QImage emptyDevice(QSize points, qreal scale = 1.0) {
  QImage image((QSizeF(points) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  return image;
}

/// The picture drawn into a target, on nothing.
inline QImage drawn(const SkinImage& picture, QSize device, const QRectF& target, qreal scale = 1.0,
                    qreal opacity = 1.0) {
  QImage image = emptyDevice(device, scale);
  QPainter painter(&image);
  picture.draw(painter, target, opacity);
  return image;
}

inline bool isEmpty(const QImage& image) {
  QImage nothing(image.size(), image.format());
  nothing.setDevicePixelRatio(image.devicePixelRatio());
  nothing.fill(Qt::transparent);
  return image == nothing;
}

}  // namespace zq::test
