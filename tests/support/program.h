#pragma once
// Runs `deckhand` as a user does.

#include <string>
#include <utility>
#include <vector>

#include "support/running_program.h"

namespace zq::test {

/// `deckhand` with these words behind it.
inline ProgramResult runDeckhand(const ProgramFolder& folder, std::vector<std::string> words) {
  words.insert(words.begin(), DECKHAND_PROGRAM);
  return RunningProgram(folder, std::move(words)).wait();
}

}  // namespace zq::test
