#pragma once
// What kind of deck the simulated one is, and what goes wrong with it.

#include <cstdint>
#include <optional>

#include "platform/clock.h"

namespace zq::backend {

/// How fast the tape moves, in thousandths of normal speed.
struct DeckSpeeds {
  std::int64_t wind = 25000;
  std::int64_t slow[3] = {100, 250, 500};       // speeds 1000, 4000, 7000
  std::int64_t search[3] = {2000, 5000, 9000};  // speeds 13000, 16000, 19000
};

/// How long the deck takes to obey.
struct DeckReactions {
  platform::Duration command{};   // any command
  platform::Duration threadUp{};  // more, from a stopped tape
  platform::Duration spinDown{};  // more, from a winding tape
};

/// All off by default. Probabilities are per frame or per command, 0 to 1.
struct DeckFaults {
  double droppedFrames = 0;
  double damagedFrames = 0;
  double undatedFrames = 0;
  double staleSearchFrames = 0;  // half the sequences are those of an earlier frame
  double refusedCommands = 0;
  platform::Duration lateStatus{};  // the transport attribute follows this much later
  std::optional<std::int64_t> cableLostAfterFrames;
};

struct DeckOptions {
  DeckSpeeds speeds;
  DeckReactions reactions;
  DeckFaults faults;
  /// Draws the faults; the same seed gives the same ones.
  std::uint64_t seed = 1;
  /// As a camcorder: it plays on while the delivery of its frames is held up, and loses those that pass meanwhile. A
  /// tape image by itself waits.
  bool live = false;
};

}  // namespace zq::backend
