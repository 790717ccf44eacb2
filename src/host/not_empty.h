#pragma once
// A check of command line options.

#include <CLI/CLI.hpp>
#include <string>

namespace zq::host {

/// Refuses the empty text: an empty variable of a script must not become a wider choice.
inline CLI::Validator notEmpty() {
  return CLI::Validator([](const std::string& text) { return text.empty() ? "it is empty" : std::string(); }, "");
}

}  // namespace zq::host
