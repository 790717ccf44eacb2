#pragma once
// All that a seed decides: the tape, how it was captured, and what the recapture meets.

#include <fmt/format.h>

#include <cstdint>
#include <string>

#include "backends/deck/deck_options.h"
#include "simulation/tape_plan.h"

namespace zq::test {

/// In how many sessions the tape was captured.
enum class Sessions { one, theSameTwice, twoParts, interruptedThenWhole };

class SimulationPlan {
 public:
  explicit SimulationPlan(std::uint64_t number)
      : seed(number),
        dice_(number),
        tape(dice_),
        sessions(dice_.oneIn(3)
                     ? dice_.oneOf({Sessions::theSameTwice, Sessions::twoParts, Sessions::interruptedThenWhole})
                     : Sessions::one),
        capturesMovies(!dice_.oneIn(3)),
        leftOutFrames(dice_.oneIn(4) ? dice_.from(1, 6) : 0),
        percentMarked(dice_.oneOf({20, 50, 100, 100})),
        wrongTapeShift(dice_.oneIn(12) ? dice_.oneOf({-400, 400, 1}) * dice_.from(40, 86400) : 0),
        interruptedAfter(dice_.oneIn(8) ? dice_.from(0, 300) : -1),
        manual(dice_.oneIn(12)),
        again(interruptedAfter >= 0 || dice_.oneIn(6)) {
    const auto milliseconds = dice_.oneOf({0, 300, 1000, 0, 300, 1000, 2000});
    deck.reactions.command = std::chrono::milliseconds(milliseconds);
    deck.seed = number;
    deck.live = dice_.oneIn(6);
    if (dice_.oneIn(2)) addFaults();
  }

  /// Whether nothing but an interrupt excuses a clip that is long enough and marked.
  bool isStrict() const {
    return !hasFaults && tape.timecodesRunOn() && deck.reactions.command <= std::chrono::seconds(1) &&
           wrongTapeShift == 0 && !manual;
  }

  std::string text() const {
    const auto& faults = deck.faults;
    return fmt::format(
        "{} frames of {}, timecodes {}, sessions {}, movies {}, {} frames left out, {} % marked, reaction {} ms, live "
        "{}, "
        "dropped {}, damaged {}, undated {}, stale {}, refused {}, late {} ms, cable {}, wrong tape {}, interrupted "
        "{}, "
        "manual {}",
        tape.frames().size(), tape.system() == DVSystem::pal625_50 ? "625/50" : "525/60",
        tape.timecodesRunOn() ? "run on" : "begin again", static_cast<int>(sessions), capturesMovies, leftOutFrames,
        percentMarked, deck.reactions.command / std::chrono::milliseconds(1), deck.live, faults.droppedFrames,
        faults.damagedFrames, faults.undatedFrames, faults.staleSearchFrames, faults.refusedCommands,
        faults.lateStatus / std::chrono::milliseconds(1), faults.cableLostAfterFrames.value_or(-1), wrongTapeShift,
        interruptedAfter, manual);
  }

  const std::uint64_t seed;

 private:
  void addFaults() {
    hasFaults = true;
    const auto rate = [this] { return dice_.oneOf({0.001, 0.01, 0.05}); };
    for (int kind = dice_.from(1, 2); kind > 0; --kind) {
      switch (dice_.from(0, 6)) {
        case 0:
          deck.faults.droppedFrames = rate();
          break;
        case 1:
          deck.faults.damagedFrames = rate();
          break;
        case 2:
          deck.faults.undatedFrames = rate();
          break;
        case 3:
          deck.faults.staleSearchFrames = 10 * rate();
          break;
        case 4:
          deck.faults.refusedCommands = 4 * rate();
          break;
        case 5:
          deck.faults.lateStatus = std::chrono::milliseconds(dice_.from(50, 2000));
          break;
        default:
          deck.faults.cableLostAfterFrames = dice_.from(1, 4000);
      }
    }
  }

  Dice dice_;

 public:
  TapePlan tape;
  const Sessions sessions;
  const bool capturesMovies;
  const int leftOutFrames;
  const int percentMarked;
  /// Seconds by which the dates of the tape in the deck differ from those of the one that was captured.
  const int wrongTapeShift;
  /// Looks of the host; below 0 it is not interrupted.
  const int interruptedAfter;
  const bool manual;
  /// The same clips are marked and recaptured once more, into the same folder, without an interrupt.
  const bool again;
  backend::DeckOptions deck;
  bool hasFaults = false;
};

}  // namespace zq::test
