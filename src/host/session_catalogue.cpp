#include "host/session_catalogue.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/catalogue_entry.h"
#include "host/text.h"

namespace zq::host {
namespace {

constexpr std::string_view kServer = "postgresql://";

bool isOnServer(const std::string& where) {
  return where.starts_with(kServer);
}

/// A server's URL without what may be a password in it.
std::string shown(const std::string& where) {
  if (!isOnServer(where)) return where;
  const std::size_t user = where.rfind('@');
  const std::string place = where.substr(user == std::string::npos ? kServer.size() : user + 1);
  return std::string(kServer) + place.substr(0, place.find('?'));
}

std::string sentence(const std::string& text) {
  return text.ends_with('.') ? text : text + ".";
}

// A file that may only be read opens like any other, and the capture would be over before it is told. Its folder gets
// the journal beside it.
Status checkWritable(const std::string& where) {
  if (isOnServer(where)) return {};
  std::error_code ignored;
  const std::string folder = std::filesystem::absolute(where, ignored).parent_path().string();
  for (const std::string& path : {where, folder}) {
    if (::access(path.c_str(), W_OK) == 0) continue;
    return Error{"The catalogue " + where + " cannot be written to",
                 path + ": " + std::strerror(errno) + ". Give yourself the right to write, or name another catalogue."};
  }
  return {};
}

}  // namespace

SessionCatalogue::SessionCatalogue(BackendModule& module, std::string where, std::string tape, Log& log)
    : module_(module), where_(std::move(where)), tape_(std::move(tape)), log_(log) {}

Status SessionCatalogue::prepare() {
  if (!isUtf8(tape_)) {
    return Error{"The tape's name cannot be kept in a catalogue", "It is not UTF-8 text. Give another with --tape."};
  }
  const auto store = module_.openCatalogue(where_, true);
  if (!store.ok()) return store.error();
  return checkWritable(where_);
}

// Opens the catalogue once more: in the hour that a tape takes, servers close connections and files get replaced.
Expected<CatalogueSequence> SessionCatalogue::add(const CatalogueSequence& sequence) {
  const auto store = module_.openCatalogue(where_, true);
  if (!store.ok()) return store.error();
  return store.value()->addSequence(tape_, sequence);
}

Status SessionCatalogue::store(const std::string& folder, const std::vector<CapturedClip>& clips) {
  if (clips.empty()) return {};
  const auto makePoster = [this](const SharedBytes& frame, std::int32_t aspectRatio) {
    return module_.makePoster(frame, aspectRatio);
  };
  auto stored = add(CatalogueEntry(folder, makePoster, log_).sequenceOf(clips));
  if (!stored.ok()) {
    return Error{"The clips are not in the catalogue; they are complete in " + folder,
                 sentence(stored.error().text()) + " \"deckhand catalogue import\" can store them later."};
  }
  stored_ = std::move(stored.value());
  return {};
}

std::string SessionCatalogue::summary() const {
  return fmt::format("Catalogue: {} of tape \"{}\", sequence \"{}\", in {}",
                     counted(static_cast<std::int64_t>(stored_->clips.size()), "clip"), tape_, stored_->name,
                     shown(where_));
}

nlohmann::ordered_json SessionCatalogue::json() const {
  nlohmann::ordered_json ids = nlohmann::ordered_json::array();
  for (const CatalogueClip& clip : stored_->clips) ids.push_back(std::to_string(clip.id));
  return {{"tape", tape_}, {"sequenceId", std::to_string(stored_->id)}, {"clips", std::move(ids)}};
}

}  // namespace zq::host
