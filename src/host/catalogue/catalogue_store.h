#pragma once
// The catalogue of what is on the tapes: kept in a SQLite file, or on a PostgreSQL server for several stations.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/calendar_date.h"
#include "base/status.h"
#include "timecode/smpte_time.h"

namespace zq::host {

/// A scene of a tape. `mType` of the timecodes says the system: 1 is 625/50, 2 is 525/60.
struct CatalogueClip {
  /// Given by the store, unique in the catalogue, never used again; its decimal text is the clip's id. 0 before that.
  std::int64_t id = 0;
  std::string name;
  /// What the camcorder's clock showed at the first frame; null when unknown.
  DateValue recordingDate;
  std::optional<SMPTETime> startTimecode;
  /// Of the last frame.
  std::optional<SMPTETime> endTimecode;
  std::optional<SMPTETime> duration;
  /// Frames per second of the timecodes, 25 or 30.
  int timebase = 25;
  std::int32_t aspectRatio = -1;
  /// Absolute paths of what was captured; empty where there is no file.
  std::string moviePath;
  std::string thumbnailPath;
  std::int64_t movieFrames = 0;
  std::int64_t thumbnailFrames = 0;
  /// To be recaptured.
  bool marked = false;
  bool recaptured = false;
  bool trashed = false;
  /// Absolute path of the recaptured movie; empty while there is none.
  std::string recapturedPath;
  /// A small picture of the clip as a PNG or JPEG file's bytes; empty when there is none. Filled in for writing only;
  /// read it with CatalogueStore::poster().
  std::vector<std::uint8_t> poster;
};

/// What one capture session, or one imported list, brought; its clips are in tape order.
struct CatalogueSequence {
  std::int64_t id = 0;
  std::string name;
  std::vector<CatalogueClip> clips;
};

struct CatalogueTape {
  std::int64_t id = 0;
  std::string name;
  std::vector<CatalogueSequence> sequences;
};

struct TapeSummary {
  std::int64_t id = 0;
  std::string name;
  std::int64_t sequences = 0;
  std::int64_t clips = 0;
  std::int64_t marked = 0;
  std::int64_t recaptured = 0;
  std::int64_t trashed = 0;
};

/// Belongs to the thread that opened it. Each operation is one transaction: it happens whole or not at all, also when
/// the program is killed in it, and other programs may use the same catalogue meanwhile. Texts are UTF-8; one that is
/// not is an error. Of timecodes the four fields and `mType` are kept.
class CatalogueStore {
 public:
  virtual ~CatalogueStore() = default;

  /// By name.
  virtual Expected<std::vector<TapeSummary>> tapes() = 0;
  /// The tape with its sequences in the order in which they came; an error when there is none of this name.
  virtual Expected<CatalogueTape> tape(const std::string& name) = 0;
  /// One for each id, in their order. An error that names the first id that no clip has.
  virtual Expected<std::vector<CatalogueClip>> clips(const std::vector<std::int64_t>& ids) = 0;
  /// Empty when the clip has none.
  virtual Expected<std::vector<std::uint8_t>> poster(std::int64_t clip) = 0;

  /// Adds a sequence to the tape of this name, which is made if need be; the name may not be empty. Returns the
  /// sequence as stored, ids filled in and posters left out.
  virtual Expected<CatalogueSequence> addSequence(const std::string& tapeName, const CatalogueSequence& sequence) = 0;
  /// An error that names the first id that no clip has; then nothing is changed. Returns how many changed:
  /// a clip that was so already does not count.
  virtual Expected<std::int64_t> setMarked(const std::vector<std::int64_t>& ids, bool marked) = 0;
  virtual Expected<std::int64_t> setTrashed(const std::vector<std::int64_t>& ids, bool trashed) = 0;
  /// The clip's movie was recaptured to this path: it is no longer marked.
  virtual Status setRecaptured(std::int64_t clip, const std::string& path) = 0;
};

/// Opens the catalogue in the file at `where`, or at a "postgresql://" URL. Without `create` one that does not exist is
/// an error; an empty file is an empty catalogue only with `create`.
Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, bool create);

struct ReadableCatalogue {
  std::unique_ptr<CatalogueStore> store;
  /// That the file is damaged, and how much of it can still be read, which is what `store` has.
  std::optional<Error> damage;
};

/// For reading only, and for reading all of it: what is meant for saving a catalogue. A file is read in full to see
/// whether it is damaged, which openCatalogue() and the operations only tell when they meet the damage.
Expected<ReadableCatalogue> openCatalogueToRead(const std::string& where);

}  // namespace zq::host
