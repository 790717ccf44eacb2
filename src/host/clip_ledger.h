#pragma once
// The clips of one capture: where each is written, what was in it, and what it is called when it is done.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/session/movie_recorder.h"
#include "base/log.h"
#include "capture/clip_info.h"
#include "dv/dv_system.h"
#include "host/clip_files.h"
#include "host/tape_findings.h"
#include "platform/runtime.h"

namespace zq::host {

/// A clip that is done. Paths are those within the output folder, empty where there is no file.
struct CapturedClip {
  ClipInfo info;
  /// Of its first frame; none when it was told of no frame.
  std::optional<DVSystem> system;
  /// The clock was never set: the recording date is none to find the clip by.
  bool impossibleDate = false;
  std::string moviePath;
  /// Files that carry the movie on, where the tape changes system in mid clip.
  std::vector<std::string> movieContinuations;
  std::string thumbnailPath;
  std::int64_t movieFrames = 0;
  std::int64_t thumbnailFrames = 0;
  /// What the tape played while the clip was open.
  std::int64_t tapeFrames = 0;
};

/// From any thread.
class ClipLedger {
 public:
  ClipLedger(platform::Runtime& runtime, ClipFiles& files, Log& log);

  /// A clip opens: where to write it.
  ClipPaths open();
  /// The open clip has ended.
  void close(const ClipInfo& info);
  /// The controller has seen a frame while it recorded.
  void countFrame(const FrameFacts& facts, std::size_t bytes);
  /// A movie file is complete. The clips before its own are done with it, and get their names.
  void movieFinished(const backend::FinishedFile& file);
  /// No more comes: names the rest and returns all clips. An empty clip, which a first recording date leaves behind, is
  /// dropped with its files.
  std::vector<CapturedClip> settle();

  std::int64_t deliveredFrames() const;
  /// Clips that have frames.
  int startedClips() const;
  TapeFindings findings() const;

 private:
  struct Entry {
    ClipFiles::Names working;
    std::optional<ClipInfo> info;
    std::int64_t tapeFrames = 0;
    std::size_t frameBytes = 0;
    bool impossibleDate = false;
    std::vector<backend::FinishedFile> files;
  };

  void settleBefore(std::size_t end);
  void settleEntry(Entry& entry);
  bool dropIfEmpty(const Entry& entry);
  std::string moved(const std::string& from, const std::string& to);

  // Constant after construction.
  ClipFiles& files_;
  Log& log_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::vector<Entry> entries_;
  std::size_t settled_ = 0;
  std::vector<CapturedClip> clips_;
  std::int64_t delivered_ = 0;
  TapeFindings findings_;
};

}  // namespace zq::host
