#include "tools/kelst/Progress.h"

#include <unistd.h>

#include <string>

#include "tools/kelst/FileDescriptor.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::chrono::milliseconds kFirstAfter{500};
constexpr std::chrono::milliseconds kAgainAfter{100};

/// Goes to the start of the line and empties it.
constexpr const char* kLineStart = "\r\x1b[K";

}  // namespace

Progress::Progress(std::uint64_t streams, std::uint64_t bytes)
    : streams_(streams),
      bytes_(bytes),
      isTerminal_(isatty(STDERR_FILENO) == 1),
      next_(Clock::now() + kFirstAfter) {}

void Progress::Add(std::uint64_t streams, std::uint64_t bytes) {
  streamsDone_ += streams;
  bytesDone_ += bytes;
  if (!isTerminal_ || Clock::now() < next_) return;
  next_ = Clock::now() + kAgainAfter;
  isShown_ = true;
  const std::uint64_t percent = bytes_ == 0 ? 100 : bytesDone_ * 100 / bytes_;
  WriteAll(STDERR_FILENO, kLineStart + Grouped(streamsDone_) + " of " +
                              WithUnit(streams_, "stream") + ", " + std::to_string(percent) + '%');
}

void Progress::Clear() {
  if (isShown_) WriteAll(STDERR_FILENO, std::string_view(kLineStart));
  isShown_ = false;
}

}  // namespace kelst
