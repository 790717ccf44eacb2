#include "backends/media/encoded_tracks.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace zq::media {
namespace {

// A picture as large as this is rare at the quality that anybody chooses.
constexpr std::int64_t kBytesForPixels = 4;
// Besides those in the encoder, of which the filter holds one frame, that are two fields.
constexpr std::int64_t kPicturesInFilter = 4;

// In pictures; encoders have a limit of 16.
constexpr std::int64_t kFurthestReordering = 32;

}  // namespace

EncodedTracks::EncodedTracks(std::string path, AvMuxer& muxer, const CompressionSettings& settings, PictureSize size,
                             Log* log)
    : path_(std::move(path)), muxer_(muxer), settings_(settings), size_(size), log_(log) {}

Status EncodedTracks::start(const MovieFormat& format) {
  Status result = openPicture(format);
  if (result.ok()) result = openSound(format);
  if (result.ok()) result = muxer_.writeHead(format);
  return result.ok() ? result : Status(named(result.error()));
}

Status EncodedTracks::openPicture(const MovieFormat& format) {
  const PicturePlan plan = planPictures(format.system, format.wideScreen, settings_, size_);
  auto decoder = DVPictureDecoder::create(format.system);
  if (!decoder.ok()) return decoder.error();
  auto filter = PictureFilter::create(format.system, plan);
  if (!filter.ok()) return filter.error();
  auto encoder = PictureEncoder::open(settings_, plan, muxer_.wantsGlobalHeader());
  if (!encoder.ok()) return encoder.error();
  decoder_ = std::move(decoder.value());
  filter_ = std::move(filter.value());
  encoder_.emplace(std::move(encoder.value()));
  largestPacket_ = std::int64_t{plan.width} * plan.height / kBytesForPixels;
  return muxer_.addEncodedPicture(encoder_->context(), format.system);
}

Status EncodedTracks::openSound(const MovieFormat& format) {
  soundTracks_ = format.soundTracks;
  for (int track = 0; track < soundTracks_; ++track) {
    if (settings_.sound == SoundCodec::pcm) {
      muxer_.addPcmSound(format.soundRate);
      continue;
    }
    auto encoder = SoundEncoder::open(settings_.sound, format.soundRate, muxer_.wantsGlobalHeader());
    if (!encoder.ok()) return encoder.error();
    soundEncoders_.push_back(std::move(encoder.value()));
    Status added = muxer_.addEncodedSound(soundEncoders_.back().context());
    if (!added.ok()) return added;
  }
  return {};
}

std::int64_t EncodedTracks::sizeWithNext(std::size_t frameSize) const {
  if (!encoder_) return static_cast<std::int64_t>(frameSize);
  return (encoder_->picturesTaken() - packetsOut_ + kPicturesInFilter) * largestPacket_;
}

Status EncodedTracks::write(std::span<const std::uint8_t> frame, const MovieSound& sound) {
  const DVPictureDecoder::Decoded decoded = decoder_->decode(frame);
  if (!decoded.isItsOwn) reportUndecoded();
  Status result = filter_->filter(decoded.picture, framesTaken_++, [this](AVFrame& p) { return encodePicture(p); });
  if (result.ok()) result = encodeSound(sound);
  return result.ok() ? result : Status(named(result.error()));
}

Status EncodedTracks::finish() {
  if (!encoder_) return {};
  reportUndecodedInAll();
  Status result = filter_->finish([this](AVFrame& picture) { return encodePicture(picture); });
  Status drained = encoder_->finish([this](AVPacket& packet) { return take(0, packet); });
  if (result.ok()) result = drained;
  for (std::size_t i = 0; i < soundEncoders_.size(); ++i) {
    drained = soundEncoders_[i].finish([&](AVPacket& packet) { return take(static_cast<int>(i) + 1, packet); });
    if (result.ok()) result = drained;
  }
  return result.ok() ? result : Status(named(result.error()));
}

Status EncodedTracks::encodePicture(AVFrame& picture) {
  return encoder_->encode(picture, [this](AVPacket& packet) { return take(0, packet); });
}

Status EncodedTracks::encodeSound(const MovieSound& sound) {
  Status result;
  for (int track = 0; result.ok() && track < soundTracks_; ++track) {
    if (settings_.sound == SoundCodec::pcm) {
      result = muxer_.writeSound(track, sound.track(track));
    } else {
      SoundEncoder& encoder = soundEncoders_[static_cast<std::size_t>(track)];
      result = encoder.encode(sound.track(track), [&](AVPacket& packet) { return take(track + 1, packet); });
    }
  }
  return result;
}

Status EncodedTracks::take(int stream, AVPacket& packet) {
  if (stopped_) return {};
  if (stream == 0) {
    ++packetsOut_;
    largestPacket_ = std::max<std::int64_t>(largestPacket_, packet.size);
    if (packet.duration == 0) packet.duration = 1;
    mendDecodingTime(packet);
  }
  Status written = muxer_.writeEncoded(stream, packet);
  stopped_ = !written.ok();
  return written;
}

/// The encoder of H.265 leaves it to chance when a movie has fewer pictures than it puts in another order. Where a
/// picture is in the file then says when it is decoded.
void EncodedTracks::mendDecodingTime(AVPacket& packet) const {
  if (packet.dts <= packet.pts && packet.dts >= packet.pts - kFurthestReordering) return;
  packet.dts = std::min(packet.pts, packetsOut_ - 1 - encoder_->context().has_b_frames);
}

/// Errors of the file name it already.
Error EncodedTracks::named(const Error& error) const {
  if (error.message.find(path_) != std::string::npos) return error;
  return Error{fmt::format("Cannot write \"{}\"", path_), error.text()};
}

void EncodedTracks::reportUndecoded() {
  ++framesUndecoded_;
  if (framesUndecoded_ > 1 || !log_) return;
  log_->write(LogLevel::warning, fmt::format("\"{}\", frame {}: its picture cannot be decoded, so the movie shows the "
                                             "one before it again, or black where there is none.",
                                             path_, framesTaken_));
}

void EncodedTracks::reportUndecodedInAll() {
  if (framesUndecoded_ < 2 || !log_) return;
  log_->write(LogLevel::warning, fmt::format("\"{}\": {} of {} frames have a picture that cannot be decoded.", path_,
                                             framesUndecoded_, framesTaken_));
}

}  // namespace zq::media
