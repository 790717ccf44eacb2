#include "backends/media/tape_maker.h"

#include <fmt/format.h>

#include <chrono>
#include <memory>
#include <span>

#include "backends/media/dv_picture_encoder.h"
#include "backends/media/gathered_output.h"
#include "backends/media/output_file.h"
#include "backends/media/scene_painter.h"
#include "backends/media/scene_sound.h"
#include "dv/dv_constants.h"
#include "dv/frame_sound.h"
#include "timecode/timecode_text.h"
#include "timecode/timecode_utils.h"

namespace zq::media {
namespace {

std::int64_t framesOf(const std::vector<TapeScene>& scenes) {
  std::int64_t frames = 0;
  for (const TapeScene& scene : scenes) frames += scene.frames;
  return frames;
}

std::chrono::year_month_day dayOf(const StampDateTime& date) {
  return {std::chrono::year{date.year}, std::chrono::month{static_cast<unsigned>(date.month)},
          std::chrono::day{static_cast<unsigned>(date.day)}};
}

bool exists(const StampDateTime& date) {
  const auto within = [](int value, int limit) { return value >= 0 && value < limit; };
  return dayOf(date).ok() && within(date.hours, 24) && within(date.minutes, 60) && within(date.seconds, 60);
}

Status checkScenes(const std::string& path, const std::vector<TapeScene>& scenes) {
  const std::string what = fmt::format("Cannot make the tape \"{}\"", path);
  if (scenes.empty()) return Error{what, "It has no scene. Give at least one."};
  int number = 0;
  for (const TapeScene& scene : scenes) {
    ++number;
    if (scene.frames <= 0)
      return Error{what, fmt::format("Scene {} has no length. Give it one frame or more.", number)};
    if (scene.date && !exists(*scene.date)) {
      return Error{what, fmt::format("The date of scene {} does not exist. Give one of the calendar.", number)};
    }
  }
  return {};
}

/// A camcorder's clock knows no time zone, so an hour that summer time skips is one like any other.
StampDateTime laterBy(const StampDateTime& start, std::int64_t seconds) {
  namespace time = std::chrono;
  const time::sys_seconds then = time::sys_days{dayOf(start)} + time::hours{start.hours} +
                                 time::minutes{start.minutes} + time::seconds{start.seconds + seconds};
  const auto midnight = time::floor<time::days>(then);
  const time::year_month_day day{midnight};
  const time::hh_mm_ss clock{then - midnight};
  StampDateTime later;
  later.year = static_cast<int>(day.year());
  later.month = static_cast<int>(static_cast<unsigned>(day.month()));
  later.day = static_cast<int>(static_cast<unsigned>(day.day()));
  later.hours = static_cast<int>(clock.hours().count());
  later.minutes = static_cast<int>(clock.minutes().count());
  later.seconds = static_cast<int>(clock.seconds().count());
  return later;
}

std::string dateText(const std::optional<StampDateTime>& date) {
  if (!date) return "UNDATED";
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", date->year, date->month, date->day, date->hours,
                     date->minutes, date->seconds);
}

/// The making of one tape.
class TapeInTheMaking {
 public:
  TapeInTheMaking(OutputFile& file, DVSystem system, std::int64_t framesInAll, const TapeMaker::Progress& progress)
      : output_(file), system_(system), rate_(frameRateOf(system)), framesInAll_(framesInAll), progress_(progress) {
    setTimecode({});
  }

  Status record(int number, const TapeScene& scene);
  /// After the last scene.
  Status finish() { return output_.flush(); }

 private:
  void setTimecode(SMPTETime timecode);
  PictureContent contentOf(int number, int frame, const std::optional<StampDateTime>& date) const;
  Status recordFrame(std::span<std::uint8_t> frame, const FrameStamp& stamp, SceneSound& sound);

  GatheredOutput output_;
  const DVSystem system_;
  const FrameRate rate_;
  const std::int64_t framesInAll_;
  const TapeMaker::Progress& progress_;
  ScenePainter painter_;
  SMPTETime timecode_;
  std::int64_t framesMade_ = 0;
};

void TapeInTheMaking::setTimecode(SMPTETime timecode) {
  // The type is what the arithmetic counts the frames of a second by.
  timecode.mType = system_ == DVSystem::pal625_50 ? 1 : 2;
  timecode_ = timecode;
}

PictureContent TapeInTheMaking::contentOf(int number, int frame, const std::optional<StampDateTime>& date) const {
  const std::int64_t ticksIntoSecond = std::int64_t{frame} * rate_.denominator % rate_.numerator;
  PictureContent content;
  content.scene = number;
  content.frame = frame;
  content.framesPerSecond = timebaseOf(system_);
  content.beep = static_cast<double>(ticksIntoSecond) < SceneSound::kBeepSeconds * rate_.numerator;
  content.title = fmt::format("SCENE {}  FRAME {:04}", number, frame);
  content.timecode = timecodeText(timecode_);
  content.date = dateText(date);
  return content;
}

Status TapeInTheMaking::record(int number, const TapeScene& scene) {
  auto encoder = DVPictureEncoder::create(system_, scene.wideScreen);
  if (!encoder.ok()) return encoder.error();
  if (scene.timecode) setTimecode(*scene.timecode);
  SceneSound sound(number);
  for (int frame = 0; frame < scene.frames; ++frame) {
    FrameStamp stamp;
    stamp.timecode = timecode_;
    stamp.aspect = scene.wideScreen ? 0 : 1;
    const std::int64_t elapsed = std::int64_t{frame} * rate_.denominator / rate_.numerator;
    if (scene.date) stamp.dateTime = laterBy(*scene.date, elapsed);
    const PictureContent content = contentOf(number, frame, stamp.dateTime);
    auto encoded = encoder.value()->encode([&](const PicturePlanes& planes) { painter_.paint(content, planes); });
    if (!encoded.ok()) return encoded.error();
    Status recorded = recordFrame(encoded.value(), stamp, sound);
    if (!recorded.ok()) return recorded;
    timecode_ = ZQACTimecodeUtils::addNbFrameToTimecode(1, timecode_);
    if (timecode_.mHours >= 24) timecode_.mHours = 0;
  }
  return {};
}

Status TapeInTheMaking::recordFrame(std::span<std::uint8_t> frame, const FrameStamp& stamp, SceneSound& sound) {
  const int samples = samplesInFrame(system_, framesMade_);
  writeFrameSound(frame, system_, sound.next(samples));
  stampFrame(frame, stamp);
  Status written = output_.append(frame);
  if (!written.ok()) return written;
  ++framesMade_;
  if (progress_) progress_(framesMade_, framesInAll_);
  return {};
}

Status recordAll(OutputFile& file, DVSystem system, const std::vector<TapeScene>& scenes,
                 const TapeMaker::Progress& progress) {
  TapeInTheMaking tape(file, system, framesOf(scenes), progress);
  int number = 0;
  for (const TapeScene& scene : scenes) {
    Status recorded = tape.record(++number, scene);
    if (!recorded.ok()) return recorded;
  }
  return tape.finish();
}

}  // namespace

Status TapeMaker::make(const std::string& path, DVSystem system, const std::vector<TapeScene>& scenes,
                       const Progress& progress) const {
  Status checked = checkScenes(path, scenes);
  if (!checked.ok()) return checked;
  auto file = OutputFile::create(path);
  if (!file.ok()) return file.error();
  Status made = recordAll(*file.value(), system, scenes, progress);
  if (made.ok()) made = file.value()->close();
  // Half a tape image looks like a whole one. What went wrong first is what the user must hear of.
  if (!made.ok()) static_cast<void>(file.value()->remove());
  return made;
}

}  // namespace zq::media
