#include "skin/skin.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QtEndian>
#include <filesystem>
#include <string>

#include "skin/skin_fixture.h"

namespace zq::test {
namespace {

class SkinFolderTest : public SkinTest {
 protected:
  static QImage draw(const char* name, qreal scale = 1.0) {
    return drawn(SkinImage(QString::fromLatin1(name)), {14, 14}, QRectF(0, 0, 14, 14), scale);
  }
  static QColor colorOf(const char* name, qreal scale = 1.0) { return draw(name, scale).pixelColor(6, 6); }

  const QImage ours = draw("checkBoxOn");
};

TEST_F(SkinFolderTest, AnSvgReplacesOnePictureAndLeavesTheOthers) {
  const QImage other = draw("checkBoxOff");
  write("checkBoxOn.svg", svgOf("#ff0000"));
  useFolder();
  EXPECT_EQ(skin.folder(), folderPath());
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::red));
  EXPECT_EQ(draw("checkBoxOff"), other);
  EXPECT_TRUE(log.lines.empty()) << "a folder need not hold all";
}

TEST_F(SkinFolderTest, APngReplacesAPicture) {
  writePng("checkBoxOn.png", {14, 14}, Qt::blue);
  useFolder();
  EXPECT_EQ(SkinImage("checkBoxOn").size(), QSizeF(14, 14));
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::blue));
}

TEST_F(SkinFolderTest, AnSvgWinsOverAPng) {
  writePng("checkBoxOn.png", {14, 14}, Qt::blue);
  write("checkBoxOn.svg", svgOf("#ff0000"));
  useFolder();
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::red));
}

TEST_F(SkinFolderTest, ThePngOfTwoPixelsAPointIsForScreensThatHaveThem) {
  writePng("checkBoxOn.png", {14, 14}, Qt::blue);
  writePng("checkBoxOn@2x.png", {28, 28}, Qt::green);
  useFolder();
  EXPECT_EQ(SkinImage("checkBoxOn").size(), QSizeF(14, 14));
  EXPECT_EQ(colorOf("checkBoxOn", 1), QColor(Qt::blue));
  EXPECT_EQ(colorOf("checkBoxOn", 2), QColor(Qt::green));
}

TEST_F(SkinFolderTest, ThePngOfTwoPixelsAPointMayStandAlone) {
  writePng("checkBoxOn@2x.png", {28, 30}, Qt::green);
  useFolder();
  EXPECT_EQ(SkinImage("checkBoxOn").size(), QSizeF(14, 15));
  EXPECT_EQ(colorOf("checkBoxOn", 1), QColor(Qt::green));
}

TEST_F(SkinFolderTest, ASizeInPointsIsTakenFromTheSvgsRoot) {
  const auto svg = [](const char* attributes) {
    return QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + attributes +
           "><rect width=\"9\" height=\"9\"/></svg>";
  };
  write("numbers.svg", svg("width=\"20.5\" height=\"10\""));
  write("pixels.svg", svg("width=\"20px\" height=\"10px\" viewBox=\"0 0 200 100\""));
  write("box.svg", svg("viewBox=\"0,0 30 15\""));
  write("percent.svg", svg("width=\"100%\" height=\"100%\" viewBox=\"0 0 30 15\""));
  useFolder();
  EXPECT_EQ(SkinImage("numbers").size(), QSizeF(20.5, 10));
  EXPECT_EQ(SkinImage("pixels").size(), QSizeF(20, 10));
  EXPECT_EQ(SkinImage("box").size(), QSizeF(30, 15));
  EXPECT_EQ(SkinImage("percent").size(), QSizeF(30, 15));
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(SkinFolderTest, TheBuiltInPicturesComeBackWithoutTheFolder) {
  write("checkBoxOn.svg", svgOf("#ff0000"));
  useFolder();
  EXPECT_NE(draw("checkBoxOn"), ours);
  ASSERT_TRUE(skin.setFolder(QString()).ok());
  EXPECT_EQ(skin.folder(), QString());
  EXPECT_EQ(draw("checkBoxOn"), ours);
}

TEST_F(SkinFolderTest, SettingTheFolderAgainReadsItsFilesAgain) {
  write("checkBoxOn.svg", svgOf("#ff0000"));
  useFolder();
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::red));
  write("checkBoxOn.svg", svgOf("#0000ff"));
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::red)) << "files are read once";
  useFolder();
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::blue));
}

TEST_F(SkinFolderTest, AFolderThatIsNotThereIsRefusedAndTheSkinStays) {
  write("checkBoxOn.svg", svgOf("#ff0000"));
  useFolder();
  const Status status = skin.setFolder(QStringLiteral("/no/such/folder"));
  ASSERT_FALSE(status.ok());
  EXPECT_NE(status.error().message.find("/no/such/folder"), std::string::npos);
  EXPECT_FALSE(status.error().informative.empty());
  EXPECT_EQ(skin.folder(), folderPath());
  EXPECT_EQ(colorOf("checkBoxOn"), QColor(Qt::red));
}

TEST_F(SkinFolderTest, AFileIsNoFolder) {
  write("checkBoxOn.svg", svgOf("#ff0000"));
  const Status status = skin.setFolder(QString::fromStdString(folder.file("checkBoxOn.svg")));
  ASSERT_FALSE(status.ok());
  EXPECT_NE(status.error().informative.find("not a folder"), std::string::npos);
}

TEST_F(SkinFolderTest, ANameDoesNotLeadOutOfTheFolder) {
  std::filesystem::create_directory(folder.file("inner"));
  write("outside.svg", svgOf("#ff0000"));
  ASSERT_TRUE(skin.setFolder(QString::fromStdString(folder.file("inner"))).ok());
  EXPECT_TRUE(SkinImage("../outside").isNull());
  useFolder();
  EXPECT_TRUE(SkinImage("inner/../outside").isNull());
  EXPECT_FALSE(SkinImage("outside").isNull());
}

// Broken files: ours is shown, and one line says which file and why.

class BrokenFile : public SkinFolderTest {
 protected:
  void expectOurs(const std::string& file, const std::string& why) {
    useFolder();
    EXPECT_EQ(draw("checkBoxOn"), ours);
    EXPECT_EQ(draw("checkBoxOn"), ours);
    EXPECT_EQ(SkinImage("checkBoxOn").size(), QSizeF(14, 14));
    ASSERT_EQ(log.lines.size(), 1U) << "one line, however often it is drawn";
    EXPECT_NE(log.lines[0].find(folder.file(file)), std::string::npos) << log.lines[0];
    EXPECT_NE(log.lines[0].find(why), std::string::npos) << log.lines[0];
  }
  void expectOursForSvg(const QByteArray& bytes, const std::string& why) {
    write("checkBoxOn.svg", bytes);
    expectOurs("checkBoxOn.svg", why);
  }
  void expectOursForPng(const QByteArray& bytes, const std::string& why) {
    write("checkBoxOn.png", bytes);
    expectOurs("checkBoxOn.png", why);
  }
  static QByteArray pngOf(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return bytes;
  }
  /// The same file, with another size in its header. Signature, 8 bytes; length, 4; then, summed up, the chunk's name,
  /// width and height, five bytes more; the sum.
  static QByteArray claiming(QByteArray png, quint32 width, quint32 height) {
    qToBigEndian(width, png.data() + 16);
    qToBigEndian(height, png.data() + 20);
    quint32 sum = 0xffffffff;
    for (const char byte : png.mid(12, 17)) {
      sum ^= static_cast<quint8>(byte);
      for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
    }
    qToBigEndian(~sum, png.data() + 29);
    return png;
  }
};

TEST_F(BrokenFile, EmptySvg) {
  expectOursForSvg("", "empty");
}

TEST_F(BrokenFile, SvgThatIsText) {
  expectOursForSvg("hello", "not an SVG");
}

TEST_F(BrokenFile, SvgThatIsAnotherDocument) {
  expectOursForSvg("<html><body/></html>", "not an SVG");
}

TEST_F(BrokenFile, SvgThatIsAPng) {
  expectOursForSvg(pngOf({14, 14}), "not an SVG");
}

TEST_F(BrokenFile, SvgThatIsCutShort) {
  expectOursForSvg(svgOf("#ff0000").chopped(9), "damaged at line 1");
}

TEST_F(BrokenFile, SvgWithoutASize) {
  expectOursForSvg("<svg xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"9\" height=\"9\"/></svg>",
                   "width and height");
}

TEST_F(BrokenFile, SvgWithAPercentageOfNothing) {
  expectOursForSvg("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100%\" height=\"100%\"/>", "width and height");
}

TEST_F(BrokenFile, SvgOfNoSize) {
  expectOursForSvg(svgOf("#ff0000", 0, 14), "width and height");
}

TEST_F(BrokenFile, SvgOfANegativeSize) {
  expectOursForSvg(svgOf("#ff0000", 14, -14), "width and height");
}

TEST_F(BrokenFile, SvgWhoseSizeIsNoNumber) {
  expectOursForSvg("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"nan\" height=\"14\"/>", "width and height");
}

TEST_F(BrokenFile, SvgOfAnAbsurdSize) {
  expectOursForSvg(svgOf("#ff0000", 100'000, 100'000), "larger than");
}

TEST_F(BrokenFile, SvgWhoseViewBoxMeasuresNothing) {
  expectOursForSvg("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"14\" height=\"14\" viewBox=\"0 0 1e-300 14\"/>",
                   "viewBox");
}

TEST_F(BrokenFile, EmptyPng) {
  expectOursForPng("", "empty");
}

TEST_F(BrokenFile, PngThatIsAnSvg) {
  expectOursForPng(svgOf("#ff0000"), "not a PNG");
}

TEST_F(BrokenFile, PngThatIsCutShort) {
  expectOursForPng(pngOf({300, 300}).chopped(60), "damaged");
}

TEST_F(BrokenFile, PngThatClaimsAnAbsurdSize) {
  expectOursForPng(claiming(pngOf({14, 14}), 100'000, 100'000), "larger than");
}

TEST_F(BrokenFile, PngThatClaimsMoreThanItHas) {
  expectOursForPng(claiming(pngOf({14, 14}), 14, 1000), "damaged");
}

TEST_F(BrokenFile, PngOfAnAbsurdSize) {
  expectOursForPng(pngOf({9000, 1}), "larger than");
}

TEST_F(BrokenFile, PngOfTwoPixelsAPointTakesTheOtherWithIt) {
  writePng("checkBoxOn.png", {14, 14}, Qt::blue);
  write("checkBoxOn@2x.png", "no picture");
  expectOurs("checkBoxOn@2x.png", "not a PNG");
}

TEST_F(BrokenFile, SvgDoesNotGiveWayToAPng) {
  writePng("checkBoxOn.png", {14, 14}, Qt::blue);
  expectOursForSvg("hello", "not an SVG");
}

TEST_F(BrokenFile, AFolderInPlaceOfTheFile) {
  std::filesystem::create_directory(folder.file("checkBoxOn.svg"));
  expectOurs("checkBoxOn.svg", "not a file");
}

TEST_F(BrokenFile, APipeInPlaceOfTheFileIsNotWaitedFor) {
  ASSERT_EQ(mkfifo(folder.file("checkBoxOn.svg").c_str(), 0600), 0);
  expectOurs("checkBoxOn.svg", "not a file");
}

TEST_F(BrokenFile, ALinkToNowhere) {
  std::filesystem::create_symlink(folder.file("gone"), folder.file("checkBoxOn.svg"));
  expectOurs("checkBoxOn.svg", "not a file");
}

TEST_F(BrokenFile, AFileThatMustNotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read every file";
  write("checkBoxOn.svg", svgOf("#ff0000"));
  std::filesystem::permissions(folder.file("checkBoxOn.svg"), std::filesystem::perms::none);
  expectOurs("checkBoxOn.svg", "ermission");
}

TEST_F(BrokenFile, AFileThatIsFarTooLong) {
  write("checkBoxOn.svg", svgOf("#ff0000"));
  std::filesystem::resize_file(folder.file("checkBoxOn.svg"), 17 << 20);
  expectOurs("checkBoxOn.svg", "larger than");
}

TEST_F(BrokenFile, WithoutALogIsReplacedAsWell) {
  skin.setLog(nullptr);
  write("checkBoxOn.svg", "hello");
  useFolder();
  EXPECT_EQ(draw("checkBoxOn"), ours);
  EXPECT_TRUE(imageNamedInFrameworkForClass(QStringLiteral("noSuchPicture"), "Test").isNull());
}

}  // namespace
}  // namespace zq::test
