#include "compound/SectorChain.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

using kelx::internal::ChainEnd;
using kelx::internal::SectorChain;
using kelx::internal::TableLinks;

constexpr unsigned int kEnd = 0xFFFFFFFE;

struct Walk {
  std::vector<unsigned int> sectors;
  ChainEnd end;
};

Walk WalkTable(const std::vector<unsigned int>& table, unsigned int start, std::uint64_t limit) {
  const SectorChain chain(start, limit, TableLinks(table));
  Walk walk{{}, chain.End()};
  chain.ForEach([&](unsigned int sector) { walk.sectors.push_back(sector); });
  EXPECT_EQ(chain.Length(), walk.sectors.size());
  return walk;
}

TEST(SectorChain, FollowsATable) {
  struct Case {
    std::vector<unsigned int> table;
    unsigned int start;
    std::uint64_t limit;
    std::vector<unsigned int> sectors;
    ChainEnd end;
  };
  const Case cases[] = {
      {{2, kEnd, 1}, 0, 9, {0, 2, 1}, ChainEnd::kMark},
      {{0xFFFFFFFC}, 0, 9, {0}, ChainEnd::kMark},
      {{0xFFFFFFFB}, 0, 9, {0, 0xFFFFFFFB}, ChainEnd::kMark},  // a sector without an entry
      {{}, 0xFFFFFFFF, 9, {0xFFFFFFFF}, ChainEnd::kMark},
      {{0}, 0, 9, {0}, ChainEnd::kLoop},
      {{1, 2, 1}, 0, 9, {0, 1, 2}, ChainEnd::kLoop},
      {{1, 2, 3, kEnd}, 0, 3, {0, 1, 2}, ChainEnd::kLimit},
      {{1, 2, 3, kEnd}, 0, 4, {0, 1, 2, 3}, ChainEnd::kMark},
      {{1, 2, 3, 0}, 0, 3, {0, 1, 2}, ChainEnd::kLimit},
      {{1, 2, 3, 0}, 0, 4, {0, 1, 2, 3}, ChainEnd::kLoop},
      {{1, kEnd}, 0, 0, {}, ChainEnd::kLimit},
  };
  for (const Case& one : cases) {
    const Walk walk = WalkTable(one.table, one.start, one.limit);
    EXPECT_EQ(walk.sectors, one.sectors);
    EXPECT_EQ(walk.end, one.end);
  }
}

TEST(SectorChain, EveryLoopEndsWhereItCloses) {
  for (unsigned int leadIn = 0; leadIn < 40; ++leadIn) {
    for (unsigned int lap = 1; lap < 40; ++lap) {
      std::vector<unsigned int> table;
      for (unsigned int i = 0; i < leadIn + lap; ++i) table.push_back(i + 1);
      table.back() = leadIn;
      const Walk walk = WalkTable(table, 0, table.size());
      EXPECT_EQ(walk.end, ChainEnd::kLoop) << leadIn << ' ' << lap;
      EXPECT_EQ(walk.sectors.size(), table.size()) << leadIn << ' ' << lap;
      EXPECT_EQ(std::set(walk.sectors.begin(), walk.sectors.end()).size(), table.size());
    }
  }
}

TEST(SectorRuns, JoinNeighbours) {
  using Runs = std::vector<std::pair<unsigned int, unsigned int>>;
  const auto runsOf = [](std::vector<unsigned int> sectors, std::uint64_t longest) {
    Runs runs;
    {
      kelx::internal::SectorRuns gather(512, longest, [&](unsigned int first, unsigned int count) {
        runs.emplace_back(first, count);
      });
      for (const unsigned int sector : sectors) gather.Add(sector);
    }
    return runs;
  };
  EXPECT_EQ(runsOf({}, 9), Runs{});
  EXPECT_EQ(runsOf({0, 1, 2}, 9), (Runs{{0, 3}}));
  EXPECT_EQ(runsOf({0, 0, 1}, 9), (Runs{{0, 1}, {0, 2}}));
  EXPECT_EQ(runsOf({5, 6, 8, 7, 8, 9}, 9), (Runs{{5, 2}, {8, 1}, {7, 3}}));
  EXPECT_EQ(runsOf({1, 2, 3, 4, 5}, 2), (Runs{{1, 2}, {3, 2}, {5, 1}}));
  // Sector 2^23 of 512 bytes lies where sector 0 does.
  EXPECT_EQ(runsOf({0x7FFFFE, 0x7FFFFF, 0x800000, 0x800001}, 9),
            (Runs{{0x7FFFFE, 2}, {0x800000, 2}}));
}

}  // namespace
