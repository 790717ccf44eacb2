#include "backends/media/compression_codecs.h"

#include <algorithm>
#include <array>

namespace zq::media {
namespace {

using platform::fourCharCode;

const std::vector<std::string>& presetNames() {
  static const std::vector<std::string> names{"ultrafast", "superfast", "veryfast", "faster",  "fast",
                                              "medium",    "slow",      "slower",   "veryslow"};
  return names;
}

std::vector<std::string> numbers(int least, int most) {
  std::vector<std::string> result;
  for (int number = least; number <= most; ++number) result.push_back(std::to_string(number));
  return result;
}

constexpr SettingRange kEveryPicture{1, 1, 1};
// Two seconds of fields: a player finds its place at once, for a few hundredths of the size.
constexpr SettingRange kKeyframes{1, 1000, 100};

// Pictures of two fields have the top one first unless told otherwise, which would play the motion backwards.
CompressionCodec h264() {
  return {.key = "h264",
          .encoder = "libx264",
          .type = fourCharCode("avc1"),
          .containers = {"mp4", "mov", "mkv"},
          .quality = {0, 51, 20},
          .qualityMeaning = "smaller is better and larger",
          .speeds = presetNames(),
          .standardSpeed = "medium",
          .keyframes = kKeyframes,
          .keepsFields = true,
          .standardScan = Scan::deinterlace,
          .standardSound = SoundCodec::aac,
          .pixelFormat = AV_PIX_FMT_YUV420P,
          .fullRange = false,
          .options = "preset={1};crf={0}",
          .fieldOptions = "x264-params=bff=1"};
}

// Writes to the terminal by itself unless it is told not to.
CompressionCodec h265() {
  return {.key = "h265",
          .encoder = "libx265",
          .type = fourCharCode("hvc1"),
          .containers = {"mp4", "mov", "mkv"},
          .quality = {0, 51, 22},
          .qualityMeaning = "smaller is better and larger",
          .speeds = presetNames(),
          .standardSpeed = "fast",
          .keyframes = kKeyframes,
          .keepsFields = false,
          .standardScan = Scan::deinterlace,
          .standardSound = SoundCodec::aac,
          .pixelFormat = AV_PIX_FMT_YUV420P,
          .fullRange = false,
          .options = "preset={1};crf={0};x265-params=log-level=none",
          .fieldOptions = ""};
}

CompressionCodec proRes() {
  return {.key = "prores",
          .encoder = "prores_ks",
          .type = fourCharCode("apcn"),
          .containers = {"mov"},
          .quality = {0, 3, 2},
          .qualityMeaning = "the profile: 0 proxy, 1 LT, 2 422, 3 HQ",
          .speeds = {},
          .standardSpeed = "",
          .keyframes = kEveryPicture,
          .keepsFields = true,
          .standardScan = Scan::keep,
          .standardSound = SoundCodec::pcm,
          .pixelFormat = AV_PIX_FMT_YUV422P10,
          .fullRange = false,
          .options = "profile={0}",
          .fieldOptions = ""};
}

CompressionCodec ffv1() {
  return {.key = "ffv1",
          .encoder = "ffv1",
          .type = fourCharCode("FFV1"),
          .containers = {"mkv"},
          .quality = {0, 0, 0},
          .qualityMeaning = "lossless",
          .speeds = {},
          .standardSpeed = "",
          .keyframes = kEveryPicture,
          .keepsFields = true,
          .standardScan = Scan::keep,
          .standardSound = SoundCodec::flac,
          .pixelFormat = AV_PIX_FMT_NONE,
          .fullRange = false,
          .options = "level=3;slices=4;slicecrc=1",
          .fieldOptions = ""};
}

// 118 is the unit in which libavcodec counts this quality.
CompressionCodec motionJpeg() {
  return {.key = "mjpeg",
          .encoder = "mjpeg",
          .type = fourCharCode("jpeg"),
          .containers = {"mov", "avi", "mkv"},
          .quality = {2, 31, 3},
          .qualityMeaning = "smaller is better and larger",
          .speeds = {},
          .standardSpeed = "",
          .keyframes = kEveryPicture,
          .keepsFields = false,
          .standardScan = Scan::deinterlace,
          .standardSound = SoundCodec::pcm,
          .pixelFormat = AV_PIX_FMT_YUV420P,
          .fullRange = true,
          .options = "flags=+qscale;global_quality={0}*118",
          .fieldOptions = ""};
}

CompressionCodec av1() {
  return {.key = "av1",
          .encoder = "libsvtav1",
          .type = fourCharCode("av01"),
          .containers = {"mp4", "mkv"},
          .quality = {1, 63, 30},
          .qualityMeaning = "smaller is better and larger",
          .speeds = numbers(1, 13),
          .standardSpeed = "10",
          .keyframes = kKeyframes,
          .keepsFields = false,
          .standardScan = Scan::deinterlace,
          .standardSound = SoundCodec::aac,
          .pixelFormat = AV_PIX_FMT_YUV420P,
          .fullRange = false,
          .options = "preset={1};crf={0}",
          .fieldOptions = ""};
}

/// Those that players and editors read it from, of what libavformat writes.
std::vector<std::string> containersOfSound(SoundCodec sound) {
  switch (sound) {
    case SoundCodec::aac:
      return {"mp4", "mov", "mkv"};
    case SoundCodec::pcm:
      return {"mov", "avi", "mkv"};
    case SoundCodec::flac:
      return {"mkv"};
  }
  return {};
}

}  // namespace

std::span<const CompressionCodec> compressionCodecs() {
  static const std::vector<CompressionCodec> codecs{h264(), h265(), proRes(), ffv1(), motionJpeg(), av1()};
  return codecs;
}

const CompressionCodec* codecWithKey(std::string_view key) {
  for (const CompressionCodec& codec : compressionCodecs()) {
    if (codec.key == key) return &codec;
  }
  return nullptr;
}

const CompressionCodec* codecWithType(platform::FourCharCode type) {
  for (const CompressionCodec& codec : compressionCodecs()) {
    if (codec.type == type) return &codec;
  }
  return nullptr;
}

const char* keyOf(SoundCodec sound) {
  constexpr std::array<const char*, 3> kKeys{"aac", "pcm", "flac"};
  return kKeys[static_cast<std::size_t>(sound)];
}

std::vector<std::string> containersOf(const CompressionCodec& codec, SoundCodec sound) {
  const std::vector<std::string> possible = containersOfSound(sound);
  std::vector<std::string> result;
  std::ranges::copy_if(codec.containers, std::back_inserter(result),
                       [&](const std::string& name) { return std::ranges::find(possible, name) != possible.end(); });
  return result;
}

}  // namespace zq::media
