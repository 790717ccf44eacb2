#pragma once
// Qt prints what it thinks of a connection that was lost; the user is told by the operation's error.

namespace zq::host {

/// While there is one, what Qt has to say on this thread is dropped.
class QtSilence {
 public:
  QtSilence();
  ~QtSilence();
  QtSilence(const QtSilence&) = delete;
  QtSilence& operator=(const QtSilence&) = delete;
};

}  // namespace zq::host
