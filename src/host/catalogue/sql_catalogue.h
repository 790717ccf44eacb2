#pragma once
// The catalogue in a SQL database.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/catalogue/catalogue_connection.h"
#include "host/catalogue/catalogue_store.h"

namespace zq::host {

class SqlCatalogue final : public CatalogueStore {
 public:
  /// The connection's catalogue has the tables of today.
  explicit SqlCatalogue(std::unique_ptr<CatalogueConnection> connection);

  Expected<std::vector<TapeSummary>> tapes() override;
  Expected<CatalogueTape> tape(const std::string& name) override;
  Expected<std::vector<CatalogueClip>> clips(const std::vector<std::int64_t>& ids) override;
  Expected<std::vector<std::uint8_t>> poster(std::int64_t clip) override;
  Expected<CatalogueSequence> addSequence(const std::string& tapeName, const CatalogueSequence& sequence) override;
  Expected<std::int64_t> setMarked(const std::vector<std::int64_t>& ids, bool marked) override;
  Expected<std::int64_t> setTrashed(const std::vector<std::int64_t>& ids, bool trashed) override;
  Status setRecaptured(std::int64_t clip, const std::string& path) override;

 private:
  std::vector<CatalogueClip> readClips(const std::vector<std::int64_t>& ids);
  std::int64_t tapeFor(const QString& name);
  std::int64_t setFlag(const QString& column, const std::vector<std::int64_t>& ids, bool value);
  void lockClips(const std::vector<std::int64_t>& ids);
  [[noreturn]] void failUnknownClip(std::int64_t id) const;

  const std::unique_ptr<CatalogueConnection> connection_;
};

}  // namespace zq::host
