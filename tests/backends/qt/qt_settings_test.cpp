#include "backends/qt/qt_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "backends/time/real_runtime.h"

namespace zq::backend {
namespace {

using platform::Observation;
using platform::SettingValue;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::string_literals;

class QtSettingsTest : public testing::Test {
 protected:
  QTemporaryDir folder_;
  const std::string path_ = folder_.filePath(QStringLiteral("deckhand.ini")).toStdString();
  RealRuntime runtime_;

  void writeFile(const std::string& text) const { std::ofstream(path_) << text; }

  std::string fileText() const {
    std::stringstream text;
    text << std::ifstream(path_).rdbuf();
    return text.str();
  }

  /// In this run, and when the file is opened again.
  void expectToKeep(const std::vector<SettingValue>& values) {
    for (const SettingValue& value : values) {
      QtSettings settings(runtime_, path_);
      settings.setObjectForKey("key", value);
      EXPECT_EQ(settings.objectForKey("key"), value);
      EXPECT_EQ(QtSettings(runtime_, pathOfACopy()).objectForKey("key"), value) << fileText();
    }
  }

  /// The file under a name that is new to Qt, which otherwise answers from what it remembers of the old one.
  std::string pathOfACopy() {
    const std::string copy = path_ + ".copy" + std::to_string(++copies_);
    std::ofstream(copy) << fileText();
    return copy;
  }

 private:
  int copies_ = 0;
};

TEST_F(QtSettingsTest, KeepsBools) {
  expectToKeep({true, false});
}

TEST_F(QtSettingsTest, KeepsIntegers) {
  using Limits = std::numeric_limits<std::int64_t>;
  expectToKeep({std::int64_t{0}, std::int64_t{-1}, std::int64_t{25}, Limits::max(), Limits::min()});
}

TEST_F(QtSettingsTest, KeepsDoubles) {
  using Limits = std::numeric_limits<double>;
  expectToKeep({0.0, 3.0, -3.0, 0.1, 1.0 / 3, 1e15, 1e17, 1e300, 5e-324, Limits::max(), Limits::infinity()});
}

TEST_F(QtSettingsTest, KeepsStrings) {
  expectToKeep({""s, " "s, "Holiday"s, " with spaces "s, "a, b"s, "a;b=c"s, "\"quoted\""s, "back\\slash"s,
                "line\nand\ttab\r\n"s, "nul\0inside"s, "Größe 北京"s, "broken \xff\xfe utf-8"s});
}

TEST_F(QtSettingsTest, KeepsStringsThatLookLikeAnotherKind) {
  expectToKeep({"true"s, "false"s, "42"s, "042"s, " 42 "s, "3.5"s, "nan"s, "inf"s, "-1e5"s, "text:"s, "text:42"s,
                "%25"s, "@"s, "@ByteArray(x)"s, "@Invalid()"s});
}

TEST_F(QtSettingsTest, KeepsBytes) {
  using Bytes = std::vector<std::uint8_t>;
  expectToKeep({Bytes{}, Bytes{'t', 'r', 'u', 'e'}, Bytes{0, 1, 127, 128, 255, '"', '\\', '\n', ')', '@'}});
}

TEST_F(QtSettingsTest, KeepsNotANumber) {
  QtSettings(runtime_, path_).setObjectForKey("key", std::numeric_limits<double>::quiet_NaN());
  const std::optional<SettingValue> value = QtSettings(runtime_, pathOfACopy()).objectForKey("key");
  ASSERT_TRUE(value && std::holds_alternative<double>(*value));
  EXPECT_TRUE(std::isnan(std::get<double>(*value)));
}

TEST_F(QtSettingsTest, TheUsersOwnFileIsInTheConfigurationFolder) {
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder_.path());
  QtSettings settings(runtime_);
  EXPECT_EQ(settings.path(), folder_.filePath(QStringLiteral("Deckhand/deckhand.ini")).toStdString());
  settings.setIntegerForKey("key", 1);
  EXPECT_TRUE(settings.lastError().ok());
}

TEST_F(QtSettingsTest, TheFileReadsAsAPersonWouldWriteIt) {
  QtSettings settings(runtime_, path_);
  settings.setBoolForKey("detectScene", true);
  settings.setIntegerForKey("nbDropFrame", 12);
  settings.setObjectForKey("ratio", 0.5);
  settings.setObjectForKey("folder", "/srv/tapes"s);
  EXPECT_THAT(fileText(), HasSubstr("detectScene=true\n"));
  EXPECT_THAT(fileText(), HasSubstr("nbDropFrame=12\n"));
  EXPECT_THAT(fileText(), HasSubstr("ratio=0.5\n"));
  EXPECT_THAT(fileText(), HasSubstr("folder=/srv/tapes\n"));
}

TEST_F(QtSettingsTest, ReadsWhatAPersonWrote) {
  writeFile("[General]\nflag=false\nnumber=7\nratio=0.5\nfolder=/srv/tapes\ntitle=Rome, 2004\nempty=\n");
  const QtSettings settings(runtime_, path_);
  EXPECT_EQ(settings.objectForKey("flag"), SettingValue(false));
  EXPECT_EQ(settings.objectForKey("number"), SettingValue(std::int64_t{7}));
  EXPECT_EQ(settings.objectForKey("ratio"), SettingValue(0.5));
  EXPECT_EQ(settings.objectForKey("folder"), SettingValue("/srv/tapes"s));
  EXPECT_EQ(settings.objectForKey("title"), SettingValue("Rome, 2004"s));
  EXPECT_EQ(settings.objectForKey("empty"), SettingValue(""s));
}

TEST_F(QtSettingsTest, KeysWithOddCharactersAreDifferentKeys) {
  const std::vector<std::string> keys = {
      "",      "/",    "//",  "\\",  "a/b", "a//b",  "a\\b",    "/a",        "a/",         "a",     "A",
      "a b",   " a",   "a=b", "[a]", "%",   "%2F",   "General", "General/a", "%General/a", "größe", "a\nb",
      "a\0b"s, "\xff", ";a",  "#a",  "a,b", "\"a\"", "@a",      "a.b-c_d~e", "a:b",        "%20",   "%%"};
  QtSettings settings(runtime_, path_);
  for (std::size_t i = 0; i < keys.size(); ++i) settings.setIntegerForKey(keys[i], static_cast<int>(i) + 1);
  const QtSettings reopened(runtime_, pathOfACopy());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(reopened.integerForKey(keys[i]), static_cast<int>(i) + 1) << testing::PrintToString(keys[i]);
  }
}

TEST_F(QtSettingsTest, RemovesOneKeyAndNotThoseThatItBegins) {
  QtSettings settings(runtime_, path_);
  settings.setIntegerForKey("a", 1);
  settings.setIntegerForKey("a/b", 2);
  settings.setIntegerForKey("", 3);
  settings.removeObjectForKey("a");
  settings.removeObjectForKey("");
  const QtSettings reopened(runtime_, pathOfACopy());
  EXPECT_EQ(reopened.objectForKey("a"), std::nullopt);
  EXPECT_EQ(reopened.objectForKey(""), std::nullopt);
  EXPECT_EQ(reopened.integerForKey("a/b"), 2);
}

TEST_F(QtSettingsTest, SeesWhatAnotherProgramWrote) {
  QtSettings settings(runtime_, path_);
  settings.setIntegerForKey("mine", 1);
  writeFile(fileText() + "theirs=22\n");
  EXPECT_EQ(settings.integerForKey("theirs"), 22);
  settings.setIntegerForKey("mine", 3);
  EXPECT_THAT(fileText(), HasSubstr("theirs=22\n"));
}

TEST_F(QtSettingsTest, AFileThatCannotBeWrittenIsSaidAndTheValueHoldsForThisRun) {
  writeFile("a file where the folder should be");
  QtSettings settings(runtime_, path_ + "/deckhand.ini");
  EXPECT_TRUE(settings.lastError().ok());
  settings.setIntegerForKey("key", 5);
  ASSERT_FALSE(settings.lastError().ok());
  EXPECT_THAT(settings.lastError().error().message, HasSubstr(path_ + "/deckhand.ini"));
  EXPECT_NE(settings.lastError().error().informative, "");
  EXPECT_EQ(settings.integerForKey("key"), 5);
}

TEST_F(QtSettingsTest, AWriteThatWorksAgainClearsTheErrorAndWritesWhatIsDue) {
  writeFile("a file where the folder should be");
  QtSettings settings(runtime_, path_ + "/deckhand.ini");
  settings.setIntegerForKey("first", 1);
  ASSERT_FALSE(settings.lastError().ok());
  std::remove(path_.c_str());
  settings.setIntegerForKey("second", 2);
  EXPECT_TRUE(settings.lastError().ok());
  std::stringstream text;
  text << std::ifstream(path_ + "/deckhand.ini").rdbuf();
  EXPECT_THAT(text.str(), HasSubstr("first=1\n"));
  EXPECT_THAT(text.str(), HasSubstr("second=2\n"));
}

TEST_F(QtSettingsTest, ADamagedFileIsSaidAndItsGoodLinesAreRead) {
  writeFile("[General]\ngood=1\nno value here\n");
  const QtSettings settings(runtime_, path_);
  ASSERT_FALSE(settings.lastError().ok());
  EXPECT_THAT(settings.lastError().error().message, HasSubstr(path_));
  EXPECT_EQ(settings.integerForKey("good"), 1);
}

TEST_F(QtSettingsTest, TellsObserversAfterTheValueIsOnDisk) {
  QtSettings settings(runtime_, path_);
  std::vector<std::string> told;
  const Observation observation = settings.observe({"one", "two"}, [&](const std::string& key) {
    told.push_back(key);
    EXPECT_THAT(fileText(), HasSubstr(key));
  });
  settings.setIntegerForKey("one", 1);
  settings.setIntegerForKey("three", 3);
  settings.setIntegerForKey("two", 2);
  EXPECT_THAT(told, ElementsAre("one", "two"));
}

TEST_F(QtSettingsTest, TellsOfARemovalOnceAndOfNothingWhenThereWasNothing) {
  QtSettings settings(runtime_, path_);
  settings.setIntegerForKey("key", 1);
  int told = 0;
  const Observation observation = settings.observe({"key"}, [&](const std::string&) { ++told; });
  settings.removeObjectForKey("key");
  settings.removeObjectForKey("key");
  EXPECT_EQ(told, 1);
}

TEST_F(QtSettingsTest, TellsNobodyOnceTheObservationEnded) {
  QtSettings settings(runtime_, path_);
  int told = 0;
  Observation observation = settings.observe({"key"}, [&](const std::string&) { ++told; });
  observation.reset();
  settings.setIntegerForKey("key", 1);
  EXPECT_EQ(told, 0);
}

TEST_F(QtSettingsTest, MayBeUsedFromSeveralThreads) {
  constexpr int kRounds = 50;
  QtSettings settings(runtime_, path_);
  const auto write = [&](const char* key) {
    for (int i = 1; i <= kRounds; ++i) {
      const Observation observation = settings.observe({key}, [](const std::string&) {});
      settings.setIntegerForKey(key, i);
      settings.setObjectForKey("shared", std::to_string(i) + " times");
      static_cast<void>(settings.stringForKey("shared"));
    }
  };
  const auto one = runtime_.startThread("one", [&] { write("one"); });
  const auto two = runtime_.startThread("two", [&] { write("two"); });
  one->join();
  two->join();
  EXPECT_EQ(settings.integerForKey("one"), kRounds);
  EXPECT_EQ(settings.integerForKey("two"), kRounds);
}

}  // namespace
}  // namespace zq::backend
