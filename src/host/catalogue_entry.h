#pragma once
// What a capture session becomes in the catalogue: a sequence of its clips, in tape order.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/shared_bytes.h"
#include "base/status.h"
#include "host/catalogue/catalogue_store.h"
#include "host/clip_ledger.h"

namespace zq::host {

class CatalogueEntry {
 public:
  using MakePoster =
      std::function<Expected<std::vector<std::uint8_t>>(const SharedBytes& frame, std::int32_t aspectRatio)>;

  /// `folder` is where the clips' files are.
  CatalogueEntry(const std::string& folder, MakePoster makePoster, Log& log);

  /// Named by the first recording date, or by the folder where no clip has one. A poster that cannot be made is told
  /// and left out.
  CatalogueSequence sequenceOf(const std::vector<CapturedClip>& clips) const;

 private:
  CatalogueClip clipOf(const CapturedClip& captured) const;
  std::string nameOf(const std::vector<CatalogueClip>& clips) const;
  std::string inFolder(const std::string& name) const;
  std::vector<std::uint8_t> posterOf(const CapturedClip& captured) const;

  const std::string folder_;
  const MakePoster makePoster_;
  Log& log_;
};

}  // namespace zq::host
