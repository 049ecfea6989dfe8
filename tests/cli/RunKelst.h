#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kelx::test {

struct RunResult {
  int exitCode = -1;  ///< -1 when a signal ended the process
  std::string out;
  std::string err;
};

/// What a process writes its standard output to.
enum class StandardOutput { kFile, kFullDevice, kClosedPipe, kTerminal };

/// Runs the built tool to its end. `folder` is the current one of the process; empty for this
/// one's.
RunResult RunKelst(const std::vector<std::string>& arguments,
                   StandardOutput output = StandardOutput::kFile, const std::string& folder = "");

/// The same for another program, looked for where the shell would; the exit code is 127 when there
/// is none of this name.
RunResult RunProgram(std::vector<std::string> words, StandardOutput output = StandardOutput::kFile,
                     const std::string& folder = "");

/// The same with standard output to a pipe: `meanwhile` is called once the first byte has come,
/// when the process cannot have written more than a pipe holds.
RunResult RunKelstMeanwhile(const std::vector<std::string>& arguments,
                            const std::function<void()>& meanwhile);

std::string SampleFile(const std::string& name);
std::string ReadFile(const std::string& path);

/// The lines of `text`, each without its end.
std::vector<std::string> Lines(const std::string& text);

}  // namespace kelx::test
