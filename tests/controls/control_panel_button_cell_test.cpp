#include "controls/control_panel_button_cell.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QEnterEvent>
#include <QPainter>
#include <ostream>
#include <string>
#include <vector>

#include "controls/control_panel_button.h"
#include "controls/controls_fixture.h"
#include "skin/skin_image.h"

namespace zq {
namespace {

using test::flat;
using test::isColorAt;
using test::pictureOf;

enum class Lit { kOn, kPressed };

/// What is known of a kind of button, in points.
struct Kind {
  int tag;
  const char* icon;
  const char* rollOver;
  const char* name;
  Lit lit;
  int inset;
  int lift;
  int width;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
  return out << kind.name << " " << kind.tag;
}

const Kind kRewind{10, "Rewind", "RewindRollOver", "Rewind", Lit::kOn, 6, 1, 51};
const Kind kRecaptureRewind{30, "Rewind", "RewindRollOver", "Rewind", Lit::kPressed, 6, 1, 51};
const Kind kPlay{11, "Play", "PlayRollOver", "Play", Lit::kOn, 3, 0, 46};
const Kind kRecord{12, "Record", "RecordRollOver", "Record", Lit::kOn, 3, 0, 46};
const Kind kStop{13, "Stop", "StopRollOver", "Stop", Lit::kPressed, 3, 0, 46};
const Kind kForward{14, "FastForward", "FastForwardRollOver", "Fast forward", Lit::kOn, 6, 1, 51};
const Kind kRecaptureForward{34, "FastForward", "FastForwardRollOver", "Fast forward", Lit::kPressed, 6, 1, 51};
const Kind kPrevious{20, "PreviousFrame", "PreviousFrameRO", "Previous frame", Lit::kPressed, 3, 3, 46};
const Kind kNext{24, "NextFrame", "NextFrameRO", "Next frame", Lit::kPressed, 3, 3, 46};

QColor panel(const std::string& name) {
  return flat(QString::fromStdString("controlPanel" + name));
}

bool isLeftEnd(const Kind& kind) {
  return kind.tag == 10 || kind.tag == 30;
}
bool isRightEnd(const Kind& kind) {
  return kind.tag == 14 || kind.tag == 34;
}

/// One piece of a background: its colour is seen at `x`, above and below the icon.
struct Piece {
  std::string name;
  qreal from;
  qreal to;
};

std::vector<Piece> piecesOf(const Kind& kind, const std::string& clicked) {
  if (isLeftEnd(kind)) return {{"Left" + clicked, 0, 11}, {"BG" + clicked, 11, 50}, {"Separator", 50, 51}};
  if (isRightEnd(kind)) return {{"BG" + clicked, 0, 40}, {"Right" + clicked, 40, 51}};
  return {{"BG" + clicked, 0, 45}, {"Separator", 45, 46}};
}

class ControlPanelCell : public test::ControlsTest {
 protected:
  static void prepare(ZQAccurateControlPanelButton& button, int tag) {
    button.setTag(tag);
    button.awakeFromNib();
    button.resize(button.sizeHint());
  }

  static void moveIn(QWidget& button) {
    QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&button, &enter);
  }
  static void moveOut(QWidget& button) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&button, &leave);
  }
};

class ControlPanelKinds : public ControlPanelCell, public testing::WithParamInterface<Kind> {
 protected:
  ControlPanelKinds() { prepare(button_, GetParam().tag); }

  QRectF frame_{0, 0, 12, 0};

  /// With the cell alone, its frame flat as a line so that the icon hides no background.
  QImage background(qreal scale) const {
    QImage picture((QSizeF(60, 60) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    ZQAccurateControlPanelButtonCell().drawWithFrameInView(painter, frame_, button_);
    return picture;
  }

  void expectPieces(const std::string& clicked) const {
    for (const qreal scale : {1.0, 2.0}) {
      SCOPED_TRACE(scale);
      const QImage picture = background(scale);
      for (const Piece& piece : piecesOf(GetParam(), clicked)) {
        for (const qreal y : {0.5, 24.0, 47.5}) {
          EXPECT_TRUE(isColorAt(picture, piece.from + 0.5, y, panel(piece.name))) << piece.name;
          EXPECT_TRUE(isColorAt(picture, piece.to - 0.5, y, panel(piece.name))) << piece.name;
        }
      }
      EXPECT_TRUE(isColorAt(picture, piecesOf(GetParam(), clicked).back().to + 0.5, 24, Qt::black));
      EXPECT_TRUE(isColorAt(picture, 5, 48.5, Qt::black));
    }
  }

  ZQAccurateControlPanelButton button_;
};

INSTANTIATE_TEST_SUITE_P(All, ControlPanelKinds,
                         testing::Values(kRewind, kRecaptureRewind, kPlay, kRecord, kStop, kForward, kRecaptureForward,
                                         kPrevious, kNext),
                         [](const auto& suite) { return "Tag" + std::to_string(suite.param.tag); });

TEST_P(ControlPanelKinds, PaintsItsSegment) {
  expectPieces("");
}

TEST_P(ControlPanelKinds, LightsUpAsItsKindDoes) {
  button_.setChecked(true);
  expectPieces(GetParam().lit == Lit::kOn ? "Clicked" : "");
  button_.setChecked(false);
  button_.setDown(true);
  expectPieces(GetParam().lit == Lit::kPressed ? "Clicked" : "");
}

TEST_P(ControlPanelKinds, PaintsItsIconIntoTheInsetFrame) {
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(button_, scale);
    const QColor icon = panel(GetParam().icon);
    const qreal left = GetParam().inset;
    const qreal right = GetParam().width - GetParam().inset;
    const qreal bottom = 48 - GetParam().lift;
    EXPECT_TRUE(isColorAt(picture, left + 0.5, 0.5, icon));
    EXPECT_TRUE(isColorAt(picture, right - 0.5, bottom - 0.5, icon));
    EXPECT_FALSE(isColorAt(picture, left - 0.5, 24, icon));
    EXPECT_FALSE(isColorAt(picture, right + 0.5, 24, icon));
    if (GetParam().lift > 0) {
      EXPECT_FALSE(isColorAt(picture, 24, bottom + 0.5, icon));
    }
  }
}

TEST_P(ControlPanelKinds, ShowsTheBrightIconWhileThePointerIsOverIt) {
  moveIn(button_);
  EXPECT_TRUE(isColorAt(pictureOf(button_), 24, 24, panel(GetParam().rollOver)));
  button_.setChecked(true);  // lit or not
  EXPECT_TRUE(isColorAt(pictureOf(button_), 24, 24, panel(GetParam().rollOver)));
  moveOut(button_);
  EXPECT_TRUE(isColorAt(pictureOf(button_), 24, 24, panel(GetParam().icon)));
}

TEST_P(ControlPanelKinds, LooksTheSameWhenDisabled) {
  for (const bool on : {false, true}) {
    button_.setChecked(on);
    button_.setEnabled(true);
    const QImage enabled = pictureOf(button_, 2);
    button_.setEnabled(false);
    EXPECT_EQ(pictureOf(button_, 2), enabled);
  }
}

TEST_P(ControlPanelKinds, IsAsLargeAsItsSegment) {
  EXPECT_EQ(button_.sizeHint(), QSize(GetParam().width, 48));
}

TEST_P(ControlPanelKinds, IsNamedForThoseWhoDoNotSeeTheIcon) {
  EXPECT_EQ(button_.toolTip(), GetParam().name);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&button_);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), GetParam().name);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
}

TEST_F(ControlPanelCell, OfAnUnknownTagPaintsNothing) {
  QWidget nothing;
  nothing.resize(60, 48);
  for (const int tag : {0, 15, 21, 31, 32, 33, 40, -10}) {
    SCOPED_TRACE(tag);
    ZQAccurateControlPanelButton button;
    button.setTag(tag);
    button.awakeFromNib();
    button.resize(60, 48);
    button.setChecked(true);
    EXPECT_EQ(pictureOf(button), pictureOf(nothing));
    EXPECT_EQ(button.toolTip(), "");
  }
}

TEST_F(ControlPanelCell, WiderThanItsSegmentPaintsOnlyTheIconWider) {
  ZQAccurateControlPanelButton button;
  prepare(button, 11);
  button.resize(90, 60);
  for (const qreal scale : {1.0, 2.0}) {
    SCOPED_TRACE(scale);
    const QImage picture = pictureOf(button, scale);
    EXPECT_TRUE(isColorAt(picture, 1, 47.5, panel("BG")));
    EXPECT_TRUE(isColorAt(picture, 1, 48.5, Qt::black));
    EXPECT_TRUE(isColorAt(picture, 3.5, 59.5, panel("Play")));
    EXPECT_TRUE(isColorAt(picture, 86.5, 0.5, panel("Play")));
    EXPECT_TRUE(isColorAt(picture, 87.5, 24, Qt::black));
  }
}

TEST_F(ControlPanelCell, PaintsTheSeparatorOverTheIconAndTheBackgroundOverTheRightCap) {
  ZQAccurateControlPanelButton play;
  prepare(play, 11);
  play.resize(90, 48);
  EXPECT_TRUE(isColorAt(pictureOf(play), 45.5, 24, panel("Separator")));

  // Pieces that do not overlap cannot tell which came first, but one that is drawn half a pixel off can.
  ZQAccurateControlPanelButton forward;
  prepare(forward, 14);
  const auto painted = [](const auto& draw) {
    QImage picture(51, 48, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0125, 1);  // the edge at 40 lies in the middle of a pixel
    draw(painter);
    return picture;
  };
  const auto background = [](QPainter& painter) { SkinImage("controlPanelBG").draw(painter, {0, 0, 40, 48}); };
  const auto cap = [](QPainter& painter) { SkinImage("controlPanelRight").draw(painter, {40, 0, 11, 48}); };
  const QImage capFirst = painted([&](QPainter& painter) {
    cap(painter);
    background(painter);
  });
  const QImage capLast = painted([&](QPainter& painter) {
    background(painter);
    cap(painter);
  });
  ASSERT_NE(capFirst, capLast);
  EXPECT_EQ(painted([&](QPainter& painter) {
              ZQAccurateControlPanelButtonCell().drawWithFrameInView(painter, {0, 0, 12, 0}, forward);
            }),
            capFirst);
}

TEST_F(ControlPanelCell, ItsCellRemembersThePointer) {
  QWidget view;
  ZQAccurateControlPanelButtonCell cell;
  EXPECT_FALSE(cell.isRollOver());
  cell.mouseEntered(view);
  EXPECT_TRUE(cell.isRollOver());
  cell.mouseExited(view);
  EXPECT_FALSE(cell.isRollOver());
  cell.setIsRollOver(true);
  EXPECT_TRUE(cell.isRollOver());
}

TEST_P(ControlPanelKinds, PaintsItsSegmentAtTheSamePlaceWhereverTheFrameIs) {
  frame_ = {10, 7, 12, 0};
  expectPieces("");
  frame_ = {10, 7, 51, 48};
  const QImage picture = background(2);
  const qreal left = 10 + GetParam().inset;
  const qreal top = 7 - GetParam().lift;
  EXPECT_TRUE(isColorAt(picture, left + 0.5, top + 0.5, panel(GetParam().icon)));
  EXPECT_FALSE(isColorAt(picture, left - 0.5, top + 0.5, panel(GetParam().icon)));
  EXPECT_FALSE(isColorAt(picture, left + 0.5, top - 0.5, panel(GetParam().icon)));
}

TEST_F(ControlPanelCell, OfRewindPaintsTheBackgroundOverTheLeftCap) {
  ZQAccurateControlPanelButton rewind;
  prepare(rewind, 10);
  // An edge in the middle of a pixel is a mixture that tells which came last.
  const auto painted = [](const auto& draw) {
    QImage picture(56, 48, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(11.5 / 11, 1);
    draw(painter);
    return picture;
  };
  const auto cap = [](QPainter& painter) { SkinImage("controlPanelLeft").draw(painter, {0, 0, 11, 48}); };
  const auto ground = [](QPainter& painter) { SkinImage("controlPanelBG").draw(painter, {11, 0, 39, 48}); };
  const auto line = [](QPainter& painter) { SkinImage("controlPanelSeparator").draw(painter, {50, 0, 1, 48}); };
  const QImage capFirst = painted([&](QPainter& painter) {
    cap(painter);
    ground(painter);
    line(painter);
  });
  const QImage capLast = painted([&](QPainter& painter) {
    ground(painter);
    cap(painter);
    line(painter);
  });
  ASSERT_NE(capFirst, capLast);
  EXPECT_EQ(painted([&](QPainter& painter) {
              ZQAccurateControlPanelButtonCell().drawWithFrameInView(painter, {0, 0, 12, 0}, rewind);
            }),
            capFirst);
}

}  // namespace
}  // namespace zq
