#pragma once
// Tape images made to order: files of numbered frames, of which only the blocks that tests look at are on the disk.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "dv/dv_system.h"
#include "support/dv_frames.h"
#include "support/scratch_folder.h"

namespace zq::test {

/// Where a frame made here carries its number: in a video block of its first sequence.
inline constexpr std::size_t kDeckNumberAt = 7 * BLOCKS_SIZE + 20;

/// The number of a frame from a DeckTape; -1 for a frame without one.
inline std::int64_t deckFrameNumber(std::span<const std::uint8_t> frame) {
  std::uint32_t number = 0;
  std::memcpy(&number, frame.data() + kDeckNumberAt, sizeof number);
  return std::int64_t{number} - 1;
}

inline FrameBytes deckFrameBytes(DVSystem system, std::int64_t number) {
  static const std::map<DVSystem, FrameBytes> skeletons{
      {DVSystem::pal625_50, makeFrameBytes(DVSystem::pal625_50)},
      {DVSystem::ntsc525_60, makeFrameBytes(DVSystem::ntsc525_60)},
  };
  FrameBytes frame = skeletons.at(system);
  const auto stored = static_cast<std::uint32_t>(number + 1);
  std::memcpy(frame.data() + kDeckNumberAt, &stored, sizeof stored);
  return frame;
}

/// A tape image that is written frame by frame. Frames are numbered from 0, the damaged ones too.
class DeckTape {
 public:
  enum class Frame { whole, blank, flippedSystem };
  struct Place {
    std::uint64_t offset;
    DVSystem system;

    bool operator==(const Place&) const = default;
  };

  // Some file systems write a file that is cut and filled again to the disk at once; a new one they do not.
  explicit DeckTape(std::string path) : path_(std::move(path)) {
    std::filesystem::remove(path_);
    out_.open(path_, std::ios::binary);
  }

  DeckTape& add(DVSystem system, std::int64_t count = 1, Frame kind = Frame::whole) {
    for (std::int64_t i = 0; i < count; ++i) addFrame(system, kind);
    return *this;
  }
  DeckTape& blank(DVSystem system, std::int64_t count = 1) { return add(system, count, Frame::blank); }

  /// Makes the file this much longer, or shorter, than its frames.
  void setSize(std::uint64_t size) {
    out_.flush();
    std::filesystem::resize_file(path_, size);
  }
  /// Completes the file.
  const std::string& path() {
    setSize(size_);
    return path_;
  }
  std::uint64_t size() const { return size_; }
  const std::vector<Place>& places() const { return places_; }

 private:
  void addFrame(DVSystem system, Frame kind) {
    if (kind != Frame::blank) {
      FrameBytes frame = deckFrameBytes(system, static_cast<std::int64_t>(places_.size()));
      if (kind == Frame::flippedSystem) frame[3] ^= 0x80;
      writeAt(size_, std::span(frame).first(SEQUENCE_SIZE));
      for (std::size_t start = SEQUENCE_SIZE; start < frame.size(); start += SEQUENCE_SIZE) {
        writeAt(size_ + start, std::span(frame).subspan(start, 3 * BLOCKS_SIZE));
      }
    }
    places_.push_back({size_, system});
    size_ += frameSizeOf(system);
  }
  void writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
    out_.seekp(static_cast<std::streamoff>(offset));
    out_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }

  const std::string path_;
  std::ofstream out_;
  std::uint64_t size_ = 0;
  std::vector<Place> places_;
};

}  // namespace zq::test
