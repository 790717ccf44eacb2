#include "backends/media/av_muxer.h"

#include "backends/media/av_error.h"
#include "backends/media/av_handles.h"
#include "backends/media/av_output.h"
#include "backends/media/output_file.h"
#include "dv/dv_constants.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
}

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <ctime>
#include <new>
#include <string_view>
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

bool countsTimecode(const AVFormatContext& movie) {
  const std::string_view name = movie.oformat->name;
  return name == "mov" || name == "mp4";
}

bool isMatroska(const AVFormatContext& movie) {
  return std::string_view(movie.oformat->name) == "matroska";
}

/// That of HEVC which keeps its parameters in the head, as they are here; libavformat would choose the other.
std::uint32_t tagFor(const AVFormatContext& movie, const AVCodecContext& encoder) {
  return countsTimecode(movie) && encoder.codec_id == AV_CODEC_ID_HEVC ? MKTAG('h', 'v', 'c', '1') : encoder.codec_tag;
}

}  // namespace

struct AvMuxer::Context {
  Context(OutputFile& outputFile, const std::string& formatName);
  ~Context() { avformat_free_context(movie); }

  AVStream& addStream(AVRational units);
  void setMetadata(const MovieFormat& format) const;
  Status write(int streamIndex, std::span<const std::uint8_t> bytes, std::int64_t time, std::int64_t duration);
  Status writeInStep(AVPacket& encoded);
  /// Bytes of packets that may not have reached the file.
  std::int64_t waiting() const { return std::max<std::int64_t>(0, bytesHandedOver - (file.size() - headSize)); }
  /// The file's own error where there is one: it says what to do, libavformat's just that there was one.
  Status resultOf(int averror);

  OutputFile& file;
  AvOutput output;
  AVFormatContext* movie = nullptr;
  const Packet packet = newPacket();
  std::int64_t packetsWritten = 0;
  // Tracks that are out of step wait in libavformat until they are in step.
  bool putsInStep = false;
  std::int64_t bytesHandedOver = 0;
  std::int64_t headSize = 0;
  // By stream, in the units that were asked for (frames, samples), which libavformat may have replaced by its own.
  std::vector<AVRational> timeBases;
  std::vector<std::int64_t> positions;
};

AvMuxer::Context::Context(OutputFile& outputFile, const std::string& formatName)
    : file(outputFile), output(outputFile) {
  if (avformat_alloc_output_context2(&movie, nullptr, formatName.c_str(), nullptr) < 0) throw std::bad_alloc();
  movie->pb = output.context();
}

AVStream& AvMuxer::Context::addStream(AVRational units) {
  AVStream* stream = avformat_new_stream(movie, nullptr);
  if (!stream) throw std::bad_alloc();
  stream->time_base = units;
  // The first track of a kind is the one to play.
  stream->disposition = movie->nb_streams <= 2 ? AV_DISPOSITION_DEFAULT : 0;
  timeBases.push_back(units);
  positions.push_back(0);
  return *stream;
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
  av_packet_unref(packet.get());
  // libavformat reads a packet without a buffer of its own in place; it only lacks the const.
  packet->data = const_cast<std::uint8_t*>(bytes.data());
  packet->size = static_cast<int>(bytes.size());
  packet->stream_index = streamIndex;
  packet->flags = AV_PKT_FLAG_KEY;
  packet->pts = av_rescale_q(time, units, stream.time_base);
  packet->dts = packet->pts;
  packet->duration = av_rescale_q(time + duration, units, stream.time_base) - packet->pts;
  if (putsInStep) return writeInStep(*packet);
  ++packetsWritten;
  return resultOf(av_write_frame(movie, packet.get()));
}

Status AvMuxer::Context::writeInStep(AVPacket& encoded) {
  if (Status room = file.reserve(encoded.size + waiting() + kSizePerPacket * (packetsWritten + 1) + kFixedSize);
      !room.ok()) {
    return room;
  }
  ++packetsWritten;
  bytesHandedOver += encoded.size;
  return resultOf(av_interleaved_write_frame(movie, &encoded));
}

Status AvMuxer::Context::resultOf(int averror) {
  if (averror >= 0) return {};
  Status result = output.flush();
  if (!result.ok()) return result;
  return Error{fmt::format("Cannot write \"{}\"", file.path()), avReason(averror)};
}

AvMuxer::AvMuxer(OutputFile& file, const std::string& formatName)
    : context_(std::make_unique<Context>(file, formatName)) {}

AvMuxer::~AvMuxer() = default;

void AvMuxer::addReceivedPicture(const MovieFormat& format) {
  const bool is625 = format.system == DVSystem::pal625_50;
  const FrameRate rate = frameRateOf(format.system);
  AVStream& stream = context_->addStream({rate.denominator, rate.numerator});
  AVCodecParameters& picture = *stream.codecpar;
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
  stream.sample_aspect_ratio = picture.sample_aspect_ratio;
  stream.avg_frame_rate = {rate.numerator, rate.denominator};
  stream.r_frame_rate = stream.avg_frame_rate;
}

Status AvMuxer::addEncodedPicture(const AVCodecContext& encoder, DVSystem system) {
  context_->putsInStep = true;
  // Only sound begins before 0, with what its encoder needs to start up; Matroska says that in its own way. Moved
  // behind 0, all of the movie would begin late.
  if (isMatroska(*context_->movie)) context_->movie->avoid_negative_ts = AVFMT_AVOID_NEG_TS_DISABLED;
  AVStream& stream = context_->addStream(encoder.time_base);
  const int result = avcodec_parameters_from_context(stream.codecpar, &encoder);
  if (result < 0) return context_->resultOf(result);
  stream.sample_aspect_ratio = encoder.sample_aspect_ratio;
  stream.codecpar->codec_tag = tagFor(*context_->movie, encoder);
  const FrameRate tapeRate = frameRateOf(system);
  // These two say nothing of it anywhere but in the timecode track, which counts what the tape counted.
  stream.avg_frame_rate =
      countsTimecode(*context_->movie) ? AVRational{tapeRate.numerator, tapeRate.denominator} : encoder.framerate;
  return {};
}

void AvMuxer::addPcmSound(int rate) {
  AVStream& stream = context_->addStream({1, rate});
  AVCodecParameters& sound = *stream.codecpar;
  sound.codec_type = AVMEDIA_TYPE_AUDIO;
  sound.codec_id = AV_CODEC_ID_PCM_S16LE;
  sound.format = AV_SAMPLE_FMT_S16;
  sound.sample_rate = rate;
  sound.bits_per_coded_sample = 8 * kBytesPerSample;
  sound.block_align = kStereo * kBytesPerSample;
  sound.bit_rate = std::int64_t{8} * sound.block_align * rate;
  av_channel_layout_default(&sound.ch_layout, kStereo);
}

Status AvMuxer::addEncodedSound(const AVCodecContext& encoder) {
  AVStream& stream = context_->addStream(encoder.time_base);
  const int result = avcodec_parameters_from_context(stream.codecpar, &encoder);
  return result < 0 ? context_->resultOf(result) : Status();
}

bool AvMuxer::wantsGlobalHeader() const {
  return (context_->movie->oformat->flags & AVFMT_GLOBALHEADER) != 0;
}

Status AvMuxer::writeHead(const MovieFormat& format) {
  context_->setMetadata(format);
  const int result = avformat_write_header(context_->movie, nullptr);
  Status written = result < 0 ? context_->resultOf(result) : flush();
  context_->headSize = context_->file.size();
  return written;
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

Status AvMuxer::writeEncoded(int stream, AVPacket& packet) {
  Context& c = *context_;
  packet.stream_index = stream;
  av_packet_rescale_ts(&packet, c.timeBases[static_cast<std::size_t>(stream)], c.movie->streams[stream]->time_base);
  return c.writeInStep(packet);
}

Status AvMuxer::flush() {
  // Clusters of its own size are what players of Matroska seek by; what waits for them is little when it is encoded.
  if (context_->putsInStep) return context_->output.flush();
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
  return kFixedSize + kSizePerPacket * context_->packetsWritten + (context_->putsInStep ? context_->waiting() : 0);
}

}  // namespace zq::media
