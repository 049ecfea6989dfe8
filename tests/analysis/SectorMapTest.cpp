#include <gtest/gtest.h>

#include <random>

#include "tests/analysis/MappedFile.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"

namespace kelx::test {
namespace {

using kelst::Chain;
using kelst::ChainEnd;
using kelst::Extent;
using kelst::SectorUse;

constexpr EntryIndex kLarge = 1;
constexpr EntryIndex kSmall = 3;
constexpr EntryIndex kOther = 4;

CompoundFile Control(Format format = {}) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"Large", Pattern(100'000, 1));
  const EntryIndex storage = builder.AddStorage(kRoot, u"Storage");
  builder.AddStream(storage, u"Small", Pattern(1000, 2));
  builder.AddStream(storage, u"Other", Pattern(4096, 3));
  builder.AddStream(storage, u"Empty", Content());
  return builder.Build();
}

/// What each sector is for, told from the plan of the file.
std::vector<SectorUse> Planned(const Layout& layout) {
  std::vector<SectorUse> uses(layout.sectorCount, SectorUse::kFree);
  const auto set = [&](const std::vector<std::uint32_t>& sectors, SectorUse use) {
    for (const std::uint32_t sector : sectors) uses[sector] = use;
  };
  for (const Layout::Entry& entry : layout.entries) {
    if (!entry.inMiniStream) set(entry.sectors, SectorUse::kStream);
  }
  set(layout.fat, SectorUse::kFat);
  set(layout.difat, SectorUse::kDifat);
  set(layout.directory, SectorUse::kDirectory);
  set(layout.miniFat, SectorUse::kMiniFat);
  set(layout.miniStream, SectorUse::kMiniStream);
  return uses;
}

Bytes BytesOf(const MappedFile& file, EntryIndex index, const Bytes& all) {
  Bytes bytes;
  for (const Extent& extent : file.map.ExtentsOf(index)) {
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(extent.offset);
    bytes.insert(bytes.end(), first, first + static_cast<std::ptrdiff_t>(extent.length));
  }
  return bytes;
}

class SectorMapTest : public testing::TestWithParam<Format> {};

TEST_P(SectorMapTest, GivesEachSectorItsUse) {
  const CompoundFile built = Control(GetParam());
  const MappedFile file(built.bytes);
  std::vector<SectorUse> uses;
  for (std::uint32_t i = 0; i < file.tables.SectorCount(); ++i) {
    uses.push_back(file.map.Sectors().Use(i));
  }
  EXPECT_EQ(uses, Planned(built.layout));
  for (const std::uint32_t sector : built.layout.entries[kOther].sectors) {
    EXPECT_EQ(file.map.Sectors().Owner(sector), kOther);
  }
  EXPECT_TRUE(BytesOf(file, kLarge, built.bytes) == Pattern(100'000, 1));
  EXPECT_TRUE(BytesOf(file, kSmall, built.bytes) == Pattern(1000, 2));
  for (EntryIndex i = 0; i < built.layout.entries.size(); ++i) {
    EXPECT_EQ(file.map.EntryOffsetOf(i), built.layout.entries[i].offset);
  }
  if (GetParam().placement == Placement::kContiguous) {
    EXPECT_EQ(file.map.ExtentsOf(kLarge).size(), 1U);
  } else {
    EXPECT_GT(file.map.ExtentsOf(kLarge).size(), 10U);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, SectorMapTest,
    testing::Values(Format{}, Format{.sectorSize = 4096}, Format{.byteOrder = ByteOrder::kBig},
                    Format{.placement = Placement::kScattered, .tablesLast = true},
                    Format{.extraFatSectors = 3, .fatSectorsInHeader = 2}));

std::uint64_t TiledBytes(const MappedFile& file) {
  std::uint64_t end = 0;
  file.map.ForEachPart([&](SectorUse use, std::uint32_t, const Extent& part) {
    EXPECT_EQ(part.offset, end);
    EXPECT_EQ(use == SectorUse::kHeader, end == 0);
    end += part.length;
  });
  return end;
}

TEST(SectorMapDamageTest, TheFirstOwnerKeepsASectorThatChainsShare) {
  CompoundFile built = Control();
  const auto& large = built.layout.entries[kLarge].sectors;
  const auto& other = built.layout.entries[kOther].sectors;
  LinkSector(built, other[2], large[5]);
  const MappedFile file(built.bytes);
  const Chain& chain = file.map.ChainOf(kOther);
  EXPECT_EQ(chain.length, 3U);
  EXPECT_EQ(chain.end, ChainEnd::kCrossing);
  EXPECT_EQ(chain.at, large[5]);
  EXPECT_EQ(file.map.Sectors().Owner(large[5]), kLarge);
  EXPECT_EQ(file.map.Sectors().Use(other[3]), SectorUse::kLost);
}

TEST(SectorMapDamageTest, SectorsBeyondTheEndAreCountedAsMissing) {
  CompoundFile built = Control();
  const std::uint32_t kept = built.layout.entries[kLarge].sectors[100];
  TruncateTo(built, built.layout.SectorOffset(kept) + 100);
  const MappedFile file(built.bytes);
  const auto& sectors = built.layout.entries[kLarge].sectors;
  const auto isGone = [&](std::uint32_t sector) { return sector > kept; };
  const Chain& chain = file.map.ChainOf(kLarge);
  EXPECT_EQ(chain.length, sectors.size());
  EXPECT_EQ(chain.missing, std::ranges::count_if(sectors, isGone));
  EXPECT_EQ(chain.firstMissing, *std::ranges::find_if(sectors, isGone));
  EXPECT_EQ(TiledBytes(file), built.bytes.size());
}

TEST(SectorMapDamageTest, WhatFollowsTheLastSectorIsAppended) {
  CompoundFile built = Control();
  const std::size_t length = built.bytes.size();
  built.bytes.resize(length + 512);
  EXPECT_EQ(MappedFile(built.bytes).map.Sectors().Use(built.layout.sectorCount), SectorUse::kFree);
  built.bytes.resize(length + 1000);
  const MappedFile file(built.bytes);
  EXPECT_EQ(file.map.TailStart(), built.layout.sectorCount);
  EXPECT_EQ(file.map.Sectors().Use(built.layout.sectorCount), SectorUse::kAppended);
  EXPECT_EQ(TiledBytes(file), built.bytes.size());
}

TEST(SectorMapDamageTest, PartsTileTheFileWhateverTheTablesSay) {
  const CompoundFile built = Control({.placement = Placement::kScattered});
  std::mt19937 random(7);
  const auto below = [&random](std::size_t end) {
    return static_cast<std::uint32_t>(random() % end);
  };
  for (int round = 0; round < 300; ++round) {
    CompoundFile damaged = built;
    for (int i = 0; i < 20; ++i) {
      LinkSector(damaged, below(built.layout.sectorCount), below(built.layout.sectorCount + 200));
    }
    if (round % 3 == 0) TruncateTo(damaged, 512 + below(built.bytes.size()));
    const MappedFile file(damaged.bytes);
    EXPECT_EQ(TiledBytes(file), damaged.bytes.size());
    std::uint64_t bytes = 0;
    for (EntryIndex i = 0; i < file.tables.Directory().Count(); ++i) {
      if (file.map.IsMini(i)) continue;  // these lie in the extents of the mini stream
      for (const Extent& extent : file.map.ExtentsOf(i)) bytes += extent.length;
    }
    EXPECT_LE(bytes, damaged.bytes.size());
  }
}

}  // namespace
}  // namespace kelx::test
