#include "backends/media/received_tracks.h"

namespace zq::media {

Status ReceivedTracks::start(const MovieFormat& format) {
  soundTracks_ = format.soundTracks;
  muxer_.addReceivedPicture(format);
  for (int track = 0; track < format.soundTracks; ++track) muxer_.addPcmSound(format.soundRate);
  return muxer_.writeHead(format);
}

Status ReceivedTracks::write(std::span<const std::uint8_t> frame, const MovieSound& sound) {
  Status result = muxer_.writePicture(frame);
  for (int track = 0; result.ok() && track < soundTracks_; ++track) {
    result = muxer_.writeSound(track, sound.track(track));
  }
  return result.ok() ? muxer_.flush() : result;
}

}  // namespace zq::media
