#include "skin/given_pictures.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QSet>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <utility>

#include "skin/skin_fixture.h"

namespace zq::test {
namespace {

QImage natural(const char* name, qreal scale = 1.0) {
  const SkinImage picture(QString::fromLatin1(name));
  return drawn(picture, picture.size().toSize(), QRectF(QPointF(0, 0), picture.size()), scale);
}

/// Whether a column of one picture is a column of another, pixel by pixel.
testing::AssertionResult sameColumn(const QImage& a, int columnOfA, const QImage& b, int columnOfB) {
  if (a.height() != b.height()) return testing::AssertionFailure() << "heights differ";
  for (int y = 0; y < a.height(); ++y) {
    if (a.pixel(columnOfA, y) != b.pixel(columnOfB, y))
      return testing::AssertionFailure() << "they differ in row " << y;
  }
  return testing::AssertionSuccess();
}

/// Perceived brightness, 0 to 1, of a pixel.
qreal luma(QRgb pixel) {
  return (0.2126 * qRed(pixel) + 0.7152 * qGreen(pixel) + 0.0722 * qBlue(pixel)) / 255;
}

qreal sumOfLuma(const QImage& image) {
  qreal sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) sum += luma(image.pixel(x, y));
  }
  return sum;
}

class EachGivenPicture : public SkinTest, public testing::WithParamInterface<GivenPicture> {};

TEST_P(EachGivenPicture, IsBuiltInWithItsSize) {
  const SkinImage picture = imageNamedInFrameworkForClass(GetParam().qName(), "EachGivenPicture");
  EXPECT_FALSE(picture.isNull());
  EXPECT_EQ(picture.size(), GetParam().size());
  EXPECT_TRUE(log.lines.empty());
}

TEST_P(EachGivenPicture, IsAnSvgThatQtDraws) {
  QSvgRenderer renderer(QStringLiteral(":/deckhand/skin/%1.svg").arg(GetParam().qName()));
  EXPECT_TRUE(renderer.isValid());
  EXPECT_EQ(QSizeF(renderer.defaultSize()), GetParam().size());
}

TEST_P(EachGivenPicture, DrawsSomethingAtEachScale) {
  EXPECT_FALSE(isEmpty(natural(GetParam().name, 1)));
  EXPECT_FALSE(isEmpty(natural(GetParam().name, 2)));
}

INSTANTIATE_TEST_SUITE_P(Skin, EachGivenPicture, testing::ValuesIn(givenPictures()),
                         [](const auto& test) { return std::string(test.param.name); });

class EachPair : public SkinTest, public testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(EachPair, LooksDifferent) {
  const auto& [one, other] = GetParam();
  EXPECT_EQ(natural(one).size(), natural(other).size());
  EXPECT_NE(natural(one), natural(other));
}

INSTANTIATE_TEST_SUITE_P(Skin, EachPair,
                         testing::Values(std::pair("univButtonLeft", "univButtonLeftClicked"),
                                         std::pair("univButtonMiddle", "univButtonMiddleClicked"),
                                         std::pair("univButtonRight", "univButtonRightClicked"),
                                         std::pair("recordingIcon", "recordingIconHL"),
                                         std::pair("checkBoxOff", "checkBoxOn"),
                                         std::pair("progressBarEmptyLeft", "progressBarFullLeft"),
                                         std::pair("progressBarEmptyMiddle", "progressBarFullMiddle"),
                                         std::pair("progressBarEmptyRight", "progressBarFullRight"),
                                         std::pair("controlPanelBG", "controlPanelBGClicked"),
                                         std::pair("controlPanelLeft", "controlPanelLeftClicked"),
                                         std::pair("controlPanelRight", "controlPanelRightClicked")),
                         [](const auto& test) { return std::string(test.param.first); });

class EachIcon : public SkinTest, public testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(EachIcon, IsBrighterUnderThePointer) {
  const auto& [icon, rolledOver] = GetParam();
  EXPECT_GT(sumOfLuma(natural(rolledOver)), 1.05 * sumOfLuma(natural(icon)));
}

INSTANTIATE_TEST_SUITE_P(Skin, EachIcon,
                         testing::Values(std::pair("controlPanelRewind", "controlPanelRewindRollOver"),
                                         std::pair("controlPanelPlay", "controlPanelPlayRollOver"),
                                         std::pair("controlPanelRecord", "controlPanelRecordRollOver"),
                                         std::pair("controlPanelStop", "controlPanelStopRollOver"),
                                         std::pair("controlPanelFastForward", "controlPanelFastForwardRollOver"),
                                         std::pair("controlPanelPreviousFrame", "controlPanelPreviousFrameRO"),
                                         std::pair("controlPanelNextFrame", "controlPanelNextFrameRO")),
                         [](const auto& test) { return std::string(test.param.first); });

struct Slices {
  const char* name;
  const char* left;
  const char* middle;
  const char* right;
};

void PrintTo(const Slices& slices, std::ostream* out) {
  *out << slices.name;
}

class EachRowOfSlices : public SkinTest, public testing::WithParamInterface<Slices> {};

TEST_P(EachRowOfSlices, JoinsWithoutASeam) {
  for (const qreal scale : {1.0, 2.0}) {
    const QImage left = natural(GetParam().left, scale);
    const QImage middle = natural(GetParam().middle, scale);
    const QImage right = natural(GetParam().right, scale);
    EXPECT_TRUE(sameColumn(left, left.width() - 1, middle, 0)) << "left, scale " << scale;
    EXPECT_TRUE(sameColumn(right, 0, middle, middle.width() - 1)) << "right, scale " << scale;
  }
}

TEST_P(EachRowOfSlices, HasAMiddleThatCanBeStretched) {
  const QImage middle = natural(GetParam().middle, 2);
  for (int x = 1; x < middle.width(); ++x) EXPECT_TRUE(sameColumn(middle, 0, middle, x)) << "column " << x;
}

TEST_P(EachRowOfSlices, HasEndsWhoseOutlinesMirrorEachOther) {
  const QImage left = natural(GetParam().left, 2);
  const QImage right = natural(GetParam().right, 2);
  const QImage mirrored = right.mirrored(true, false);
  for (int y = 0; y < left.height(); ++y) {
    for (int x = 0; x < std::min(left.width(), right.width()); ++x) {
      EXPECT_NEAR(qAlpha(left.pixel(x, y)), qAlpha(mirrored.pixel(x, y)), 16);  // Qt's arcs are not quite symmetrical
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Skin, EachRowOfSlices,
    testing::Values(
        Slices{"timeline", "timelineLeft", "timelineMiddle", "timelineRight"},
        Slices{"progressBarEmpty", "progressBarEmptyLeft", "progressBarEmptyMiddle", "progressBarEmptyRight"},
        Slices{"progressBarFull", "progressBarFullLeft", "progressBarFullMiddle", "progressBarFullRight"},
        Slices{"univButton", "univButtonLeft", "univButtonMiddle", "univButtonRight"},
        Slices{"univButtonClicked", "univButtonLeftClicked", "univButtonMiddleClicked", "univButtonRightClicked"},
        Slices{"popupButton", "popupButtonLeft", "popupButtonMiddle", "popupButtonRight"},
        Slices{"sliderTrack", "sliderTrackLeft", "sliderTrackMiddle", "sliderTrackRight"},
        Slices{"textField", "textFieldLeft", "textFieldMiddle", "textFieldRight"},
        Slices{"bigTextField", "bigTextFieldLeft", "bigTextFieldMiddle", "bigTextFieldRight"},
        Slices{"controlPanel", "controlPanelLeft", "controlPanelBG", "controlPanelRight"},
        Slices{"controlPanelClicked", "controlPanelLeftClicked", "controlPanelBGClicked", "controlPanelRightClicked"}),
    [](const auto& test) { return std::string(test.param.name); });

class GivenPictures : public SkinTest {};

TEST_F(GivenPictures, AreAllThatIsInTheFolderAndInTheProgram) {
  QSet<QString> given;
  for (const GivenPicture& picture : givenPictures()) given.insert(picture.qName() + QLatin1String(".svg"));
  const QStringList inFolder = QDir(QStringLiteral(SKIN_SOURCES)).entryList({QStringLiteral("*.svg")});
  const QStringList inProgram = QDir(QStringLiteral(":/deckhand/skin")).entryList();
  EXPECT_EQ(QSet<QString>(inFolder.begin(), inFolder.end()), given);
  EXPECT_EQ(QSet<QString>(inProgram.begin(), inProgram.end()), given);
}

TEST_F(GivenPictures, LeaveAClipUnderTheTimelinesShadowReadable) {
  const QColor active = QColor::fromRgbF(1.0F, 0.922F, 0.549F);
  QImage track = emptyDevice(QSize(100, 34));
  track.fill(active);
  QPainter painter(&track);
  SkinImage(QStringLiteral("timelineShadow")).draw(painter, QRectF(0, 0, 100, 34));
  painter.end();
  EXPECT_LT(luma(track.pixel(50, 0)), 0.7 * luma(track.pixel(50, 17))) << "sunk in: dark at the top";
  EXPECT_GT(luma(track.pixel(50, 17)), 0.9 * luma(active.rgb())) << "its colour in the middle";
  EXPECT_GT(luma(track.pixel(50, 0)), 0.3 * luma(active.rgb()));
}

TEST_F(GivenPictures, MakeTheTextOfAButtonReadable) {
  const auto contrast = [](qreal a, qreal b) {
    const auto linear = [](qreal v) { return v <= 0.04 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    const auto [low, high] = std::minmax({linear(a), linear(b)});
    return (high + 0.05) / (low + 0.05);
  };
  const qreal grey = luma(QColor(Qt::gray).rgb());
  EXPECT_GT(contrast(grey, luma(natural("univButtonMiddle").pixel(0, 11))), 3);
  EXPECT_GT(contrast(0.3, luma(natural("univButtonMiddleClicked").pixel(0, 11))), 4.5) << "pressed, the text is dark";
  EXPECT_GT(contrast(1.0, luma(natural("popupButtonMiddle").pixel(0, 10))), 7);
  EXPECT_GT(contrast(grey, luma(natural("textFieldMiddle").pixel(0, 11))), 3);
}

TEST_F(GivenPictures, AreSharperAtTwoPixelsAPoint) {
  for (const char* name : {"controlPanelPlay", "checkBoxOn", "univButtonLeft", "sliderKnob", "popupButtonRight"}) {
    const QImage twofold = natural(name, 2);
    const QImage enlarged = natural(name, 1).scaled(twofold.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto steepest = [](const QImage& image) {
      qreal sum = 0;
      for (int y = 0; y < image.height(); ++y) {
        for (int x = 1; x < image.width(); ++x) {
          const int step = qAlpha(image.pixel(x, y)) - qAlpha(image.pixel(x - 1, y));
          const qreal bright = luma(image.pixel(x, y)) - luma(image.pixel(x - 1, y));
          sum += step * step / 65025.0 + bright * bright;
        }
      }
      return sum;
    };
    EXPECT_GT(steepest(twofold), 1.1 * steepest(enlarged)) << name;
  }
}

}  // namespace
}  // namespace zq::test
