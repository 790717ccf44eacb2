#include <mutex>
#include <utility>

#include "capture/compression_options.h"
#include "capture/session_compression.h"
#include "capture/settings_keys.h"
#include "recapture/controller.h"

// How movies are compressed, and the options sheet.

namespace zq {
namespace {

constexpr char kAllVideoCompressionOptions[] = "allVideoCompressionOptions";
constexpr char kIsCustomVideoCompression[] = "isCustomVideoCompression";
constexpr char kFormatName[] = "formatName";
constexpr char kNoCompression[] = "No compression";

}  // namespace

void ZQACRecaptureController::observeSettings() {
  observations_.push_back(store_.observe({ZQACRecaptureCompressionData}, [this](const std::string& key) {
    keys_.willChangeValueForKey(key);
    keys_.didChangeValueForKey(key);
  }));
}

// The number of presets is one byte, as long as the list is: 255 at most, and a longer list counts from 0 again.
void ZQACRecaptureController::buildVideoCompressionOptions() {
  keys_.willChangeValueForKey(kAllVideoCompressionOptions);
  compressionChoices_.build(static_cast<std::uint8_t>(compressionChoices_.presetCount()));
  keys_.didChangeValueForKey(kAllVideoCompressionOptions);
  setVideoCompressionOptions(compressionChoices_.select(0));
}

void ZQACRecaptureController::setVideoCompressionOptions(CompressionValue options) {
  {
    const std::lock_guard guard(lock_);
    if (options == videoCompressionOptions_) return;
    videoCompressionOptions_ = std::move(options);
  }
  updateVideoCompression();
}

CompressionValue ZQACRecaptureController::videoCompressionOptions() const {
  const std::lock_guard guard(lock_);
  return videoCompressionOptions_;
}

bool ZQACRecaptureController::isCustomVideoCompression() const {
  return videoCompressionOptions() == QTCustomCompressionOptions::customCompressionOptions();
}

void ZQACRecaptureController::changeCustomCompression() {
  customCompression_.change();
  updateVideoCompression();
}

void ZQACRecaptureController::setFitToSizeTag(std::int32_t tag) {
  fitToSizeTag_ = tag;
  updateVideoCompression();
}

void ZQACRecaptureController::updateVideoCompression() {
  CompressionValue options = videoCompressionOptions();
  if (isNoCompression(options)) options = nullptr;
  keys_.willChangeValueForKey(kIsCustomVideoCompression);
  if (isCustomVideoCompression()) {
    options = customCompression_.options(fitToSizeTag_);
    if (outlets_.customChangeButton != nullptr) outlets_.customChangeButton->setState(false);
  }
  keys_.didChangeValueForKey(kIsCustomVideoCompression);
  applyVideoCompression(*session_, *movieFileOutput_, options);
}

void ZQACRecaptureController::announceFormatName() const {
  keys_.willChangeValueForKey(kFormatName);
  keys_.didChangeValueForKey(kFormatName);
}

std::string ZQACRecaptureController::formatName() const {
  const CompressionValue options = videoCompressionOptions();
  if (!options || isNoCompression(options)) return localized(kNoCompression);
  return localized(options->localizedDisplayName());
}

void ZQACRecaptureController::options() {
  if (outlets_.optionsWindow == nullptr) return;
  outlets_.optionsWindow->beginSheet([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) sheetDidEnd();
  });
}

void ZQACRecaptureController::optionsDone() const {
  if (outlets_.optionsWindow != nullptr) outlets_.optionsWindow->endSheet();
}

void ZQACRecaptureController::sheetDidEnd() {
  if (outlets_.optionsWindow != nullptr) outlets_.optionsWindow->orderOut();
  announceFormatName();
}

void ZQACRecaptureController::changePath() {
  if (outlets_.pathPanel == nullptr || outlets_.pathPanel->runModal() != outlets::kOKButton) return;
  setMoviePath(outlets_.pathPanel->filename());
}

}  // namespace zq
