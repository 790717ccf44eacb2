#pragma once
// Random tapes of records, and random users and tapes that move, for comparing the recapture controller with the model.

#include <algorithm>
#include <optional>
#include <random>
#include <vector>

#include "support/recapture_model.h"
#include "support/recapture_tape.h"

namespace zq::test {

class RandomChoice {
 public:
  explicit RandomChoice(std::uint64_t seed) : random_(seed) {}
  int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }
  bool oneIn(int count) { return below(count) == 0; }
  bool percent(int chance) { return below(100) < chance; }

 private:
  std::mt19937_64 random_;
};

/// Clips of up to six seconds. Dates go on, jump or share a second; timecodes run on or begin again.
inline std::vector<std::vector<ClipPlan>> randomPlans(RandomChoice& choice) {
  std::vector<std::vector<ClipPlan>> sequences(static_cast<std::size_t>(1 + choice.below(3)));
  int date = 1000;
  int timecode = choice.oneIn(2) ? 0 : 1000;
  for (auto& plans : sequences) {
    const int clips = 1 + choice.below(3);
    for (int i = 0; i < clips; ++i) {
      if (choice.oneIn(3)) timecode = choice.below(50);
      plans.push_back({date, timecode, 2 + choice.below(150), !choice.oneIn(4)});
      date += plans.back().frames / 25 + choice.below(4);
      timecode += plans.back().frames;
    }
    date += choice.oneIn(5) ? -3 : choice.below(20);
  }
  return sequences;
}

/// Takes random steps with `Both`, which has the model and hands each step to the model and to the controller.
template <typename Both>
class RandomRecapture {
 public:
  RandomRecapture(RandomChoice& choice, Both& both) : choice_(choice), both_(both) { teases_ = choice.oneIn(2); }

  void run(int runs) {
    both_.setModeTag(choice_.oneIn(3) ? choice_.below(4) : 0);
    both_.startButton();
    for (int i = 0; i < runs && both_.agrees(); ++i) {
      if (model().left <= 0 && choice_.oneIn(3)) break;
      if (teases_) tease();
      playRun();
    }
    both_.rest(6100);
  }

 private:
  const RecaptureModel& model() const { return both_.model(); }

  void tease() {
    if (choice_.percent(8)) both_.startButton();
    if (choice_.percent(4)) both_.open();
    if (choice_.percent(3)) both_.setModeTag(choice_.below(4));
    if (choice_.percent(5)) both_.setControllable(!choice_.oneIn(3));
    if (choice_.percent(5)) both_.setAlertAnswer(choice_.below(2));
    if (choice_.percent(8)) setAnswers();
    if (choice_.percent(3)) both_.fileFinished();
    if (choice_.percent(8)) both_.rest(choice_.oneIn(2) ? 2700 : 6100);
    if (choice_.percent(15)) turnDeck();
  }
  void setAnswers() {
    constexpr ModelAnswer kAnswers[] = {ModelAnswer::path, ModelAnswer::path, ModelAnswer::noPath,
                                        ModelAnswer::nothing};
    both_.setAnswers(!choice_.oneIn(5), !choice_.oneIn(5), kAnswers[choice_.below(4)]);
  }
  void turnDeck() {
    constexpr long kSpeeds[] = {0, 0, 10000, 10000, 13000, -13000, 1000, -7000, 19000, -10000, 5};
    both_.deckTurns({choice_.oneIn(4) ? 0UL : 1UL, kSpeeds[choice_.below(11)]});
  }

  void playRun() {
    if (!model().started && choice_.oneIn(2)) return both_.startButton();
    if (model().done && choice_.oneIn(2)) return both_.open();
    if (model().prerolling && choice_.oneIn(2)) return both_.rest(2700);
    if (model().recording && choice_.percent(70)) return playTargetToItsEnd();
    if (model().target >= 0 && model().settled >= 251 && choice_.percent(40)) return playStart();
    const ModelClip& clip = anyClip();
    if (model().settled < 251 && choice_.percent(40)) return playAt(clip, choice_.below(150), 252);
    playThrough(clip, choice_.below(200) - 25, choice_.oneIn(2) ? 1 : -1 - choice_.below(3), choice_.below(40));
  }

  const ModelClip& anyClip() {
    return model().tape.clips[static_cast<std::size_t>(choice_.below(static_cast<int>(model().tape.clips.size())))];
  }
  const ModelClip& target() const { return model().tape.clips[static_cast<std::size_t>(std::max(0, model().target))]; }

  void playAt(const ModelClip& clip, int frame, int times) {
    const int timecode = std::max(0, clip.firstTimecode + frame);
    const bool undated = choice_.percent(4);
    const bool without = choice_.percent(4);
    both_.frames(times, without ? std::nullopt : std::optional(timecode),
                 undated ? std::nullopt : std::optional(clip.firstDate + frame / 25));
  }
  void playThrough(const ModelClip& clip, int from, int step, int count) {
    for (int i = 0; i < count && both_.agrees(); ++i) playAt(clip, from + i * step, 1);
  }
  void playStart() {
    playAt(target(), choice_.oneIn(3) ? choice_.below(40) : 0, 1);
    if (!choice_.oneIn(4)) both_.rest(6100);
  }
  void playTargetToItsEnd() {
    const ModelClip clip = target();
    const int step = choice_.oneIn(3) ? 2 + choice_.below(5) : 1;
    const int length = clip.lastTimecode - clip.firstTimecode;
    playThrough(clip, -3 - choice_.below(5), step, (length + 12) / step);
    if (!choice_.oneIn(5)) both_.fileFinished();
  }

  RandomChoice& choice_;
  Both& both_;
  bool teases_ = false;
};

}  // namespace zq::test
