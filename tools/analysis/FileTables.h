#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "KELXStStorage.h"
#include "tools/kelst/FullDirectory.h"
#include "tools/kelst/Sectors.h"

namespace kelst {

using Table = KELXDynamicArray<unsigned int>;

// What an allocation table says in the place of the next sector.
inline constexpr unsigned int kDifatMark = 0xFFFFFFFC;
inline constexpr unsigned int kFatMark = 0xFFFFFFFD;
inline constexpr unsigned int kEndMark = 0xFFFFFFFE;
inline constexpr unsigned int kFreeMark = 0xFFFFFFFF;

/// Where the FAT lies, and where that is written.
struct Difat {
  std::vector<unsigned int> fatSectors;    ///< as listed: repeated, or beyond the file, perhaps
  std::vector<unsigned int> difatSectors;  ///< each once, all in the file
  bool hasGap = false;                     ///< free places stand before places in use
  unsigned int next = kEndMark;            ///< what follows the last DIFAT sector
};

/// The tables of a compound file: all of it but what streams hold.
class FileTables {
 public:
  /// Reads `file`, which stays the caller's and is used no more afterwards. A file whose header is
  /// refused has no tables and no directory.
  explicit FileTables(std::FILE* file);

  [[nodiscard]] bool IsAccepted() const { return image_.checkHeader(); }
  [[nodiscard]] const KELStStorageHeader& Header() const { return header_; }
  [[nodiscard]] std::uint64_t FileLength() const { return fileLength_; }  ///< in bytes
  [[nodiscard]] std::uint32_t SectorSize() const { return 1U << header_.sectorShift; }

  /// How many sectors the file has behind the header, the last one perhaps cut.
  [[nodiscard]] std::uint32_t SectorCount() const { return sectorCount_; }

  /// The offset in the file at which a sector begins.
  [[nodiscard]] std::uint64_t OffsetOf(std::uint32_t sector) const {
    return (std::uint64_t{sector} + 1) << header_.sectorShift;
  }

  /// As the library has them, but that kUnknownLink stands where the file has lost a part.
  [[nodiscard]] const Table& Fat() const { return fat_; }
  [[nodiscard]] const Table& MiniFat() const { return miniFat_; }
  [[nodiscard]] const Difat& FatPlaces() const { return difat_; }
  [[nodiscard]] const FullDirectory& Directory() const { return *directory_; }

 private:
  [[nodiscard]] bool IsInFile(std::uint32_t sector) const { return sector < sectorCount_; }
  void FindFat(std::FILE* file);
  void ReadDifatSectors(std::FILE* file, std::vector<unsigned int>& listed);
  void MarkLost(Table& table, std::size_t place) const;

  const KELStStorageFileInfo image_;
  const KELStStorageHeader header_;
  const std::uint64_t fileLength_;
  std::uint32_t sectorCount_ = 0;
  Table fat_;
  Table miniFat_;
  Difat difat_;
  std::optional<FullDirectory> directory_;
};

}  // namespace kelst
