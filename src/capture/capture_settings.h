#pragma once
// The live capture settings, read from the per-user store at the moment of use.

#include "platform/settings.h"

namespace zq {

/// What becomes of the tape when a recording ends: the values of "actionAfterRecord".
enum class ActionAfterRecord { leave = 0, stop = 1, pause = 2 };

/// Seconds between two thumbnails. An index outside the table, which nothing but an edited store can hold, counts as 0:
/// every frame.
int frameSampleIntervalOf(const platform::Settings& store);

class CaptureSettings {
 public:
  explicit CaptureSettings(platform::Settings& store) : store_(store) {}

  /// Writes the default under each live key that the store has no object for.
  static void registerDefaults(platform::Settings& store);

  bool detectScene() const;
  int nbDropFrame() const;
  bool detectEndTape() const;
  int detectEndTapeSecond() const;
  /// Any number but 1 and 2 leaves the tape as it is.
  ActionAfterRecord actionAfterRecord() const;
  bool frameSampling() const;
  int frameSampleInterval() const { return frameSampleIntervalOf(store_); }
  bool captureMovie() const;

 private:
  platform::Settings& store_;
};

}  // namespace zq
