#include <any>
#include <mutex>
#include <utility>

#include "capture/compression_options.h"
#include "capture/controller.h"
#include "capture/session_compression.h"
#include "capture/settings_keys.h"

// How movies are compressed, and the named configurations of all options.

namespace zq {
namespace {

constexpr char kAllVideoCompressionOptions[] = "allVideoCompressionOptions";
constexpr char kVideoCompressionOptions[] = "videoCompressionOptions";
/// The pop-up's first item: options that belong to no named configuration.
constexpr char kUnnamedOptions[] = "Unnamed options";

}  // namespace

void ZQACController::buildVideoCompressionOptions() {
  keys_.willChangeValueForKey(kAllVideoCompressionOptions);
  compressionChoices_.build(compressionChoices_.presetCount());
  keys_.didChangeValueForKey(kAllVideoCompressionOptions);
  chooseCompression(store_.integerForKey(ZQACCaptureCompression));
}

// An index that is none here stays stored, as the encoder may be back another day, until another is chosen.
void ZQACController::chooseCompression(int index) {
  const int stored = store_.integerForKey(ZQACCaptureCompression);
  const bool exists = compressionChoices_.has(index);
  setVideoCompressionOptions(compressionChoices_.select(index));
  const bool replacesOneThatIsNotHere = exists && !compressionChoices_.has(stored);
  if ((!exists || replacesOneThatIsNotHere) && store_.integerForKey(ZQACCaptureCompression) != index) {
    store_.setIntegerForKey(ZQACCaptureCompression, index);
  }
}

void ZQACController::setVideoCompressionOptions(CompressionValue options) {
  if (options == videoCompressionOptions()) return;
  keys_.willChangeValueForKey(kVideoCompressionOptions);
  {
    const std::lock_guard guard(lock_);
    videoCompressionOptions_ = std::move(options);
  }
  keys_.didChangeValueForKey(kVideoCompressionOptions);
  store_.setIntegerForKey(ZQACCaptureCompression, compressionChoices_.indexOfSelectedItem());
  updateVideoCompression();
}

CompressionValue ZQACController::videoCompressionOptions() const {
  const std::lock_guard guard(lock_);
  return videoCompressionOptions_;
}

bool ZQACController::isCompressed() const {
  return !isNoCompression(videoCompressionOptions());
}

bool ZQACController::isCustomVideoCompression() const {
  return videoCompressionOptions() == QTCustomCompressionOptions::customCompressionOptions();
}

void ZQACController::changeCustomCompression() {
  customCompression_.change();
  updateVideoCompression();
}

void ZQACController::updateVideoCompression() {
  CompressionValue options = isCompressed() ? videoCompressionOptions() : nullptr;
  if (isCustomVideoCompression())
    options = customCompression_.options(store_.integerForKey(ZQACCaptureCompressionSize));
  applyVideoCompression(*session_, *movieFileOutput_, options);
}

void ZQACController::setAllConfiguration(std::vector<Configuration> configurations) {
  allConfiguration_ = std::move(configurations);
  outlets::PopUp* popUp = outlets_.configurationPopUp;
  if (popUp == nullptr) return;
  popUp->removeAllItems();
  popUp->addItem(strings_.localizedString(kUnnamedOptions), Configuration());
  for (const Configuration& configuration : allConfiguration_) {
    popUp->addItem(configurationName(configuration), configuration);
  }
}

void ZQACController::selectConfigurationAtIndex(int index) {
  if (outlets_.configurationPopUp != nullptr) outlets_.configurationPopUp->selectItemAtIndex(index);
  changeConfiguration();
}

/// Empty when nothing is selected, or what was is no configuration.
Configuration ZQACController::selectedConfiguration() const {
  const outlets::PopUp* popUp = outlets_.configurationPopUp;
  if (popUp == nullptr) return {};
  const std::any object = popUp->representedObjectAtIndex(popUp->indexOfSelectedItem());
  const auto* configuration = std::any_cast<Configuration>(&object);
  return configuration != nullptr ? *configuration : Configuration();
}

void ZQACController::changeConfiguration() {
  loadingConfig_ = true;
  const Configuration configuration = selectedConfiguration();
  applyCaptureOptions(configuration, store_);
  applyCompressionOf(configuration);
  updateVideoCompression();
  loadingConfig_ = false;
}

// The older scheme's choice comes last, so it wins over what else the configuration says: as received, or settings that
// the user has to choose anew.
void ZQACController::applyCompressionOf(const Configuration& configuration) {
  if (const auto index = integerIn(configuration, ZQACConfCompression)) {
    chooseCompression(*index);
  }
  applyCompressionSettings(configuration, store_);
  const auto oldFormat = integerIn(configuration, ZQACCaptureOldCompression);
  if (!oldFormat) return;
  if (*oldFormat == 0 || *oldFormat == 1) return setVideoCompressionOptions(compressionChoices_.select(0));
  store_.removeObjectForKey(ZQACCaptureCompressionData);
  setVideoCompressionOptions(compressionChoices_.selectLast());
}

void ZQACController::saveCurrentConfiguration() {
  if (delegate_ == nullptr || !delegate_->accontrollerSaveConfiguration) return;
  delegate_->accontrollerSaveConfiguration(*this, configurationOf(store_));
}

// That the delegate saves is what is asked: one that only deletes would leave the user without a way back.
void ZQACController::deleteCurrentConfiguration() {
  if (delegate_ == nullptr || !delegate_->accontrollerSaveConfiguration) return;
  if (!delegate_->accontrollerDeleteConfigurationName) return;
  delegate_->accontrollerDeleteConfigurationName(*this, configurationName(selectedConfiguration()));
}

}  // namespace zq
