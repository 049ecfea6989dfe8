#include "tools/analysis/StreamLayouts.h"

#include <algorithm>
#include <tuple>

namespace kelst {

namespace {

std::uint32_t CountFragments(const SectorClaims& claims, const Chain& chain) {
  std::uint32_t fragments = 0;
  std::uint32_t expected = 0;
  claims.ForEach(chain, [&](std::uint32_t sector) {
    if (fragments == 0 || sector != expected) ++fragments;
    expected = sector + 1;
  });
  return fragments;
}

}  // namespace

std::vector<StreamLayout> StreamsByRoom(const FileTables& tables, const SectorMap& map) {
  std::vector<StreamLayout> streams;
  for (std::uint32_t index = 1; index < tables.Directory().Count(); ++index) {
    const Chain& chain = map.ChainOf(index);
    if (chain.length == 0) continue;
    const bool isMini = map.IsMini(index);
    streams.push_back({index, map.SizeOf(index), chain.length, chain.missing,
                       CountFragments(isMini ? map.MiniSectors() : map.Sectors(), chain), isMini});
  }
  std::ranges::sort(streams, [](const StreamLayout& a, const StreamLayout& b) {
    return std::tuple(a.isMini, b.sectors, b.size, a.entry) <
           std::tuple(b.isMini, a.sectors, a.size, b.entry);
  });
  return streams;
}

}  // namespace kelst
