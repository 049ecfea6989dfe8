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

/// Whether numbers in the file stand as the host has them, little-endian.
inline bool IsHostByteOrder(const KELStStorageHeader& header) {
  constexpr unsigned short kHostMark = 0xFFFE;
  return header.byteOrder == kHostMark;
}

/// A version of the header. The library reads it as the host would, whatever order the file has.
inline unsigned short InFileOrder(const KELStStorageHeader& header, unsigned short version) {
  const auto bytes = std::bit_cast<std::array<unsigned char, sizeof(version)>>(version);
  KELMakeValue(bytes.data(), &version, sizeof(version), IsHostByteOrder(header));
  return version;
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
