#include "host/make_tape_command.h"

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "host/exit_codes.h"
#include "host/text.h"

namespace zq::host {
namespace {

// A day's recordings, when nothing else is asked for: three scenes, the last one a week later.
constexpr const char* kDefaultScenes[] = {"2004-07-15T13:30:45,4", "2004-07-15T13:42:10,3", "2004-07-22T09:05:00,5"};

constexpr double kLongestScene = 24.0 * 3600;

Error wrongScene(const std::string& text, const std::string& why) {
  return {"--scene " + text + ": " + why,
          "Write it as DATE,SECONDS[,TIMECODE], as in 2004-07-15T13:30:45,10,00:00:00:00 (DATE may be none)."};
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> fields;
  std::stringstream stream(text);
  for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
  return fields;
}

bool parseDate(const std::string& text, StampDateTime& date) {
  int end = 0;
  const int count = std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &date.year, &date.month, &date.day,
                                &date.hours, &date.minutes, &date.seconds, &end);
  const bool whole = count == 6 && text[static_cast<std::size_t>(end)] == '\0';
  // The tape has two digits for the year, which are read as 1925 to 2024.
  const std::chrono::year_month_day day{std::chrono::year{date.year},
                                        std::chrono::month{static_cast<unsigned>(date.month)},
                                        std::chrono::day{static_cast<unsigned>(date.day)}};
  return whole && date.year >= 1925 && date.year <= 2024 && day.ok() && date.hours >= 0 && date.hours <= 23 &&
         date.minutes >= 0 && date.minutes <= 59 && date.seconds >= 0 && date.seconds <= 59;
}

bool parseTimecode(const std::string& text, int timebase, SMPTETime& timecode) {
  int hours = 0;
  int minutes = 0;
  int seconds = 0;
  int frames = 0;
  int end = 0;
  if (std::sscanf(text.c_str(), "%2d:%2d:%2d:%2d%n", &hours, &minutes, &seconds, &frames, &end) != 4) return false;
  if (text[static_cast<std::size_t>(end)] != '\0') return false;
  if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59) return false;
  if (frames < 0 || frames >= timebase) return false;
  timecode.mHours = static_cast<std::int16_t>(hours);
  timecode.mMinutes = static_cast<std::int16_t>(minutes);
  timecode.mSeconds = static_cast<std::int16_t>(seconds);
  timecode.mFrames = static_cast<std::int16_t>(frames);
  return true;
}

}  // namespace

Expected<SceneOrder> parseScene(const std::string& text, DVSystem system) {
  const std::vector<std::string> fields = split(text);
  if (fields.size() < 2 || fields.size() > 3) return wrongScene(text, "it has not two or three parts");
  SceneOrder scene;
  if (fields[0] != "none") {
    StampDateTime date;
    if (!parseDate(fields[0], date)) {
      return wrongScene(text, "\"" + fields[0] + "\" is not a date from 1925 to 2024, which is what a tape can hold");
    }
    scene.date = date;
  }
  char* end = nullptr;
  const double seconds = std::strtod(fields[1].c_str(), &end);
  const FrameRate rate = frameRateOf(system);
  const double frames = seconds * rate.numerator / rate.denominator;
  if (fields[1].empty() || *end != '\0' || !(seconds > 0) || seconds > kLongestScene || std::lround(frames) < 1) {
    return wrongScene(text, "\"" + fields[1] + "\" is not a length in seconds");
  }
  scene.frames = static_cast<int>(std::lround(frames));
  if (fields.size() == 3) {
    SMPTETime timecode;
    if (!parseTimecode(fields[2], timebaseOf(system), timecode)) {
      return wrongScene(text, "\"" + fields[2] + "\" is not a timecode HH:MM:SS:FF of this system");
    }
    scene.timecode = timecode;
  }
  return scene;
}

int runMakeTape(const MakeTapeOptions& options, Console& console) {
  const DVSystem system = options.system == "ntsc" ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
  std::vector<std::string> texts = options.scenes;
  if (texts.empty()) texts.assign(std::begin(kDefaultScenes), std::end(kDefaultScenes));
  std::vector<SceneOrder> scenes;
  for (const std::string& text : texts) {
    auto scene = parseScene(text, system);
    if (!scene.ok()) {
      console.error(scene.error());
      return kExitUsage;
    }
    scenes.push_back(scene.value());
  }
  auto module = loadBackendModule();
  if (!module.ok()) {
    console.error(module.error());
    return kExitFailed;
  }
  const bool onTerminal = ::isatty(STDERR_FILENO) != 0;
  const Status status =
      module.value()->makeTape(options.output, system, scenes, [onTerminal](std::int64_t made, std::int64_t inAll) {
        if (!onTerminal) return;
        fmt::print(stderr, "\r\033[K{} of {} frames", made, inAll);
        std::fflush(stderr);
      });
  if (onTerminal) fmt::print(stderr, "\r\033[K");
  if (!status.ok()) {
    console.error(status.error());
    return kExitFailed;
  }
  int frames = 0;
  for (const SceneOrder& scene : scenes) frames += scene.frames;
  fmt::print("{}: {}, {} of {}\n", options.output, counted(static_cast<std::int64_t>(scenes.size()), "scene"),
             counted(frames, "frame"), nameOf(system));
  return kExitOk;
}

}  // namespace zq::host
