#include "tools/analysis/SectorMap.h"

#include <algorithm>

namespace kelst {

namespace {

constexpr std::uint32_t kMiniSectorSize = 64;
constexpr std::uint32_t kEntryBytes = 128;
constexpr std::uint16_t kLargeSectorShift = 12;  // version 4, where sizes have 64 bits

/// The sectors of a chain as a list.
std::vector<std::uint32_t> ListOf(const SectorClaims& claims, const Chain& chain) {
  std::vector<std::uint32_t> sectors;
  sectors.reserve(chain.length);
  claims.ForEach(chain, [&](std::uint32_t sector) { sectors.push_back(sector); });
  return sectors;
}

}  // namespace

SectorMap::SectorMap(const FileTables& tables, const DirectoryWalk& walk)
    : tables_(tables),
      sectors_(tables.Fat(),
               [&tables](std::uint32_t sector) { return sector < tables.SectorCount(); }),
      miniSectors_(tables.MiniFat(),
                   [this](std::uint32_t sector) {
                     if (sector >= miniSectorCount_) return false;
                     return chains_[0].missing == 0 || MiniOffsetOf(sector) < tables_.FileLength();
                   }),
      chains_(tables.Directory().Count()) {
  ClaimTables();
  ClaimStreams(walk, true);
  ClaimStreams(walk, false);
  FindTail();
}

/// The tables come before all streams: they are what the rest is read by.
void SectorMap::ClaimTables() {
  for (const std::uint32_t sector : tables_.FatPlaces().fatSectors) {
    sectors_.ClaimOne(sector, SectorUse::kFat);
  }
  for (const std::uint32_t sector : tables_.FatPlaces().difatSectors) {
    sectors_.ClaimOne(sector, SectorUse::kDifat);
  }
  const KELStStorageHeader header = tables_.Header();
  directoryChain_ = sectors_.Claim(header.dirStartSect, SectorUse::kDirectory);
  directorySectors_ = ListOf(sectors_, directoryChain_);
  miniFatChain_ = sectors_.Claim(header.miniFatStartSect, SectorUse::kMiniFat);
  const KELStStorageDirEntry& root = tables_.Directory().At(0);
  if (!root.isRoot() || SizeOf(0) == 0) return;
  chains_[0] = sectors_.Claim(root.getStartSect(), SectorUse::kMiniStream);
  miniStreamSectors_ = ListOf(sectors_, chains_[0]);
  const std::uint64_t bytes =
      std::min<std::uint64_t>(SizeOf(0), std::uint64_t{chains_[0].length} * tables_.SectorSize());
  miniSectorCount_ = static_cast<std::uint32_t>((bytes + kMiniSectorSize - 1) / kMiniSectorSize);
}

/// Streams that can be reached come first: what is left of others gives way to them.
void SectorMap::ClaimStreams(const DirectoryWalk& walk, bool reached) {
  const FullDirectory& directory = tables_.Directory();
  for (std::uint32_t index = 1; index < directory.Count(); ++index) {
    const KELStStorageDirEntry& entry = directory.At(index);
    if (walk.IsReached(index) != reached || !entry.isStream() || SizeOf(index) == 0) continue;
    SectorClaims& claims = IsMini(index) ? miniSectors_ : sectors_;
    chains_[index] = claims.Claim(entry.getStartSect(), SectorUse::kStream, index);
  }
}

/// Free sectors at the end are part of the file while the FAT describes them and all are whole.
/// Else they, too, were not written by whoever wrote the FAT.
void SectorMap::FindTail() {
  const std::uint32_t count = tables_.SectorCount();
  const std::uint32_t described = std::min(count, sectors_.Count());
  tailStart_ = described;
  while (tailStart_ > 0 && sectors_.Use(tailStart_ - 1) == SectorUse::kFree) --tailStart_;
  const bool isWhole = tables_.FileLength() % tables_.SectorSize() == 0;
  if (tailStart_ < count && (described < count || !isWhole)) sectors_.Append(tailStart_, count);
}

bool SectorMap::IsMini(std::uint32_t index) const {
  return index != 0 && SizeOf(index) < tables_.Header().miniStreamCutoff;
}

std::uint64_t SectorMap::SizeOf(std::uint32_t index) const {
  const bool isLong = tables_.Header().sectorShift == kLargeSectorShift;
  return isLong ? tables_.Directory().FullAt(index).size : tables_.Directory().At(index).getSize();
}

std::vector<Extent> SectorMap::ExtentsOf(std::uint32_t index) const {
  std::vector<Extent> extents;
  const bool isMini = IsMini(index);
  const std::uint64_t sectorSize = isMini ? kMiniSectorSize : tables_.SectorSize();
  std::uint64_t left = SizeOf(index);
  (isMini ? miniSectors_ : sectors_).ForEach(ChainOf(index), [&](std::uint32_t sector) {
    if (isMini && sector >= miniSectorCount_) left = 0;
    if (left == 0) return;
    const std::uint64_t offset = isMini ? MiniOffsetOf(sector) : tables_.OffsetOf(sector);
    const std::uint64_t held = tables_.FileLength() - std::min(tables_.FileLength(), offset);
    const std::uint64_t length = std::min({left, sectorSize, held});
    left = length < std::min(left, sectorSize) ? 0 : left - length;
    if (length == 0) return;
    if (!extents.empty() && extents.back().offset + extents.back().length == offset) {
      extents.back().length += length;
    } else {
      extents.push_back({offset, length});
    }
  });
  return extents;
}

std::uint64_t SectorMap::MiniOffsetOf(std::uint32_t miniSector) const {
  const std::uint64_t offset = std::uint64_t{miniSector} * kMiniSectorSize;
  const std::uint64_t sectorSize = tables_.SectorSize();
  return tables_.OffsetOf(miniStreamSectors_[offset / sectorSize]) + offset % sectorSize;
}

std::uint64_t SectorMap::EntryOffsetOf(std::uint32_t index) const {
  const std::uint64_t offset = std::uint64_t{index} * kEntryBytes;
  const std::uint64_t place = offset / tables_.SectorSize();
  if (place >= directorySectors_.size()) return tables_.FileLength();
  return tables_.OffsetOf(directorySectors_[place]) + offset % tables_.SectorSize();
}

}  // namespace kelst
