#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tests/support/CompoundFileEntry.h"
#include "tests/support/SiblingTree.h"

namespace kelx::test {

enum class Placement {
  kContiguous,  ///< the sectors of a chain follow one another
  kScattered,   ///< no sector of a chain, mini sectors included, lies right behind the one before
};

/// How a file is laid out. The defaults give the common version 3 file.
struct Format {
  std::uint32_t sectorSize = 512;            ///< 512 (version 3) or 4096 (version 4)
  ByteOrder byteOrder = ByteOrder::kLittle;  ///< of all integers; names stay low byte first
  std::uint32_t miniStreamCutoff = 4096;
  Siblings siblings = Siblings::kBalanced;
  Placement placement = Placement::kContiguous;
  /// The FAT and DIFAT sectors stand at the end of the file, not at its start.
  bool tablesLast = false;
  /// FAT sectors beyond the need; they describe free sectors past the end of the file.
  std::uint32_t extraFatSectors = 0;
  /// The header lists so many FAT sectors (at most 109), DIFAT sectors the rest.
  std::uint32_t fatSectorsInHeader = kHeaderDifatCount;
  /// The header's count of directory sectors. Unset, it is 0 in version 3 and true in version 4.
  std::optional<std::uint32_t> statedDirectorySectors{};
};

/// Where everything in a built file is. Chains list their sectors in chain order.
struct Layout {
  struct Entry {
    std::uint64_t offset = 0;  ///< of the directory entry, in the file
    std::uint32_t startSector = kEndOfChain;
    std::uint64_t size = 0;
    bool inMiniStream = false;
    std::vector<std::uint32_t>
        sectors;  ///< mini sectors if `inMiniStream`; the root's are `miniStream`
  };

  std::uint32_t sectorSize = 0;
  ByteOrder byteOrder = ByteOrder::kLittle;
  std::uint32_t sectorCount = 0;  ///< the header sector not counted
  std::uint32_t miniSectorCount = 0;
  std::vector<Entry> entries;  ///< by directory index, trailing empty slots left out
  std::vector<std::uint32_t> fat;
  std::vector<std::uint32_t> difat;
  std::vector<std::uint32_t> directory;
  std::vector<std::uint32_t> miniFat;
  std::vector<std::uint32_t> miniStream;

  std::uint64_t FileSize() const { return SectorOffset(sectorCount); }
  std::uint64_t SectorOffset(std::uint32_t sector) const {
    return (std::uint64_t{sector} + 1) * sectorSize;
  }
  /// Where in the file the content of a mini sector, the FAT entry of a sector and the mini FAT
  /// entry of a mini sector are. Each throws `std::out_of_range` if the file has no such place.
  std::uint64_t MiniSectorOffset(std::uint32_t miniSector) const;
  std::uint64_t FatEntryOffset(std::uint32_t sector) const;
  std::uint64_t MiniFatEntryOffset(std::uint32_t miniSector) const;
};

/// Gives every table and every content its sectors.
Layout PlanLayout(const Format& format, std::span<const CompoundFileEntry> entries);

}  // namespace kelx::test
