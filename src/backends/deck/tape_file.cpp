#include "backends/deck/tape_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zq::backend {
namespace {

Error cannotOpen(const std::string& path, int reason) {
  if (reason == ENOENT) return {"No such tape image: " + path, "Check the name and the folder."};
  if (reason == EACCES) return {"Cannot read the tape image " + path, "You have no permission to read it."};
  return {"Cannot read the tape image " + path, std::strerror(reason)};
}

// Without access times, which nobody asks of a tape, a small read is a tenth faster. Refused for the file of another
// user, who then has them.
void leaveAccessTimesOut(int descriptor) {
  static_cast<void>(::fcntl(descriptor, F_SETFL, O_NOATIME));
}

}  // namespace

Expected<std::shared_ptr<TapeFile>> TapeFile::open(const std::string& path) {
  // Non-blocking, so that a pipe without a writer is refused below instead of waited for.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return cannotOpen(path, errno);
  struct stat info {};
  if (::fstat(descriptor, &info) != 0) {
    const int reason = errno;
    ::close(descriptor);
    return cannotOpen(path, reason);
  }
  std::shared_ptr<TapeFile> file(new TapeFile(path, descriptor, static_cast<std::uint64_t>(info.st_size)));
  if (S_ISDIR(info.st_mode)) {
    return Error{path + " is a folder, not a tape image", "Name the raw DV file (.dv) in it."};
  }
  if (!S_ISREG(info.st_mode)) {
    return Error{path + " is not a regular file", "A tape image is a raw DV file that can be read at any position."};
  }
  if (info.st_size == 0) return Error{"The tape image " + path + " is empty", "It holds no frame to play."};
  leaveAccessTimesOut(descriptor);
  return file;
}

// By way of the system's name for what is open: another file may have the path by now.
std::shared_ptr<const TapeFile> TapeFile::openedAgain() const {
  const std::string self = "/proc/self/fd/" + std::to_string(descriptor_);
  const int descriptor = ::open(self.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  leaveAccessTimesOut(descriptor);
  return std::shared_ptr<const TapeFile>(new TapeFile(path_, descriptor, size_));
}

TapeFile::TapeFile(std::string path, int descriptor, std::uint64_t size)
    : path_(std::move(path)), descriptor_(descriptor), size_(size) {}

TapeFile::~TapeFile() {
  ::close(descriptor_);
}

Error TapeFile::shrunk() const {
  return {"The tape image " + path_ + " became shorter while it was read",
          "Another program is changing it; what was read before is kept."};
}

Status TapeFile::read(std::span<std::uint8_t> destination, std::uint64_t offset) const {
  while (!destination.empty()) {
    const ssize_t count = ::pread(descriptor_, destination.data(), destination.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      return Error{"Cannot read the tape image " + path_ + " at byte " + std::to_string(offset), std::strerror(errno)};
    }
    if (count == 0) return shrunk();
    destination = destination.subspan(static_cast<std::size_t>(count));
    offset += static_cast<std::uint64_t>(count);
  }
  return {};
}

Status TapeFile::checkSize() const {
  struct stat info {};
  if (::fstat(descriptor_, &info) != 0 || static_cast<std::uint64_t>(info.st_size) >= size_) return {};
  return shrunk();
}

TapeWindow TapeFile::window(std::uint64_t offset, std::uint64_t length) const {
  if (offset >= size_) return {};
  return {descriptor_, offset, std::min(length, size_ - offset)};
}

}  // namespace zq::backend
