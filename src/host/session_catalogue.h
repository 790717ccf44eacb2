#pragma once
// The catalogue in which a capture is stored when it has ended.

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/status.h"
#include "host/backend_module.h"
#include "host/catalogue/catalogue_store.h"
#include "host/clip_ledger.h"

namespace zq::host {

class SessionCatalogue {
 public:
  /// The catalogue at `where`, and the tape's name in it.
  SessionCatalogue(BackendModule& module, std::string where, std::string tape, Log& log);

  /// Makes it if need be, and makes sure that it can be written to.
  Status prepare();
  /// Stores the clips, whose files are in `folder`, as one sequence of the tape. No clips are no sequence.
  Status store(const std::string& folder, const std::vector<CapturedClip>& clips);

  /// As it is in the catalogue; none when nothing was stored.
  const std::optional<CatalogueSequence>& stored() const { return stored_; }
  /// Of what was stored: one line, and {"tape", "sequenceId", "clips": [ids]}.
  std::string summary() const;
  nlohmann::ordered_json json() const;

 private:
  Expected<CatalogueSequence> add(const CatalogueSequence& sequence);

  BackendModule& module_;
  const std::string where_;
  const std::string tape_;
  Log& log_;
  std::optional<CatalogueSequence> stored_;
};

}  // namespace zq::host
