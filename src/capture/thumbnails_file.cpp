#include "capture/thumbnails_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>

namespace zq {
namespace {

off_t sizeOf(int descriptor) {
  struct stat info {};
  return ::fstat(descriptor, &info) == 0 ? info.st_size : 0;
}

}  // namespace

void ThumbnailsFile::open(const std::string& path) {
  close();
  descriptor_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
}

// Only whole frames stay in the file: a reader finds frame k by its size alone. So a frame that a full disk cuts short
// is taken back. What an older file has behind it stays, as ever.
void ThumbnailsFile::append(const SharedBytes& frame) const {
  if (descriptor_ < 0) return;
  const off_t start = ::lseek(descriptor_, 0, SEEK_CUR);
  const off_t before = sizeOf(descriptor_);
  std::span<const std::uint8_t> rest = frame.bytes();
  while (!rest.empty()) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      if (::ftruncate(descriptor_, std::max(start, before)) == 0) ::lseek(descriptor_, start, SEEK_SET);
      return;
    }
    rest = rest.subspan(static_cast<std::size_t>(written));
  }
}

void ThumbnailsFile::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

}  // namespace zq
