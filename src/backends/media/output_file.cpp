#include "backends/media/output_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace zq::media {
namespace {

// Room is taken in steps of some twenty seconds of tape: asking for it then costs nothing beside the writing.
constexpr std::int64_t kReserveStep = 64 << 20;

std::string reasonFor(int errorNumber) {
  return std::system_category().message(errorNumber);
}

const char* remedyFor(int errorNumber) {
  switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
      return "Free some space or record to another disk.";
    case EFBIG:
      return "The disk's file system or a limit of the system allows no larger file; start another one.";
    case EEXIST:
      return "Nothing is ever overwritten; choose another name.";
    case ENOENT:
    case ENOTDIR:
      return "Choose a folder that exists.";
    case EACCES:
    case EPERM:
    case EROFS:
      return "Choose a folder that you may write to.";
    case ENAMETOOLONG:
      return "Choose a shorter name.";
    default:
      return "Check that the disk is connected and works, or record to another one.";
  }
}

Error fileError(const char* what, const std::string& path, int errorNumber) {
  return Error{fmt::format("{} \"{}\"", what, path),
               fmt::format("{}. {}", reasonFor(errorNumber), remedyFor(errorNumber))};
}

/// 0, or the error number. Writes all of `bytes` unless there is an error.
int writeWhole(int descriptor, std::int64_t position, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(descriptor, bytes.data(), bytes.size(), position);
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    position += written;
  }
  return 0;
}

/// Reserving beyond the end does not count against this limit, but writing there would.
std::int64_t largestFileSize() {
  rlimit limit{};
  if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur > INT64_MAX) return INT64_MAX;
  return static_cast<std::int64_t>(limit.rlim_cur);
}

}  // namespace

Expected<std::unique_ptr<OutputFile>> OutputFile::create(const std::string& path) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) return fileError("Cannot create", path, errno);
  return std::unique_ptr<OutputFile>(new OutputFile(path, descriptor));
}

OutputFile::OutputFile(std::string path, int descriptor) : path_(std::move(path)), descriptor_(descriptor) {}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) static_cast<void>(close());
}

Status OutputFile::writeAt(std::int64_t position, std::span<const std::uint8_t> bytes) {
  if (const int errorNumber = writeWhole(descriptor_, position, bytes)) return failure(errorNumber);
  size_ = std::max(size_, position + static_cast<std::int64_t>(bytes.size()));
  return {};
}

Status OutputFile::reserve(std::int64_t bytes) {
  const std::int64_t end = size_ + bytes;
  if (end <= allocated_) return {};
  if (const int errorNumber = makeRoom(end)) return failure(errorNumber);
  return {};
}

Status OutputFile::cutTo(std::int64_t size) {
  int result = 0;
  do {
    result = ftruncate(descriptor_, size);
  } while (result != 0 && errno == EINTR);
  if (result != 0) return failure(errno);
  size_ = size;
  allocated_ = size;
  return {};
}

Status OutputFile::close() {
  // Also frees blocks that were reserved beyond the end without being part of the file.
  Status result = cutTo(size_);
  // Some file systems tell only now that data did not reach the disk. Not repeated when interrupted: the descriptor
  // is gone either way.
  const int closed = ::close(std::exchange(descriptor_, -1));
  if (result.ok() && closed != 0 && errno != EINTR) return failure(errno);
  return result;
}

Status OutputFile::remove() {
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  if (unlink(path_.c_str()) != 0) return fileError("Cannot remove", path_, errno);
  return {};
}

int OutputFile::makeRoom(std::int64_t end) {
  const std::int64_t limit = largestFileSize();
  if (end > limit) return EFBIG;
  const std::int64_t wished = std::min(std::max(end, allocated_ + kReserveStep), limit);
  if (diskAllocates_ && allocateTo(wished) == 0) return 0;
  // A nearly full disk may still have what is needed now.
  if (diskAllocates_) return allocateTo(end);
  return fillWithZeros(end);
}

int OutputFile::allocateTo(std::int64_t end) {
  int result = 0;
  do {
    result = fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, allocated_, end - allocated_);
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    allocated_ = end;
    return 0;
  }
  if (errno != EOPNOTSUPP && errno != EINVAL && errno != ENOSYS) return errno;
  diskAllocates_ = false;
  return errno;
}

/// For disks that cannot allocate ahead (exFAT, some network shares). No further ahead than needed: what is overwritten
/// while it is still in memory reaches the disk once.
int OutputFile::fillWithZeros(std::int64_t end) {
  static constexpr std::array<std::uint8_t, 1 << 16> kZeros{};
  allocated_ = std::max(allocated_, size_);
  while (allocated_ < end) {
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(end - allocated_, kZeros.size()));
    if (const int errorNumber = writeWhole(descriptor_, allocated_, std::span(kZeros).first(count))) return errorNumber;
    allocated_ += static_cast<std::int64_t>(count);
  }
  return 0;
}

Error OutputFile::failure(int errorNumber) const {
  return fileError("Cannot write", path_, errorNumber);
}

}  // namespace zq::media
