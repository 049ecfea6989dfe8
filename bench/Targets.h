#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace kelx::bench {

/// Shows the benchmarks as they run and keeps the least time of each: of several runs on a machine
/// with other work the least is the one that was disturbed least.
class TimeKeeper : public benchmark::ConsoleReporter {
 public:
  TimeKeeper() : ConsoleReporter(OO_Tabular) {}
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Prints each target with what was measured. Whether all were met.
  [[nodiscard]] bool PrintTargets() const;

 private:
  std::map<std::string, double> leastNanoseconds_;
};

}  // namespace kelx::bench
