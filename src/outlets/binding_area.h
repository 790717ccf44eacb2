#pragma once
// The band between the timeline and the strip, which joins each clip's place in the one to its picture in the other.

namespace zq::outlets {

class BindingArea {
 public:
  virtual ~BindingArea() = default;
};

}  // namespace zq::outlets
