#include "host/catalogue/open_catalogue.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/catalogue/catalogue_salvage.h"
#include "host/catalogue/server_address.h"
#include "host/catalogue/sql_catalogue.h"

namespace zq::host {
namespace {

using Connection = std::unique_ptr<CatalogueConnection>;
using FileMode = CatalogueConnection::FileMode;

[[noreturn]] void fail(const std::string& message, const std::string& informative) {
  throw CatalogueFailure{{message, informative}};
}

void requireFolder(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
  std::error_code failed;
  if (std::filesystem::is_directory(folder, failed)) return;
  fail("The catalogue " + path + " cannot be made", "There is no folder " + folder.string() + ". Make it first.");
}

// Some bytes of zeros are an empty database to SQLite. While its journal is beside it, a file may be half written.
void requireDatabase(const std::string& path) {
  std::error_code failed;
  if (std::filesystem::file_size(path, failed) == 0 || std::filesystem::exists(path + "-journal", failed)) return;
  constexpr std::string_view kBeginning("SQLite format 3\0", 16);
  std::array<char, kBeginning.size()> beginning{};
  std::ifstream file(path, std::ios::binary);
  if (!file) return;  // the database will say why
  file.read(beginning.data(), beginning.size());
  if (std::string_view(beginning.data(), beginning.size()) == kBeginning) return;
  fail(path + " is no Deckhand catalogue", "The file holds something else. Check the path.");
}

// What the database itself would tell less well, or would do: open a folder, wait for a pipe's other end.
void requireFile(const std::string& path, bool create) {
  if (path.empty()) fail("The catalogue has no name", "Give the path of its file, or a postgresql:// URL.");
  std::error_code failed;
  const std::filesystem::file_status status = std::filesystem::status(path, failed);
  if (std::filesystem::is_directory(status)) fail("The catalogue " + path + " is a folder", "Give the path of a file.");
  if (std::filesystem::is_regular_file(status)) return requireDatabase(path);
  if (std::filesystem::exists(status)) fail(path + " is no Deckhand catalogue", "It is no file. Check the path.");
  if (status.type() != std::filesystem::file_type::not_found) {
    fail("The catalogue " + path + " cannot be opened", "The system says: " + failed.message() + ".");
  }
  if (!create) fail("There is no catalogue " + path, "Check the path, or make a catalogue there.");
  requireFolder(path);
}

// A misspelt URL is not to become a file of that name.
void requireNoOtherUrl(const std::string& where) {
  const std::size_t end = where.find("://");
  if (end == std::string::npos || end == 0) return;
  const auto belongs = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+'; };
  if (!std::all_of(where.begin(), where.begin() + static_cast<std::ptrdiff_t>(end), belongs)) return;
  fail("A catalogue cannot be at a " + where.substr(0, end) + "://... URL",
       "Give the path of its file, or a postgresql:// URL.");
}

void requirePath(const std::string& where, bool create) {
  requireNoOtherUrl(where);
  requireFile(where, create);
}

Connection connected(const std::string& where, bool create, int patience) {
  if (!isServerUrl(where)) {
    requirePath(where, create);
    auto connection = std::make_unique<CatalogueConnection>(SqlDialect::sqlite, where);
    connection->openFile(where, create ? FileMode::mayBeCreated : FileMode::mustExist, patience);
    return connection;
  }
  const Expected<ServerAddress> address = parseServerUrl(where);
  if (!address.ok()) throw CatalogueFailure{address.error()};
  auto connection = std::make_unique<CatalogueConnection>(SqlDialect::postgresql, address.value().shown());
  connection->openServer(address.value(), patience);
  return connection;
}

/// Calls `open`, and tells of a damaged file what is left of it.
template <typename Open>
auto opened(const std::string& where, const Open& open) -> Expected<decltype(open())> {
  try {
    return open();
  } catch (const CatalogueFailure& failure) {
    if (failure.trouble == SqlTrouble::damaged && !isServerUrl(where)) return damageOf(where);
    return failure.error;
  }
}

std::unique_ptr<CatalogueStore> storeOf(Connection connection) {
  return std::make_unique<SqlCatalogue>(std::move(connection));
}

ReadableCatalogue readable(const std::string& where) {
  ReadableCatalogue catalogue;
  if (!isServerUrl(where)) {
    requirePath(where, false);
    if (!isWhole(where)) {
      catalogue.store = storeOf(salvagedCatalogue(where));
      catalogue.damage = damageOf(where);
      return catalogue;
    }
  }
  Connection connection = connected(where, false, CatalogueConnection::kPatience);
  prepareSchema(*connection, false);
  connection->forbidChanges();
  catalogue.store = storeOf(std::move(connection));
  return catalogue;
}

}  // namespace

Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, const CatalogueOptions& options) {
  return opened(where, [&] {
    Connection connection = connected(where, options.create, options.patience);
    prepareSchema(*connection, options.create, options.schema);
    return storeOf(std::move(connection));
  });
}

Expected<std::unique_ptr<CatalogueStore>> openCatalogue(const std::string& where, bool create) {
  CatalogueOptions options;
  options.create = create;
  return openCatalogue(where, options);
}

Expected<ReadableCatalogue> openCatalogueToRead(const std::string& where) {
  return opened(where, [&] { return readable(where); });
}

}  // namespace zq::host
