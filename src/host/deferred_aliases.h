#pragma once
// The aliases that the recapture controller leaves: none yet. It leaves one when a movie is complete, at the path of
// the clip that the tape is in by then, which may be the next one already, and before anyone has looked at the movie.
// The host leaves it itself when the movie is found right.

#include <memory>
#include <string>

#include "platform/file_manager.h"

namespace zq::host {

class DeferredAliases final : public platform::FileManager {
 public:
  explicit DeferredAliases(platform::FileManager& files) : files_(files) {}

  Status removeFile(const std::string& path) override { return files_.removeFile(path); }
  std::unique_ptr<platform::FileAlias> aliasWithPath(const std::string& path) override {
    return files_.aliasWithPath(path) ? std::make_unique<NoAlias>() : nullptr;
  }

 private:
  class NoAlias final : public platform::FileAlias {
   public:
    Status writeToFile(const std::string& /*path*/) const override { return {}; }
  };

  platform::FileManager& files_;
};

}  // namespace zq::host
