#include "backends/media/encoder_check.h"

#include "backends/media/picture_encoder.h"
#include "backends/media/picture_filter.h"
#include "backends/media/sound_encoder.h"

namespace zq::media {
namespace {

// As small as every encoder takes.
constexpr PictureSize kTrialSize{160, 120};
constexpr int kTrialRate = 48000;

Status tryPicture(const CompressionSettings& settings) {
  const PicturePlan plan = planPictures(DVSystem::pal625_50, false, settings, kTrialSize);
  auto filter = PictureFilter::create(DVSystem::pal625_50, plan);
  if (!filter.ok()) return filter.error();
  auto encoder = PictureEncoder::open(settings, plan, true);
  return encoder.ok() ? Status() : Status(encoder.error());
}

Status trySound(SoundCodec sound) {
  if (sound == SoundCodec::pcm) return {};
  auto encoder = SoundEncoder::open(sound, kTrialRate, true);
  return encoder.ok() ? Status() : Status(encoder.error());
}

}  // namespace

Status EncoderCheck::check(const CompressionSettings& settings) {
  const std::string picture = settings.codec->key;
  const std::string sound = keyOf(settings.sound);
  if (!results_.contains(picture)) results_.emplace(picture, tryPicture(CompressionSettings(*settings.codec)));
  if (!results_.contains(sound)) results_.emplace(sound, trySound(settings.sound));
  const Status& result = results_.at(picture);
  return result.ok() ? results_.at(sound) : result;
}

}  // namespace zq::media
