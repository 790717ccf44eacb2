#pragma once
// A group of controls that is shown or hidden as one.

namespace zq::outlets {

/// From any thread.
class Panel {
 public:
  virtual ~Panel() = default;
  virtual void setShown(bool shown) = 0;
  virtual bool isShown() const = 0;
};

}  // namespace zq::outlets
