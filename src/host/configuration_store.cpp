#include "host/configuration_store.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/configuration_json.h"

namespace zq::host {
namespace {

constexpr char kKey[] = "configurations";
constexpr char kStored[] = "What is stored of your configurations, under \"configurations\" in Deckhand/deckhand.ini,";

}  // namespace

Error noSuchConfiguration(const std::string& name, const std::vector<StoredConfiguration>& all) {
  std::vector<std::string> names;
  names.reserve(all.size());
  for (const StoredConfiguration& configuration : all) names.push_back(configuration.name());
  return {"There is no configuration \"" + name + "\"", names.empty()
                                                            ? "None is stored; deckhand config save makes one."
                                                            : fmt::format("Stored are: {}.", fmt::join(names, ", "))};
}

Expected<std::vector<StoredConfiguration>> ConfigurationStore::all() const {
  const auto stored = settings_.objectForKey(kKey);
  if (!stored) return std::vector<StoredConfiguration>();
  const std::string* text = std::get_if<std::string>(&*stored);
  auto read = readConfigurations(text != nullptr ? *text : "", kStored);
  if (read.ok()) return read;
  return Error{read.error().message, read.error().informative + " Take that line out of the file, or mend it."};
}

Expected<StoredConfiguration> ConfigurationStore::named(const std::string& name) const {
  const auto configurations = all();
  if (!configurations.ok()) return configurations.error();
  const StoredConfiguration* found = findConfiguration(configurations.value(), name);
  if (found == nullptr) return noSuchConfiguration(name, configurations.value());
  return *found;
}

// What could not be read again tomorrow is not written today.
Status ConfigurationStore::replaceAll(const std::vector<StoredConfiguration>& configurations) {
  if (const auto stored = all(); !stored.ok()) return stored.error();
  if (Status readable = module_.userSettingsStatus(settings_); !readable.ok()) return readable;
  const std::string text = configurationsJson(configurations).dump();
  if (const auto again = readConfigurations(text, "What was to be stored"); !again.ok()) return again.error();
  settings_.setObjectForKey(kKey, text);
  return module_.userSettingsStatus(settings_);
}

}  // namespace zq::host
