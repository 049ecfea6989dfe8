#pragma once

#include <cstdint>
#include <functional>

#include "tools/analysis/FileTables.h"

namespace kelst {

/// What a sector, or a mini sector, is used for.
enum class SectorUse : std::uint8_t {
  kHeader,
  kFat,
  kDifat,
  kDirectory,
  kMiniFat,
  kMiniStream,
  kStream,    ///< of a directory entry, the owner
  kFree,      ///< marked free, and nobody's
  kLost,      ///< marked as in use, and nobody's
  kUnknown,   ///< nobody's; the part of the table that tells more is missing
  kAppended,  ///< behind all that the FAT describes or marks as in use
};

/// What comes behind the last sector of a chain.
enum class ChainEnd : std::uint8_t {
  kProper,     ///< as it should be
  kOtherMark,  ///< `at` is another mark: free, FAT sector or DIFAT sector
  kLoop,       ///< sector `at` of the same chain
  kCrossing,   ///< sector `at`, which has another owner
  kNoEntry,    ///< sector `at`, for which the table has no entry
  kUnknown,    ///< the part of the table that tells is missing
};

/// A chain of sectors, up to where it ends or ceases to be the owner's own.
struct Chain {
  std::uint32_t start = kEndMark;  ///< a mark or a number without an entry: no sectors
  std::uint32_t length = 0;        ///< sectors, each once
  std::uint32_t last = 0;          ///< the last of them
  std::uint32_t missing = 0;       ///< how many of them the file does not hold
  std::uint32_t firstMissing = 0;
  std::uint32_t at = kEndMark;
  ChainEnd end = ChainEnd::kProper;
};

/// Gives the sectors of an allocation table to those whose chains run through them. Each sector has
/// one owner, the first to claim it, so that all chains together take linear time. A sector takes
/// four bytes.
class SectorClaims {
 public:
  using IsHeld = std::function<bool(std::uint32_t sector)>;

  static constexpr std::uint32_t kNoOwner = 0xFFFFFFFF;

  /// `table` must outlive the claims. `isHeld` tells which sectors the file holds.
  SectorClaims(const Table& table, IsHeld isHeld);
  SectorClaims(const SectorClaims&) = delete;
  SectorClaims& operator=(const SectorClaims&) = delete;

  /// Claims the sectors of a chain for a use or, if that is kStream, for an owner.
  Chain Claim(std::uint32_t start, SectorUse use, std::uint32_t owner = kNoOwner);

  /// Claims one sector that is in no chain. False when it has an owner already.
  bool ClaimOne(std::uint32_t sector, SectorUse use);

  /// Says of sectors `first` to `end` that they are appended, as far as they are free.
  void Append(std::uint32_t first, std::uint32_t end);

  /// How many sectors the table has entries for.
  [[nodiscard]] std::uint32_t Count() const { return count_; }

  [[nodiscard]] SectorUse Use(std::uint32_t sector) const {
    if (sector >= count_) return SectorUse::kAppended;
    const std::uint32_t holder = holders_[sector];
    return holder < kFirstUse ? SectorUse::kStream : static_cast<SectorUse>(holder - kFirstUse);
  }
  /// The directory index of the entry whose stream the sector is part of; kNoOwner for none.
  [[nodiscard]] std::uint32_t Owner(std::uint32_t sector) const {
    return sector < count_ && holders_[sector] < kFirstUse ? holders_[sector] : kNoOwner;
  }
  /// What the table says of a sector that it has an entry for.
  [[nodiscard]] std::uint32_t Link(std::uint32_t sector) const { return table_.begin()[sector]; }

  /// Whether a sector is part of a chain or one of the tables.
  [[nodiscard]] bool IsClaimed(std::uint32_t sector) const {
    return sector < count_ && holders_[sector] < HolderOf(SectorUse::kFree);
  }

  /// Calls `visit(sector)` for each sector of a chain that was claimed, in order.
  template <typename Visit>
  void ForEach(const Chain& chain, Visit visit) const {
    std::uint32_t sector = chain.start;
    for (std::uint32_t i = 0; i < chain.length; ++i) {
      visit(sector);
      if (sector < count_) sector = Link(sector);
    }
  }

 private:
  /// Holders from here on are uses; those below are owners of streams.
  static constexpr std::uint32_t kFirstUse = 0xFFFFFF00;

  static constexpr std::uint32_t HolderOf(SectorUse use) {
    return kFirstUse + static_cast<std::uint32_t>(use);
  }

  const Table& table_;
  IsHeld isHeld_;
  std::uint32_t count_;
  Table memory_;            // for its huge pages: a scattered chain jumps about in it
  std::uint32_t* holders_;  // the elements of that
};

}  // namespace kelst
