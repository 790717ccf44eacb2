#pragma once
// How the program says how it ended.

namespace zq::host {

enum ExitCode : int {
  kExitOk = 0,
  /// The command could not be done, or not to its end; what was captured before is complete.
  kExitFailed = 1,
  /// The command line itself is wrong; nothing was done.
  kExitUsage = 2,
  /// Done to the end, but the tape has something that its owner should look at.
  kExitFindings = 3,
  /// A fault of the program's own.
  kExitInternal = 70,
  /// Ended by Ctrl-C; what was captured before is complete.
  kExitInterrupted = 130,
};

}  // namespace zq::host
