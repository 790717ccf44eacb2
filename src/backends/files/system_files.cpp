#include "backends/files/system_files.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace zq::backend {
namespace {

namespace fs = std::filesystem;

class SymbolicLink final : public platform::FileAlias {
 public:
  explicit SymbolicLink(fs::path target) : target_(std::move(target)) {}

  Status writeToFile(const std::string& path) const override {
    std::error_code failed;
    const fs::path link = fs::absolute(path, failed);
    const bool together = link.parent_path() == target_.parent_path();
    fs::create_symlink(together ? target_.filename() : target_, link, failed);
    if (failed) return Error{"Cannot leave an alias of " + target_.string() + " at " + path, failed.message()};
    return {};
  }

 private:
  const fs::path target_;
};

}  // namespace

Status SystemFiles::removeFile(const std::string& path) {
  std::error_code failed;
  if (fs::remove(path, failed)) return {};
  return Error{"Cannot delete " + path, failed ? failed.message() : "There is no such file."};
}

std::unique_ptr<platform::FileAlias> SystemFiles::aliasWithPath(const std::string& path) {
  std::error_code failed;
  if (!fs::is_regular_file(path, failed)) return nullptr;
  const fs::path absolute = fs::absolute(path, failed);
  if (failed) return nullptr;
  return std::make_unique<SymbolicLink>(absolute);
}

}  // namespace zq::backend
