#pragma once
// A panel that slides out of its window and is answered before the window goes on.

#include <functional>

namespace zq::outlets {

/// Main thread only.
class Sheet {
 public:
  virtual ~Sheet() = default;
  /// Shows it; `didEnd` is called once when it was ended, and it is still on screen then.
  virtual void beginSheet(std::function<void()> didEnd) = 0;
  virtual void endSheet() = 0;
  /// Takes it off the screen.
  virtual void orderOut() = 0;
};

}  // namespace zq::outlets
