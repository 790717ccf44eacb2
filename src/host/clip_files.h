#pragma once
// The files of a clip in the output folder: a working name while it is captured, the recording date's when it is done.
// Nothing that exists is ever written over.

#include <optional>
#include <string>
#include <vector>

#include "base/calendar_date.h"
#include "base/status.h"

namespace zq::host {

/// "2004-07-15T13-30-45": a date as a file name.
std::string fileNameOf(const CalendarDate& date);

class ClipFiles {
 public:
  /// `extension` of the movies, without a dot. `tapeName` names undated clips.
  ClipFiles(std::string folder, std::string extension, std::string tapeName);

  /// Makes the folder if need be, and makes sure that files can be made in it.
  Status prepare();

  struct Names {
    std::string movie;
    std::string thumbnails;
  };
  /// Where clip `number` is written until it is done.
  Names workingNames(int number);
  /// A name that no file of the folder has: the date's, or the tape's and the clip's number without one; with a counter
  /// where that is taken.
  /// `mark` is added to what names it.
  std::string freeStem(const DateValue& date, int number, const std::string& mark = "") const;
  std::string moviePath(const std::string& stem) const;
  std::string thumbnailsPath(const std::string& stem) const;
  /// The path of a file in the folder.
  std::string inFolder(const std::string& name) const { return folder_ + "/" + name; }
  const std::string& folder() const { return folder_; }
  /// Of the movies, without a dot.
  const std::string& extension() const { return extension_; }
  /// The file's name within the folder.
  static std::string nameOf(const std::string& path);

 private:
  bool isFree(const std::string& stem) const;

  const std::string folder_;
  const std::string extension_;
  const std::string tapeName_;
};

/// Renames a file; one that has the new name is an error and stays.
Status moveWithoutOverwriting(const std::string& from, const std::string& to);

}  // namespace zq::host
