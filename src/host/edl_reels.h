#pragma once
// Reels of an edit decision list stand for tapes, whose names may be longer than a reel's.

#include <string>
#include <vector>

namespace zq::host {

/// The name as a reel's: 1 to 8 characters of A to Z and 0 to 9. Not yet another's than all others'.
std::string plainReelName(const std::string& tape);

/// A reel for each tape, all different. The same tapes get the same reels, also when others are added behind them,
/// unless a later tape's name is a reel name as it stands, which it keeps.
std::vector<std::string> reelNames(const std::vector<std::string>& tapes);

}  // namespace zq::host
