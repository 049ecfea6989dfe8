#include "tests/cli/RunKelst.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/TemporaryFile.h"

namespace kelx::test {

namespace {

int OpenForWriting(const std::string& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
}

int OpenClosedPipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return -1;
  close(ends[0]);
  return ends[1];
}

int OpenOutput(StandardOutput output, const std::string& path) {
  switch (output) {
    case StandardOutput::kFullDevice:
      return OpenForWriting("/dev/full");
    case StandardOutput::kClosedPipe:
      return OpenClosedPipe();
    default:
      return OpenForWriting(path);
  }
}

int WaitFor(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

}  // namespace

RunResult RunKelst(const std::vector<std::string>& arguments, StandardOutput output,
                   const std::string& folder) {
  const TemporaryFolder results;
  std::vector<std::string> words{KELX_KELST_PATH};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int out = OpenOutput(output, results.PathOf("out"));
  const int err = OpenForWriting(results.PathOf("err"));
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGPIPE, SIG_DFL);
    const bool isReady = (folder.empty() || chdir(folder.c_str()) == 0) &&
                         dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0;
    if (isReady) execv(pointers[0], pointers.data());
    _exit(127);
  }
  close(out);
  close(err);
  if (process < 0) throw std::runtime_error("cannot start a process");
  const int exitCode = WaitFor(process);
  const bool hasOutput = output == StandardOutput::kFile;
  return {exitCode, hasOutput ? ReadFile(results.PathOf("out")) : "",
          ReadFile(results.PathOf("err"))};
}

std::string SampleFile(const std::string& name) { return std::string(KELX_TEST_DATA "/") + name; }

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace kelx::test
