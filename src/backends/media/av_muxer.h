#pragma once
// One movie file of libavformat: a track of pictures and tracks of stereo sound beside it.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/calendar_date.h"
#include "base/status.h"
#include "dv/dv_system.h"

struct AVCodecContext;
struct AVPacket;

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

/// Tracks are added, the picture's first; then the head is written, then what the tracks hold.
class AvMuxer {
 public:
  /// `formatName` is libavformat's name of the container. `file` outlives the muxer.
  AvMuxer(OutputFile& file, const std::string& formatName);
  ~AvMuxer();

  /// DV as received, whose pictures are written in step with their sound.
  void addReceivedPicture(const MovieFormat& format);
  /// What this encoder makes of the pictures of a tape of `system`. It comes out later than it went in, so tracks are
  /// put in step here.
  Status addEncodedPicture(const AVCodecContext& encoder, DVSystem system);
  void addPcmSound(int rate);
  Status addEncodedSound(const AVCodecContext& encoder);
  /// Whether encoders must keep their parameters out of the packets.
  bool wantsGlobalHeader() const;
  Status writeHead(const MovieFormat& format);

  /// The next picture, as received; its bytes are not copied.
  Status writePicture(std::span<const std::uint8_t> frame);
  /// Interleaved stereo samples that follow the track's earlier ones, as PCM.
  Status writeSound(int track, std::span<const std::int16_t> samples);
  /// What an encoder made, with times in its units. A packet that the disk has no room for is an error and changes
  /// nothing. The packet is empty afterwards.
  Status writeEncoded(int stream, AVPacket& packet);
  /// Everything written so far reaches the file; of encoded tracks, what is in step already.
  Status flush();
  /// Writes the index. No call follows.
  Status finish();
  /// No less than what flush() and finish() will write beyond the bytes that are yet to be handed over.
  std::int64_t indexSize() const;

 private:
  struct Context;
  const std::unique_ptr<Context> context_;
};

}  // namespace zq::media
