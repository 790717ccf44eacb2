#pragma once
// Disks with less room than the real one.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>

#include "support/scratch_folder.h"

namespace zq::test {

/// A file system of its own in a scratch folder, where the test may mount one.
class ScratchDisk {
 public:
  ScratchDisk(const char* type, const char* options)
      : mounted_(mount("none", folder_.path().c_str(), type, 0, options) == 0), error_(mounted_ ? 0 : errno) {}
  ~ScratchDisk() {
    if (mounted_) umount2(folder_.path().c_str(), MNT_DETACH);
  }

  bool mounted() const { return mounted_; }
  std::string whyNot() const { return "cannot mount a disk here: " + std::system_category().message(error_); }
  std::string file(const std::string& name) const { return folder_.file(name); }

 private:
  ScratchFolder folder_;
  const bool mounted_;
  const int error_;
};

/// While it lives, no file of the process can grow beyond `bytes`.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

}  // namespace zq::test
