#pragma once
// The keys under which a host stores what of a catalogue is active, and how large it is.

namespace zq {

inline constexpr char kZQACActiveTape[] = "tape";
inline constexpr char kZQACActiveSequence[] = "sequence";
inline constexpr char kZQACActiveClip[] = "clip";
inline constexpr char kZQACTapesCount[] = "tapes count";
inline constexpr char kZQACSequencesCount[] = "sequences count";
inline constexpr char kZQACClipsCount[] = "clips count";

}  // namespace zq
