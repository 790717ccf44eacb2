#pragma once
// The capture controller: drives a DV device, cuts what it plays into clips by the recording date, and has each clip's
// movie and thumbnails written where its delegate says.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "capture/capture_outlets.h"
#include "capture/capture_settings.h"
#include "capture/compression_choices.h"
#include "capture/configuration.h"
#include "capture/controller_delegate.h"
#include "capture/current_clip.h"
#include "capture/custom_compression.h"
#include "capture/device_selection.h"
#include "capture/end_of_tape_timer.h"
#include "capture/key_observers.h"
#include "capture/movie_trigger.h"
#include "capture/thumbnail_sampler.h"
#include "capture/transport.h"
#include "platform/capture_session.h"
#include "platform/notification_center.h"
#include "platform/recursive_lock.h"
#include "platform/runtime.h"

namespace zq {

/// What a controller asks of the system. All of it outlives the controller.
struct CaptureServices {
  platform::Runtime& runtime;
  platform::CapturePlatform& capture;
  platform::CompressionPlatform& compression;
  platform::Settings& settings;
  platform::NotificationCenter& notifications;
  platform::Alerts& alerts;
  const platform::Strings& strings;
  Log& log;
};

/// Device, transport and recording operations are the main thread's; setRecording() may be called from any thread.
/// Frame operations run on the session's delivery thread. One lock guards the state; it is given up during alerts and
/// while the tape is rewound for a preroll.
class ZQACController : public platform::QTCaptureOutputDelegate {
 public:
  ZQACController(const CaptureServices& services, const CaptureOutlets& outlets);
  ~ZQACController() override;
  ZQACController(const ZQACController&) = delete;
  ZQACController& operator=(const ZQACController&) = delete;

  /// Class initialisation: writes the default of each live setting that the store lacks. Once, before the first one.
  static void initialize(platform::Settings& settings) { CaptureSettings::registerDefaults(settings); }
  void awakeFromNib() {}
  /// Not retained; null for none.
  void setDelegate(const ZQACControllerDelegate* delegate);

  // Devices.
  void setSelectedVideoDevice(const std::shared_ptr<platform::QTCaptureDevice>& device);
  std::shared_ptr<platform::QTCaptureDevice> selectedVideoDevice() const;
  std::shared_ptr<platform::QTCaptureDevice> controllableDevice() const;
  std::shared_ptr<platform::QTCaptureDeviceInput> videoDeviceInput() const;
  bool hasRecordingDevice() const;
  /// The devices offered for choice; the host fills the list.
  void setVideoDevices(std::vector<std::shared_ptr<platform::QTCaptureDevice>> devices);
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> videoDevices() const;

  // Transport.
  void setDevicePlaying(bool playing);
  /// Also ends a recording when the answer is no.
  bool isDevicePlaying();
  bool isDevicePause() const;
  void setDeviceFastForwarding(bool on);
  bool isDeviceFastForwarding() const;
  void setDeviceRewinding(bool on);
  bool isDeviceRewinding() const;
  void stopDevice();
  void deviceAttributeWillChange(const platform::Notification& notification);
  void deviceAttributeDidChange(const platform::Notification& notification);
  /// "devicePlaying", "deviceFastForwarding", "deviceRewinding", "selectedVideoDevice" and the keys that follow it,
  /// "allVideoCompressionOptions", "videoCompressionOptions".
  KeyObservers& keys() { return keys_; }

  // Recording.
  void setRecording(bool recording);
  bool isRecording() const;
  bool isPrerolling() const;
  void setIsPrerolling(bool prerolling);
  SMPTETime startTimecode() const;
  void setStartTimecode(const SMPTETime& timecode);
  void stopCapture();
  void launchStopCaptureTimer();
  void setProcessNote(const std::string& note);
  std::string processNote() const;
  bool captureMovie() const { return settings_.captureMovie(); }
  int frameSampleInterval() const { return settings_.frameSampleInterval(); }
  bool isCompressed() const;

  // The current frame and clip.
  TimecodeValue currentTimecodeValue() const;
  void setCurrentTimecodeValue(TimecodeValue timecode);
  DateValue currentDate() const;
  void setCurrentDate(DateValue date);
  ClipInfo currentClipInfo() const;
  std::optional<std::string> moviePath() const;
  void setMoviePath(std::optional<std::string> path);
  std::optional<std::string> thumbnailsPath() const;
  void setThumbnailsPath(const std::optional<std::string>& path);
  TimecodeValue timecodeStartValue() const;
  void setTimecodeStartValue(TimecodeValue start);
  TimecodeValue timecodeEndValue() const;
  void setTimecodeEndValue(TimecodeValue end);

  // Frames, on the delivery thread.
  void captureOutputDidOutputSampleBufferFromConnection(platform::QTCaptureOutput& output,
                                                        const platform::QTSampleBuffer& buffer,
                                                        const platform::QTCaptureConnection& connection) override;
  void captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
      platform::QTCaptureFileOutput& output, const std::string& path,
      const std::vector<platform::QTCaptureConnection>& connections, const Error& error) override;
  void detectAndCaptureThumbnail(const platform::QTSampleBuffer& buffer);
  void movieDetection(const platform::QTSampleBuffer& buffer);

  // Compression of the movies that are started from now on.
  void buildVideoCompressionOptions();
  const std::vector<CompressionValue>& allVideoCompressionOptions() const { return compressionChoices_.all(); }
  void setVideoCompressionOptions(CompressionValue options);
  CompressionValue videoCompressionOptions() const;
  bool isCustomVideoCompression() const;
  /// Shows the dialog for the user's own settings.
  void changeCustomCompression();
  void updateVideoCompression();
  const CustomCompression& customCompression() const { return customCompression_; }

  // Named configurations of the options.
  /// Fills the pop-up; its first item stands for options without a name.
  void setAllConfiguration(std::vector<Configuration> configurations);
  const std::vector<Configuration>& allConfiguration() const { return allConfiguration_; }
  void selectConfigurationAtIndex(int index);
  /// Makes the options of the pop-up's selected item the live settings.
  void changeConfiguration();
  void saveCurrentConfiguration();
  void deleteCurrentConfiguration();

  // Sound and outputs.
  void setCaptureVolume(float volume);
  float captureVolume() const;
  platform::QTCaptureAudioPreviewOutput& audioPreviewOutput() { return *audioPreviewOutput_; }
  platform::QTCaptureMovieFileOutput& movieFileOutput() { return *movieFileOutput_; }
  platform::QTCaptureFileOutput& fileOutput() { return *fileOutput_; }
  const CaptureOutlets& outlets() const { return outlets_; }

 private:
  void addOutputs();
  void observe();
  void observeValueForKeyPath() const;
  void showTransportOnButtons();
  Configuration selectedConfiguration() const;
  void chooseCompression(int index);
  void applyCompressionOf(const Configuration& configuration);
  bool isAboutControllableDevice(const platform::Notification& notification) const;

  void resetForRecordingSwitch(bool recording);
  void startRecording();
  bool shouldPreroll() const;
  void rewindForPreroll();
  void finishRecording();
  void openClip();
  void closeClip(const TimecodeValue& end);

  bool isDVFrame(const platform::QTSampleBuffer& buffer) const;
  void refuseStream();
  void endPrerollAt(const platform::QTSampleBuffer& buffer);
  void cutSceneAt(const SMPTETime& timecode);
  void sampleThumbnail(const SharedBytes& frame, const SMPTETime& timecode);
  void logUndecodableOnceAClip();

  // Constant after construction.
  platform::Runtime& runtime_;
  platform::Settings& store_;
  platform::NotificationCenter& notifications_;
  platform::Alerts& alerts_;
  const platform::Strings& strings_;
  Log& log_;
  const CaptureOutlets outlets_;
  const CaptureSettings settings_;
  const std::shared_ptr<platform::QTCaptureSession> session_;
  const std::shared_ptr<platform::QTCaptureVideoPreviewOutput> videoPreviewOutput_;
  const std::shared_ptr<platform::QTCaptureAudioPreviewOutput> audioPreviewOutput_;
  const std::shared_ptr<platform::QTCaptureFileOutput> fileOutput_;
  const std::shared_ptr<platform::QTCaptureMovieFileOutput> movieFileOutput_;
  const Transport transport_;
  const CustomCompression customCompression_;
  DeviceSelection devices_;

  mutable platform::RecursiveLock lock_;

  // Guarded by lock_.
  const ZQACControllerDelegate* delegate_ = nullptr;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> videoDevices_;
  CompressionValue videoCompressionOptions_;
  bool isRecording_ = false;
  bool isPrerolling_ = false;
  SMPTETime startTimecode_;
  TimecodeValue currentTimecodeValue_;
  DateValue currentDate_;
  MovieTrigger movieTrigger_;
  ThumbnailSampler thumbnails_;
  std::optional<std::string> moviePath_;
  CurrentClip clip_;
  EndOfTapeTimer endOfTapeTimer_;
  std::string processNote_;
  bool undecodableLogged_ = false;

  // Main thread only.
  KeyObservers keys_;
  CompressionChoices compressionChoices_;
  std::vector<Configuration> allConfiguration_;
  bool loadingConfig_ = false;  // so that what a configuration writes does not count as edited by hand
  std::vector<platform::Observation> observations_;

  /// Goes with the controller, so that what is still posted for it finds it gone.
  std::shared_ptr<ZQACController*> alive_;
};

}  // namespace zq
