#pragma once
// A line of text.

#include <string>

#include "platform/geometry.h"

namespace zq::outlets {

class TextField {
 public:
  virtual ~TextField() = default;
  /// From any thread.
  virtual void setStringValue(const std::string& text) = 0;
  /// Main thread only. Draws this colour behind the text.
  virtual void setBackgroundColor(const platform::Color& color) = 0;
};

}  // namespace zq::outlets
