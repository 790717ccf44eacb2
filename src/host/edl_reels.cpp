#include "host/edl_reels.h"

#include <set>

namespace zq::host {
namespace {

constexpr std::size_t kReelLength = 8;

/// Reels that mean something else: black, and what comes from no tape.
bool isReserved(const std::string& reel) {
  return reel == "BL" || reel == "AX";
}

std::string numbered(const std::string& reel, int number) {
  const std::string digits = std::to_string(number);
  return reel.substr(0, kReelLength - digits.size()) + digits;
}

}  // namespace

std::string plainReelName(const std::string& tape) {
  std::string reel;
  for (const char c : tape) {
    if (c >= 'a' && c <= 'z') reel += static_cast<char>(c - 'a' + 'A');
    if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) reel += c;
    if (reel.size() == kReelLength) break;
  }
  return reel.empty() || isReserved(reel) ? "TAPE" + reel : reel;
}

std::vector<std::string> reelNames(const std::vector<std::string>& tapes) {
  std::set<std::string> taken;
  for (const std::string& tape : tapes) {
    if (plainReelName(tape) == tape) taken.insert(tape);
  }
  std::vector<std::string> reels;
  for (const std::string& tape : tapes) {
    std::string reel = plainReelName(tape);
    if (reel != tape) {
      const std::string base = reel;
      for (int number = 2; !taken.insert(reel).second; ++number) reel = numbered(base, number);
    }
    reels.push_back(reel);
  }
  return reels;
}

}  // namespace zq::host
