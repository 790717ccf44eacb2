#include "host/catalogue_entry.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

#include "dv/dv_system.h"
#include "host/text.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;

/// Without "." and a slash at the end. Links stay, since they may be what holds a path together when disks move; ".."
/// stays because with links it may not be what it looks like.
std::string absoluteFolder(const std::string& folder) {
  std::error_code failed;
  fs::path clean;
  for (const fs::path& part : fs::absolute(folder, failed)) {
    if (part != "." && !part.empty()) clean /= part;
  }
  return failed ? folder : clean.string();
}

/// With all that the catalogue reads of a timecode: its numbers, and the system in which they count.
std::optional<SMPTETime> timecodeIn(DVSystem system, const TimecodeValue& value) {
  if (!value) return std::nullopt;
  SMPTETime time;
  time.mType = system == DVSystem::pal625_50 ? 1 : 2;
  time.mHours = value->mHours;
  time.mMinutes = value->mMinutes;
  time.mSeconds = value->mSeconds;
  time.mFrames = value->mFrames;
  return time;
}

/// The name that a clip's files share.
std::string stemOf(const CapturedClip& clip) {
  const std::string& file = clip.moviePath.empty() ? clip.thumbnailPath : clip.moviePath;
  // A thumbnails file has two extensions.
  const fs::path stem = fs::path(file).stem();
  return clip.moviePath.empty() && stem.extension() == ".thumbnails" ? stem.stem().string() : stem.string();
}

Expected<SharedBytes> firstBytesOf(const std::string& path, std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
  if (!file) return Error{"Cannot read the first thumbnail of " + path, "The clip is stored without a poster."};
  return SharedBytes::copyOf(bytes);
}

}  // namespace

CatalogueEntry::CatalogueEntry(const std::string& folder, MakePoster makePoster, Log& log)
    : folder_(absoluteFolder(folder)), makePoster_(std::move(makePoster)), log_(log) {}

CatalogueSequence CatalogueEntry::sequenceOf(const std::vector<CapturedClip>& clips) const {
  CatalogueSequence sequence;
  for (const CapturedClip& clip : clips) sequence.clips.push_back(clipOf(clip));
  sequence.name = nameOf(sequence.clips);
  return sequence;
}

std::string CatalogueEntry::nameOf(const std::vector<CatalogueClip>& clips) const {
  const auto dated =
      std::ranges::find_if(clips, [](const CatalogueClip& clip) { return clip.recordingDate != nullptr; });
  return dated != clips.end() ? textOf(dated->recordingDate) : fs::path(folder_).filename().string();
}

CatalogueClip CatalogueEntry::clipOf(const CapturedClip& captured) const {
  const DVSystem system = captured.system.value_or(DVSystem::pal625_50);
  CatalogueClip clip;
  clip.name = stemOf(captured);
  if (!captured.impossibleDate) clip.recordingDate = captured.info.clipRecordingDate;
  clip.startTimecode = timecodeIn(system, captured.info.clipStartTimecode);
  clip.endTimecode = timecodeIn(system, captured.info.clipEndTimecode);
  clip.duration = timecodeIn(system, captured.info.clipDuration);
  clip.timebase = timebaseOf(system);
  clip.aspectRatio = captured.info.clipAspectRatio;
  clip.moviePath = inFolder(captured.moviePath);
  clip.thumbnailPath = inFolder(captured.thumbnailPath);
  clip.movieFrames = captured.movieFrames;
  clip.thumbnailFrames = captured.thumbnailFrames;
  clip.poster = posterOf(captured);
  return clip;
}

std::string CatalogueEntry::inFolder(const std::string& name) const {
  return name.empty() ? "" : folder_ + "/" + name;
}

std::vector<std::uint8_t> CatalogueEntry::posterOf(const CapturedClip& captured) const {
  if (captured.thumbnailPath.empty() || !captured.system) return {};
  const std::string path = inFolder(captured.thumbnailPath);
  const auto frame = firstBytesOf(path, frameSizeOf(*captured.system));
  const auto poster = frame.ok() ? makePoster_(frame.value(), captured.info.clipAspectRatio) : frame.error();
  if (poster.ok()) return poster.value();
  log_.write(LogLevel::warning, path + ": " + poster.error().text());
  return {};
}

}  // namespace zq::host
