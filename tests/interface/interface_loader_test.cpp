#include "interface/interface_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <fstream>

#include "backends/time/virtual_runtime.h"
#include "controls/control_panel_button.h"
#include "controls/popup_button.h"
#include "controls/slider.h"
#include "controls/text_field.h"
#include "controls/univ_button.h"
#include "interface/widget_classes.h"
#include "outlets/button.h"
#include "outlets/overlay.h"
#include "outlets/pop_up.h"
#include "outlets/text_field.h"
#include "support/qt_application.h"
#include "support/scratch_folder.h"
#include "views/binding_area_view.h"
#include "views/thumbnail_view.h"
#include "views/timeline_view.h"

namespace zq {
namespace {

using testing::HasSubstr;

class InterfaceLoaderTest : public test::QtTest {
 protected:
  std::unique_ptr<Interface> loaded(const QString& path) {
    auto interface = loadInterface(path, runtime_);
    EXPECT_TRUE(interface.ok()) << interface.error().text();
    return interface.ok() ? std::move(interface.value()) : nullptr;
  }
  QString fileWith(const std::string& text) {
    const std::string path = folder_.file("interface.ui");
    std::ofstream(path) << text;
    return QString::fromStdString(path);
  }
  std::string refusal(const QString& path) {
    const auto interface = loadInterface(path, runtime_);
    EXPECT_FALSE(interface.ok());
    return interface.ok() ? std::string() : interface.error().text();
  }

  backend::VirtualRuntime runtime_;
  test::ScratchFolder folder_;
};

const QString kControls = ":/deckhand/interface/controls.ui";
const QString kTape = ":/deckhand/interface/tape.ui";

TEST_F(InterfaceLoaderTest, MakesOneOfEachOfOurClasses) {
  const auto controls = loaded(kControls);
  const auto tape = loaded(kTape);
  ASSERT_TRUE(controls && tape);
  for (const QString& name : widgetClasses()) {
    const auto isOne = [&](const QObject* object) { return object->metaObject()->className() == "zq::" + name; };
    bool found = false;
    for (Interface* interface : {controls.get(), tape.get()}) {
      QObjectList all = interface->root().findChildren<QObject*>();
      all.append(&interface->root());
      found = found || std::any_of(all.begin(), all.end(), isOne);
    }
    EXPECT_TRUE(found) << name.toStdString();
  }
}

TEST_F(InterfaceLoaderTest, SetsWhatTheFileSaysBeforeItWakesTheControls) {
  const auto controls = loaded(kControls);
  ASSERT_TRUE(controls);
  auto* play = controls->outlet<ZQAccurateControlPanelButton>("playButton");
  ASSERT_NE(play, nullptr);
  EXPECT_EQ(play->tag(), 11);
  EXPECT_EQ(play->accessibleName(), "Play");  // the awake control takes it from its tag
  auto* capture = controls->outlet<ZQCaptureUnivButton>("captureButton");
  ASSERT_NE(capture, nullptr);
  EXPECT_EQ(capture->text(), "Capture");
  EXPECT_EQ(capture->alternateTitle(), "Stop");
  EXPECT_FALSE(controls->outlet<ZQCaptureUnivButton>("customChangeButton")->isEnabled());
  auto* slider = controls->outlet<ZQAccurateSlider>("intervalSlider");
  EXPECT_EQ(slider->numberOfTickMarks(), 5);
  EXPECT_TRUE(slider->allowsTickMarkValuesOnly());
  EXPECT_EQ(slider->value(), 2);
}

TEST_F(InterfaceLoaderTest, ConnectsOutletsByTheirNames) {
  const auto controls = loaded(kControls);
  ASSERT_TRUE(controls);
  outlets::PopUp* popUp = nullptr;
  outlets::Button* record = nullptr;
  outlets::TextField* name = nullptr;
  outlets::TimecodeOverlay* overlay = nullptr;
  outlets::Panel* options = nullptr;
  controls->connect("compressionPopUp", popUp);
  controls->connect("recordButton", record);
  controls->connect("tapeNameField", name);
  controls->connect("timecodeView", overlay);
  controls->connect("optionsView", options);
  EXPECT_TRUE(controls->missing().isEmpty());
  ASSERT_TRUE(popUp != nullptr && record != nullptr && name != nullptr && overlay != nullptr && options != nullptr);
  EXPECT_EQ(popUp->itemTitleAtIndex(1), "Custom...");
  options->setShown(false);
  QCoreApplication::processEvents();
  EXPECT_TRUE(controls->root().findChild<QWidget*>("optionsView")->isHidden());
}

TEST_F(InterfaceLoaderTest, NamesTheOutletsThatAreMissingOrOfAnotherKind) {
  const auto controls = loaded(kControls);
  ASSERT_TRUE(controls);
  outlets::PopUp* none = nullptr;
  outlets::PopUp* button = nullptr;
  outlets::Sheet* sheet = nullptr;
  controls->connect("devicesPopUp", none);
  controls->connect("recordButton", button);
  controls->connect("optionsView", sheet);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(button, nullptr);
  EXPECT_EQ(sheet, nullptr);
  EXPECT_EQ(controls->missing(), QStringList({"devicesPopUp", "recordButton", "optionsView"}));
}

TEST_F(InterfaceLoaderTest, ADialogIsASheet) {
  const auto interface =
      loaded(fileWith(R"(<ui version="4.0"><class>d</class><widget class="QDialog" name="optionsWindow"/></ui>)"));
  ASSERT_TRUE(interface);
  EXPECT_NE(interface->outlet<outlets::Sheet>("optionsWindow"), nullptr);
}

TEST_F(InterfaceLoaderTest, TheViewsOfATapeShareTheirPlaceAndWidth) {
  const auto tape = loaded(kTape);
  ASSERT_TRUE(tape);
  tape->root().resize(800, 126);
  tape->root().show();
  const auto* timeline = tape->outlet<ZQACTimelineView>("timelineView");
  const auto* band = tape->outlet<ZQACBindingAreaView>("bindingAreaView");
  const auto* strip = tape->outlet<ZQACThumbnailView>("thumbnailView");
  ASSERT_TRUE(timeline && band && strip);
  EXPECT_EQ(timeline->geometry(), QRect(0, 0, 800, 40));
  EXPECT_EQ(band->geometry(), QRect(0, 40, 800, 36));
  EXPECT_EQ(strip->geometry(), QRect(0, 76, 800, 50));
}

TEST_F(InterfaceLoaderTest, WidgetsPutIntoAWindowGoWithIt) {
  auto interface = loaded(kControls);
  ASSERT_TRUE(interface);
  QPointer<QWidget> root = &interface->root();
  {
    QWidget window;
    root->setParent(&window);
    interface.reset();
    EXPECT_FALSE(root.isNull());
  }
  EXPECT_TRUE(root.isNull());
}

TEST_F(InterfaceLoaderTest, RefusesAFileThatIsNotThere) {
  const std::string text = refusal(QString::fromStdString(folder_.file("none.ui")));
  EXPECT_THAT(text, HasSubstr("none.ui\" cannot be loaded"));
  EXPECT_THAT(text, HasSubstr("No such file"));
}

TEST_F(InterfaceLoaderTest, RefusesAClassThatDoesNotExistByName) {
  const std::string text = refusal(fileWith(R"(<ui version="4.0"><class>w</class><widget class="QWidget" name="w">
      <widget class="ZQAccurateKnob" name="knob"/></widget></ui>)"));
  EXPECT_THAT(text, HasSubstr("There is no class ZQAccurateKnob (knob)"));
  EXPECT_THAT(text, HasSubstr("ZQAccurateSlider"));
}

TEST_F(InterfaceLoaderTest, RefusesWhatIsNoInterfaceFile) {
  EXPECT_THAT(refusal(fileWith("")), HasSubstr("It is not an interface file"));
  EXPECT_THAT(refusal(fileWith("<svg/>")), HasSubstr("no \"ui\" element"));
  EXPECT_THAT(refusal(fileWith("<ui version=\"4.0\">\n<widget>\n")), HasSubstr("line "));
  EXPECT_THAT(refusal(fileWith(R"(<ui version="4.0"/>)")), HasSubstr("cannot be loaded"));
  EXPECT_THAT(refusal(fileWith("\x89PNG\r\n")), HasSubstr("It is not an interface file"));
}

TEST_F(InterfaceLoaderTest, FindsNothingOnceItsWidgetsAreGone) {
  const auto interface = loaded(kControls);
  ASSERT_TRUE(interface);
  delete &interface->root();
  EXPECT_EQ(interface->outlet<outlets::PopUp>("compressionPopUp"), nullptr);
  EXPECT_EQ(interface->outlet<outlets::Panel>("optionsView"), nullptr);
  EXPECT_EQ(interface->outlet<outlets::Sheet>("optionsView"), nullptr);
}

TEST_F(InterfaceLoaderTest, AnswersOnePanelAndOneSheetForOneWidget) {
  const auto controls = loaded(kControls);
  ASSERT_TRUE(controls);
  auto* panel = controls->outlet<outlets::Panel>("optionsView");
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(controls->outlet<outlets::Panel>("optionsView"), panel);
  EXPECT_NE(controls->outlet<outlets::Panel>("recordButton"), panel);
  const auto dialog =
      loaded(fileWith(R"(<ui version="4.0"><class>d</class><widget class="QDialog" name="optionsWindow"/></ui>)"));
  ASSERT_TRUE(dialog);
  auto* sheet = dialog->outlet<outlets::Sheet>("optionsWindow");
  ASSERT_NE(sheet, nullptr);
  EXPECT_EQ(dialog->outlet<outlets::Sheet>("optionsWindow"), sheet);
}

}  // namespace
}  // namespace zq
