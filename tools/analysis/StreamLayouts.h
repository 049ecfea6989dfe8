#pragma once

#include <cstdint>
#include <vector>

#include "tools/analysis/SectorMap.h"

namespace kelst {

/// How a stream lies in the file. Of a small stream, sectors are mini sectors.
struct StreamLayout {
  std::uint32_t entry;      ///< its directory index
  std::uint64_t size;       ///< as its entry states
  std::uint32_t sectors;    ///< of its chain
  std::uint32_t missing;    ///< how many of them the file does not hold
  std::uint32_t fragments;  ///< runs of neighbouring sectors
  bool isMini;
};

/// All streams that have sectors, those that take most room first.
std::vector<StreamLayout> StreamsByRoom(const FileTables& tables, const SectorMap& map);

}  // namespace kelst
