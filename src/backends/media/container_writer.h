#pragma once
// Writes a clip into a movie container: what its tracks make of its frames.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/media/av_muxer.h"
#include "backends/media/movie_sound.h"
#include "backends/media/movie_tracks.h"
#include "backends/media/output_file.h"
#include "base/log.h"
#include "platform/movie_writer.h"

namespace zq::media {

/// The disk is asked for the room of frame and index before a frame is written, so a full disk costs the clip neither
/// its index nor leaves a torn frame in it. finish() deletes a file that has no frame, and that is no error.
class ContainerWriter : public platform::MovieWriter {
 public:
  using MakeTracks = std::function<std::unique_ptr<MovieTracks>(const std::string& path, AvMuxer& muxer)>;

  /// `formatName` is libavformat's name of the container. `log` may be null and outlives the writer.
  ContainerWriter(std::unique_ptr<OutputFile> file, const std::string& formatName, const MakeTracks& makeTracks,
                  Log* log);

  Status append(const platform::QTSampleBuffer& frame) override;
  Status finish() override;

 private:
  Status reserveForHeldAnd(const platform::QTSampleBuffer& frame);
  Status writeHeldFrames();
  MovieFormat formatFor(MovieSoundFormat sound) const;
  Status start(MovieSoundFormat sound);
  Status writeFrame(const platform::QTSampleBuffer& frame);
  void reportSound(MovieSound::Source source);
  Status complete();

  const std::unique_ptr<OutputFile> file_;
  AvMuxer muxer_;
  const std::unique_ptr<MovieTracks> tracks_;
  Log* const log_;

  std::optional<DVSystem> system_;
  // Frames that wait for the first one with sound, which decides the format of the tracks.
  std::vector<platform::QTSampleBuffer> held_;
  // From the first written frame on.
  std::optional<MovieSound> sound_;
  MovieSoundFormat soundFormat_;
  std::int64_t framesWritten_ = 0;
  std::optional<Error> broken_;
  bool soundReported_ = false;
};

}  // namespace zq::media
