#include "tests/support/CompoundFileLayout.h"

#include <algorithm>
#include <numeric>

namespace kelx::test {
namespace {

std::uint32_t UnitsFor(std::uint64_t bytes, std::uint32_t unit) {
  return static_cast<std::uint32_t>((bytes + unit - 1) / unit);
}

/// Hands out the numbers from `first` on, `count` of them, each once.
class SectorPool {
 public:
  SectorPool(std::uint32_t first, std::uint32_t count, Placement placement)
      : first_(first), count_(count), placement_(placement), stride_(StrideFor(count)) {}

  std::vector<std::uint32_t> Take(std::uint32_t count) {
    std::vector<std::uint32_t> taken(count);
    for (std::uint32_t& number : taken) number = Number(next_++);
    return taken;
  }

 private:
  /// The golden section keeps neighbours far apart; backwards, so that even two numbers swap.
  static std::uint64_t StrideFor(std::uint64_t count) {
    auto stride = std::max<std::uint64_t>(1, count * 618 / 1000);
    while (std::gcd(stride, count) > 1) --stride;
    return stride;
  }

  std::uint32_t Number(std::uint64_t index) const {
    if (placement_ == Placement::kContiguous) return first_ + static_cast<std::uint32_t>(index);
    return first_ + count_ - 1 - static_cast<std::uint32_t>(index * stride_ % count_);
  }

  std::uint32_t first_;
  std::uint32_t count_;
  Placement placement_;
  std::uint64_t stride_;
  std::uint64_t next_ = 0;
};

struct TableCounts {
  std::uint32_t fat = 0;
  std::uint32_t difat = 0;
};

/// FAT and DIFAT sectors need FAT entries themselves, so both counts grow until they fit.
TableCounts CountTables(const Format& format, std::uint32_t dataSectors) {
  const std::uint32_t perFat = format.sectorSize / 4;
  TableCounts counts;
  for (TableCounts last{1, 0}; last.fat != counts.fat || last.difat != counts.difat;) {
    last = counts;
    const std::uint64_t used = std::uint64_t{dataSectors} + last.fat + last.difat;
    counts.fat = UnitsFor(used, perFat) + format.extraFatSectors;
    const std::uint32_t listed = std::min(counts.fat, format.fatSectorsInHeader);
    counts.difat = UnitsFor(counts.fat - listed, perFat - 1);
  }
  return counts;
}

/// The entries' sizes and homes, without sectors.
void DescribeEntries(const Format& format, std::span<const CompoundFileEntry> entries,
                     Layout& layout) {
  layout.entries.resize(entries.size());
  for (std::size_t i = 1; i < entries.size(); ++i) {
    Layout::Entry& entry = layout.entries[i];
    entry.size = entries[i].content.size;
    if (entries[i].type == kStorageType) entry.startSector = 0;
    entry.inMiniStream = entry.size > 0 && entry.size < format.miniStreamCutoff;
    if (entry.inMiniStream) layout.miniSectorCount += UnitsFor(entry.size, kMiniSectorSize);
  }
  layout.entries[0].size = std::uint64_t{layout.miniSectorCount} * kMiniSectorSize;
}

std::uint32_t CountDataSectors(const Layout& layout) {
  const std::uint32_t unit = layout.sectorSize;
  std::uint32_t count = UnitsFor(layout.entries.size() * kEntrySize, unit) +
                        UnitsFor(std::uint64_t{layout.miniSectorCount} * 4, unit);
  for (const Layout::Entry& entry : layout.entries) {
    if (!entry.inMiniStream) count += UnitsFor(entry.size, unit);
  }
  return count;
}

void PlaceTables(TableCounts counts, std::uint32_t first, Layout& layout) {
  SectorPool pool(first, counts.fat + counts.difat, Placement::kContiguous);
  layout.fat = pool.Take(counts.fat);
  layout.difat = pool.Take(counts.difat);
}

void PlaceEntry(SectorPool& pool, std::uint32_t unit, Layout::Entry& entry) {
  entry.sectors = pool.Take(UnitsFor(entry.size, unit));
  if (!entry.sectors.empty()) entry.startSector = entry.sectors.front();
}

void PlaceData(SectorPool pool, Placement placement, Layout& layout) {
  const std::uint32_t unit = layout.sectorSize;
  SectorPool miniPool(0, layout.miniSectorCount, placement);
  layout.directory = pool.Take(UnitsFor(layout.entries.size() * kEntrySize, unit));
  layout.miniFat = pool.Take(UnitsFor(std::uint64_t{layout.miniSectorCount} * 4, unit));
  for (Layout::Entry& entry : layout.entries) {
    if (entry.inMiniStream) {
      PlaceEntry(miniPool, kMiniSectorSize, entry);
    } else {
      PlaceEntry(pool, unit, entry);
    }
  }
  layout.miniStream = layout.entries[0].sectors;
}

void LocateEntries(Layout& layout) {
  const std::size_t perSector = layout.sectorSize / kEntrySize;
  for (std::size_t i = 0; i < layout.entries.size(); ++i) {
    layout.entries[i].offset =
        layout.SectorOffset(layout.directory[i / perSector]) + i % perSector * kEntrySize;
  }
}

/// Where item `index` of a chain of items of `itemSize` bytes is.
std::uint64_t ItemOffset(const Layout& layout, const std::vector<std::uint32_t>& chain,
                         std::uint32_t index, std::uint32_t itemSize) {
  const std::uint32_t perSector = layout.sectorSize / itemSize;
  return layout.SectorOffset(chain.at(index / perSector)) +
         std::uint64_t{index % perSector} * itemSize;
}

}  // namespace

std::uint64_t Layout::MiniSectorOffset(std::uint32_t miniSector) const {
  return ItemOffset(*this, miniStream, miniSector, kMiniSectorSize);
}

std::uint64_t Layout::FatEntryOffset(std::uint32_t sector) const {
  return ItemOffset(*this, fat, sector, 4);
}

std::uint64_t Layout::MiniFatEntryOffset(std::uint32_t miniSector) const {
  return ItemOffset(*this, miniFat, miniSector, 4);
}

Layout PlanLayout(const Format& format, std::span<const CompoundFileEntry> entries) {
  Layout layout;
  layout.sectorSize = format.sectorSize;
  layout.byteOrder = format.byteOrder;
  DescribeEntries(format, entries, layout);
  const std::uint32_t dataSectors = CountDataSectors(layout);
  const TableCounts tables = CountTables(format, dataSectors);
  const std::uint32_t tableSectors = tables.fat + tables.difat;
  layout.sectorCount = dataSectors + tableSectors;
  PlaceTables(tables, format.tablesLast ? dataSectors : 0, layout);
  const std::uint32_t firstData = format.tablesLast ? 0 : tableSectors;
  PlaceData(SectorPool(firstData, dataSectors, format.placement), format.placement, layout);
  LocateEntries(layout);
  return layout;
}

}  // namespace kelx::test
