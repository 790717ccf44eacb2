#include "backends/media/compression_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>

namespace zq::media {
namespace {

constexpr std::array<std::string_view, 7> kKeys{"codec", "quality", "speed", "scan", "frameRate", "sound", "keyframes"};
constexpr int kMostPicturesPerSecond = 60;

/// Those that are no whole number, by their usual names.
struct NamedRate {
  std::string_view name;
  FrameRate rate;
};
constexpr std::array<NamedRate, 3> kNamedRates{
    {{"23.976", {24000, 1001}}, {"29.97", {30000, 1001}}, {"59.94", {60000, 1001}}}};

constexpr std::array<std::string_view, 2> kScans{"keep", "deinterlace"};

using Values = std::map<std::string, std::string, std::less<>>;

std::string codecKeys() {
  std::vector<std::string_view> keys;
  for (const CompressionCodec& codec : compressionCodecs()) keys.emplace_back(codec.key);
  return fmt::format("{}", fmt::join(keys, ", "));
}

Error refused(std::string_view key, std::string_view value, const std::string& allowed) {
  return Error{fmt::format("The compression setting \"{}={}\" cannot be", key, value), allowed};
}

std::optional<int> wholeNumber(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

Expected<Values> splitTexts(const std::vector<std::string>& texts) {
  Values values;
  for (const std::string& text : texts) {
    const std::size_t equals = text.find('=');
    const std::string key = text.substr(0, equals);
    if (equals == std::string::npos || std::ranges::find(kKeys, key) == kKeys.end()) {
      return Error{fmt::format("\"{}\" is no compression setting", text),
                   fmt::format("Settings are KEY=VALUE, and the keys are {}.", fmt::join(kKeys, ", "))};
    }
    if (!values.emplace(key, text.substr(equals + 1)).second) {
      return Error{fmt::format("The compression setting \"{}\" is said twice", key), "Leave one of them out."};
    }
  }
  return values;
}

/// Takes the values into settings one after the other, until one is wrong.
class Reader {
 public:
  Reader(const Values& values, CompressionSettings& settings) : values_(values), settings_(settings) {}

  Status read() {
    const CompressionCodec& codec = *settings_.codec;
    Status result = readNumber("quality", codec.quality, settings_.quality);
    if (result.ok()) result = readSpeed();
    if (result.ok()) result = readNumber("keyframes", codec.keyframes, settings_.keyframes);
    if (result.ok()) result = readScan();
    if (result.ok()) result = readFrameRate();
    return result.ok() ? readSound() : result;
  }

 private:
  const std::string* valueOf(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : &found->second;
  }

  Status readNumber(std::string_view key, const SettingRange& range, int& result) const {
    const std::string* value = valueOf(key);
    if (!value) return {};
    const std::optional<int> number = wholeNumber(*value);
    if (number && range.contains(*number)) {
      result = *number;
      return {};
    }
    const char* codec = settings_.codec->key;
    if (range.isFixed()) return refused(key, *value, fmt::format("With {} it is {} and no other.", codec, range.least));
    return refused(key, *value, fmt::format("With {} it is a number from {} to {}.", codec, range.least, range.most));
  }

  Status readSpeed() const {
    const std::string* value = valueOf("speed");
    if (!value) return {};
    const std::vector<std::string>& speeds = settings_.codec->speeds;
    if (std::ranges::find(speeds, *value) != speeds.end()) {
      settings_.speed = *value;
      return {};
    }
    const char* codec = settings_.codec->key;
    if (speeds.empty())
      return refused("speed", *value, fmt::format("{} has no choice of speeds. Leave it out.", codec));
    return refused("speed", *value, fmt::format("With {} it is one of {}.", codec, fmt::join(speeds, ", ")));
  }

  Status readScan() const {
    const std::string* value = valueOf("scan");
    if (!value) return {};
    const auto found = std::ranges::find(kScans, *value);
    if (found == kScans.end()) return refused("scan", *value, "It is keep or deinterlace.");
    settings_.scan = found == kScans.begin() ? Scan::keep : Scan::deinterlace;
    if (settings_.scan == Scan::deinterlace || settings_.codec->keepsFields) return {};
    return refused("scan", *value,
                   fmt::format("{} has no pictures of two fields. Use scan=deinterlace, or a codec that has: h264, "
                               "prores or ffv1.",
                               settings_.codec->key));
  }

  Status readFrameRate() const {
    const std::string* value = valueOf("frameRate");
    if (!value) return {};
    const std::optional<FrameRate> rate = frameRateOfText(*value);
    if (!rate) {
      return refused(
          "frameRate", *value,
          fmt::format("It is 0 for as many pictures as come, a whole number up to {}, 23.976, 29.97 or 59.94.",
                      kMostPicturesPerSecond));
    }
    if (rate->numerator != 0 && settings_.scan == Scan::keep) {
      return refused("frameRate", *value,
                     "Pictures of two fields are as many as on tape. Use scan=deinterlace, or frameRate=0.");
    }
    settings_.frameRate = *rate;
    return {};
  }

  Status readSound() const {
    const std::string* value = valueOf("sound");
    if (!value) return {};
    for (const SoundCodec sound : {SoundCodec::aac, SoundCodec::pcm, SoundCodec::flac}) {
      if (*value != keyOf(sound)) continue;
      if (containersOf(*settings_.codec, sound).empty()) {
        return refused("sound", *value,
                       fmt::format("No file holds it beside {}. It is one of {}.", settings_.codec->key,
                                   fmt::join(possibleSounds(), ", ")));
      }
      settings_.sound = sound;
      return {};
    }
    return refused("sound", *value, "It is aac, pcm or flac.");
  }

  std::vector<std::string_view> possibleSounds() const {
    std::vector<std::string_view> sounds;
    for (const SoundCodec sound : {SoundCodec::aac, SoundCodec::pcm, SoundCodec::flac}) {
      if (!containersOf(*settings_.codec, sound).empty()) sounds.emplace_back(keyOf(sound));
    }
    return sounds;
  }

  static std::optional<FrameRate> frameRateOfText(std::string_view text) {
    for (const NamedRate& named : kNamedRates) {
      if (named.name == text) return named.rate;
    }
    const std::optional<int> number = wholeNumber(text);
    if (!number || *number < 0 || *number > kMostPicturesPerSecond) return std::nullopt;
    return FrameRate{*number, 1};
  }

  const Values& values_;
  CompressionSettings& settings_;
};

std::string textOf(FrameRate rate) {
  for (const NamedRate& named : kNamedRates) {
    if (named.rate == rate) return std::string(named.name);
  }
  return std::to_string(rate.numerator / rate.denominator);
}

std::string speedsText(const CompressionCodec& codec) {
  if (codec.speeds.empty()) return {};
  return fmt::format("; speed {} to {} ({})", codec.speeds.front(), codec.speeds.back(), codec.standardSpeed);
}

std::string qualityText(const CompressionCodec& codec) {
  if (codec.quality.isFixed()) return codec.qualityMeaning;
  return fmt::format("quality {} to {} ({}), {}", codec.quality.least, codec.quality.most, codec.quality.standard,
                     codec.qualityMeaning);
}

}  // namespace

Expected<CompressionSettings> settingsFromTexts(const std::vector<std::string>& texts) {
  const Expected<Values> values = splitTexts(texts);
  if (!values.ok()) return values.error();
  const auto named = values.value().find("codec");
  const std::string key = named == values.value().end() ? compressionCodecs().front().key : named->second;
  const CompressionCodec* codec = codecWithKey(key);
  if (!codec) return refused("codec", key, fmt::format("It is one of {}.", codecKeys()));
  CompressionSettings settings(*codec);
  Status read = Reader(values.value(), settings).read();
  if (!read.ok()) return read.error();
  return settings;
}

std::vector<std::string> textsOf(const CompressionSettings& settings) {
  const CompressionCodec& codec = *settings.codec;
  std::vector<std::string> texts{fmt::format("codec={}", codec.key)};
  if (!codec.quality.isFixed()) texts.push_back(fmt::format("quality={}", settings.quality));
  if (!codec.speeds.empty()) texts.push_back(fmt::format("speed={}", settings.speed));
  texts.push_back(fmt::format("scan={}", kScans[settings.scan == Scan::keep ? 0 : 1]));
  texts.push_back(fmt::format("frameRate={}", textOf(settings.frameRate)));
  texts.push_back(fmt::format("sound={}", keyOf(settings.sound)));
  if (!codec.keyframes.isFixed()) texts.push_back(fmt::format("keyframes={}", settings.keyframes));
  return texts;
}

std::string compressionTextHelp() {
  std::string help = fmt::format("  codec      {}; without one {}\n", codecKeys(), compressionCodecs().front().key);
  for (const CompressionCodec& codec : compressionCodecs()) {
    help += fmt::format("             {}: {}{}\n", codec.key, qualityText(codec), speedsText(codec));
  }
  help += "  quality    a number, see the codec\n";
  help += "  speed      what the encoder's time is spent on, see the codec\n";
  help += "  scan       keep (both fields in one picture; h264, prores, ffv1) or deinterlace (a picture for each)\n";
  help += fmt::format("  frameRate  pictures a second: 0 (as many as come), 1 to {}, 23.976, 29.97, 59.94\n",
                      kMostPicturesPerSecond);
  help += "  sound      aac (.mp4, .mov, .mkv), pcm (.mov, .avi, .mkv) or flac (.mkv)\n";
  help += "  keyframes  pictures from one key frame to the next, 1 to 1000 (h264, h265, av1)\n";
  return help;
}

}  // namespace zq::media
