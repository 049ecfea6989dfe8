#pragma once

#include <algorithm>
#include <cstdint>

#include "KELXStStorage.h"

namespace kelst {

/// Numbers from here on are marks: no sector and no directory entry has them.
inline constexpr unsigned int kFirstMark = 0xFFFFFFFC;

/// Whether numbers in the file stand as the host has them, little-endian.
inline bool IsHostByteOrder(const KELStStorageHeader& header) {
  constexpr unsigned short kHostMark = 0xFFFE;
  return header.byteOrder == kHostMark;
}

/// The sector that follows `sector` in its chain; the mark of the end where the table has none.
inline unsigned int NextSector(const KELXDynamicArray<unsigned int>& table, unsigned int sector) {
  constexpr unsigned int kEndOfChain = 0xFFFFFFFE;
  const unsigned int* const next = table.At(static_cast<int>(sector));
  return next == nullptr ? kEndOfChain : *next;
}

/// Calls `visit(sector, length)` for each sector of 2 to the power `shift` bytes that the first
/// `size` bytes of a chain lie in, as far as the chain goes.
template <typename Visit>
void ForEachSector(const KELXDynamicArray<unsigned int>& table, unsigned int start,
                   unsigned int shift, std::uint64_t size, Visit visit) {
  const std::uint64_t sectorSize = std::uint64_t{1} << shift;
  for (unsigned int sector = start; size > 0 && sector < kFirstMark;) {
    const std::uint64_t length = std::min(size, sectorSize);
    visit(sector, length);
    size -= length;
    sector = NextSector(table, sector);
  }
}

}  // namespace kelst
