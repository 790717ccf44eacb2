#include "capture/device_selection.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace zq {

using platform::fourCharCode;
using platform::FourCharCode;
using platform::QTCaptureDevice;
using platform::QTCaptureDeviceInput;

namespace {

constexpr std::array<FourCharCode, 8> kDVFormats{fourCharCode("dv  "), fourCharCode("dv1n"), fourCharCode("dv1p"),
                                                 fourCharCode("dv5n"), fourCharCode("dv5p"), fourCharCode("dvc "),
                                                 fourCharCode("dvcp"), fourCharCode("dvpp")};

constexpr char kNotDVMessage[] = "The original stream is not DV.";
constexpr char kNotDVInformative[] =
    "This version of the application cannot handle video stream that is not encoded in DV. If your camcorder is a HD "
    "camcorder, please activate the DV down-conversion option at playback (most HDV camcorders offer this option) to "
    "capture video.";

}  // namespace

bool isDVFormat(FourCharCode formatType) {
  return std::find(kDVFormats.begin(), kDVFormats.end(), formatType) != kDVFormats.end();
}

DeviceSelection::DeviceSelection(platform::Runtime& runtime, platform::CapturePlatform& capture,
                                 platform::QTCaptureSession& session, platform::Alerts& alerts,
                                 const platform::Strings& strings)
    : capture_(capture),
      session_(session),
      alerts_(alerts),
      strings_(strings),
      mutex_(runtime.makeMutex("selected device")) {}

std::shared_ptr<QTCaptureDeviceInput> DeviceSelection::input() const {
  const std::lock_guard guard(*mutex_);
  return input_;
}

std::shared_ptr<QTCaptureDevice> DeviceSelection::selectedDevice() const {
  const auto held = input();
  return held ? held->device() : nullptr;
}

std::shared_ptr<QTCaptureDeviceInput> DeviceSelection::exchangeInput(std::shared_ptr<QTCaptureDeviceInput> input) {
  const std::lock_guard guard(*mutex_);
  return std::exchange(input_, std::move(input));
}

void DeviceSelection::release() {
  const auto held = input();
  if (!held) return;
  session_.removeInput(held);
  held->device()->close();
  exchangeInput(nullptr);
}

bool DeviceSelection::select(const std::shared_ptr<QTCaptureDevice>& device, const std::function<void()>& joined) {
  alertFormatsThatAreNotDV(*device);
  if (Status opened = device->open(); !opened.ok()) {
    alerts_.runModal(opened.error().message, opened.error().informative);
    return false;
  }
  const auto added = capture_.makeDeviceInput(device);
  const Status status = session_.addInput(added);
  exchangeInput(added);
  if (joined) joined();
  if (status.ok()) return true;
  alerts_.runModal(status.error().message, status.error().informative);
  exchangeInput(nullptr);
  device->close();
  return false;
}

void DeviceSelection::alertFormatsThatAreNotDV(const QTCaptureDevice& device) {
  for (const platform::QTFormatDescription& format : device.formatDescriptions()) {
    if (isDVFormat(format.formatType)) continue;
    alerts_.runModal(strings_.localizedString(kNotDVMessage), strings_.localizedString(kNotDVInformative));
  }
}

}  // namespace zq
