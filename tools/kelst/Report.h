#pragma once

#include <string_view>

#include "tools/kelst/Output.h"

namespace kelst {

/// What the process exits with. Of several the highest counts.
enum class ExitCode {
  kDone = 0,
  kFailed = 1,     ///< something that was asked for could not be done, the rest was
  kUsage = 2,      ///< the command line makes no sense
  kNotOpened = 3,  ///< a file cannot be opened or is no compound file
};

/// What a run has to say: results to standard output, failures to standard error, and the exit
/// code.
class Report {
 public:
  [[nodiscard]] Output& Out() { return out_; }

  /// Prints "kelst: " and `message`, which is printable UTF-8, on standard error.
  void Fail(ExitCode code, std::string_view message);

  /// Raises the exit code, for what standard output tells already.
  void Raise(ExitCode code);

  /// Finishes standard output; a failure there is reported, but for a reader that went away.
  ExitCode Finish();

 private:
  Output out_;
  ExitCode code_ = ExitCode::kDone;
};

}  // namespace kelst
