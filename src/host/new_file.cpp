#include "host/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zq::host {
namespace {

bool writeAll(int descriptor, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return ::fsync(descriptor) == 0 || errno == EINVAL;
}

}  // namespace

Status writeNewFile(const std::string& path, const std::string& text) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0 && errno == EEXIST) {
    return Error{path + " exists already and was not touched", "Name another file."};
  }
  if (descriptor < 0) return Error{"Cannot make " + path, std::strerror(errno)};
  const bool written = writeAll(descriptor, text);
  const int error = errno;
  const bool closed = ::close(descriptor) == 0;
  if (written && closed) return {};
  ::unlink(path.c_str());
  return Error{"Cannot write " + path, std::strerror(written ? errno : error)};
}

}  // namespace zq::host
