#include "backends/media/av_muxer.h"

#include "backends/media/av_output.h"
#include "backends/media/output_file.h"
#include "dv/dv_constants.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
}

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <array>
#include <cassert>
#include <cmath>
#include <ctime>
#include <new>
#include <vector>

namespace zq::media {
namespace {

// Seconds from 1970 to the reference date of CalendarDate.
constexpr std::int64_t kReferenceDateUnixSeconds = 978307200;
constexpr int kBytesPerSample = 2;
constexpr int kStereo = 2;
// The head of a file, and of its index, apart from the entries.
constexpr std::int64_t kFixedSize = 64 << 10;
// Chunk offset, samples to chunk and sample size in MOV take the most, 24 bytes for each run of samples; in AVI an
// entry in both of its indices and the head of the chunk, in Matroska a cue and the heads of cluster and block, take no
// more than this.
constexpr std::int64_t kSizePerPacket = 64;

AVRational sampleAspectRatio(DVSystem system, bool wideScreen) {
  if (system == DVSystem::pal625_50) return wideScreen ? AVRational{64, 45} : AVRational{16, 15};
  return wideScreen ? AVRational{32, 27} : AVRational{8, 9};
}

std::string utcText(const CalendarDate& date) {
  const auto seconds = static_cast<std::time_t>(std::llround(date.timeIntervalSinceReferenceDate()));
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(seconds + kReferenceDateUnixSeconds));
}

std::string reasonFor(int averror) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(averror, text.data(), text.size());
  return text.data();
}

}  // namespace

struct AvMuxer::Context {
  Context(OutputFile& outputFile, const std::string& formatName);
  ~Context() { avformat_free_context(movie); }

  void addPictureStream(const MovieFormat& format);
  void addSoundStream(int rate, bool isDefault);
  void setMetadata(const MovieFormat& format) const;
  Status write(int streamIndex, std::span<const std::uint8_t> bytes, std::int64_t time, std::int64_t duration);
  /// The file's own error where there is one: it says what to do, libavformat's just that there was one.
  Status resultOf(int averror);

  OutputFile& file;
  AvOutput output;
  AVFormatContext* movie = nullptr;
  AVPacket* packet = nullptr;
  std::int64_t packetsWritten = 0;
  // By stream, in the units that were asked for (frames, samples), which libavformat may have replaced by its own.
  std::vector<AVRational> timeBases;
  std::vector<std::int64_t> positions;
};

AvMuxer::Context::Context(OutputFile& outputFile, const std::string& formatName)
    : file(outputFile), output(outputFile) {
  if (avformat_alloc_output_context2(&movie, nullptr, formatName.c_str(), nullptr) < 0) throw std::bad_alloc();
  movie->pb = output.context();
}

void AvMuxer::Context::addPictureStream(const MovieFormat& format) {
  AVStream* stream = avformat_new_stream(movie, nullptr);
  if (!stream) throw std::bad_alloc();
  const bool is625 = format.system == DVSystem::pal625_50;
  const FrameRate rate = frameRateOf(format.system);
  AVCodecParameters& picture = *stream->codecpar;
  picture.codec_type = AVMEDIA_TYPE_VIDEO;
  picture.codec_id = AV_CODEC_ID_DVVIDEO;
  picture.format = is625 ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV411P;
  picture.width = is625 ? COLUMN_COUNT_625_50 : COLUMN_COUNT_525_60;
  picture.height = is625 ? ROW_COUNT_625_50 : ROW_COUNT_525_60;
  picture.bit_rate =
      std::int64_t{8} * static_cast<std::int64_t>(frameSizeOf(format.system)) * rate.numerator / rate.denominator;
  // Lines of both fields in turn from the top, the bottom one being the earlier in time.
  picture.field_order = AV_FIELD_BT;
  picture.sample_aspect_ratio = sampleAspectRatio(format.system, format.wideScreen);
  stream->sample_aspect_ratio = picture.sample_aspect_ratio;
  stream->avg_frame_rate = {rate.numerator, rate.denominator};
  stream->r_frame_rate = stream->avg_frame_rate;
  stream->time_base = {rate.denominator, rate.numerator};
  stream->disposition = AV_DISPOSITION_DEFAULT;
  timeBases.push_back(stream->time_base);
  positions.push_back(0);
}

void AvMuxer::Context::addSoundStream(int rate, bool isDefault) {
  AVStream* stream = avformat_new_stream(movie, nullptr);
  if (!stream) throw std::bad_alloc();
  AVCodecParameters& sound = *stream->codecpar;
  sound.codec_type = AVMEDIA_TYPE_AUDIO;
  sound.codec_id = AV_CODEC_ID_PCM_S16LE;
  sound.format = AV_SAMPLE_FMT_S16;
  sound.sample_rate = rate;
  sound.bits_per_coded_sample = 8 * kBytesPerSample;
  sound.block_align = kStereo * kBytesPerSample;
  sound.bit_rate = std::int64_t{8} * sound.block_align * rate;
  av_channel_layout_default(&sound.ch_layout, kStereo);
  stream->time_base = {1, rate};
  stream->disposition = isDefault ? AV_DISPOSITION_DEFAULT : 0;
  timeBases.push_back(stream->time_base);
  positions.push_back(0);
}

void AvMuxer::Context::setMetadata(const MovieFormat& format) const {
  if (!format.timecode.empty()) av_dict_set(&movie->metadata, "timecode", format.timecode.c_str(), 0);
  if (!format.recordingDate) return;
  // The one is an instant, which players show in the zone where they are; the other what the camcorder's clock showed.
  av_dict_set(&movie->metadata, "creation_time", utcText(*format.recordingDate).c_str(), 0);
  av_dict_set(&movie->metadata, "date", format.recordingDate->isoString().c_str(), 0);
}

Status AvMuxer::Context::write(int streamIndex, std::span<const std::uint8_t> bytes, std::int64_t time,
                               std::int64_t duration) {
  const AVStream& stream = *movie->streams[streamIndex];
  const AVRational units = timeBases[static_cast<std::size_t>(streamIndex)];
  av_packet_unref(packet);
  // libavformat reads a packet without a buffer of its own in place; it only lacks the const.
  packet->data = const_cast<std::uint8_t*>(bytes.data());
  packet->size = static_cast<int>(bytes.size());
  packet->stream_index = streamIndex;
  packet->flags = AV_PKT_FLAG_KEY;
  packet->pts = av_rescale_q(time, units, stream.time_base);
  packet->dts = packet->pts;
  packet->duration = av_rescale_q(time + duration, units, stream.time_base) - packet->pts;
  ++packetsWritten;
  return resultOf(av_write_frame(movie, packet));
}

Status AvMuxer::Context::resultOf(int averror) {
  if (averror >= 0) return {};
  Status result = output.flush();
  if (!result.ok()) return result;
  return Error{fmt::format("Cannot write \"{}\"", file.path()), reasonFor(averror)};
}

AvMuxer::AvMuxer(OutputFile& file, const std::string& formatName)
    : context_(std::make_unique<Context>(file, formatName)) {
  context_->packet = av_packet_alloc();
  if (!context_->packet) throw std::bad_alloc();
}

AvMuxer::~AvMuxer() {
  av_packet_free(&context_->packet);
}

Status AvMuxer::start(const MovieFormat& format) {
  context_->addPictureStream(format);
  for (int track = 0; track < format.soundTracks; ++track) context_->addSoundStream(format.soundRate, track == 0);
  context_->setMetadata(format);
  const int result = avformat_write_header(context_->movie, nullptr);
  return result < 0 ? context_->resultOf(result) : flush();
}

Status AvMuxer::writePicture(std::span<const std::uint8_t> frame) {
  return context_->write(0, frame, context_->positions[0]++, 1);
}

Status AvMuxer::writeSound(int track, std::span<const std::int16_t> samples) {
  const auto count = static_cast<std::int64_t>(samples.size()) / kStereo;
  if (count == 0) return {};
  std::int64_t& position = context_->positions[static_cast<std::size_t>(track) + 1];
  const std::int64_t time = position;
  position += count;
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(samples.data()), samples.size_bytes());
  return context_->write(1 + track, bytes, time, count);
}

Status AvMuxer::flush() {
  // Matroska keeps a cluster in memory until it is told otherwise.
  const int result = av_write_frame(context_->movie, nullptr);
  if (result < 0) return context_->resultOf(result);
  return context_->output.flush();
}

Status AvMuxer::finish() {
  const int result = av_write_trailer(context_->movie);
  return result < 0 ? context_->resultOf(result) : context_->output.flush();
}

std::int64_t AvMuxer::indexSize() const {
  return kFixedSize + kSizePerPacket * context_->packetsWritten;
}

}  // namespace zq::media
