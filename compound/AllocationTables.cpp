#include <algorithm>
#include <climits>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "compound/ByteCursor.h"
#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"
#include "compound/SectorChain.h"

using kelx::internal::SectorRuns;

namespace {

constexpr std::uint64_t kLongestRead = 256;  // sectors of a table that are read at once

/// DIFAT sectors that a file which was cut short may have lost: those of 512 MiB.
constexpr std::uint64_t kLostDifatSectors = 64;

/// What the FAT may hold beyond the length of the file, in bytes. A FAT is a small part of a
/// well-formed file; only a DIFAT that lists sectors again and again makes it larger.
constexpr std::uint64_t kFatAllowance = std::uint64_t{64} << 20;

/// `sector` times 2 to the power `shift`, modulo 2^32. The header of a refused file may state any.
unsigned int ShiftLeft(unsigned int sector, unsigned short shift) {
  return shift < 32 ? sector << shift : 0;
}

bool IsFatSector(unsigned int sector) {
  return sector != kelx::internal::kEndOfChain && sector != kelx::internal::kFreeSector;
}

}  // namespace

unsigned long KELStStorageFileInfo::getEquivalentFatBytePos(unsigned int sector) const {
  const unsigned int distance = ShiftLeft(sector, header_.sectorShift);
  const long base = long{header_.sectorBase} + KELStStorageHeader::kDifatOffset;
  return static_cast<unsigned long>(base + long{distance});
}

unsigned int KELStStorageFileInfo::getEquivalentMiniFatBytePos(unsigned int sector) const {
  return ShiftLeft(sector, header_.miniSectorShift);
}

/// Appends the entries of `sectorCount` neighbouring sectors to `table`.
void KELStStorageFileInfo::ReadTable(std::FILE* file, unsigned int firstSector,
                                     unsigned int sectorCount,
                                     KELXDynamicArray<unsigned int>& table) const {
  const std::size_t entries = std::size_t{sectorCount} * SectorSize() / sizeof(unsigned int);
  unsigned int* const slots = table.Extend(static_cast<int>(entries));
  if (slots == nullptr) return;
  KELReadBytes(file, static_cast<std::int64_t>(getEquivalentFatBytePos(firstSector)),
               std::int64_t{sectorCount} * SectorSize(), reinterpret_cast<unsigned char*>(slots));
  kelx::internal::OrderBytes(std::span(slots, entries), sameByteOrder_);
}

/// Appends the entries of the `sectorCount` sectors that `forEach(add)` hands to `add` to `table`,
/// which is made as large as they need and no larger.
template <typename ForEach>
void KELStStorageFileInfo::ReadTables(std::FILE* file, std::uint64_t sectorCount,
                                      KELXDynamicArray<unsigned int>& table,
                                      ForEach forEach) const {
  const std::uint64_t entries = sectorCount * SectorSize() / sizeof(unsigned int);
  const std::uint64_t wanted = entries + static_cast<std::uint64_t>(table.Count());
  table.Reserve(static_cast<int>(std::min<std::uint64_t>(wanted, INT_MAX)));
  SectorRuns runs(SectorSize(), kLongestRead, [&](unsigned int first, unsigned int count) {
    ReadTable(file, first, count, table);
  });
  forEach([&runs](unsigned int sector) { runs.Add(sector); });
}

// The stated count alone ends the walk: a DIFAT that returns to a sector is read again.
void KELStStorageFileInfo::readDifSector(std::FILE* file) {
  if (file == nullptr || header_.difStartSect == kelx::internal::kEndOfChain) return;
  const std::uint64_t stated = header_.numDifSects;
  const std::uint64_t most = std::min(stated, fileLength_ / SectorSize() + kLostDifatSectors);
  unsigned int sector = header_.difStartSect;
  for (std::uint64_t sectorsRead = 1; sectorsRead <= most; ++sectorsRead) {
    KELXDynamicArray<unsigned int> entries;
    ReadTable(file, sector, 1, entries);
    const bool isLast = sectorsRead == stated;
    difSector_.Append(entries.begin(), entries.Count() - (isLast ? 0 : 1));
    sector = entries.end()[-1];
  }
}

void KELStStorageFileInfo::readFatSector(std::FILE* file) {
  if (file == nullptr || header_.headerDifSect == nullptr) return;
  std::vector<unsigned int> sectors;
  const std::span headerDifat(header_.headerDifSect, KELStStorageHeader::kDifatEntries);
  std::ranges::copy_if(headerDifat, std::back_inserter(sectors), IsFatSector);
  std::ranges::copy_if(std::as_const(difSector_), std::back_inserter(sectors), IsFatSector);
  const std::uint64_t most = (fileLength_ + kFatAllowance) / SectorSize();
  sectors.resize(std::min<std::uint64_t>(sectors.size(), most));
  ReadTables(file, sectors.size(), fatSector_,
             [&](auto add) { std::ranges::for_each(sectors, add); });
}

void KELStStorageFileInfo::readMiniFatSector(std::FILE* file) {
  if (file == nullptr || header_.miniFatStartSect == kelx::internal::kEndOfChain) return;
  const auto chain =
      kelx::internal::TableChain(header_.miniFatStartSect, getLongestChain(), fatSector_);
  ReadTables(file, chain.Length(), miniFatSector_, [&](auto add) { chain.ForEach(add); });
}
