#pragma once
// A button that is on or off.

namespace zq::outlets {

/// From any thread.
class Button {
 public:
  virtual ~Button() = default;
  virtual void setState(bool on) = 0;
  virtual bool state() const = 0;
};

}  // namespace zq::outlets
