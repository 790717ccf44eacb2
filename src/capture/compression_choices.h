#pragma once
// The choices of compression in the order of their pop-up: as received, the platform's presets, own settings.

#include <cstddef>
#include <memory>
#include <vector>

#include "base/log.h"
#include "outlets/pop_up.h"
#include "platform/compression.h"
#include "platform/strings.h"

namespace zq {

using CompressionValue = std::shared_ptr<const platform::QTCompressionOptions>;

/// Main thread only.
class CompressionChoices {
 public:
  /// `popUp` may be null: the choice is then kept here.
  CompressionChoices(platform::CompressionPlatform& platform, const platform::Strings& strings, Log& log,
                     outlets::PopUp* popUp);

  /// How many presets the platform lists.
  std::size_t presetCount() const;
  /// Fills list and pop-up anew, with the first `presets` of the platform's.
  void build(std::size_t presets);
  const std::vector<CompressionValue>& all() const { return all_; }

  /// Selects the item of this index and returns what it stands for. A preset that was stored on another machine may be
  /// missing here: the first item, as received, takes the place of an index that is none.
  CompressionValue select(int index);
  bool has(int index) const { return index >= 0 && index < static_cast<int>(all_.size()); }
  CompressionValue selectLast() { return select(static_cast<int>(all_.size()) - 1); }
  /// Of the pop-up's item, which the user may have selected.
  int indexOfSelectedItem() const;

 private:
  void add(CompressionValue options);

  // Constant after construction.
  platform::CompressionPlatform& platform_;
  const platform::Strings& strings_;
  Log& log_;
  outlets::PopUp* const popUp_;

  std::vector<CompressionValue> all_;
  int selected_ = 0;
};

}  // namespace zq
