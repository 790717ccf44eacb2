#include "controls/message_text_view.h"

#include <gtest/gtest.h>

#include <QAccessible>

#include "controls/control_paint.h"
#include "controls/controls_fixture.h"

namespace zq {
namespace {

using test::differenceOf;
using test::hasColor;
using test::pictureOf;

class MessageTextView : public test::ControlsTest {
 protected:
  MessageTextView() { view_.resize(640, 480); }

  /// Where the message is, in points from the upper left corner.
  QRectF boxOf(const QString& message) {
    view_.setMessage({});
    const QImage without = pictureOf(view_, 2);
    view_.setMessage(message);
    return differenceOf(without, pictureOf(view_, 2));
  }

  ZQAccurateMessageTextView view_;
};

TEST_F(MessageTextView, PaintsItsMessageInWhiteCentredInItsPlace) {
  const QRectF box = boxOf("No camera");
  const QSizeF size = titleSize(boldSystemFont(20), "No camera");
  EXPECT_NEAR(box.center().x(), 200 + 125, 2);
  EXPECT_NEAR(box.width(), size.width(), 4);
  // The place is 50 points above the lower edge and 200 high; the text begins at its upper edge.
  EXPECT_GE(box.top(), 230);
  EXPECT_LE(box.bottom(), 230 + size.height());
  for (const qreal scale : {1.0, 2.0}) EXPECT_TRUE(hasColor(pictureOf(view_, scale), box, Qt::white, 4));
}

TEST_F(MessageTextView, KeepsItsPlaceFromTheLowerLeftCorner) {
  const QRectF box = boxOf("No camera");
  view_.resize(800, 600);
  const QRectF larger = boxOf("No camera");
  EXPECT_EQ(larger, box.translated(0, 120));
}

TEST_F(MessageTextView, CutsALongMessageAtItsTail) {
  const QRectF box = boxOf("A message that does not fit into the room that it has");
  EXPECT_GE(box.left(), 199);
  EXPECT_LE(box.right(), 451);
  EXPECT_GT(box.width(), 220);
  EXPECT_LE(box.height(), titleSize(boldSystemFont(20), "A").height());
}

TEST_F(MessageTextView, PaintsEachLineOfAMessage) {
  const QRectF one = boxOf("No camera");
  const QRectF two = boxOf("No camera\nNo camera");
  EXPECT_GT(two.height(), one.height() * 1.5);
  EXPECT_EQ(two.top(), one.top());
}

TEST_F(MessageTextView, RedrawsForAnotherMessageOnly) {
  class Counting : public ZQAccurateMessageTextView {
   public:
    using ZQAccurateMessageTextView::ZQAccurateMessageTextView;
    int paints = 0;

   protected:
    void paintEvent(QPaintEvent* event) override {
      ++paints;
      ZQAccurateMessageTextView::paintEvent(event);
    }
  };
  Counting view;
  view.resize(640, 480);
  show(view);
  view.setMessage("No camera");
  deliver();
  const int before = view.paints;
  view.setMessage("No camera");
  deliver();
  EXPECT_EQ(view.paints, before);
  view.setMessage("No tape");
  deliver();
  EXPECT_EQ(view.paints, before + 1);
  EXPECT_EQ(view.message(), "No tape");
}

TEST_F(MessageTextView, TellsItsMessageToAssistivePrograms) {
  view_.setMessage("No camera");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "No camera");
}

TEST_F(MessageTextView, IsATextForAssistivePrograms) {
  ZQAccurateMessageTextView view;
  view.setMessage("Searching");
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::StaticText);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Searching");
}

}  // namespace
}  // namespace zq
