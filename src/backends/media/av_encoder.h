#pragma once
// An encoder of libavcodec that is open, and how its packets come out.

#include <functional>
#include <string>

#include "backends/media/av_handles.h"
#include "base/status.h"

namespace zq::media {

class AvEncoder {
 public:
  /// Takes a packet, with times in the encoder's units; it is the sink's to empty.
  using Sink = std::function<Status(AVPacket& packet)>;

  /// Whether libavcodec has an encoder of this name.
  static Status find(const std::string& name);
  /// `name` is libavcodec's; `setUp` fills in what the encoder is to do, `options` its own settings as
  /// "KEY=VALUE;...". Anything that it does not take is an error that says so.
  static Expected<AvEncoder> open(const std::string& name, const std::function<void(AVCodecContext&)>& setUp,
                                  const std::string& options);

  ~AvEncoder();
  AvEncoder(AvEncoder&&) = default;
  AvEncoder& operator=(AvEncoder&&) = default;

  AVCodecContext& context() const { return *codec_; }
  /// Encodes a picture, or some sound; null ends it, and the last packets come out. An error of the sink ends this
  /// call only.
  Status encode(AVFrame* frame, const Sink& sink);

 private:
  AvEncoder(std::string name, Codec codec);
  void endQuietly();

  std::string name_;
  Codec codec_;
  Packet packet_ = newPacket();
  bool started_ = false;
  bool ended_ = false;
};

}  // namespace zq::media
