#include "backends/deck/frame_index.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "dv/dv_constants.h"
#include "dv/frame_header.h"

namespace zq::backend {
namespace {

// What a header test looks at: the header block and both subcode blocks.
constexpr std::size_t kHeaderBytes = kFrameHeaderSize;
using Header = std::array<std::uint8_t, kHeaderBytes>;

// How many damaged frames may lead in before the first whole one; a minute of 625/50.
constexpr std::uint64_t kLeadingFrames = 1500;

DVSystem otherSystem(DVSystem system) {
  return system == DVSystem::pal625_50 ? DVSystem::ntsc525_60 : DVSystem::pal625_50;
}

std::string containerName(const TapeFile& file) {
  std::array<std::uint8_t, 12> start{};
  if (file.size() < start.size() || !file.read(start, 0).ok()) return "";
  const std::string_view text(reinterpret_cast<const char*>(start.data()), start.size());
  if (text.substr(4, 4) == "ftyp" || text.substr(4, 4) == "moov" || text.substr(4, 4) == "mdat" ||
      text.substr(4, 4) == "wide") {
    return "a QuickTime or MP4 movie";
  }
  if (text.starts_with("RIFF")) return "an AVI or WAV file";
  if (text.starts_with("\x1A\x45\xDF\xA3")) return "a Matroska file";
  if (text.starts_with("\x89PNG") || text.starts_with("\xFF\xD8\xFF") || text.starts_with("GIF8")) return "a picture";
  return "";
}

Error notATape(const TapeFile& file) {
  const std::string container = containerName(file);
  const std::string is =
      container.empty() ? "is not a raw DV tape image" : "is " + container + ", not a raw DV tape image";
  return {file.path() + " " + is,
          "A tape image is the DV stream as the camcorder sent it, frames of 120000 or 144000 bytes end to end (.dv)."};
}

Error fiftyMegabits(const TapeFile& file) {
  return {file.path() + " is a 50 Mbit/s stream", "Deckhand captures 25 Mbit/s DV: frames of 120000 or 144000 bytes."};
}

bool readHeader(const TapeFile& file, std::uint64_t offset, Header& header) {
  return offset + kHeaderBytes <= file.size() && file.read(header, offset).ok();
}

bool hasHeaderAt(const TapeFile& file, std::uint64_t offset) {
  Header header{};
  return readHeader(file, offset, header) && looksLikeFrameHeader(header);
}

/// The system that the headers of the frame's later sequences name, by majority; nothing when they name none.
std::optional<DVSystem> systemOfLaterSequences(const TapeFile& file, std::uint64_t offset) {
  int votes625 = 0;
  int votes525 = 0;
  for (std::uint64_t sequence = 1; sequence < DIF_SEQ_COUNT_MIN; ++sequence) {
    Header header{};
    if (!readHeader(file, offset + sequence * SEQUENCE_SIZE, header)) break;
    if (header[1] >> 4 != sequence) continue;
    header[1] &= 0x0F;
    if (looksLikeFrameHeader(header)) ++(systemOfHeader(header) == DVSystem::pal625_50 ? votes625 : votes525);
  }
  if (votes625 == votes525) return std::nullopt;
  return votes625 > votes525 ? DVSystem::pal625_50 : DVSystem::ntsc525_60;
}

/// The system of the first frame: that of its headers, or, where damaged frames lead in, that of the distance to the
/// first good one.
std::optional<DVSystem> systemOfFirstFrame(const TapeFile& file) {
  Header header{};
  if (readHeader(file, 0, header) && looksLikeFrameHeader(header)) {
    return systemOfLaterSequences(file, 0).value_or(systemOfHeader(header));
  }
  for (std::uint64_t count = 1; count <= kLeadingFrames; ++count) {
    for (const DVSystem system : {DVSystem::ntsc525_60, DVSystem::pal625_50}) {
      const std::uint64_t offset = count * frameSizeOf(system);
      if (readHeader(file, offset, header) && looksLikeFrameHeader(header) && systemOfHeader(header) == system) {
        return system;
      }
    }
  }
  return std::nullopt;
}

bool isSecondChannelAt(const TapeFile& file, std::uint64_t offset) {
  Header header{};
  return readHeader(file, offset, header) && looksLikeFrameHeader(header) && isSecondChannel(header);
}

/// Each frame of a 50 Mbit/s stream is two of ours, the other one of the second channel. One such header alone may be a
/// flipped bit, if the file is long enough to tell.
bool isFiftyMegabits(const TapeFile& file, DVSystem system) {
  const std::uint64_t size = frameSizeOf(system);
  const bool tellsMore = file.size() >= 4 * size;
  return isSecondChannelAt(file, size) && (!tellsMore || isSecondChannelAt(file, 3 * size));
}

}  // namespace

Expected<FrameIndex> FrameIndex::open(std::shared_ptr<TapeFile> file) {
  const std::optional<DVSystem> system = systemOfFirstFrame(*file);
  if (!system) return notATape(*file);
  if (isFiftyMegabits(*file, *system)) return fiftyMegabits(*file);
  if (file->size() < frameSizeOf(*system)) {
    return Error{"The tape image " + file->path() + " ends inside its first frame",
                 "It has " + std::to_string(file->size()) + " of " + std::to_string(frameSizeOf(*system)) + " bytes."};
  }
  return FrameIndex(std::move(file), *system);
}

FrameIndex::FrameIndex(std::shared_ptr<TapeFile> file, DVSystem firstSystem)
    : file_(std::move(file)), firstSystem_(firstSystem) {}

// A frame says its own system in its header. Where the header is damaged (a zero-filled frame, a flipped system bit)
// the frame after it decides: the size that leads to a good header is the right one, and the system of the frame before
// is tried first. Where the frame after it is damaged as well, or the file ends, the headers of its own later sequences
// have a say: a frame that was cut off 24000 bytes before its end is as long as a whole one of the other system.
Expected<std::optional<FrameLocation>> FrameIndex::frameAt(std::uint64_t offset, std::int64_t frame,
                                                           DVSystem before) const {
  if (offset + FRAME_SIZE_525_60 > file_->size()) return std::optional<FrameLocation>{};
  Header header{};
  if (Status status = file_->read(header, offset); !status.ok()) return status.error();
  const bool hasHeader = looksLikeFrameHeader(header);
  const DVSystem system = systemByWhatFollows(offset, hasHeader ? systemOfHeader(header) : before, before, hasHeader);
  const FrameLocation location{frame, offset, system};
  if (location.end() > file_->size()) return std::optional<FrameLocation>{};
  return std::optional<FrameLocation>{location};
}

DVSystem FrameIndex::systemByWhatFollows(std::uint64_t offset, DVSystem likely, DVSystem before, bool hasHeader) const {
  const DVSystem other = otherSystem(likely);
  const std::uint64_t next = offset + frameSizeOf(likely);
  const std::uint64_t otherNext = offset + frameSizeOf(other);
  if (next == file_->size() || hasHeaderAt(*file_, next)) return likely;
  if (hasHeaderAt(*file_, otherNext)) return other;
  const bool otherEndsTheFile = otherNext == file_->size();
  if (likely == before && !otherEndsTheFile) return likely;
  return systemOfLaterSequences(*file_, offset).value_or(otherEndsTheFile && !hasHeader ? other : likely);
}

Expected<std::optional<FrameLocation>> FrameIndex::following(const FrameLocation& last) const {
  return frameAt(last.end(), last.frame + 1, last.system);
}

FrameLocation FrameIndex::lastKnown() const {
  const Run& run = runs_.back();
  const std::int64_t back = run.count - 1;
  return {run.first.frame + back, run.first.offset + static_cast<std::uint64_t>(back) * frameSizeOf(run.first.system),
          run.first.system};
}

void FrameIndex::append(const FrameLocation& location) {
  if (!runs_.empty() && runs_.back().first.system == location.system) {
    ++runs_.back().count;
  } else {
    runs_.push_back({location, 1});
  }
}

Expected<std::optional<FrameLocation>> FrameIndex::locate(std::int64_t frame) {
  while (runs_.empty() || lastKnown().frame < frame) {
    auto next = runs_.empty() ? frameAt(0, 0, firstSystem_) : following(lastKnown());
    if (!next.ok() || !next.value()) return next;
    append(*next.value());
  }
  const auto after = std::upper_bound(runs_.begin(), runs_.end(), frame,
                                      [](std::int64_t wanted, const Run& run) { return wanted < run.first.frame; });
  const FrameLocation& first = std::prev(after)->first;
  const std::uint64_t distance = static_cast<std::uint64_t>(frame - first.frame) * frameSizeOf(first.system);
  return std::optional<FrameLocation>{FrameLocation{frame, first.offset + distance, first.system}};
}

Expected<OpenTape> openTape(const std::string& path) {
  auto file = TapeFile::open(path);
  if (!file.ok()) return file.error();
  auto index = FrameIndex::open(file.value());
  if (!index.ok()) return index.error();
  auto first = index.value().locate(0);
  if (!first.ok()) return first.error();
  if (!first.value()) {
    return Error{"The tape image " + path + " ends inside its first frame", "It holds no whole frame."};
  }
  return OpenTape{file.value(), std::move(index.value()), *first.value()};
}

}  // namespace zq::backend
