#pragma once
// The system's files. An alias is a symbolic link, relative when both lie in one folder, so that they can be moved
// together.

#include <memory>
#include <string>

#include "platform/file_manager.h"

namespace zq::backend {

class SystemFiles final : public platform::FileManager {
 public:
  Status removeFile(const std::string& path) override;
  std::unique_ptr<platform::FileAlias> aliasWithPath(const std::string& path) override;
};

}  // namespace zq::backend
