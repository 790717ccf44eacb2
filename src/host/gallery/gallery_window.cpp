#include "host/gallery/gallery_window.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include "controls/background_view.h"
#include "host/gallery/control_sheet.h"
#include "host/gallery/sample_tape.h"
#include "interface/interface_loader.h"

namespace zq::host {

namespace {

/// The views in a page of their own, at its lower edge, as wide as the window.
std::unique_ptr<QWidget> pageOf(QWidget& views) {
  auto page = std::make_unique<ZQCaptureBackgroundView>();
  auto* column = new QVBoxLayout(page.get());
  column->addStretch();
  column->addWidget(&views);
  return page;
}

}  // namespace

Expected<std::unique_ptr<GalleryWindow>> GalleryWindow::make(platform::Runtime& runtime) {
  auto scene = TapeScene::make(runtime);
  if (!scene.ok()) return scene.error();
  auto panel = loadInterface(":/deckhand/interface/controls.ui", runtime);
  if (!panel.ok()) return panel.error();
  return std::unique_ptr<GalleryWindow>(new GalleryWindow(runtime, std::move(scene.value()), std::move(panel.value())));
}

GalleryWindow::GalleryWindow(platform::Runtime& runtime, std::unique_ptr<TapeScene> scene,
                             std::unique_ptr<Interface> panel)
    : scene_(std::move(scene)), panel_(std::move(panel)), player_(runtime.mainLoop(), *scene_) {
  setWindowTitle("Deckhand gallery");
  addPage(pageOf(scene_->widget()), "Tape");
  addPage(controlSheet(), "Controls");
  addPage(transportSheet(), "Transport");
  addTab(&panel_->root(), "From a file");
  const TapeValue tape = sampleTape();
  scene_->show(tape);
  scene_->timeline().setCurrentSequence(tape->allSequences().front());
  resize(900, 620);
}

void GalleryWindow::addPage(std::unique_ptr<QWidget> page, const QString& title) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setWidget(page.release());
  addTab(area, title);
}

}  // namespace zq::host
