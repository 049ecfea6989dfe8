#pragma once

#include <chrono>
#include <cstdint>

namespace kelst {

/// A line on standard error that tells how far long work has come. It is shown on a terminal only,
/// and not before the work has taken a while.
class Progress {
 public:
  Progress(std::uint64_t streams, std::uint64_t bytes);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Clear(); }

  /// Counts what has been done since the last call.
  void Add(std::uint64_t streams, std::uint64_t bytes);

  /// Takes the line away, so that something else can be printed.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::uint64_t streams_;
  std::uint64_t bytes_;
  std::uint64_t streamsDone_ = 0;
  std::uint64_t bytesDone_ = 0;
  bool isTerminal_;
  bool isShown_ = false;
  Clock::time_point next_;
};

}  // namespace kelst
