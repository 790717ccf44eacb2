#include "controls/panel_outlet.h"

#include <gtest/gtest.h>

#include <memory>

#include "controls/controls_fixture.h"

namespace zq {
namespace {

class PanelOutletTest : public test::ControlsTest {
 protected:
  QWidget window_;
  QWidget widget_{&window_};
};

TEST_F(PanelOutletTest, ShowsAndHidesItsWidgetFromAnyThread) {
  PanelOutlet panel(widget_);
  outlets::Panel& outlet = panel;
  show(window_);
  onAnotherThread([&] {
    outlet.setShown(false);
    EXPECT_FALSE(outlet.isShown());
  });
  EXPECT_TRUE(widget_.isVisible());
  deliver();
  EXPECT_TRUE(widget_.isHidden());
  onAnotherThread([&] { outlet.setShown(true); });
  EXPECT_TRUE(outlet.isShown());
  deliver();
  EXPECT_TRUE(widget_.isVisible());
}

TEST_F(PanelOutletTest, ShowsTheLastOfManyAnswers) {
  PanelOutlet panel(widget_);
  onAnotherThread([&] {
    for (const bool shown : {false, true, false}) panel.setShown(shown);
  });
  deliver();
  EXPECT_TRUE(widget_.isHidden());
}

TEST_F(PanelOutletTest, IsAtFirstAsItsWidget) {
  EXPECT_TRUE(PanelOutlet(widget_).isShown());
  widget_.hide();
  EXPECT_FALSE(PanelOutlet(widget_).isShown());
}

TEST_F(PanelOutletTest, OutlivesItsWidget) {
  auto widget = std::make_unique<QWidget>(&window_);
  PanelOutlet panel(*widget);
  panel.setShown(false);
  widget.reset();
  deliver();
  panel.setShown(true);
  deliver();
  EXPECT_TRUE(panel.isShown());
}

TEST_F(PanelOutletTest, ThatIsGoneShowsNothingAnyMore) {
  auto panel = std::make_unique<PanelOutlet>(widget_);
  panel->setShown(false);
  panel.reset();
  deliver();
  EXPECT_FALSE(widget_.isHidden());
}

}  // namespace
}  // namespace zq
