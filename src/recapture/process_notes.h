#pragma once
// What the recapture controller says about what it is doing, as it stands on the screen.

namespace zq::note {

inline constexpr char kStartedManual[] = "Recapture is started in manuel mode";
inline constexpr char kStartedAutomatic[] = "Recapture is started in automatic mode";
inline constexpr char kSearchingSequence[] = "Searching sequence";
inline constexpr char kSearchingRightSequence[] = "camera is searching right sequence of the clip being recaptured";
inline constexpr char kSearching[] = "Searching....";
inline constexpr char kSearchingClip[] = "Sequence found, camera is now searching the clip to be recaptured";
inline constexpr char kAdjusting[] = "Clip found, camera will start the recapture";
inline constexpr char kClipFound[] = "Clip found, camera will start recapture";
inline constexpr char kRecapturing[] = "Recapturing";
inline constexpr char kStart[] = "START";
inline constexpr char kEnd[] = "END";

}  // namespace zq::note
