// A swarm of seeds: random tapes are captured and recaptured on decks with random faults, and all that is left is
// audited.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "simulation/auditor.h"

namespace zq::test {
namespace {

constexpr std::uint64_t kSeedsOfABlock = 10;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing sets it
  return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

std::uint64_t firstSeed() {
  return fromEnvironment("DECKHAND_SEED_FROM", 1);
}
std::uint64_t endSeed() {
  return firstSeed() + fromEnvironment("DECKHAND_SEEDS", 200);
}

std::string reportOf(const SimulationPlan& plan, const host::RecaptureOutcome& outcome) {
  std::string text = fmt::format("seed {}; to replay it: scripts/simulate --seeds 1 --from {}\n{}\n", plan.seed,
                                 plan.seed, plan.text());
  for (const host::RecapturedClip& entry : outcome.clips) {
    text += fmt::format("clip {}: status {} {} {}\n", entry.clip.id, static_cast<int>(entry.status), entry.moviePath,
                        entry.reason);
  }
  if (outcome.error) text += outcome.error->text() + "\n";
  return text + plan.tape.text();
}

/// How many clips were recaptured, of how many.
struct Yield {
  int recaptured = 0;
  int marked = 0;
};

Yield simulate(std::uint64_t seed) {
  const SimulationPlan plan(seed);
  SCOPED_TRACE(fmt::format("seed {}; to replay it: scripts/simulate --seeds 1 --from {}", seed, seed));
  Simulation simulation(plan);
  simulation.capture();
  simulation.mark();
  const Recapture done = simulation.recapture(plan.interruptedAfter);
  EXPECT_THAT(Auditor(plan, done).findings(), testing::IsEmpty()) << reportOf(plan, done.outcome);
  if (plan.again) {
    simulation.mark();
    const Recapture second = simulation.recapture(-1);
    EXPECT_THAT(Auditor(plan, second).findings(), testing::IsEmpty())
        << "the second time: " << reportOf(plan, second.outcome);
  }
  const auto recaptured =
      std::ranges::count(done.outcome.clips, host::RecapturedClip::Status::recaptured, &host::RecapturedClip::status);
  return {static_cast<int>(recaptured), static_cast<int>(done.outcome.clips.size())};
}

class RecaptureSimulation : public testing::TestWithParam<std::uint64_t> {};

INSTANTIATE_TEST_SUITE_P(From, RecaptureSimulation, testing::Range(firstSeed(), endSeed(), kSeedsOfABlock),
                         [](const auto& block) { return "Seed" + std::to_string(block.param); });

TEST_P(RecaptureSimulation, LeavesWhatIsOnTheTape) {
  for (std::uint64_t seed = GetParam(); seed < std::min(GetParam() + kSeedsOfABlock, endSeed()); ++seed) {
    const Yield yield = simulate(seed);
    RecordProperty("seed" + std::to_string(seed), fmt::format("{} of {}", yield.recaptured, yield.marked));
  }
}

}  // namespace
}  // namespace zq::test
