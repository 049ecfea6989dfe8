#include "tools/kelst/Report.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

#include "tools/kelst/FileDescriptor.h"

namespace kelst {

void Report::Raise(ExitCode code) { code_ = std::max(code_, code); }

void Report::Fail(ExitCode code, std::string_view message) {
  out_.Flush();  // so that both come in order on a terminal
  Raise(code);
  WriteAll(STDERR_FILENO, "kelst: " + std::string(message) + '\n');
}

ExitCode Report::Finish() {
  out_.Flush();
  if (out_.IsGood()) return code_;
  Raise(ExitCode::kFailed);
  if (out_.Error() != EPIPE) {
    Fail(ExitCode::kFailed, "standard output: " + std::generic_category().message(out_.Error()));
  }
  return code_;
}

}  // namespace kelst
