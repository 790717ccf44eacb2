#pragma once
// A text as a file of its own.

#include <string>

#include "base/status.h"

namespace zq::host {

/// An error when there is such a file, which then stays as it is. A file that is not whole does not stay.
Status writeNewFile(const std::string& path, const std::string& text);

}  // namespace zq::host
