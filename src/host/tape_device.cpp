#include "host/tape_device.h"

#include <filesystem>

#include "backends/time/real_runtime.h"
#include "backends/time/virtual_runtime.h"

namespace zq::host {
namespace {

constexpr char kTapePrefix[] = "tape:";

}  // namespace

Expected<std::shared_ptr<backend::TapeImage>> openDevice(const std::string& device) {
  if (!device.starts_with(kTapePrefix)) {
    return Error{"There is no device \"" + device + "\"",
                 "A tape image is played as tape:PATH, as in tape:" + (device.empty() ? "holiday.dv" : device) + "."};
  }
  return backend::TapeImage::open(device.substr(sizeof(kTapePrefix) - 1));
}

std::string tapeNameOf(const std::string& device) {
  const std::string stem = std::filesystem::path(device.substr(device.find(':') + 1)).stem().string();
  return stem.empty() ? "tape" : stem;
}

std::unique_ptr<platform::Runtime> makeRuntime(Pace pace) {
  if (pace == Pace::realTime) return std::make_unique<backend::RealRuntime>();
  backend::VirtualOptions options;
  options.overlapsWorkAside = pace == Pace::virtualTimeOnAllProcessors;
  return std::make_unique<backend::VirtualRuntime>(options);
}

backend::DeckOptions deckOptions(bool realTime, bool compresses) {
  backend::DeckOptions options;
  options.live = realTime && compresses;
  return options;
}

platform::Duration lookInterval(bool realTime) {
  return realTime ? platform::Duration(std::chrono::milliseconds(200)) : std::chrono::seconds(1);
}

}  // namespace zq::host
