#pragma once
// A list of choices, of which one is selected.

#include <any>
#include <string>

namespace zq::outlets {

/// Main thread only. Items are numbered from 0.
class PopUp {
 public:
  virtual ~PopUp() = default;

  /// Appends an item that stands for `representedObject`. The first item of an empty pop-up becomes the selected one.
  virtual void addItem(std::string title, std::any representedObject) = 0;
  virtual void removeAllItems() = 0;
  virtual int itemCount() const = 0;
  /// The title, or "" where there is no such item.
  virtual std::string itemTitleAtIndex(int index) const = 0;
  /// What the item stands for; empty where there is no such item.
  virtual std::any representedObjectAtIndex(int index) const = 0;

  /// An index out of range selects none.
  virtual void selectItemAtIndex(int index) = 0;
  /// -1 for none.
  virtual int indexOfSelectedItem() const = 0;
};

}  // namespace zq::outlets
