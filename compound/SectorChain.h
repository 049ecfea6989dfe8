#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/KELXDynamicArray.h"

namespace kelx::internal {

/// Marks that stand in allocation tables in the place of a sector number.
inline constexpr unsigned int kFirstMark = 0xFFFFFFFC;
inline constexpr unsigned int kEndOfChain = 0xFFFFFFFE;
inline constexpr unsigned int kFreeSector = 0xFFFFFFFF;

/// Why a chain goes no further.
enum class ChainEnd {
  kMark,   ///< no sector follows the last one
  kLoop,   ///< the last sector is followed by one that the chain holds already
  kLimit,  ///< the chain is longer than was allowed
};

/// The sectors of a chain: each once, in order, and always an end.
///
/// `Next` answers with the number of the sector that follows a given one, or nothing. Whatever it
/// answers, the chain ends before a sector repeats, and after `limit` sectors. Making the chain
/// takes time linear in its length and no memory.
template <typename Next>
class SectorChain {
 public:
  SectorChain(unsigned int start, std::uint64_t limit, Next next) : start_(start), next_(next) {
    Measure(limit * kStepsASector);
    if (length_ <= limit) return;
    length_ = limit;
    end_ = ChainEnd::kLimit;
  }

  [[nodiscard]] std::uint64_t Length() const noexcept { return length_; }
  [[nodiscard]] ChainEnd End() const noexcept { return end_; }

  /// The last sector of a chain that ends with kMark.
  [[nodiscard]] unsigned int Last() const noexcept { return last_; }

  /// Calls `visit(sector)` for each sector in order.
  template <typename Visit>
  void ForEach(Visit visit) const {
    unsigned int sector = start_;
    for (std::uint64_t i = 0; i < length_; ++i) {
      if (i > 0) sector = *next_(sector);
      visit(sector);
    }
  }

 private:
  /// A loop shows after at most three times as many steps as the chain has sectors.
  static constexpr std::uint64_t kStepsASector = 4;

  /// Finds length and end after Brent: the hare runs along the chain, the tortoise is put where
  /// the hare stands at growing distances, and a chain that loops makes the two meet.
  void Measure(std::uint64_t mostSteps) {
    unsigned int tortoise = start_;
    unsigned int hare = start_;
    std::uint64_t lap = 0;
    std::uint64_t lapEnd = 1;
    for (length_ = 1; length_ <= mostSteps; ++length_) {
      const std::optional<unsigned int> following = next_(hare);
      if (!following) {
        last_ = hare;
        return;
      }
      hare = *following;
      if (++lap; hare == tortoise) {
        end_ = ChainEnd::kLoop;
        length_ = lap + LeadIn(lap);
        return;
      }
      if (lap < lapEnd) continue;
      tortoise = hare;
      lapEnd *= 2;
      lap = 0;
    }
  }

  /// The number of sectors before the chain enters its loop of `lap` sectors.
  std::uint64_t LeadIn(std::uint64_t lap) const {
    unsigned int ahead = start_;
    for (std::uint64_t i = 0; i < lap; ++i) ahead = *next_(ahead);
    std::uint64_t count = 0;
    for (unsigned int behind = start_; behind != ahead; ++count) {
      behind = *next_(behind);
      ahead = *next_(ahead);
    }
    return count;
  }

  unsigned int start_;
  Next next_;
  std::uint64_t length_ = 0;
  unsigned int last_ = 0;
  ChainEnd end_ = ChainEnd::kMark;
};

/// Gathers sectors that stand side by side into runs, so that each run takes one read.
template <typename Visit>
class SectorRuns {
 public:
  /// Calls `visit(first, count)` for each run of at most `longest` sectors of `sectorSize` bytes.
  /// Positions have 32 bits: a run also ends where they wrap around.
  SectorRuns(unsigned int sectorSize, std::uint64_t longest, Visit visit)
      : sectorSize_(sectorSize), longest_(longest), visit_(visit) {}
  SectorRuns(const SectorRuns&) = delete;
  SectorRuns& operator=(const SectorRuns&) = delete;
  ~SectorRuns() { Finish(); }

  void Add(unsigned int sector) {
    const bool isNext = sector == first_ + count_ && sector * sectorSize_ != 0 && count_ < longest_;
    if (!isNext) Finish();
    if (count_++ == 0) first_ = sector;
  }

 private:
  void Finish() {
    if (count_ > 0) visit_(first_, count_);
    count_ = 0;
  }

  unsigned int sectorSize_;
  std::uint64_t longest_;
  Visit visit_;
  unsigned int first_ = 0;
  unsigned int count_ = 0;
};

/// Follows an allocation table: a mark, and a sector that the table has no entry for, end a chain.
class TableLinks {
 public:
  explicit TableLinks(std::span<const unsigned int> table) noexcept : table_(table) {}

  std::optional<unsigned int> operator()(unsigned int sector) const noexcept {
    if (sector >= table_.size() || table_[sector] >= kFirstMark) return std::nullopt;
    return table_[sector];
  }

 private:
  std::span<const unsigned int> table_;
};

/// The chain that begins at `start` and follows `table`, which must outlive it.
inline SectorChain<TableLinks> TableChain(unsigned int start, std::uint64_t limit,
                                          const KELXDynamicArray<unsigned int>& table) {
  const std::span entries(table.begin(), static_cast<std::size_t>(table.Count()));
  return SectorChain(start, limit, TableLinks(entries));
}

}  // namespace kelx::internal
