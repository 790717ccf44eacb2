#include "host/session_report.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "host/setting_options.h"
#include "host/text.h"

namespace zq::host {

using nlohmann::ordered_json;

namespace {

// Room for the report of some thousand clips; a longer one asks for more when it is written.
constexpr off_t kReservedBytes{1 << 20};

ordered_json settingJson(const platform::SettingValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag;
  if (const std::int64_t* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const double* real = std::get_if<double>(&value)) return *real;
  if (const std::string* text = std::get_if<std::string>(&value)) return *text;
  return nullptr;
}

ordered_json clipJson(const CapturedClip& clip) {
  ordered_json json = {{kZQACClipId, clip.info.clipId.value_or("")},
                       {kZQACClipRecordingDate, jsonOf(textOf(clip.info.clipRecordingDate))},
                       {kZQACClipStartTimecode, jsonOf(textOf(clip.info.clipStartTimecode))},
                       {kZQACClipEndTimecode, jsonOf(textOf(clip.info.clipEndTimecode))},
                       {kZQACClipDuration, jsonOf(textOf(clip.info.clipDuration))},
                       {kZQACClipAspectRatio, clip.info.clipAspectRatio},
                       {kZQACMoviePath, jsonOf(clip.moviePath)},
                       {kZQACThumbnailsPath, jsonOf(clip.thumbnailPath)},
                       {"movieFrames", clip.movieFrames},
                       {"thumbnailFrames", clip.thumbnailFrames}};
  if (!clip.movieContinuations.empty()) json["movieContinuations"] = clip.movieContinuations;
  return json;
}

}  // namespace

ordered_json SessionReport::json(const platform::Settings& settings) const {
  ordered_json settingList = ordered_json::object();
  for (const std::string& key : settingKeys()) {
    if (const auto value = settings.objectForKey(key)) settingList[key] = settingJson(*value);
  }
  ordered_json clipList = ordered_json::array();
  for (const CapturedClip& clip : clips) clipList.push_back(clipJson(clip));
  ordered_json report = {{"device", device}, {"format", format}};
  if (!compression.empty()) report["compression"] = compression;
  if (!customCompression.empty()) report["customCompression"] = customCompression;
  if (!configuration.empty()) report["configuration"] = configuration;
  report["settings"] = settingList;
  report["clips"] = clipList;
  report["frames"] = {{"delivered", delivered}, {"recorded", recorded}, {"dropped", dropped}};
  report["ended"] = ended;
  if (!findings.empty()) report["findings"] = findings;
  if (!error.empty()) report["error"] = error;
  return report;
}

ReportFile::~ReportFile() {
  if (descriptor_ < 0) return;
  ::close(descriptor_);
  ::unlink(workingPath_.c_str());
}

Status ReportFile::reserve() {
  for (int counter = 1; descriptor_ < 0; ++counter) {
    workingPath_ = files_.inFolder(fmt::format(".capturing-{}.json", counter));
    descriptor_ = ::open(workingPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST) {
      return Error{"Cannot write into the output folder " + files_.folder(), std::strerror(errno)};
    }
  }
  if (::fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, 0, kReservedBytes) != 0 && errno == ENOSPC) {
    return Error{"The disk of the output folder " + files_.folder() + " is full", "Make room on it, or name another."};
  }
  return {};
}

Expected<std::string> ReportFile::write(const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(descriptor_, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Error{"Cannot write the report of the capture in " + files_.folder(), std::strerror(errno)};
    done += static_cast<std::size_t>(count);
  }
  // Gives back what was reserved and not needed.
  if (::ftruncate(descriptor_, static_cast<off_t>(text.size())) != 0) {
    return Error{"Cannot write the report of the capture in " + files_.folder(), std::strerror(errno)};
  }
  std::string path = files_.inFolder("session.json");
  for (int counter = 2; ::access(path.c_str(), F_OK) == 0; ++counter) {
    path = files_.inFolder(fmt::format("session-{}.json", counter));
  }
  if (Status status = moveWithoutOverwriting(workingPath_, path); !status.ok()) return status.error();
  ::close(descriptor_);
  descriptor_ = -1;
  return path;
}

}  // namespace zq::host
