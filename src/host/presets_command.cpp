#include "host/presets_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/backend_module.h"
#include "host/exit_codes.h"

namespace zq::host {
namespace {

using nlohmann::ordered_json;

std::string containerOf(const CompressionPreset& preset) {
  return preset.containers.empty() ? "" : preset.containers.front();
}

void printJson(const std::vector<CompressionPreset>& presets) {
  ordered_json list = ordered_json::array();
  for (const CompressionPreset& preset : presets) {
    list.push_back({{"name", preset.name},
                    {"identifier", preset.identifier},
                    {"codec", preset.codec},
                    {"container", containerOf(preset)}});
  }
  fmt::print("{}\n", ordered_json({{"presets", list}}).dump(2));
}

std::size_t widthOf(const std::vector<CompressionPreset>& presets, std::string CompressionPreset::*column,
                    const std::string& title) {
  std::size_t width = title.size();
  for (const CompressionPreset& preset : presets) width = std::max(width, (preset.*column).size());
  return width;
}

void printTable(const std::vector<CompressionPreset>& presets) {
  const std::size_t name = widthOf(presets, &CompressionPreset::name, "name");
  const std::size_t identifier = widthOf(presets, &CompressionPreset::identifier, "identifier");
  const std::size_t codec = widthOf(presets, &CompressionPreset::codec, "codec");
  fmt::print("{:>2}  {:<{}}  {:<{}}  {:<{}}  {}\n", "#", "name", name, "identifier", identifier, "codec", codec,
             "files");
  int number = 0;
  for (const CompressionPreset& preset : presets) {
    fmt::print("{:>2}  {:<{}}  {:<{}}  {:<{}}  {}\n", ++number, preset.name, name, preset.identifier, identifier,
               preset.codec, codec, fmt::join(preset.containers, ", "));
  }
  fmt::print(
      "\nMovies are as received with --compression none, number 0; with --compression custom, number {},\n"
      "as --custom KEY=VALUE says.\n",
      number + 1);
}

}  // namespace

int runPresets(const PresetsOptions& options, Console& console) {
  auto module = loadBackendModule();
  if (!module.ok()) {
    console.error(module.error());
    return kExitFailed;
  }
  const std::vector<CompressionPreset> presets = module.value()->compressionPresets();
  options.json ? printJson(presets) : printTable(presets);
  return kExitOk;
}

}  // namespace zq::host
