#pragma once
// The texts of the program in the user's language.

#include <string>

namespace zq::platform {

class Strings {
 public:
  virtual ~Strings() = default;
  /// The text for `key` in `table` (the default table when empty); the key itself where there is none.
  virtual std::string localizedString(const std::string& key, const std::string& table = "") const = 0;
};

}  // namespace zq::platform
