#include "host/gallery/gallery_pictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "host/gallery/control_sheet.h"
#include "host/gallery/gallery_scenes.h"
#include "host/gallery/picture_page.h"

namespace zq::host {

namespace {

QImage sheetPicture(std::unique_ptr<QWidget> sheet, qreal scale) {
  QCoreApplication::sendPostedEvents();  // what the controls were told takes effect
  return pictureOf(*sheet, scale);
}

struct GalleryPicture {
  QString name;
  Expected<QImage> (*draw)(qreal scale);
};

std::vector<GalleryPicture> galleryPictures() {
  return {
      {"controls", [](qreal scale) -> Expected<QImage> { return sheetPicture(controlSheet(), scale); }},
      {"transport", [](qreal scale) -> Expected<QImage> { return sheetPicture(transportSheet(), scale); }},
      {"tape", tapePage},
      {"gliding", glidingPage},
      {"rolling", rollingPage},
      {"overlay", overlayPage},
  };
}

QString fileName(const GalleryPicture& picture, int scale) {
  return picture.name + (scale == 1 ? "" : "@2x") + ".png";
}

Status checkFree(const QDir& folder) {
  for (const GalleryPicture& picture : galleryPictures()) {
    for (const int scale : {1, 2}) {
      const QString path = folder.filePath(fileName(picture, scale));
      if (!QFile::exists(path)) continue;
      return Error{"The gallery cannot be saved: " + path.toStdString() + " exists already",
                   "Name a new folder, or take the file away."};
    }
  }
  return {};
}

}  // namespace

Expected<std::vector<QString>> saveGalleryPictures(const QString& folder) {
  const QDir place(folder);
  if (!place.mkpath(".")) {
    return Error{"The gallery cannot be saved: the folder " + folder.toStdString() + " cannot be made",
                 "Check its path and whether you may write there."};
  }
  if (Status status = checkFree(place); !status.ok()) return status.error();
  std::vector<QString> files;
  for (const GalleryPicture& picture : galleryPictures()) {
    for (const int scale : {1, 2}) {
      const auto image = picture.draw(scale);
      if (!image.ok()) return image.error();
      const QString path = place.filePath(fileName(picture, scale));
      if (!image.value().save(path)) {
        return Error{"The picture " + path.toStdString() + " cannot be written",
                     "Check whether you may write there and whether the disk is full."};
      }
      files.push_back(path);
    }
  }
  return files;
}

}  // namespace zq::host
