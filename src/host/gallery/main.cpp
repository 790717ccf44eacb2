// deckhand-gallery: every view and control in every state, in a window or as pictures.

#include <CLI/CLI.hpp>
#include <QApplication>
#include <cstdio>
#include <memory>
#include <string>

#include "backends/qt/qt_runtime.h"
#include "backends/time/real_runtime.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/gallery/gallery_pictures.h"
#include "host/gallery/gallery_window.h"
#include "host/not_empty.h"
#include "skin/skin.h"

namespace {

using namespace zq::host;  // NOLINT(google-build-using-namespace): this file is the program

struct GalleryOptions {
  std::string output;
  std::string skin;
};

int savePictures(const std::string& folder, Console& console) {
  const auto files = saveGalleryPictures(QString::fromStdString(folder));
  if (!files.ok()) {
    console.error(files.error());
    return kExitFailed;
  }
  for (const QString& file : files.value()) std::printf("%s\n", file.toLocal8Bit().constData());
  return kExitOk;
}

int showWindow(Console& console) {
  zq::backend::QtRuntime runtime(std::make_unique<zq::backend::RealRuntime>());
  const auto window = GalleryWindow::make(runtime);
  if (!window.ok()) {
    console.error(window.error());
    return kExitFailed;
  }
  window.value()->show();
  return QApplication::exec();
}

int runGallery(const GalleryOptions& options, Console& console) {
  zq::Skin& skin = zq::Skin::current();
  skin.setLog(&console);
  if (const zq::Status status = skin.setFolder(QString::fromStdString(options.skin)); !status.ok()) {
    console.error(status.error());
    return kExitFailed;
  }
  const int exitCode = options.output.empty() ? showWindow(console) : savePictures(options.output, console);
  skin.setLog(nullptr);
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Shows every view and control of Deckhand in every state", "deckhand-gallery");
  app.set_version_flag("--version", "deckhand-gallery " DECKHAND_VERSION);
  GalleryOptions options;
  app.add_option("--output", options.output, "Save pictures in this folder, made if need be, instead of a window")
      ->check(notEmpty());
  app.add_option("--skin", options.skin, "A folder of pictures that replace those of the same names")
      ->check(notEmpty());
  app.footer(
      "Exit codes: 0 done; 1 not done; 2 wrong command line.\n"
      "Examples:\n"
      "  deckhand-gallery\n"
      "  deckhand-gallery --output pictures\n"
      "  deckhand-gallery --skin my-skin");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  }
  // Pictures need no screen.
  if (!options.output.empty()) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  Console console(false);
  return runGallery(options, console);
}
