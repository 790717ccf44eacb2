#pragma once
// What of a tape is recaptured, and the records that the controller looks for it with.

#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/tape.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

/// A marked clip that no deck can be driven to.
struct UnreachableClip {
  CatalogueClip clip;
  std::string reason;
};

/// The marked clips of a tape.
struct RecapturePlan {
  /// In the order of their recording dates.
  std::vector<CatalogueClip> clips;
  std::vector<UnreachableClip> unreachable;
};

/// Whether no capture brought the clip but a list. What its maker cut is recorded whole, the frame at the end timecode
/// too, so that the recording ends one frame later than that of a captured clip.
bool isFromList(const CatalogueClip& clip);

RecapturePlan planOf(const CatalogueTape& tape);

/// Records for the automatic mode: one sequence that holds every date, so that the search finds it at the first dated
/// frame and never jumps over a clip, however many sessions the tape was captured in. It holds as many of `wanted` as
/// have no second in common, from the first one on, and those unmarked clips between them that help to come near:
/// records that share a second would be taken for each other.
TapeValue automaticRecords(const CatalogueTape& tape, const std::vector<CatalogueClip>& wanted,
                           const std::string& folder);

/// Records for the manual mode, where the user moves the tape to a session's part of it: a sequence for each session,
/// as it was captured.
TapeValue manualRecords(const CatalogueTape& tape, const std::vector<CatalogueClip>& wanted, const std::string& folder);

}  // namespace zq::host
