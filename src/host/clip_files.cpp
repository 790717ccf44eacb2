#include "host/clip_files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "backends/session/movie_file_output.h"

namespace zq::host {
namespace {

namespace fs = std::filesystem;

bool exists(const std::string& path) {
  std::error_code failed;
  return fs::symlink_status(path, failed).type() != fs::file_type::not_found;
}

}  // namespace

std::string fileNameOf(const CalendarDate& date) {
  return fmt::format("{:04}-{:02}-{:02}T{:02}-{:02}-{:02}", date.yearOfCommonEra(), date.monthOfYear(),
                     date.dayOfMonth(), date.hourOfDay(), date.minuteOfHour(), date.secondOfMinute());
}

ClipFiles::ClipFiles(std::string folder, std::string extension, std::string tapeName)
    : folder_(std::move(folder)), extension_(std::move(extension)), tapeName_(std::move(tapeName)) {}

Status ClipFiles::prepare() {
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (failed)
    return Error{"Cannot make the output folder " + folder_, failed.message() + ". Name another with --output."};
  if (!fs::is_directory(folder_, failed))
    return Error{folder_ + " is not a folder", "Name another folder with --output."};
  if (::access(folder_.c_str(), W_OK | X_OK) != 0) {
    return Error{"Cannot write into the output folder " + folder_, std::strerror(errno)};
  }
  return {};
}

std::string ClipFiles::moviePath(const std::string& stem) const {
  return inFolder(stem + "." + extension_);
}

std::string ClipFiles::thumbnailsPath(const std::string& stem) const {
  return inFolder(stem + ".thumbnails.dv");
}

bool ClipFiles::isFree(const std::string& stem) const {
  return !exists(moviePath(stem)) && !exists(backend::continuationPath(moviePath(stem), 2)) &&
         !exists(thumbnailsPath(stem));
}

ClipFiles::Names ClipFiles::workingNames(int number) {
  std::string stem = fmt::format("capturing-{:04}", number);
  for (int counter = 2; !isFree(stem); ++counter) stem = fmt::format("capturing-{:04}-{}", number, counter);
  return {moviePath(stem), thumbnailsPath(stem)};
}

std::string ClipFiles::freeStem(const DateValue& date, int number, const std::string& mark) const {
  const std::string base = (date ? fileNameOf(*date) : fmt::format("{}-{:04}", tapeName_, number)) + mark;
  std::string stem = base;
  for (int counter = 2; !isFree(stem); ++counter) stem = fmt::format("{}-{}", base, counter);
  return stem;
}

std::string ClipFiles::nameOf(const std::string& path) {
  return fs::path(path).filename().string();
}

Status moveWithoutOverwriting(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  // File systems that lack the flag have no names that two programs race for here either.
  if (errno == EINVAL && !exists(to) && ::rename(from.c_str(), to.c_str()) == 0) return {};
  return Error{"Cannot rename " + from + " to " + to, std::strerror(errno)};
}

}  // namespace zq::host
