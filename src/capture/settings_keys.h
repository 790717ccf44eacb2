#pragma once
// The keys of the live capture settings in the per-user store.

#include <array>

namespace zq {

inline constexpr char ZQACDetectScene[] = "detectScene";
inline constexpr char ZQACNbDropFrame[] = "nbDropFrame";
inline constexpr char ZQACDetectEndTape[] = "detectEndTape";
inline constexpr char ZQACDetectEndTapeSecond[] = "detectEndTapeSecond";
inline constexpr char ZQACActionAfterRecord[] = "actionAfterRecord";
inline constexpr char ZQACFrameSampling[] = "frameSampling";
inline constexpr char ZQACSampleInterval[] = "sampleInterval";
inline constexpr char ZQACCaptureMovie[] = "captureMovie";
inline constexpr char ZQACCaptureCompression[] = "captureMovieCompression";
inline constexpr char ZQACCaptureCompressionSize[] = "fitSizeTag";
inline constexpr char ZQACCaptureCompressionData[] = "captureMovieCompressionData";
inline constexpr char ZQACCaptureMovieVolume[] = "movieVolume";
/// Recapture's own settings. Its movies take those of capture; this key is observed only.
inline constexpr char ZQACRecaptureCompressionData[] = "recaptureMovieCompressionData";
/// Read only from configurations of an older scheme.
inline constexpr char ZQACCaptureOldCompression[] = "captureFormat";

// The keys of a stored configuration. Some differ from the live key, and its sampling is in seconds, not an index.
inline constexpr char ZQACConfName[] = "optionsName";
inline constexpr char ZQACConfDetectScene[] = "detectScenes";
inline constexpr char ZQACConfNbDropFrame[] = "nbDropFrame";
inline constexpr char ZQACConfDetectEndTape[] = "detectEndTape";
inline constexpr char ZQACConfDetectEndTapeSecond[] = "detectEndTapeSecond";
inline constexpr char ZQACConfActionAfterRecord[] = "actionAfterRecord";
inline constexpr char ZQACConfFrameSampling[] = "grabSamples";
inline constexpr char ZQACConfSampleInterval[] = "samplingIntervalInSecs";
inline constexpr char ZQACConfCaptureMovie[] = "grabMovie";
inline constexpr char ZQACConfCompression[] = "captureMovieCompression";
inline constexpr char ZQACConfCompressionSize[] = "fitSizeTag";
inline constexpr char ZQACConfCompressionData[] = "captureMovieCompressionData";

/// Seconds between two thumbnails, by the index stored under "sampleInterval".
inline constexpr std::array<int, 5> sampleIntervalValue{1, 2, 5, 10, 20};

}  // namespace zq
