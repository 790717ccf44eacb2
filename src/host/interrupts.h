#pragma once
// Ctrl-C: the first one asks for an orderly end, the second is told that it is under way, the third abandons it.

namespace zq::host {

class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// Whether an end was asked for, by Ctrl-C, a closed terminal or a termination signal.
  static bool wasAsked();
};

}  // namespace zq::host
