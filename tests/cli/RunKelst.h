#pragma once

#include <string>
#include <vector>

namespace kelx::test {

struct RunResult {
  int exitCode = -1;  ///< -1 when a signal ended the process
  std::string out;
  std::string err;
};

/// What a process writes its standard output to.
enum class StandardOutput { kFile, kFullDevice, kClosedPipe };

/// Runs the built tool to its end. `folder` is the current one of the process; empty for this
/// one's.
RunResult RunKelst(const std::vector<std::string>& arguments,
                   StandardOutput output = StandardOutput::kFile, const std::string& folder = "");

std::string SampleFile(const std::string& name);
std::string ReadFile(const std::string& path);

/// The lines of `text`, each without its end.
std::vector<std::string> Lines(const std::string& text);

}  // namespace kelx::test
