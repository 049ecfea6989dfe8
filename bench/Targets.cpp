#include "bench/Targets.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kelx::bench {

namespace {

/// The time of `measured` is at most `most` times that of `floor`, where each is divided by the
/// number of things that it works on.
struct Target {
  const char* what;
  const char* measured;
  double measuredCount;
  const char* floor;
  double floorCount;
  double most;
};

constexpr std::array kTargets{
    Target{"contiguous 256 MiB against fread into malloc", "contiguous/256", 1,
           "contiguous/256/floor:fread", 1, 0.6},
    Target{"contiguous 256 MiB against fread into huge pages", "contiguous/256", 1,
           "contiguous/256/floor:huge", 1, 1.15},
    Target{"scattered 64 MiB against a pread a sector", "scattered/64", 1,
           "scattered/64/floor:pread", 1, 2.5},
    Target{"20,000 small streams against the whole file", "small/tree/20000", 1,
           "small/tree/20000/floor:fread", 1, 6},
    Target{"the same, siblings in a list", "small/list/20000", 1, "small/list/20000/floor:fread", 1,
           6},
    Target{"a stream of 80,000 against one of 5,000", "small/tree/80000", 80000, "small/tree/5000",
           5000, 1.3},
    Target{"the same, siblings in a list", "small/list/80000", 80000, "small/list/5000", 5000, 1.3},
    Target{"a sub-storage of 2,000 against one of 200", "storages/2000", 2000, "storages/200", 200,
           1.3},
    Target{"a property of 50,000 against one of 5,000", "properties/50000", 50000,
           "properties/5000", 5000, 1.3},
};

}  // namespace

void TimeKeeper::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
    const double time = run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations);
    const auto [kept, isNew] = leastNanoseconds_.try_emplace(run.run_name.function_name, time);
    if (!isNew) kept->second = std::min(kept->second, time);
  }
  ConsoleReporter::ReportRuns(runs);
}

bool TimeKeeper::PrintTargets() const {
  bool allMet = true;
  std::printf("\n%-52s %8s %8s\n", "target", "ratio", "at most");
  for (const Target& target : kTargets) {
    const auto measured = leastNanoseconds_.find(target.measured);
    const auto floor = leastNanoseconds_.find(target.floor);
    if (measured == leastNanoseconds_.end() || floor == leastNanoseconds_.end()) continue;
    const double ratio =
        measured->second / target.measuredCount / (floor->second / target.floorCount);
    const bool isMet = ratio <= target.most;
    allMet = allMet && isMet;
    std::printf("%-52s %8.2f %8.2f  %s\n", target.what, ratio, target.most,
                isMet ? "met" : "MISSED");
  }
  return allMet;
}

}  // namespace kelx::bench
