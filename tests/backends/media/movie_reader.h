#pragma once
// Reads a movie file back with libavformat.

extern "C" {
#include <libavformat/avformat.h>
}

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zq::test {

struct ReadColor {
  AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
  AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
  AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
  AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
};

struct ReadTrack {
  AVCodecID codec = AV_CODEC_ID_NONE;
  std::string tag;
  AVRational frameRate{};
  AVRational sampleAspect{};
  AVFieldOrder fieldOrder = AV_FIELD_UNKNOWN;
  ReadColor color;
  int width = 0;
  int height = 0;
  int sampleRate = 0;
  int channels = 0;
  bool isDefault = false;
  std::vector<std::vector<std::uint8_t>> packets;
  /// Of the first packet, and one past the last, in seconds.
  double start = 0;
  double end = 0;

  std::vector<std::int16_t> samples() const {
    std::vector<std::uint8_t> bytes;
    for (const auto& packet : packets) bytes.insert(bytes.end(), packet.begin(), packet.end());
    std::vector<std::int16_t> result(bytes.size() / 2);
    std::memcpy(result.data(), bytes.data(), result.size() * 2);
    return result;
  }
};

struct ReadMovie {
  std::vector<ReadTrack> pictures;
  std::vector<ReadTrack> sounds;
  /// The file's own and those of its streams, with lower-case keys.
  std::map<std::string, std::string> metadata;

  std::string metadataFor(const std::string& key) const {
    const auto found = metadata.find(key);
    return found == metadata.end() ? "" : found->second;
  }
};

namespace detail {

inline void addMetadata(const AVDictionary* dictionary, ReadMovie& movie) {
  const AVDictionaryEntry* entry = nullptr;
  while ((entry = av_dict_get(dictionary, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
    std::string key = entry->key;
    for (char& c : key) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    movie.metadata.emplace(key, entry->value);
  }
}

inline ReadTrack describe(const AVStream& stream) {
  const AVCodecParameters& parameters = *stream.codecpar;
  ReadTrack track;
  track.codec = parameters.codec_id;
  const std::uint32_t tag = parameters.codec_tag;
  for (int shift = 0; shift < 32; shift += 8) track.tag += static_cast<char>(tag >> shift & 0xFF);
  track.frameRate = stream.r_frame_rate;
  track.sampleAspect =
      stream.sample_aspect_ratio.num != 0 ? stream.sample_aspect_ratio : parameters.sample_aspect_ratio;
  track.fieldOrder = parameters.field_order;
  track.color = {parameters.color_primaries, parameters.color_trc, parameters.color_space, parameters.color_range};
  track.width = parameters.width;
  track.height = parameters.height;
  track.sampleRate = parameters.sample_rate;
  track.channels = parameters.ch_layout.nb_channels;
  track.isDefault = (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
  return track;
}

inline void addPacket(const AVPacket& packet, const AVStream& stream, ReadTrack& track) {
  const double unit = av_q2d(stream.time_base);
  if (track.packets.empty()) track.start = static_cast<double>(packet.pts) * unit;
  track.end = static_cast<double>(packet.pts + packet.duration) * unit;
  track.packets.emplace_back(packet.data, packet.data + packet.size);
}

}  // namespace detail

/// Throws when the file is no movie.
inline ReadMovie readMovie(const std::string& path) {
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0) throw std::runtime_error("no movie: " + path);
  const auto close = [](AVFormatContext* context) { avformat_close_input(&context); };
  const std::unique_ptr<AVFormatContext, decltype(close)> file(opened, close);
  if (avformat_find_stream_info(file.get(), nullptr) < 0) throw std::runtime_error("unreadable movie: " + path);

  ReadMovie movie;
  detail::addMetadata(file->metadata, movie);
  std::vector<ReadTrack> tracks;
  for (const AVStream* stream : std::span(file->streams, file->nb_streams)) {
    detail::addMetadata(stream->metadata, movie);
    tracks.push_back(detail::describe(*stream));
  }
  AVPacket* packet = av_packet_alloc();
  while (av_read_frame(file.get(), packet) >= 0) {
    const auto index = static_cast<std::size_t>(packet->stream_index);
    detail::addPacket(*packet, *file->streams[index], tracks[index]);
    av_packet_unref(packet);
  }
  av_packet_free(&packet);
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    const AVMediaType type = file->streams[i]->codecpar->codec_type;
    if (type == AVMEDIA_TYPE_VIDEO) movie.pictures.push_back(std::move(tracks[i]));
    if (type == AVMEDIA_TYPE_AUDIO) movie.sounds.push_back(std::move(tracks[i]));
  }
  return movie;
}

}  // namespace zq::test
