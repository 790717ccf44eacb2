#include "backends/media/movie_frames.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <array>
#include <memory>

namespace zq::media {
namespace {

struct InputCloser {
  void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Input = std::unique_ptr<AVFormatContext, InputCloser>;
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;

Error readError(const std::string& path, int averror) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(averror, text.data(), text.size());
  return Error{"Cannot read the movie " + path, text.data()};
}

/// The packet's bytes, which live as long as the handle.
SharedBytes bytesOf(Packet packet) {
  const std::span<const std::uint8_t> bytes(packet->data, static_cast<std::size_t>(packet->size));
  return SharedBytes(std::shared_ptr<const void>(std::shared_ptr<AVPacket>(std::move(packet))), bytes);
}

/// What is missing of a frame at a file's end is not told by every demuxer: that of raw DV fills it up.
bool isCutOff(const AVFormatContext& input, const AVPacket& packet) {
  if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) return true;
  const std::int64_t size = input.pb != nullptr ? avio_size(input.pb) : -1;
  return size >= 0 && packet.pos >= 0 && packet.pos + packet.size > size;
}

}  // namespace

Status readMovieFrames(const std::string& path, const std::function<void(const SharedBytes&)>& take) {
  AVFormatContext* opened = nullptr;
  if (const int result = avformat_open_input(&opened, path.c_str(), nullptr, nullptr); result < 0) {
    return readError(path, result);
  }
  const Input input(opened);
  const int video = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (video < 0) return Error{"Cannot read the movie " + path, "It has no video track."};
  while (true) {
    Packet packet(av_packet_alloc());
    if (!packet) return readError(path, AVERROR(ENOMEM));
    const int result = av_read_frame(input.get(), packet.get());
    if (result == AVERROR_EOF) return {};
    if (result < 0) return readError(path, result);
    if (packet->stream_index != video) continue;
    if (isCutOff(*input, *packet)) return Error{"Cannot read the movie " + path, "It ends inside a frame."};
    take(bytesOf(std::move(packet)));
  }
}

}  // namespace zq::media
