#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "tools/analysis/SectorMap.h"

namespace kelst {

/// What can be told of a sector in a picture: its use, or what is wrong with it.
enum class CellKind : std::uint8_t {
  kHeader,  // from here to kAppended as SectorUse has them
  kFat,
  kDifat,
  kDirectory,
  kMiniFat,
  kMiniStream,
  kStream,
  kFree,
  kLost,
  kUnknown,
  kAppended,
  kCrossed,  ///< where a second chain comes in, or a chain comes back
  kMissing,  ///< part of a chain, and beyond the end of the file
  kNothing,  ///< beyond the end of the file, and nobody's
};
inline constexpr std::size_t kCellKinds = static_cast<std::size_t>(CellKind::kNothing) + 1;

struct CellContent {
  CellKind kind = CellKind::kNothing;
  std::uint32_t owner = SectorClaims::kNoOwner;  ///< the entry whose stream it is part of

  auto operator<=>(const CellContent&) const = default;
};

struct Cell {
  CellContent content;   ///< of most of its sectors; what is damaged goes before all else
  bool isMixed = false;  ///< not all of its sectors are alike

  bool operator==(const Cell&) const = default;
};

/// The sectors of a file as cells in rows: a cell a sector or, of a large file, a cell a run of
/// sectors, so that no file has more than kMostCells.
///
/// Places are counted from the header, which is place 0: sector 0 has place 1. Behind the end of
/// the file stand the sectors that it has lost, as far as the file is a quarter of the whole.
class SectorGrid {
 public:
  static constexpr std::uint32_t kMostCells = 16'384;

  SectorGrid(const FileTables& tables, const SectorMap& map);

  [[nodiscard]] std::span<const Cell> Cells() const { return cells_; }
  [[nodiscard]] std::uint32_t Columns() const { return columns_; }
  [[nodiscard]] std::uint32_t Rows() const;

  /// A power of two; the last cell may have fewer.
  [[nodiscard]] std::uint32_t SectorsACell() const { return sectorsACell_; }

  /// How many places have a cell.
  [[nodiscard]] std::uint32_t Places() const { return places_; }

  /// How many sectors are of a kind, also of those that have no cell.
  [[nodiscard]] std::uint32_t CountOf(CellKind kind) const {
    return counts_[static_cast<std::size_t>(kind)];
  }

 private:
  void Fill(const std::function<CellContent(std::uint32_t place)>& contentOf, std::uint32_t end);

  std::vector<Cell> cells_;
  std::vector<std::uint32_t> counts_;
  std::uint32_t places_ = 0;
  std::uint32_t sectorsACell_ = 1;
  std::uint32_t columns_ = 0;
};

}  // namespace kelst
