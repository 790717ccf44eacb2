#include "host/progress_line.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "host/text.h"

namespace zq::host {
namespace {

std::string queueText(const std::optional<QueueProgress>& queue) {
  return queue ? fmt::format("  queue {}/{}", queue->held, queue->capacity) : "";
}

}  // namespace

ProgressLine::ProgressLine(platform::Clock& wall)
    : wall_(wall), onTerminal_(::isatty(STDERR_FILENO) != 0), start_(wall.now()) {}

void ProgressLine::show(const CaptureProgress& progress) {
  if (!onTerminal_) return;
  const double seconds = std::chrono::duration<double>(wall_.now() - start_).count();
  const double tapeSeconds = static_cast<double>(progress.frames) / progress.framesPerSecond;
  const std::string timecode = textOf(progress.timecode);
  const std::string date = textOf(progress.recordingDate);
  fmt::print(stderr, "\r\033[K{}  {}  clip {}  {} frames  {:.1f}x  {} dropped{}",
             timecode.empty() ? "--:--:--:--" : timecode, date.empty() ? "no date" : date, progress.clip,
             progress.frames, seconds > 0 ? tapeSeconds / seconds : 0.0, progress.dropped, queueText(progress.queue));
  std::fflush(stderr);
  shown_ = true;
}

void ProgressLine::show(const RecaptureProgress& progress) {
  if (!onTerminal_) return;
  const std::string timecode = textOf(progress.timecode);
  const std::string date = textOf(progress.recordingDate);
  fmt::print(stderr, "\r\033[K{}  {}  {} of {}{}  {}", timecode.empty() ? "--:--:--:--" : timecode,
             date.empty() ? "no date" : date, progress.recaptured, counted(progress.inAll, "clip"),
             queueText(progress.queue), progress.note);
  std::fflush(stderr);
  shown_ = true;
}

void ProgressLine::clear() {
  if (!shown_) return;
  fmt::print(stderr, "\r\033[K");
  std::fflush(stderr);
  shown_ = false;
}

}  // namespace zq::host
