#pragma once
// The gallery as a window: the views play a made-up tape, and everything can be clicked.

#include <QTabWidget>
#include <memory>

#include "host/gallery/sample_player.h"
#include "host/gallery/tape_scene.h"
#include "platform/runtime.h"

namespace zq::host {

class GalleryWindow : public QTabWidget {
  Q_OBJECT

 public:
  /// The runtime's main loop is Qt's.
  static Expected<std::unique_ptr<GalleryWindow>> make(platform::Runtime& runtime);

 private:
  GalleryWindow(platform::Runtime& runtime, std::unique_ptr<TapeScene> scene, std::unique_ptr<Interface> panel);
  void addPage(std::unique_ptr<QWidget> page, const QString& title);

  const std::unique_ptr<TapeScene> scene_;
  const std::unique_ptr<Interface> panel_;
  const SamplePlayer player_;
};

}  // namespace zq::host
