#include "capture/capture_settings.h"

#include "capture/settings_keys.h"

namespace zq {
namespace {

void writeBoolIfAbsent(platform::Settings& store, const char* key, bool value) {
  if (!store.objectForKey(key)) store.setBoolForKey(key, value);
}

void writeIntegerIfAbsent(platform::Settings& store, const char* key, int value) {
  if (!store.objectForKey(key)) store.setIntegerForKey(key, value);
}

}  // namespace

// Into the store itself, not as a fallback behind it: a user who opens the store sees what is in force.
void CaptureSettings::registerDefaults(platform::Settings& store) {
  writeBoolIfAbsent(store, ZQACDetectScene, true);
  writeIntegerIfAbsent(store, ZQACNbDropFrame, 0);
  writeBoolIfAbsent(store, ZQACDetectEndTape, false);
  writeIntegerIfAbsent(store, ZQACDetectEndTapeSecond, 1);
  writeIntegerIfAbsent(store, ZQACActionAfterRecord, 2);
  writeBoolIfAbsent(store, ZQACFrameSampling, true);
  writeIntegerIfAbsent(store, ZQACSampleInterval, 1);
  writeBoolIfAbsent(store, ZQACCaptureMovie, true);
  writeIntegerIfAbsent(store, ZQACCaptureCompression, 0);
  writeIntegerIfAbsent(store, ZQACCaptureCompressionSize, 2);
}

bool CaptureSettings::detectScene() const {
  return store_.boolForKey(ZQACDetectScene);
}
int CaptureSettings::nbDropFrame() const {
  return store_.integerForKey(ZQACNbDropFrame);
}
bool CaptureSettings::detectEndTape() const {
  return store_.boolForKey(ZQACDetectEndTape);
}
int CaptureSettings::detectEndTapeSecond() const {
  return store_.integerForKey(ZQACDetectEndTapeSecond);
}
bool CaptureSettings::frameSampling() const {
  return store_.boolForKey(ZQACFrameSampling);
}
bool CaptureSettings::captureMovie() const {
  return store_.boolForKey(ZQACCaptureMovie);
}

ActionAfterRecord CaptureSettings::actionAfterRecord() const {
  switch (store_.integerForKey(ZQACActionAfterRecord)) {
    case 1:
      return ActionAfterRecord::stop;
    case 2:
      return ActionAfterRecord::pause;
    default:
      return ActionAfterRecord::leave;
  }
}

int frameSampleIntervalOf(const platform::Settings& store) {
  const auto index = static_cast<std::size_t>(store.integerForKey(ZQACSampleInterval));
  return index < sampleIntervalValue.size() ? sampleIntervalValue[index] : 0;
}

}  // namespace zq
