#include "host/session_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "capture/clip_info.h"
#include "dv/dv_system.h"
#include "dv/frame_header.h"
#include "host/batch_list_text.h"
#include "host/clip_files.h"
#include "host/clip_ledger.h"
#include "host/session_import_json.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// An exported clip's timecode counts as its timebase says.
std::optional<SMPTETime> withSystem(std::optional<SMPTETime> timecode, int timebase) {
  if (timecode) timecode->mType = timebase == 25 ? 1 : 2;
  return timecode;
}

CatalogueClip exportedClip(const JsonObject& object) {
  CatalogueClip clip;
  clip.timebase = static_cast<int>(object.number("timebase", 25, 30));
  if (clip.timebase != 25 && clip.timebase != 30) throw object.wrong("timebase", "is neither 25 nor 30");
  clip.name = object.text("name");
  clip.recordingDate = object.date(kZQACClipRecordingDate);
  clip.startTimecode = withSystem(object.timecode(kZQACClipStartTimecode), clip.timebase);
  clip.endTimecode = withSystem(object.timecode(kZQACClipEndTimecode), clip.timebase);
  clip.duration = withSystem(object.timecode(kZQACClipDuration), clip.timebase);
  clip.aspectRatio = static_cast<std::int32_t>(object.number(kZQACClipAspectRatio, -1, 255));
  clip.moviePath = object.text(kZQACMoviePath);
  clip.thumbnailPath = object.text(kZQACThumbnailsPath);
  clip.recapturedPath = object.text("recapturedPath");
  clip.movieFrames = object.count("movieFrames");
  clip.thumbnailFrames = object.count("thumbnailFrames");
  clip.marked = object.flag("marked");
  clip.recaptured = object.flag("recaptured");
  clip.trashed = object.flag("trashed");
  return clip;
}

ImportedTape readExport(const JsonObject& file) {
  ImportedTape tape;
  tape.name = file.text("tape");
  int number = 0;
  for (const json& item : file.list("sequences")) {
    const std::string where = fmt::format("sequence {}", ++number);
    const JsonObject object(item, where);
    CatalogueSequence sequence;
    sequence.name = object.text("name");
    int clip = 0;
    for (const json& entry : object.list("clips")) {
      sequence.clips.push_back(exportedClip(JsonObject(entry, fmt::format("{}, clip {}", where, ++clip))));
    }
    if (!sequence.clips.empty()) tape.sequences.push_back(std::move(sequence));
  }
  return tape;
}

/// A capture's report, read clip by clip.
class SessionReader {
 public:
  SessionReader(const std::string& path, const JsonObject& file)
      : folder_(fs::path(path).has_parent_path() ? fs::path(path).parent_path() : fs::path(".")),
        device_(tapeOf(file)) {
    int number = 0;
    for (const json& item : file.list("clips")) {
      const JsonObject object(item, fmt::format("clip {}", ++number));
      clips_.push_back(readClip(object));
      rememberContinuations(object, clips_.back());
    }
    for (CapturedClip& clip : clips_) clip.system = systemOf(clip);
  }

  ImportedTape tape(const CatalogueEntry::MakePoster& makePoster, Log& log) const {
    ImportedTape tape{device_, {}, remarks_};
    if (!clips_.empty()) {
      tape.sequences.push_back(CatalogueEntry(folder_.string(), makePoster, log).sequenceOf(clips_));
    }
    return tape;
  }

 private:
  static std::string tapeOf(const JsonObject& file) {
    const std::string device = file.text("device");
    const std::string stem = fs::path(device.substr(device.find(':') + 1)).stem().string();
    return stem.empty() ? "tape" : stem;
  }

  static TimecodeValue boxed(const std::optional<SMPTETime>& timecode) {
    return timecode ? valueWithSMPTETime(*timecode) : nullptr;
  }

  CapturedClip readClip(const JsonObject& object) {
    CapturedClip clip;
    clip.info.clipRecordingDate = object.date(kZQACClipRecordingDate);
    clip.info.clipStartTimecode = boxed(object.timecode(kZQACClipStartTimecode));
    clip.info.clipEndTimecode = boxed(object.timecode(kZQACClipEndTimecode));
    clip.info.clipDuration = boxed(object.timecode(kZQACClipDuration));
    clip.info.clipAspectRatio = static_cast<std::int32_t>(object.number(kZQACClipAspectRatio, -1, 255));
    clip.moviePath = object.text(kZQACMoviePath);
    clip.thumbnailPath = object.text(kZQACThumbnailsPath);
    clip.movieFrames = object.count("movieFrames");
    clip.thumbnailFrames = object.count("thumbnailFrames");
    clip.impossibleDate = isNamedAsUndated(clip);
    return clip;
  }

  void rememberContinuations(const JsonObject& object, const CapturedClip& clip) {
    if (!object.has("movieContinuations")) return;
    for (const json& name : object.list("movieContinuations")) {
      if (!name.is_string()) throw object.wrong("movieContinuations", "is not a list of texts");
      remarks_.push_back(
          fmt::format("{} goes on in {}, where the tape changes system; the catalogue keeps the first file",
                      clip.moviePath, name.get<std::string>()));
    }
  }

  /// The capture names a clip whose clock was never set by the tape and a number, though it has a date of sorts.
  bool isNamedAsUndated(const CapturedClip& clip) const {
    const std::string& name = clip.moviePath.empty() ? clip.thumbnailPath : clip.moviePath;
    if (!clip.info.clipRecordingDate || name.starts_with(fileNameOf(*clip.info.clipRecordingDate))) return false;
    const std::string_view prefix = device_;
    if (!name.starts_with(device_ + "-") || name.size() < prefix.size() + 5) return false;
    return std::ranges::all_of(name.substr(prefix.size() + 1, 4), [](char c) { return c >= '0' && c <= '9'; });
  }

  // The report does not say the system. The thumbnails do; without them, how many frames lie between the timecodes.
  DVSystem systemOf(const CapturedClip& clip) const {
    if (const auto system = systemOfThumbnails(clip)) return *system;
    for (const DVSystem system : {DVSystem::pal625_50, DVSystem::ntsc525_60}) {
      if (framesBetweenTimecodes(clip, system) == clip.movieFrames) return system;
    }
    return std::ranges::any_of(clips_, hasNtscFrame) ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
  }

  std::optional<DVSystem> systemOfThumbnails(const CapturedClip& clip) const {
    std::array<std::uint8_t, kFrameHeaderSize> header{};
    if (clip.thumbnailPath.empty()) return std::nullopt;
    std::ifstream file(folder_ / clip.thumbnailPath, std::ios::binary);
    file.read(reinterpret_cast<char*>(header.data()), header.size());
    if (!file || !looksLikeFrameHeader(header)) return std::nullopt;
    return systemOfHeader(header);
  }

  static std::int64_t framesBetweenTimecodes(const CapturedClip& clip, DVSystem system) {
    if (!clip.info.clipStartTimecode || !clip.info.clipEndTimecode) return -1;
    const int timebase = timebaseOf(system);
    return framesTo(*clip.info.clipEndTimecode, timebase) - framesTo(*clip.info.clipStartTimecode, timebase) + 1;
  }

  static bool hasNtscFrame(const CapturedClip& clip) {
    const auto isNtsc = [](const TimecodeValue& timecode) { return timecode && timecode->mFrames >= 25; };
    return isNtsc(clip.info.clipStartTimecode) || isNtsc(clip.info.clipEndTimecode);
  }

  const fs::path folder_;
  const std::string device_;
  std::vector<CapturedClip> clips_;
  std::vector<std::string> remarks_;
};

/// The files of a tape's clips.
class OwnedFiles {
 public:
  explicit OwnedFiles(const CatalogueTape& tape) {
    for (const CatalogueSequence& sequence : tape.sequences) {
      for (const CatalogueClip& clip : sequence.clips) {
        for (const std::string& path : {clip.moviePath, clip.thumbnailPath}) {
          if (!path.empty()) byName_.emplace(ClipFiles::nameOf(path), Owned{path, clip.id});
        }
      }
    }
  }

  /// The clip's id; 0 for none. A file may be reached by different paths.
  std::int64_t ownerOf(const std::string& path) const {
    const auto [begin, end] = byName_.equal_range(ClipFiles::nameOf(path));
    const auto same = std::find_if(begin, end, [&](const auto& entry) {
      std::error_code failed;
      return entry.second.path == path || fs::equivalent(entry.second.path, path, failed);
    });
    return same == end ? 0 : same->second.clip;
  }

 private:
  struct Owned {
    std::string path;
    std::int64_t clip = 0;
  };
  std::multimap<std::string, Owned> byName_;
};

}  // namespace

Expected<ImportedTape> readTapeJson(const std::string& path, const std::string& text,
                                    const CatalogueEntry::MakePoster& makePoster, Log& log) {
  const Error wrong{"Cannot import " + path, ""};
  try {
    const json whole = json::parse(text);
    const JsonObject file(whole, "the file");
    if (file.has("sequences")) return readExport(file);
    if (!file.has("device") || !file.has("clips")) {
      return Error{wrong.message, "It is neither the session.json of a capture nor an exported tape."};
    }
    return SessionReader(path, file).tape(makePoster, log);
  } catch (const json::parse_error& error) {
    return Error{wrong.message, fmt::format("It is not JSON from byte {} on.", error.byte)};
  } catch (const WrongJson& error) {
    return Error{wrong.message, error.reason + "."};
  }
}

Status checkNotThere(const CatalogueTape& tape, const std::vector<CatalogueSequence>& sequences) {
  const OwnedFiles files(tape);
  for (const CatalogueSequence& sequence : sequences) {
    for (const CatalogueClip& clip : sequence.clips) {
      for (const std::string& path : {clip.moviePath, clip.thumbnailPath}) {
        const std::int64_t owner = files.ownerOf(path);
        if (owner == 0) continue;
        return Error{"It is in the catalogue already",
                     fmt::format("{} belongs to clip {} of tape \"{}\".", path, owner, tape.name)};
      }
    }
  }
  return {};
}

}  // namespace zq::host
