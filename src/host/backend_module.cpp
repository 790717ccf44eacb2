#include "host/backend_module.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace zq::host {
namespace {

constexpr char kModuleName[] = "deckhand_backends.so";
constexpr char kEntryPoint[] = "deckhandBackendModule";

std::vector<std::filesystem::path> placesToLook() {
  std::error_code failed;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  const std::filesystem::path folder = program.parent_path();
  return {folder / kModuleName, folder.parent_path() / "lib" / "deckhand" / kModuleName};
}

}  // namespace

Expected<BackendModule*> loadBackendModule() {
  std::string reason = "The file " + std::string(kModuleName) + " is not beside the program";
  for (const std::filesystem::path& path : placesToLook()) {
    std::error_code failed;
    if (!std::filesystem::exists(path, failed)) continue;
    void* module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
      reason = ::dlerror();
      continue;
    }
    auto entry = reinterpret_cast<BackendModule* (*)()>(::dlsym(module, kEntryPoint));
    if (entry != nullptr) return entry();
    reason = path.string() + " is of another version";
  }
  return Error{"Cannot load Deckhand's movie and settings module", reason + "; build or install Deckhand again."};
}

}  // namespace zq::host
