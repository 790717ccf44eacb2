#include "host/gallery/control_sheet.h"

#include <QApplication>
#include <QEnterEvent>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>

#include "controls/background_view.h"
#include "controls/check_box.h"
#include "controls/control_panel_button.h"
#include "controls/popup_button.h"
#include "controls/separator_barre.h"
#include "controls/shadow_box.h"
#include "controls/slider.h"
#include "controls/text_field.h"
#include "controls/univ_button.h"

namespace zq::host {

namespace {

void giveKeyboard(QWidget* control) {
  QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
  QApplication::sendEvent(control, &event);
}

void bringPointer(QWidget* control) {
  QEnterEvent event({1, 1}, {1, 1}, {1, 1});
  QApplication::sendEvent(control, &event);
}

template <class Control>
Control* awake(Control* control) {
  control->awakeFromNib();
  return control;
}

// The sheet that it goes into owns the control.
ZQCaptureUnivButton* button(const QString& title) {
  auto* control = new ZQCaptureUnivButton;
  control->setText(title);
  awake(control);
  control->setFixedSize(110, 22);
  return control;
}

ShownControl buttons() {
  auto* disabled = button("Options...");
  disabled->setEnabled(false);
  auto* pressed = button("Options...");
  pressed->setDown(true);
  auto* on = button("Show");
  on->setAlternateTitle("Hide");
  on->setState(true);
  auto* plainOn = button("Show");
  plainOn->setState(true);
  auto* focused = button("Options...");
  giveKeyboard(focused);
  return {"Button",
          {{"at rest", button("Options...")},
           {"disabled", disabled},
           {"pressed", pressed},
           {"on, other title", on},
           {"on", plainOn},
           {"focused", focused}}};
}

ShownControl captureButtons() {
  auto* on = button("Capture");
  on->setState(true);
  auto* pressed = button("Capture");
  pressed->setDown(true);
  auto* disabled = button("Capture");
  disabled->setEnabled(false);
  return {"Recording button", {{"off", button("Capture")}, {"on", on}, {"pressed", pressed}, {"disabled", disabled}}};
}

ZQCaptureCheckBox* checkBox(Qt::CheckState state) {
  auto* control = new ZQCaptureCheckBox;
  control->setText("Cut scenes");
  control->setTristate(state == Qt::PartiallyChecked);
  control->setCheckState(state);
  awake(control);
  control->setFixedSize(110, control->sizeHint().height());
  return control;
}

ShownControl checkBoxes() {
  auto* disabled = checkBox(Qt::Checked);
  disabled->setEnabled(false);
  auto* focused = checkBox(Qt::Checked);
  giveKeyboard(focused);
  return {"Check box",
          {{"off", checkBox(Qt::Unchecked)},
           {"on", checkBox(Qt::Checked)},
           {"neither", checkBox(Qt::PartiallyChecked)},
           {"disabled", disabled},
           {"focused", focused}}};
}

ZQAccuratePopupButton* popUp(const QString& title) {
  auto* control = new ZQAccuratePopupButton;
  control->QComboBox::addItem(title);
  awake(control);
  control->setFixedSize(110, 20);
  return control;
}

ShownControl popUps() {
  auto* disabled = popUp("H.264");
  disabled->setEnabled(false);
  auto* focused = popUp("H.264");
  giveKeyboard(focused);
  auto* titled = popUp("Configurations");
  titled->setTag(11);
  QPixmap picture(32, 32);
  picture.fill(QColor(112, 147, 188));
  auto* pictured = popUp("Camcorder");
  pictured->setItemIcon(0, picture);
  auto* empty = popUp("None");
  empty->removeAllItems();
  return {"Pop-up",
          {{"at rest", popUp("H.264")},
           {"disabled", disabled},
           {"long title", popUp("FFV1, lossless, FLAC sound")},
           {"with a picture", pictured},
           {"tag 11", titled},
           {"empty", empty},
           {"focused", focused}}};
}

ZQAccurateSlider* slider(int value, int tickMarks) {
  auto* control = new ZQAccurateSlider;
  control->setOrientation(Qt::Horizontal);
  control->setRange(0, 4);
  control->setNumberOfTickMarks(tickMarks);
  control->setValue(value);
  awake(control);
  control->setFixedSize(110, 30);
  return control;
}

ShownControl sliders() {
  auto* disabled = slider(2, 0);
  disabled->setEnabled(false);
  auto* focused = slider(2, 0);
  giveKeyboard(focused);
  return {"Slider",
          {{"empty", slider(0, 0)},
           {"half", slider(2, 0)},
           {"full", slider(4, 0)},
           {"tick marks", slider(3, 5)},
           {"disabled", disabled},
           {"focused", focused}}};
}

ZQAccurateTextField* textField(const QString& text, int height) {
  auto* control = new ZQAccurateTextField;
  control->setText(text);
  control->setPlaceholderText("Name");
  awake(control);
  control->setFixedSize(110, height);
  return control;
}

ShownControl textFields() {
  auto* disabled = textField("Tape 7", 22);
  disabled->setEnabled(false);
  auto* coloured = textField("2 clips failed", 22);
  coloured->setBackgroundColor({0.45F, 0.12F, 0.1F, 1});
  auto* selected = textField("Tape 7", 22);
  selected->selectAll();
  return {"Text field",
          {{"empty", textField("", 22)},
           {"filled", textField("Tape 7", 22)},
           {"disabled", disabled},
           {"selected", selected},
           {"background", coloured},
           {"30 high and more", textField("Tape 7", 40)}}};
}

ShownControl panels() {
  auto* box = new ZQAccurateShadowBox;
  box->setFixedSize(110, 60);
  auto* separator = new ZQRecaptureSeparatorBarre;
  separator->setFixedSize(110, 2);
  auto* background = new ZQCaptureBackgroundView;
  background->setBackgroudColor(QColor(30, 44, 62));
  background->setFixedSize(110, 60);
  return {"Panels", {{"shadow box", box}, {"separator", separator}, {"background", background}}};
}

QLabel* caption(const QString& text, const QColor& color) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setPixelSize(11);
  label->setFont(font);
  QPalette palette = label->palette();
  palette.setColor(QPalette::WindowText, color);
  label->setPalette(palette);
  return label;
}

void addRow(QGridLayout& grid, const ShownControl& shown) {
  const int row = grid.rowCount();
  grid.addWidget(caption(shown.title, Qt::white), row, 0, Qt::AlignVCenter);
  int column = 1;
  for (const ShownState& state : shown.states) {
    const int columns = state.control->width() > 200 ? 5 : 1;
    grid.addWidget(state.control, row, column, 1, columns, Qt::AlignLeft | Qt::AlignVCenter);
    grid.addWidget(caption(state.caption, QColor(160, 160, 160)), row + 1, column, 1, columns, Qt::AlignTop);
    column += columns;
  }
  grid.setRowMinimumHeight(row + 1, 24);
}

ZQAccurateControlPanelButton* transportButton(int tag) {
  auto* control = new ZQAccurateControlPanelButton;
  control->setTag(tag);
  awake(control);
  control->setFixedSize(control->sizeHint());
  return control;
}

/// The seven buttons; `change` is made to each.
QWidget* transport(const std::vector<int>& tags, void (*change)(ZQAccurateControlPanelButton&)) {
  auto* panel = new QWidget;
  auto* row = new QHBoxLayout(panel);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  for (const int tag : tags) {
    auto* control = transportButton(tag);
    change(*control);
    row->addWidget(control);
  }
  panel->setFixedSize(panel->sizeHint());
  return panel;
}

std::unique_ptr<QWidget> sheetOf(const std::vector<ShownControl>& rows) {
  auto sheet = std::make_unique<ZQCaptureBackgroundView>();
  auto* grid = new QGridLayout(sheet.get());
  grid->setContentsMargins(16, 8, 16, 16);
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(2);
  for (const ShownControl& row : rows) addRow(*grid, row);
  sheet->resize(sheet->sizeHint());
  return sheet;
}

}  // namespace

std::unique_ptr<QWidget> controlSheet() {
  return sheetOf({buttons(), captureButtons(), checkBoxes(), popUps(), sliders(), textFields(), panels()});
}

std::unique_ptr<QWidget> transportSheet() {
  using Button = ZQAccurateControlPanelButton;
  const std::vector<int> capture{10, 20, 11, 13, 12, 24, 14};
  const std::vector<int> recapture{30, 20, 11, 13, 12, 24, 34};
  return sheetOf(
      {{"Capture", {{"at rest", transport(capture, [](Button&) {})}}},
       {"", {{"on", transport(capture, [](Button& control) { control.setState(true); })}}},
       {"", {{"under the pointer", transport(capture, [](Button& control) { bringPointer(&control); })}}},
       {"", {{"disabled: the same look", transport(capture, [](Button& control) { control.setEnabled(false); })}}},
       {"", {{"focused", transport(capture, [](Button& control) { giveKeyboard(&control); })}}},
       {"Recapture", {{"pressed", transport(recapture, [](Button& control) { control.setDown(true); })}}},
       {"", {{"on", transport(recapture, [](Button& control) { control.setState(true); })}}}});
}

}  // namespace zq::host
