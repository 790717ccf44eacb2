#include "host/devices_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/exit_codes.h"

namespace zq::host {

int runDevices(const DevicesOptions& options) {
  // Decks on the FireWire bus come with the backend that drives them; a tape image is a device wherever it lies.
  if (options.json) {
    fmt::print("{}\n", nlohmann::ordered_json({{"devices", nlohmann::ordered_json::array()}}).dump(2));
    return kExitOk;
  }
  fmt::print(
      "Camcorders and decks on the FireWire bus are not supported yet.\n\n"
      "A tape image, a raw DV file, plays in the simulated deck:\n"
      "  deckhand capture --device tape:PATH --output DIR\n");
  return kExitOk;
}

}  // namespace zq::host
