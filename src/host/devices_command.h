#pragma once
// `deckhand devices`: what can be captured from.

namespace zq::host {

struct DevicesOptions {
  bool json = false;
};

/// The exit code.
int runDevices(const DevicesOptions& options);

}  // namespace zq::host
