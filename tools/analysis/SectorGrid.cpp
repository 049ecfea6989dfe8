#include "tools/analysis/SectorGrid.h"

#include <algorithm>

namespace kelst {

namespace {

static_assert(static_cast<int>(CellKind::kAppended) == static_cast<int>(SectorUse::kAppended));

constexpr std::uint32_t kMostTimesTheFile = 4;

bool IsDamage(CellKind kind) { return kind >= CellKind::kLost && kind <= CellKind::kMissing; }

/// The sectors in which chains meet, in ascending order.
std::vector<std::uint32_t> FindCrossings(const FileTables& tables, const SectorMap& map) {
  std::vector<std::uint32_t> crossings;
  const auto add = [&](const Chain& chain) {
    const bool isCrossing = chain.end == ChainEnd::kCrossing || chain.end == ChainEnd::kLoop;
    if (isCrossing) crossings.push_back(chain.at);
  };
  add(map.DirectoryChain());
  add(map.MiniFatChain());
  for (std::uint32_t index = 0; index < tables.Directory().Count(); ++index) {
    if (!map.IsMini(index)) add(map.ChainOf(index));
  }
  std::ranges::sort(crossings);
  return crossings;
}

/// What one sector holds, asked in ascending order.
class Contents {
 public:
  Contents(const FileTables& tables, const SectorMap& map)
      : sectors_(map.Sectors()),
        held_(tables.SectorCount()),
        crossings_(FindCrossings(tables, map)) {}

  CellContent operator()(std::uint32_t place) {
    if (place == 0) return {CellKind::kHeader};
    const std::uint32_t sector = place - 1;
    while (next_ < crossings_.size() && crossings_[next_] < sector) ++next_;
    if (sector >= held_) {
      return {sectors_.IsClaimed(sector) ? CellKind::kMissing : CellKind::kNothing};
    }
    if (next_ < crossings_.size() && crossings_[next_] == sector) {
      return {CellKind::kCrossed, sectors_.Owner(sector)};
    }
    const SectorUse use = sectors_.Use(sector);
    return {static_cast<CellKind>(use),
            use == SectorUse::kStream ? sectors_.Owner(sector) : SectorClaims::kNoOwner};
  }

 private:
  const SectorClaims& sectors_;
  std::uint32_t held_;
  std::vector<std::uint32_t> crossings_;
  std::size_t next_ = 0;
};

/// The number of places, the last of which is the last sector that a chain has.
std::uint32_t EndOfClaims(const SectorClaims& sectors) {
  std::uint32_t count = sectors.Count();
  while (count > 0 && !sectors.IsClaimed(count - 1)) --count;
  return count + 1;
}

/// Few cells are drawn large, many small, about twice as wide as high.
std::uint32_t ColumnsFor(std::uint32_t cells) {
  std::uint32_t columns = 16;
  while (columns < 128 && columns * columns / 2 < cells) columns *= 2;
  return columns;
}

/// The cell of these sectors, which get sorted.
Cell CellOf(std::vector<CellContent>& contents) {
  std::ranges::sort(contents);
  Cell cell{contents.front(), contents.front() != contents.back()};
  std::ptrdiff_t most = 0;
  for (auto first = contents.begin(); first != contents.end();) {
    const auto end = std::upper_bound(first, contents.end(), *first);
    const bool isGraver = IsDamage(first->kind) && !IsDamage(cell.content.kind);
    const bool isAlike = IsDamage(first->kind) == IsDamage(cell.content.kind);
    if (isGraver || (isAlike && end - first > most)) {
      cell.content = *first;
      most = end - first;
    }
    first = end;
  }
  return cell;
}

}  // namespace

SectorGrid::SectorGrid(const FileTables& tables, const SectorMap& map) : counts_(kCellKinds) {
  const std::uint32_t held = tables.SectorCount() + 1;
  const std::uint32_t end = std::max(held, EndOfClaims(map.Sectors()));
  places_ = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(end, std::uint64_t{held} * kMostTimesTheFile));
  while ((places_ - 1) / sectorsACell_ >= kMostCells) sectorsACell_ *= 2;
  Fill(Contents(tables, map), end);
  columns_ = ColumnsFor(static_cast<std::uint32_t>(cells_.size()));
}

void SectorGrid::Fill(const std::function<CellContent(std::uint32_t place)>& contentOf,
                      std::uint32_t end) {
  std::vector<CellContent> contents;
  for (std::uint32_t place = 0; place < end; ++place) {
    const CellContent content = contentOf(place);
    ++counts_[static_cast<std::size_t>(content.kind)];
    if (place >= places_) continue;
    contents.push_back(content);
    if (contents.size() < sectorsACell_ && place + 1 < places_) continue;
    cells_.push_back(CellOf(contents));
    contents.clear();
  }
}

std::uint32_t SectorGrid::Rows() const {
  return (static_cast<std::uint32_t>(cells_.size()) + columns_ - 1) / columns_;
}

}  // namespace kelst
