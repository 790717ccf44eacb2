#include "host/gallery/gallery_window.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QMouseEvent>

#include "backends/qt/qt_runtime.h"
#include "backends/time/real_runtime.h"
#include "support/qt_application.h"

namespace zq::host {
namespace {

class GalleryWindowTest : public test::QtTest {
 protected:
  GalleryWindowTest() : window_(std::move(GalleryWindow::make(runtime_).value())) {
    window_->show();
    QCoreApplication::processEvents();
  }

  backend::QtRuntime runtime_{std::make_unique<backend::RealRuntime>()};
  const std::unique_ptr<GalleryWindow> window_;
};

TEST_F(GalleryWindowTest, ShowsATapeWhoseClipsCanBePicked) {
  auto* timeline = window_->findChild<ZQACTimelineView*>("timelineView");
  ASSERT_NE(timeline, nullptr);
  test::pictureOf(*timeline);  // lays the clips out
  const ClipValue clip = timeline->currentSequence()->allClips().at(4);
  const platform::Rect place = clip->posInTimeline();
  const QPointF point(place.x + place.width / 2, timeline->height() / 2.0);
  QMouseEvent press(QEvent::MouseButtonPress, point, timeline->mapToGlobal(point), Qt::LeftButton, Qt::LeftButton, {});
  QCoreApplication::sendEvent(timeline, &press);
  EXPECT_EQ(timeline->currentClip(), clip);
  auto* strip = window_->findChild<ZQACThumbnailView*>("thumbnailView");
  ASSERT_NE(strip, nullptr);
  EXPECT_EQ(strip->activeClip(), clip);
}

TEST_F(GalleryWindowTest, HasAPageForEachKind) {
  QStringList titles;
  for (int page = 0; page < window_->count(); ++page) titles.append(window_->tabText(page));
  EXPECT_EQ(titles, QStringList({"Tape", "Controls", "Transport", "From a file"}));
}

// What a screen reader would say of each.
TEST_F(GalleryWindowTest, EveryControlThatTakesTheFocusHasAName) {
  for (const QWidget* widget : window_->findChildren<QWidget*>()) {
    const bool isOurs = QString(widget->metaObject()->className()).startsWith("zq::");
    if (!isOurs || widget->focusPolicy() == Qt::NoFocus) continue;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    ASSERT_NE(accessible, nullptr);
    const bool isSample = widget->objectName().isEmpty();  // of the sheets: captioned, not named
    EXPECT_TRUE(isSample || !accessible->text(QAccessible::Name).isEmpty())
        << widget->metaObject()->className() << " " << widget->objectName().toStdString();
  }
}

}  // namespace
}  // namespace zq::host
