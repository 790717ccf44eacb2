#pragma once
// What the capture controller tells its host, and asks it.

#include <functional>
#include <string>

#include "capture/clip_info.h"
#include "capture/configuration.h"

namespace zq {

class ZQACController;

/// Each operation is optional: an empty one is a delegate that does not answer it. They are called on the thread that
/// caused them: a clip that the tape opens or closes, on the delivery thread; the rest where setRecording() was called.
/// The controller keeps its lock meanwhile: the operation may call it back, but must not wait for a thread that may ask
/// it something, such as the main thread.
struct ZQACControllerDelegate {
  /// A recording session starts, before anything else.
  std::function<void(ZQACController&)> accontrollerBeginRecord;
  /// A clip is about to start: where to write it.
  std::function<ClipPaths(ZQACController&)> accontrollerWillRecord;
  /// A clip has ended.
  std::function<void(ZQACController&, const ClipInfo&)> accontrollerDidRecordInfo;
  /// A recording session has ended; the last call of it.
  std::function<void(ZQACController&)> accontrollerEndRecord;
  /// The user wants the options kept: name and place are the delegate's matter.
  std::function<void(ZQACController&, const Configuration&)> accontrollerSaveConfiguration;
  /// The user wants a configuration gone. Only a delegate that also saves is asked.
  std::function<void(ZQACController&, const std::string& name)> accontrollerDeleteConfigurationName;
};

}  // namespace zq
