#pragma once
// What the loader of an interface tells its objects once all of them are made.

namespace zq {

/// Main thread only.
class AwakesFromNib {
 public:
  virtual ~AwakesFromNib() = default;
  /// Called once, when the object has the settings that the interface file gives it. A skinned control changes its look
  /// here; until then it looks as the platform's does.
  virtual void awakeFromNib() = 0;
};

}  // namespace zq
