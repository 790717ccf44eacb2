// Embeds the capture controller in a program of your own: it captures a tape image and prints its clips.
//
//   embed_capture TAPE.dv FOLDER
//
// The order of things: a runtime, the services, a session platform, a device, the controller; then a delegate that says
// where clips go and hears what was in them.

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "backends/deck/simulated_deck.h"
#include "backends/media/compression_platform.h"
#include "backends/media/movie_writer_factory.h"
#include "backends/session/session_platform.h"
#include "backends/settings/memory_settings.h"
#include "backends/time/virtual_runtime.h"
#include "capture/controller.h"
#include "timecode/timecode_text.h"

namespace {

class StandardErrorLog : public zq::Log {
 public:
  void write(zq::LogLevel /*level*/, std::string_view message) override { std::cerr << message << '\n'; }
};

class StandardErrorAlerts : public zq::platform::Alerts {
 public:
  int runModal(const std::string& message, const std::string& informative) override {
    std::cerr << message << ' ' << informative << '\n';
    return kDefaultButton;
  }
};

class UntranslatedStrings : public zq::platform::Strings {
 public:
  std::string localizedString(const std::string& key, const std::string& /*table*/) const override { return key; }
};

std::string textOf(const zq::TimecodeValue& timecode) {
  return timecode ? zq::timecodeText(*timecode) : "none";
}

/// Numbers the clips, and prints each when it has ended.
zq::ZQACControllerDelegate printingDelegate(const std::filesystem::path& folder, zq::platform::MainLoop& loop) {
  zq::ZQACControllerDelegate delegate;
  auto opened = std::make_shared<int>(0);
  delegate.accontrollerWillRecord = [folder, opened](zq::ZQACController&) {
    const std::string name = "clip-" + std::to_string((*opened)++);
    return zq::ClipPaths{name, folder / (name + ".mov"), folder / (name + ".thumbnails.dv")};
  };
  delegate.accontrollerDidRecordInfo = [opened](zq::ZQACController&, const zq::ClipInfo& clip) {
    // The first dated frame cuts too, so a clip without frames comes before the first real one.
    if (!clip.clipStartTimecode) return;
    std::cout << "clip " << *opened - 1 << ": " << textOf(clip.clipStartTimecode) << " to "
              << textOf(clip.clipEndTimecode) << '\n';
  };
  delegate.accontrollerEndRecord = [&loop](zq::ZQACController&) { loop.quit(); };
  return delegate;
}

int capture(const std::string& tapePath, const std::filesystem::path& folder) {
  auto tape = zq::backend::TapeImage::open(tapePath);
  if (!tape.ok()) {
    std::cerr << tape.error().text() << '\n';
    return 1;
  }
  std::filesystem::create_directories(folder);

  // A RealRuntime in its place runs at the pace of a real deck.
  zq::backend::VirtualRuntime runtime;
  StandardErrorLog log;
  StandardErrorAlerts alerts;
  UntranslatedStrings strings;
  zq::backend::MemorySettings settings(runtime);
  zq::platform::NotificationCenter notifications;
  zq::media::MovieWriterFactory writers(&log);
  zq::media::CompressionPlatform compression(log);
  zq::backend::SessionPlatform platform(runtime, writers, log, {});
  const auto deck = std::make_shared<zq::backend::SimulatedDeck>(runtime, notifications, tape.value(),
                                                                 zq::backend::DeckOptions{}, log);
  const zq::ZQACControllerDelegate delegate = printingDelegate(folder, runtime.mainLoop());

  zq::ZQACController::initialize(settings);
  zq::ZQACController controller({runtime, platform, compression, settings, notifications, alerts, strings, log}, {});
  controller.setDelegate(&delegate);
  // The controller announces what the transport does. Asking whether it plays ends the recording when it does not.
  const auto observation = controller.keys().addObserver([&](const std::string& key, zq::KeyChange change) {
    if (key == "devicePlaying" && change == zq::KeyChange::didChange) controller.isDevicePlaying();
  });
  controller.setSelectedVideoDevice(deck);
  controller.setRecording(true);
  runtime.mainLoop().run();
  controller.setSelectedVideoDevice(nullptr);
  platform.finishFiles();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "Usage: embed_capture TAPE.dv FOLDER\n";
    return 2;
  }
  return capture(argv[1], argv[2]);
}
