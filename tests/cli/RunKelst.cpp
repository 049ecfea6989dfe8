#include "tests/cli/RunKelst.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/support/TemporaryFile.h"

namespace kelx::test {

namespace {

int OpenForWriting(const std::string& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
}

/// The ends to read from and to write to.
std::array<int, 2> OpenPipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
  return ends;
}

int OpenClosedPipe() {
  const auto ends = OpenPipe();
  close(ends[0]);
  return ends[1];
}

/// One end for the process; `master` is the other one.
int OpenTerminal(int& master) {
  master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return -1;
  return open(ptsname(master), O_WRONLY | O_NOCTTY | O_CLOEXEC);
}

/// What was written to a terminal until its last writer had gone.
std::string ReadTerminal(int master) {
  std::string text;
  std::array<char, 4096> piece{};
  for (ssize_t length = 0; (length = read(master, piece.data(), piece.size())) > 0;) {
    text.append(piece.data(), static_cast<std::size_t>(length));
  }
  close(master);
  return text;
}

int OpenOutput(StandardOutput output, const std::string& path, int& master) {
  switch (output) {
    case StandardOutput::kTerminal:
      return OpenTerminal(master);
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

/// The command line that runs the built tool.
std::vector<std::string> KelstWith(const std::vector<std::string>& arguments) {
  std::vector<std::string> words{KELX_KELST_PATH};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

/// Starts a program with the descriptors as its standard output and error, and closes them here.
pid_t Start(std::vector<std::string> words, int out, int err, const std::string& folder = "") {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGPIPE, SIG_DFL);
    const bool isReady = (folder.empty() || chdir(folder.c_str()) == 0) &&
                         dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0;
    if (isReady) execvp(pointers[0], pointers.data());
    _exit(127);
  }
  close(out);
  close(err);
  if (process < 0) throw std::runtime_error("cannot start a process");
  return process;
}

}  // namespace

RunResult RunKelst(const std::vector<std::string>& arguments, StandardOutput output,
                   const std::string& folder) {
  return RunProgram(KelstWith(arguments), output, folder);
}

RunResult RunProgram(std::vector<std::string> words, StandardOutput output,
                     const std::string& folder) {
  const TemporaryFolder results;
  int master = -1;
  const int out = OpenOutput(output, results.PathOf("out"), master);
  const pid_t process = Start(std::move(words), out, OpenForWriting(results.PathOf("err")), folder);
  std::string shown = master >= 0 ? ReadTerminal(master) : "";
  const int exitCode = WaitFor(process);
  if (output == StandardOutput::kFile) shown = ReadFile(results.PathOf("out"));
  return {exitCode, shown, ReadFile(results.PathOf("err"))};
}

RunResult RunKelstMeanwhile(const std::vector<std::string>& arguments,
                            const std::function<void()>& meanwhile) {
  const TemporaryFolder results;
  const auto ends = OpenPipe();
  const pid_t process = Start(KelstWith(arguments), ends[1], OpenForWriting(results.PathOf("err")));
  std::string out;
  std::array<char, 4096> piece{};
  for (ssize_t length = read(ends[0], piece.data(), 1); length > 0;
       length = read(ends[0], piece.data(), piece.size())) {
    if (out.empty()) meanwhile();
    out.append(piece.data(), static_cast<std::size_t>(length));
  }
  close(ends[0]);
  return {WaitFor(process), out, ReadFile(results.PathOf("err"))};
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
