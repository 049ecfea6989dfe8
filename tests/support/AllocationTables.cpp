#include "tests/support/AllocationTables.h"

#include <utility>

namespace kelx::test {
namespace {

using Sectors = std::vector<std::uint32_t>;

void Link(const Sectors& chain, Sectors& table) {
  for (std::size_t i = 0; i < chain.size(); ++i) {
    table[chain[i]] = i + 1 < chain.size() ? chain[i + 1] : kEndOfChain;
  }
}

void LinkContents(const Layout& layout, bool inMiniStream, Sectors& table) {
  for (const Layout::Entry& entry : layout.entries) {
    if (entry.inMiniStream == inMiniStream) Link(entry.sectors, table);
  }
}

}  // namespace

Sectors FatValues(const Layout& layout) {
  Sectors fat(layout.sectorCount, kFreeSector);
  for (const std::uint32_t sector : layout.fat) fat[sector] = kFatSector;
  for (const std::uint32_t sector : layout.difat) fat[sector] = kDifatSector;
  Link(layout.directory, fat);
  Link(layout.miniFat, fat);
  LinkContents(layout, false, fat);
  return fat;
}

Sectors MiniFatValues(const Layout& layout) {
  Sectors miniFat(layout.miniSectorCount, kFreeSector);
  LinkContents(layout, true, miniFat);
  return miniFat;
}

Sectors DifatValues(const Layout& layout, std::size_t inHeader) {
  const std::size_t perSector = layout.sectorSize / 4 - 1;
  Sectors values;
  for (std::size_t i = 0; i < layout.difat.size(); ++i) {
    for (std::size_t k = 0; k < perSector; ++k) {
      const std::size_t place = inHeader + i * perSector + k;
      values.push_back(place < layout.fat.size() ? layout.fat[place] : kFreeSector);
    }
    values.push_back(i + 1 < layout.difat.size() ? layout.difat[i + 1] : kEndOfChain);
  }
  return values;
}

Content TableContent(Sectors values, std::uint64_t size, ByteOrder order) {
  return Content(size, [values = std::move(values), order](std::uint64_t offset,
                                                           std::span<unsigned char> out) {
    for (std::size_t i = 0; i < out.size(); i += 4) {
      const std::uint64_t index = (offset + i) / 4;
      Store(&out[i], index < values.size() ? values[index] : kFreeSector, 4, order);
    }
  });
}

}  // namespace kelx::test
