#pragma once
// Owners of what FFmpeg's libraries allocate.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include <memory>
#include <new>

namespace zq::media {

struct CodecDeleter {
  void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct PictureDeleter {
  void operator()(AVFrame* picture) const { av_frame_free(&picture); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using Codec = std::unique_ptr<AVCodecContext, CodecDeleter>;
/// Also a piece of sound.
using Picture = std::unique_ptr<AVFrame, PictureDeleter>;
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;

inline Picture newPicture() {
  Picture picture(av_frame_alloc());
  if (!picture) throw std::bad_alloc();
  return picture;
}

inline Packet newPacket() {
  Packet packet(av_packet_alloc());
  if (!packet) throw std::bad_alloc();
  return packet;
}

}  // namespace zq::media
