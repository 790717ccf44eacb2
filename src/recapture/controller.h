#pragma once
// The recapture controller: finds the marked clips of a tape again by their recording dates, drives the deck to each,
// and has each one recorded between its timecodes.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "capture/compression_choices.h"
#include "capture/custom_compression.h"
#include "capture/device_selection.h"
#include "capture/key_observers.h"
#include "capture/transport.h"
#include "catalogue/tape.h"
#include "platform/capture_session.h"
#include "platform/file_manager.h"
#include "platform/notification_center.h"
#include "platform/recursive_lock.h"
#include "platform/runtime.h"
#include "recapture/positioning.h"
#include "recapture/preroll_threads.h"
#include "recapture/recapture_delegate.h"
#include "recapture/recapture_screen.h"

namespace zq {

/// What the controller asks of the system. All of it outlives the controller.
struct RecaptureServices {
  platform::Runtime& runtime;
  platform::CapturePlatform& capture;
  platform::CompressionPlatform& compression;
  platform::Settings& settings;
  platform::NotificationCenter& notifications;
  platform::Alerts& alerts;
  const platform::Strings& strings;
  platform::FileManager& files;
  Log& log;
};

/// Operations of the host are the main thread's. Frame operations run on the session's delivery thread, where transport
/// commands may block for seconds; the set-up of a recording runs on a preroll thread. One lock guards the state; it is
/// given up while a thread sleeps and during alerts.
class ZQACRecaptureController : public platform::QTCaptureOutputDelegate {
 public:
  ZQACRecaptureController(const RecaptureServices& services, const RecaptureOutlets& outlets);
  ~ZQACRecaptureController() override;
  ZQACRecaptureController(const ZQACRecaptureController&) = delete;
  ZQACRecaptureController& operator=(const ZQACRecaptureController&) = delete;

  void awakeFromNib();
  /// Not retained; null for none.
  void setDelegate(const ZQACRecaptureControllerDelegate* delegate);
  const RecaptureOutlets& outlets() const { return outlets_; }

  // The session.
  void openRecapture();
  void closeRecapture();
  void loadATape(const TapeValue& tape);
  void setCurrentTape(const TapeValue& tape);
  TapeValue currentTape() const;
  /// Starts a session, or cancels the one that runs.
  void startRecapture();
  void setIsStart(bool start);
  bool isStart() const;
  /// 0 is automatic, everything else manual: the user winds the tape. A sequence ends as in manual mode with 1 only.
  void setRecaptureModeTag(std::int32_t tag);
  std::int32_t recaptureModeTag() const;
  /// Shows the alert, and ends the session when it is answered with its default button.
  void triggerAlert(const std::string& messageText, const std::string& informativeText);
  void endRecapture();
  void endRecordForDelegate();
  void restartSession();
  void setIsRecaptureDone(bool done);
  bool isRecaptureDone() const;
  std::string processNote() const;
  void setProcessNote(const std::string& note);
  /// Whether a sequence was found and the tape still settles in it.
  bool isSettling() const;
  /// Clips of the tape, and of the sequence that was found, that are still to be recaptured.
  std::int32_t totalCountOfClipsToBeRecaptured() const;
  std::int32_t totalCountOfClipsToBeRecapturedInSequence() const;

  // Devices.
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> videoDevices();
  void refreshDevices();
  void devicesDidChange();
  void setSelectedVideoDevice(const std::shared_ptr<platform::QTCaptureDevice>& device);
  std::shared_ptr<platform::QTCaptureDevice> selectedVideoDevice() const { return devices_.selectedDevice(); }
  std::shared_ptr<platform::QTCaptureDevice> controllableDevice() const { return transport_.controllableDevice(); }
  void devicesAttributeDidChange();
  bool hasRecordingDevice() const { return devices_.input() != nullptr; }
  /// "videoDevices", "allVideoCompressionOptions", "isCustomVideoCompression", "formatName",
  /// "recaptureMovieCompressionData".
  KeyObservers& keys() { return keys_; }

  // Compression of the movies that are started from now on, main thread only. Own settings are capture's.
  void buildVideoCompressionOptions();
  const std::vector<CompressionValue>& allVideoCompressionOptions() const { return compressionChoices_.all(); }
  void setVideoCompressionOptions(CompressionValue options);
  CompressionValue videoCompressionOptions() const;
  bool isCustomVideoCompression() const;
  /// Shows the dialog for the user's own settings.
  void changeCustomCompression();
  /// The size of own settings' pictures, see fitSize().
  void setFitToSizeTag(std::int32_t tag);
  std::int32_t fitToSizeTag() const { return fitToSizeTag_; }
  void updateVideoCompression();
  const CustomCompression& customCompression() const { return customCompression_; }
  std::string formatName() const;

  // The options sheet, main thread only.
  void options();
  void optionsDone() const;
  void sheetDidEnd();
  /// Asks the user where movies go.
  void changePath();

  // Transport, from any thread. Commands without a controllable device do nothing, but for starting the session.
  void stopPlaying();
  void setDevicePlaying(bool playing);
  void setDeviceRewinding(bool on) { transport_.setRewinding(on); }
  void setDeviceFastForwarding(bool on) { transport_.setFastForwarding(on); }
  void setDeviceRewindingInSpeed(long speed) { transport_.playAtSpeed(speed); }
  void setDeviceForwardingInSpeed(long speed) { transport_.playAtSpeed(speed); }
  bool isDevicePlaying() const { return transport_.isPlaying(); }
  bool isDevicePause() const { return transport_.isPaused(); }
  bool isDeviceRewinding() const { return transport_.isRewinding(); }
  bool isDeviceFastforwarding() const { return transport_.isFastForwarding(); }
  DeviceAction deviceNextAction() const;
  void toDoDeviceNextAction();
  /// What toDoDeviceNextAction() does for an action that is not the one under way.
  void perform(DeviceAction action);
  void tinyAdjustToBeginning();
  void slowDown();
  void seeking();

  // Frames, on the delivery thread.
  void captureOutputDidOutputSampleBufferFromConnection(platform::QTCaptureOutput& output,
                                                        const platform::QTSampleBuffer& buffer,
                                                        const platform::QTCaptureConnection& connection) override;
  /// A tape that changes its system in mid clip goes on in a file beside it, which is the output's own matter.
  void captureOutputMustChangeOutputFileAtURLForConnectionsDueToError(
      platform::QTCaptureFileOutput& output, const std::string& path,
      const std::vector<platform::QTCaptureConnection>& connections, const Error& error) override;
  void captureOutputDidFinishRecordingToOutputFileAtURLForConnectionsDueToError(
      platform::QTCaptureFileOutput& output, const std::string& path,
      const std::vector<platform::QTCaptureConnection>& connections, const std::optional<Error>& error) override;
  void recaptureEntryWithSampleBuffer(const platform::QTSampleBuffer& buffer);
  DateValue getDateFromSampleBuffer(const platform::QTSampleBuffer& buffer) const;
  void findSequenceOnDate(const DateValue& date);
  ClipValue currentClipOnDate(const DateValue& date);
  ClipValue findNextClipToBeRecaptured();
  ClipValue clipBefore() const;
  bool isInClipToBeRecaptured();
  void generateMovieFile();

  // Recording.
  void setRecording(bool recording);
  void startRecord() { setRecording(true); }
  void setIsPrerolling(bool prerolling);
  bool isRecording() const;
  bool isPrerolling() const;

  // Where the session is.
  SequenceValue sequenceFound() const;
  void setSequenceFound(const SequenceValue& sequence);
  ClipValue currentClip() const;
  void setCurrentClip(const ClipValue& clip);
  ClipValue clipToBeRecaptured() const;
  void setClipToBeRecaptured(const ClipValue& clip);
  SMPTETime currentTimecode() const;
  void setCurrentTimecode(const SMPTETime& timecode);
  DateValue currentDateOnClip() const;
  void setCurrentDateOnClip(const DateValue& date);
  SMPTETime startTimecode() const;
  void setStartTimecode(const SMPTETime& timecode);
  SMPTETime endTimecode() const;
  void setEndTimecode(const SMPTETime& timecode);
  std::optional<std::string> moviePath() const;
  void setMoviePath(const std::optional<std::string>& path);

  platform::QTCaptureMovieFileOutput& movieFileOutput() { return *movieFileOutput_; }
  platform::QTCaptureAudioPreviewOutput& audioPreviewOutput() { return *audioPreviewOutput_; }

 private:
  void addOutputs();
  void observeDevices();
  void observeSettings();
  void announceFormatName() const;
  std::string localized(const std::string& text) const { return strings_.localizedString(text); }

  void cancelRecapture();
  void beginRecapture();
  void beginAutomaticMode();
  void endSequenceInAutomaticMode();
  void endSequenceInManualMode();

  bool settle();
  void position();
  bool isBehindStart() const;
  bool startIsReached() const;
  void openMovie();
  bool endIsReached() const;
  void closeMovie();
  RecaptureInfo infoOfCurrentClip() const;

  // Constant after construction.
  platform::Runtime& runtime_;
  platform::CapturePlatform& capture_;
  platform::NotificationCenter& notifications_;
  platform::Alerts& alerts_;
  const platform::Strings& strings_;
  platform::FileManager& files_;
  Log& log_;
  const RecaptureOutlets outlets_;
  const RecaptureScreen screen_;
  const std::shared_ptr<platform::QTCaptureSession> session_;
  const std::shared_ptr<platform::QTCaptureVideoPreviewOutput> videoPreviewOutput_;
  const std::shared_ptr<platform::QTCaptureMovieFileOutput> movieFileOutput_;
  const std::shared_ptr<platform::QTCaptureMovieFileOutput> movieFileOutputAlter_;
  const std::shared_ptr<platform::QTCaptureAudioPreviewOutput> audioPreviewOutput_;
  const Transport transport_;
  const CustomCompression customCompression_;
  DeviceSelection devices_;

  mutable platform::RecursiveLock lock_;

  // Guarded by lock_.
  const ZQACRecaptureControllerDelegate* delegate_ = nullptr;
  CompressionValue videoCompressionOptions_;
  bool isStart_ = false;
  std::int32_t recaptureModeTag_ = 0;
  bool isRecapStart_ = false;  // no rule sets it, so that every start brings a fresh preroll thread
  bool isRecaptureDone_ = false;
  bool isRecording_ = false;
  bool isPrerolling_ = false;
  bool isInClipToBeRecaptured_ = false;
  bool isToCreateAlias_ = false;
  std::int32_t offsetAfterCallOfDidOutputSample_ = 0;  // dated frames since the sequence was found
  std::int32_t jumpFrameCount_ = 0;                    // frames without a sequence since the last jump
  DeviceAction currentDeviceAction_ = DeviceAction::nothing;
  TapeValue currentTape_;
  SequenceValue sequenceFound_;
  ClipValue currentClip_;
  ClipValue clipToBeRecaptured_;
  SMPTETime currentTimecode_;
  DateValue currentDateOnClip_;
  SMPTETime startTimecode_;  // armed for the clip's movie; empty when not
  SMPTETime endTimecode_;
  std::optional<std::string> moviePath_;
  std::vector<RecaptureInfo> allClipsInfosForMainApp_;
  std::int32_t totalCountOfClipsToBeRecaptured_ = 0;
  std::int32_t totalCountOfClipsToBeRecapturedInSequence_ = 0;
  std::string processNote_;

  // Main thread only.
  KeyObservers keys_;
  platform::Settings& store_;
  CompressionChoices compressionChoices_;
  std::int32_t fitToSizeTag_ = 0;
  std::vector<std::shared_ptr<platform::QTCaptureDevice>> allVideoDevices_;
  bool devicesAreKnown_ = false;
  std::vector<platform::Observation> observations_;
  platform::Observation attributeObservation_;

  /// Goes with the controller, so that what is still posted for it finds it gone.
  std::shared_ptr<ZQACRecaptureController*> alive_;

  PrerollThreads preroll_;
};

}  // namespace zq
