#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "KELXStStorage.h"

namespace kelst {

/// Numbers from here on are marks: no sector and no directory entry has them.
inline constexpr unsigned int kFirstMark = 0xFFFFFFFC;

/// Stands in a table for what a missing sector would say. No file has a sector of this number.
inline constexpr unsigned int kUnknownLink = 0xFFFFFFFB;

/// The byte-order mark of a file whose numbers stand as the host has them, little-endian.
inline constexpr unsigned short kHostMark = 0xFFFE;

inline bool IsHostByteOrder(const KELStStorageHeader& header) {
  return header.byteOrder == kHostMark;
}

/// A number of the header, its bytes reversed unless the file has the order of the host. The
/// library reads the versions as the host would, whatever order the file has.
inline unsigned short InFileOrder(const KELStStorageHeader& header, unsigned short version) {
  const auto bytes = std::bit_cast<std::array<unsigned char, sizeof(version)>>(version);
  KELMakeValue(bytes.data(), &version, sizeof(version), IsHostByteOrder(header));
  return version;
}

/// Whether the library reads a sector from where it is: its positions have 32 bits, and begin again
/// at the first sector.
inline bool IsWithinReach(unsigned int sector, unsigned int shift) {
  return std::uint64_t{sector} << shift <= UINT32_MAX;
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
