#pragma once
// The device that a command names, and the time that it runs in.

#include <memory>
#include <string>

#include "backends/deck/deck_options.h"
#include "backends/deck/tape_image.h"
#include "base/status.h"
#include "platform/runtime.h"

namespace zq::host {

/// "tape:PATH" is a tape image; there is no other device.
Expected<std::shared_ptr<backend::TapeImage>> openDevice(const std::string& device);
/// The name of the device's tape image without its extension; "tape" where it has none.
std::string tapeNameOf(const std::string& device);
/// The deck's own pace; or virtual time: as fast as the machine can, and with one processor the same from run to run.
enum class Pace { realTime, virtualTime, virtualTimeOnAllProcessors };
std::unique_ptr<platform::Runtime> makeRuntime(Pace pace);
/// A tape image waits for who takes its frames. At its own pace, for movies that are compressed, it does as a camcorder
/// does: it plays on, and a frame that nobody has room for is lost.
backend::DeckOptions deckOptions(bool realTime, bool compresses);
/// How often a command looks at what goes on, in that time.
platform::Duration lookInterval(bool realTime);

}  // namespace zq::host
