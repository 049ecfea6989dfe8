#pragma once

#include <cstdint>
#include <vector>

#include "tools/analysis/DirectoryWalk.h"
#include "tools/analysis/FileTables.h"
#include "tools/analysis/SectorClaims.h"

namespace kelst {

/// Neighbouring bytes of the file.
struct Extent {
  std::uint64_t offset;
  std::uint64_t length;
};

/// What each sector of a compound file holds, and where each stream lies.
///
/// Made in linear time, whatever the file says. It takes four bytes a sector, as many a mini
/// sector, and four for each sector of the directory and of the mini stream.
class SectorMap {
 public:
  /// `tables` were accepted and outlive the map, as does `walk`, which followed their directory.
  SectorMap(const FileTables& tables, const DirectoryWalk& walk);
  SectorMap(const SectorMap&) = delete;
  SectorMap& operator=(const SectorMap&) = delete;

  /// What the sectors behind the header are used for, up to the file's end and beyond.
  [[nodiscard]] const SectorClaims& Sectors() const { return sectors_; }
  /// The same of the mini sectors.
  [[nodiscard]] const SectorClaims& MiniSectors() const { return miniSectors_; }

  [[nodiscard]] const Chain& DirectoryChain() const { return directoryChain_; }
  [[nodiscard]] const Chain& MiniFatChain() const { return miniFatChain_; }

  /// The chain of a stream, in Sectors() or MiniSectors(); of the root, that of the mini stream.
  /// Empty for any other entry, and for a stream of no bytes.
  [[nodiscard]] const Chain& ChainOf(std::uint32_t index) const { return chains_[index]; }

  /// Whether the stream of an entry is one of the mini stream's.
  [[nodiscard]] bool IsMini(std::uint32_t index) const;

  /// The size that a stream's entry states. Its upper half counts in version 4 only.
  [[nodiscard]] std::uint64_t SizeOf(std::uint32_t index) const;

  /// Where the bytes of a stream are, in order, as far as its size and its own chain go and the
  /// file holds them: one extent a fragment.
  [[nodiscard]] std::vector<Extent> ExtentsOf(std::uint32_t index) const;

  /// The first sector of the tail that no table describes or marks as in use, up to SectorCount()
  /// when there is none.
  [[nodiscard]] std::uint32_t TailStart() const { return tailStart_; }

  /// How many mini sectors the mini stream has room for.
  [[nodiscard]] std::uint32_t MiniSectorCount() const { return miniSectorCount_; }

  /// Where in the file a mini sector, and a directory entry, begins. The mini sector is one of
  /// MiniSectorCount().
  [[nodiscard]] std::uint64_t MiniOffsetOf(std::uint32_t miniSector) const;
  [[nodiscard]] std::uint64_t EntryOffsetOf(std::uint32_t index) const;

  /// Calls `visit(use, owner, extent)` for each part of the file from its first byte to its last;
  /// neighbouring sectors of one use and owner are one part.
  template <typename Visit>
  void ForEachPart(Visit visit) const {
    Extent part{0, std::min<std::uint64_t>(tables_.SectorSize(), tables_.FileLength())};
    SectorUse use = SectorUse::kHeader;
    std::uint32_t owner = SectorClaims::kNoOwner;
    for (std::uint32_t sector = 0; sector < tables_.SectorCount(); ++sector) {
      if (sectors_.Use(sector) != use || sectors_.Owner(sector) != owner) {
        visit(use, owner, part);
        part = {part.offset + part.length, 0};
        use = sectors_.Use(sector);
        owner = sectors_.Owner(sector);
      }
      part.length += tables_.SectorSize();
    }
    part.length = std::min(part.length, tables_.FileLength() - part.offset);
    visit(use, owner, part);
  }

 private:
  void ClaimTables();
  void ClaimStreams(const DirectoryWalk& walk, bool reached);
  void FindTail();

  const FileTables& tables_;
  SectorClaims sectors_;
  SectorClaims miniSectors_;
  Chain directoryChain_;
  Chain miniFatChain_;
  std::vector<Chain> chains_;
  std::vector<std::uint32_t> directorySectors_;
  std::vector<std::uint32_t> miniStreamSectors_;
  std::uint32_t miniSectorCount_ = 0;
  std::uint32_t tailStart_ = 0;
};

}  // namespace kelst
