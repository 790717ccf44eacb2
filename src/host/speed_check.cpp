#include "host/speed_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "capture/capture_settings.h"
#include "capture/custom_compression.h"

namespace zq::host {
namespace {

using platform::QTSampleBuffer;

// Two seconds of tape: an encoder that looks ahead has shown by then what it can do. One that is very slow shows it on
// fewer frames, and nobody waits for minutes to hear of it.
constexpr std::int64_t kFrames = 50;
constexpr std::array<std::size_t, 3> kGoes{2, 10, kFrames};
constexpr double kHopeless = 0.1;
// The tape's pace, and something for the rest of the machine.
constexpr double kEnough = 1.1;

/// From the middle of the tape; its beginning is often blank, and quick to compress.
std::int64_t firstFrameFor(const backend::TapeImage& tape) {
  std::error_code failed;
  const auto size = std::filesystem::file_size(tape.path(), failed);
  if (failed) return 0;
  const auto frames = static_cast<std::int64_t>(size / frameSizeOf(tape.system()));
  return frames > 2 * kFrames ? frames / 2 : 0;
}

/// Of one system, as the frames of a movie are.
std::vector<QTSampleBuffer> someFrames(backend::TapeImage& tape) {
  std::vector<QTSampleBuffer> frames;
  const std::int64_t first = firstFrameFor(tape);
  std::optional<DVSystem> system;
  for (std::int64_t frame = first; frame < first + kFrames; ++frame) {
    const auto location = tape.locate(frame);
    if (!location.ok() || !location.value() || location.value()->system != system.value_or(location.value()->system)) {
      break;
    }
    system = location.value()->system;
    auto bytes = tape.frameBytes(*location.value());
    if (!bytes.ok()) break;
    QTSampleBuffer buffer;
    buffer.formatDescription.mediaType = platform::QTMediaTypeVideo;
    buffer.bytesForAllSamples = bytes.value();
    frames.push_back(std::move(buffer));
  }
  return frames;
}

std::shared_ptr<const platform::QTCompressionOptions> optionsOf(platform::CompressionPlatform& compression,
                                                                RunSettings& settings, Log& log) {
  const RunCompression& chosen = settings.compression();
  if (settings.menu().presetAt(chosen.index) != nullptr) {
    return compression.compressionOptionsWithIdentifier(chosen.identifier);
  }
  return zq::CustomCompression(compression, settings.live(), log).options(chosen.sizeTag);
}

struct MeasuredSpeed {
  Expected<double> speed;
  std::size_t frames;
};

MeasuredSpeed measure(BackendModule& module, const std::shared_ptr<const platform::QTCompressionOptions>& options,
                      const std::string& extension, const std::vector<QTSampleBuffer>& frames,
                      const std::function<bool()>& stopAsked) {
  MeasuredSpeed measured{0.0, 0};
  for (const std::size_t go : kGoes) {
    measured.frames = std::min(go, frames.size());
    const auto last = frames.begin() + static_cast<std::ptrdiff_t>(measured.frames);
    measured.speed = module.measureCompression(options, extension, {frames.begin(), last});
    const bool isKnown = !measured.speed.ok() || measured.speed.value() < kHopeless || go >= frames.size();
    if (isKnown || stopAsked()) break;
  }
  return measured;
}

}  // namespace

void warnIfTooSlow(BackendModule& module, platform::CompressionPlatform& compression, RunSettings& settings,
                   const std::string& extension, backend::TapeImage& tape, Log& log,
                   const std::function<bool()>& stopAsked) {
  const RunCompression& chosen = settings.compression();
  if (!chosen.isCompressed() || !CaptureSettings(settings.live()).captureMovie()) return;
  const std::vector<QTSampleBuffer> frames = someFrames(tape);
  const auto [speed, count] = measure(module, optionsOf(compression, settings, log), extension, frames, stopAsked);
  if (stopAsked()) return;
  if (!speed.ok()) {
    log.write(LogLevel::warning, "How fast " + chosen.name +
                                     " is compressed on this machine could not be measured: " + speed.error().text());
    return;
  }
  const std::string measured = fmt::format(
      "{} is compressed at {:.2f} times the tape's pace on this machine, as {} "
      "frames of the tape showed",
      chosen.name, speed.value(), count);
  if (speed.value() >= kEnough) return log.write(LogLevel::info, measured + ".");
  log.write(LogLevel::warning,
            measured + fmt::format("; {:.1f} times are needed. Frames will be lost when the queue of waiting frames is "
                                   "full. Choose a faster compression, or let the tape wait: without --real-time.",
                                   kEnough));
}

}  // namespace zq::host
