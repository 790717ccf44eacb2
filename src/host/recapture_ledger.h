#pragma once
// The marked clips of one recapture: what is written where, what was found wrong with it, and what became of each.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/session/movie_recorder.h"
#include "base/log.h"
#include "host/catalogue/catalogue_store.h"
#include "host/clip_files.h"
#include "host/compressed_movies.h"
#include "platform/file_manager.h"
#include "platform/runtime.h"

namespace zq::host {

class MovieCheck;

/// A marked clip when all is done. Paths are those within the output folder, empty where there is no file.
struct RecapturedClip {
  CatalogueClip clip;
  enum class Status { waiting, recaptured, failed, cancelled } status = Status::waiting;
  /// Why it failed, or was cancelled.
  std::string reason;
  /// The movie; of a failed clip the one that was set aside.
  std::string moviePath;
  /// The alias of the movie by the clip's id.
  std::string recapturePath;
  std::int64_t movieFrames = 0;
};

class RecaptureLedger {
 public:
  struct Services {
    platform::Runtime& runtime;
    platform::FileManager& aliases;
    /// Reads a movie's frames back.
    std::function<Status(const std::string& path, const std::function<void(const SharedBytes&)>& take)> readMovie;
    /// A clip's movie is right and has its name, given by its absolute path: main thread.
    std::function<Status(const CatalogueClip& clip, const std::string& path)> recaptured;
    Log& log;
    CompressedMovies compressed;
  };

  RecaptureLedger(Services services, ClipFiles& files, std::vector<CatalogueClip> clips);

  /// The folder of the aliases: the output folder, or one in it when an alias of another session is in the way. Makes
  /// it.
  Expected<std::string> makeAliasFolder();

  // From any thread.
  /// The recording of this clip begins: where to write it.
  std::string open(const std::string& clipId);
  /// How often a clip's recording has come to its end.
  int closedClips() const;
  void close();
  /// The session is cancelled: a movie whose recording has not come to its end is deleted when it is finished.
  void cancel();

  // Main thread.
  /// The movie is complete: checks it, names it, and leaves the alias.
  void movieFinished(const backend::FinishedFile& file);
  void fail(std::int64_t clip, const std::string& reason);
  /// No more comes: the clips that still wait have this status and reason.
  void settle(RecapturedClip::Status status, const std::string& reason);
  std::vector<CatalogueClip> waiting() const;
  int recapturedClips() const;
  const std::vector<RecapturedClip>& clips() const { return clips_; }

 private:
  struct Working {
    std::string path;
    std::size_t clip = 0;
    bool closed = false;  // its recording came to its end
    bool finished = false;
  };

  RecapturedClip* find(std::int64_t clip);
  std::string verdictOn(const RecapturedClip& entry, const backend::FinishedFile& file) const;
  /// Reads the movie back, or hears of what went into it, and shows `check` each frame; what is wrong with the file.
  std::string readBack(const std::string& path, MovieCheck& check) const;
  std::string hearWitness(const std::string& path, MovieCheck& check) const;
  std::string verdictOnLength(const RecapturedClip& entry, std::int64_t frames) const;
  void keep(RecapturedClip& entry, const std::string& path);
  void setAside(RecapturedClip& entry, const std::string& path, const std::string& verdict);
  std::string aliasName(const CatalogueClip& clip) const;
  void leaveAlias(RecapturedClip& entry, const std::string& movie) const;

  // Constant after construction.
  const Services services_;
  ClipFiles& files_;
  const std::unique_ptr<platform::Mutex> mutex_;

  // Guarded by mutex_.
  std::vector<Working> working_;
  bool cancelled_ = false;

  // Main thread only.
  std::vector<RecapturedClip> clips_;
  std::string aliasFolder_;
};

}  // namespace zq::host
