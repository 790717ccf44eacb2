#pragma once
// Outlets without a screen: they remember what they were told.

#include <any>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "outlets/button.h"
#include "outlets/overlay.h"
#include "outlets/panel.h"
#include "outlets/pop_up.h"
#include "outlets/sheet.h"
#include "platform/thread.h"

namespace zq::platform {
class Runtime;
}

namespace zq::outlets {

/// Written and read from any thread. Shown, with the empty timecode and no date, at first.
class PlainOverlay final : public TimecodeOverlay {
 public:
  explicit PlainOverlay(platform::Runtime& runtime);

  void setTimecode(const SMPTETime& timecode) override;
  void setDate(DateValue date) override;
  void setHidden(bool hidden) override;

  SMPTETime timecode() const;
  DateValue date() const;
  bool isHidden() const;

 private:
  // Constant after construction.
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  SMPTETime timecode_;
  DateValue date_;
  bool hidden_ = false;
};

class PlainPopUp final : public PopUp {
 public:
  void addItem(std::string title, std::any representedObject) override;
  void removeAllItems() override;
  int itemCount() const override;
  std::string itemTitleAtIndex(int index) const override;
  std::any representedObjectAtIndex(int index) const override;
  void selectItemAtIndex(int index) override;
  int indexOfSelectedItem() const override { return selected_; }

 private:
  struct Item {
    std::string title;
    std::any representedObject;
  };

  /// Null where there is no such item.
  const Item* itemAtIndex(int index) const;

  std::vector<Item> items_;
  int selected_ = -1;
};

/// Off at first. From any thread.
class PlainButton final : public Button {
 public:
  void setState(bool on) override { on_ = on; }
  bool state() const override { return on_; }

 private:
  std::atomic<bool> on_ = false;
};

/// Hidden at first. From any thread.
class PlainPanel final : public Panel {
 public:
  void setShown(bool shown) override { shown_ = shown; }
  bool isShown() const override { return shown_; }

 private:
  std::atomic<bool> shown_ = false;
};

/// Off screen at first. Main thread only.
class PlainSheet final : public Sheet {
 public:
  void beginSheet(std::function<void()> didEnd) override;
  void endSheet() override;
  void orderOut() override { onScreen_ = false; }
  bool isOnScreen() const { return onScreen_; }

 private:
  std::function<void()> didEnd_;
  bool onScreen_ = false;
};

}  // namespace zq::outlets
