#pragma once
// What the logic does with files itself: it deletes them, and leaves aliases of them.

#include <memory>
#include <string>

#include "base/status.h"

namespace zq::platform {

/// Remembers an existing file, and can be written as a file that leads to it.
class FileAlias {
 public:
  virtual ~FileAlias() = default;
  /// An error where a file of this name exists already: nothing is written over.
  virtual Status writeToFile(const std::string& path) const = 0;
};

/// From any thread.
class FileManager {
 public:
  virtual ~FileManager() = default;
  virtual Status removeFile(const std::string& path) = 0;
  /// Null when there is no such file.
  virtual std::unique_ptr<FileAlias> aliasWithPath(const std::string& path) = 0;
};

}  // namespace zq::platform
