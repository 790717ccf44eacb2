#pragma once
// One movie file of libavformat: a DV picture track and tracks of stereo sound beside it.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/calendar_date.h"
#include "base/status.h"
#include "dv/dv_system.h"

namespace zq::media {

class OutputFile;

/// What the head of a movie says.
struct MovieFormat {
  DVSystem system = DVSystem::pal625_50;
  bool wideScreen = false;
  int soundRate = 48000;
  int soundTracks = 1;
  /// Of the first frame, "HH:MM:SS:FF", or with ";" before the frames when it counts drop-frame; empty for none.
  std::string timecode;
  /// When the clip was recorded; may be null.
  DateValue recordingDate;
};

class AvMuxer {
 public:
  /// `formatName` is libavformat's name of the container. `file` outlives the muxer.
  AvMuxer(OutputFile& file, const std::string& formatName);
  ~AvMuxer();

  /// Writes the head. Comes first.
  Status start(const MovieFormat& format);
  /// The next picture, as received; its bytes are not copied.
  Status writePicture(std::span<const std::uint8_t> frame);
  /// Interleaved stereo samples that follow the track's earlier ones.
  Status writeSound(int track, std::span<const std::int16_t> samples);
  /// Everything written so far reaches the file.
  Status flush();
  /// Writes the index. No call follows.
  Status finish();
  /// No less than what flush() and finish() will write beyond the bytes of pictures and sound.
  std::int64_t indexSize() const;

 private:
  struct Context;
  const std::unique_ptr<Context> context_;
};

}  // namespace zq::media
