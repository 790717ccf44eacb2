#include "views/medium_date.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QFontMetricsF>

#include "support/qt_application.h"
#include "views/timecode_label.h"

namespace zq {
namespace {

QString july(const QLocale& locale) {
  return mediumDateText(CalendarDate(2004, 7, 15, 13, 5, 9), locale);
}

TEST(MediumDate, NamesTheMonthInEnglish) {
  EXPECT_EQ(july(QLocale(QLocale::English, QLocale::UnitedStates)), "Jul 15, 2004");
  EXPECT_EQ(july(QLocale(QLocale::English, QLocale::UnitedKingdom)), "15 Jul 2004");
  EXPECT_EQ(mediumDateText(CalendarDate(1999, 12, 3, 0, 0, 0), QLocale(QLocale::English)), "Dec 3, 1999");
}

TEST(MediumDate, IsInFiguresInGerman) {
  EXPECT_EQ(july(QLocale(QLocale::German, QLocale::Germany)), "15.07.2004");
  EXPECT_EQ(mediumDateText(CalendarDate(2010, 1, 2, 0, 0, 0), QLocale(QLocale::German)), "02.01.2010");
}

TEST(MediumDate, NamesTheMonthInFrench) {
  EXPECT_EQ(july(QLocale(QLocale::French, QLocale::France)), "15 juil. 2004");
}

TEST(MediumDate, IsPlainWithoutALanguage) {
  EXPECT_EQ(july(QLocale::c()), "15 Jul 2004");
}

TEST(MediumDate, DropsTheWeekdayWhereverItStands) {
  EXPECT_EQ(july(QLocale(QLocale::Danish)), "15. jul. 2004");      // dddd 'den' d. MMMM yyyy
  EXPECT_EQ(july(QLocale(QLocale::Hungarian)), "2004. júl. 15.");  // yyyy. MMMM d., dddd
  EXPECT_EQ(july(QLocale(QLocale::Spanish)), "15 jul 2004");       // dddd, d 'de' MMMM 'de' yyyy
  EXPECT_EQ(july(QLocale(QLocale::Chinese)), "2004年7月15日");     // yyyy年M月d日dddd
  EXPECT_EQ(july(QLocale(QLocale::Korean)), "2004년 7월 15일");    // yyyy년 M월 d일 dddd
}

TEST(MediumDate, DropsTheWordsThatJoinItsFields) {
  EXPECT_EQ(july(QLocale(QLocale::Spanish, QLocale::Mexico)), "15 jul 2004");
  EXPECT_EQ(july(QLocale(QLocale::Portuguese, QLocale::Brazil)), "15 jul. 2004");
  EXPECT_EQ(july(QLocale(QLocale::Portuguese, QLocale::Portugal)), "15 jul. 2004");
}

class MediumDateInLabelTest : public test::QtTest {};

TEST_F(MediumDateInLabelTest, FitsTheOverlaysLabelInTheUsualLanguages) {
  const QFontMetricsF metrics(labelFont());
  for (const char* name : {"en_US", "en_GB", "de", "fr", "es", "it", "pt_BR", "pt_PT", "nl", "sv", "pl"}) {
    for (int month = 1; month <= 12; ++month) {
      const QString text = mediumDateText(CalendarDate(2004, month, 28, 0, 0, 0), QLocale(QString(name)));
      EXPECT_LE(metrics.horizontalAdvance(text), 82) << name << ": " << text.toStdString();
    }
  }
}

TEST(MediumDate, HasTheYearAndNoWeekdayInEveryLanguage) {
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
    const QString text = july(locale);
    const QString year = locale.toString(QDate(2004, 7, 15), QStringLiteral("yyyy"));
    EXPECT_TRUE(text.contains(year)) << locale.name().toStdString() << ": " << text.toStdString();
    EXPECT_EQ(text, text.trimmed()) << locale.name().toStdString();
    const QString weekday = locale.dayName(4, QLocale::LongFormat);
    EXPECT_FALSE(text.contains(weekday)) << locale.name().toStdString() << ": " << text.toStdString();
  }
}

TEST(MediumDate, HasNoTime) {
  EXPECT_FALSE(july(QLocale(QLocale::English)).contains(':'));
}

}  // namespace
}  // namespace zq
