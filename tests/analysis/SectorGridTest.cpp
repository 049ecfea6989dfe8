#include "tools/analysis/SectorGrid.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "tests/analysis/MappedFile.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tools/analysis/StreamLayouts.h"

namespace kelx::test {
namespace {

using kelst::Cell;
using kelst::CellKind;
using kelst::SectorGrid;

constexpr EntryIndex kLarge = 1;
constexpr EntryIndex kOther = 2;

CompoundFile Control() {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"Large", Pattern(100'000, 1));
  builder.AddStream(kRoot, u"Other", Pattern(4096, 2));
  builder.AddStream(kRoot, u"Small", Pattern(1000, 3));
  return builder.Build();
}

/// A change to the control file, and how many sectors are of some kinds then.
struct DamageCase {
  const char* name;
  std::function<void(CompoundFile&)> damage;
  std::map<CellKind, std::uint32_t> counts;
};

void PrintTo(const DamageCase& row, std::ostream* out) { *out << row.name; }

class GridDamageTest : public testing::TestWithParam<DamageCase> {};

TEST_P(GridDamageTest, IsSeenInTheCellsAndTheCounts) {
  CompoundFile built = Control();
  GetParam().damage(built);
  const MappedFile file(built.bytes);
  const SectorGrid grid(file.tables, file.map);
  for (const auto& [kind, count] : GetParam().counts) {
    EXPECT_EQ(grid.CountOf(kind), count);
    const auto isOfKind = [kind = kind](const Cell& cell) { return cell.content.kind == kind; };
    EXPECT_EQ(std::ranges::count_if(grid.Cells(), isOfKind), count);
  }
}

// Large has 196 sectors, Other 8, the mini stream 2.
INSTANTIATE_TEST_SUITE_P(
    All, GridDamageTest,
    testing::Values(
        DamageCase{"None",
                   [](CompoundFile&) {},
                   {{CellKind::kHeader, 1},
                    {CellKind::kFat, 2},
                    {CellKind::kMiniStream, 2},
                    {CellKind::kStream, 204},
                    {CellKind::kLost, 0},
                    {CellKind::kCrossed, 0}}},
        DamageCase{"ChainsThatMeet",
                   [](CompoundFile& file) {
                     LinkSector(file, file.layout.entries[kOther].sectors[2],
                                file.layout.entries[kLarge].sectors[5]);
                   },
                   {{CellKind::kCrossed, 1}, {CellKind::kLost, 5}, {CellKind::kStream, 198}}},
        DamageCase{"Loop",
                   [](CompoundFile& file) {
                     LinkSectorToItself(file, file.layout.entries[kLarge].sectors[195]);
                   },
                   {{CellKind::kCrossed, 1}, {CellKind::kStream, 203}}},
        DamageCase{"CutFile",
                   [](CompoundFile& file) {
                     const auto& sectors = file.layout.entries[kLarge].sectors;
                     TruncateTo(file, file.layout.SectorOffset(sectors[96]));
                   },
                   {{CellKind::kStream, 96}, {CellKind::kMissing, 108}}},
        DamageCase{"AppendedBytes",
                   [](CompoundFile& file) { file.bytes.resize(file.bytes.size() + 1000); },
                   {{CellKind::kStream, 204}, {CellKind::kAppended, 2}}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SectorGridTest, ACellOfManySectorsShowsMostOfThemButDamageFirst) {
  CompoundFile built = Control();
  const auto& large = built.layout.entries[kLarge].sectors;
  LinkSector(built, built.layout.entries[kOther].sectors[2], large[5]);
  built.bytes.resize(std::size_t{512} * 5 * SectorGrid::kMostCells);
  const MappedFile file(built.bytes);
  const SectorGrid grid(file.tables, file.map);
  ASSERT_EQ(grid.SectorsACell(), 8U);
  EXPECT_EQ(grid.Cells().size(), SectorGrid::kMostCells * 5 / 8);
  const Cell& meeting = grid.Cells()[(large[5] + 1) / 8];
  EXPECT_EQ(meeting.content.kind, CellKind::kCrossed);
  EXPECT_TRUE(meeting.isMixed);
  const Cell& inside = grid.Cells()[(large[50] + 1) / 8];
  EXPECT_EQ(inside.content.owner, kLarge);
  EXPECT_FALSE(inside.isMixed);
}

TEST(SectorGridTest, TheFileIsAtLeastAQuarterOfThePicture) {
  CompoundFile built = Control();
  TruncateTo(built, built.layout.SectorOffset(built.layout.entries[kLarge].sectors[4]));
  const MappedFile file(built.bytes);
  const SectorGrid grid(file.tables, file.map);
  EXPECT_EQ(grid.Places(), 4 * (file.tables.SectorCount() + 1));
  EXPECT_EQ(grid.CountOf(CellKind::kMissing), 192U + 8);
}

TEST(StreamLayoutsTest, CountsFragmentsAndPutsTheLargestFirst) {
  for (const Placement placement : {Placement::kContiguous, Placement::kScattered}) {
    CompoundFileBuilder builder({.placement = placement});
    builder.AddStream(kRoot, u"Small", Pattern(1000));
    builder.AddStream(kRoot, u"Large", Pattern(10'000));
    builder.AddStream(kRoot, u"Largest", Pattern(20'000));
    builder.AddStream(kRoot, u"Empty", Content());
    const MappedFile file(builder.Build().bytes);
    const auto streams = StreamsByRoom(file.tables, file.map);
    ASSERT_EQ(streams.size(), 3U);
    const bool isScattered = placement == Placement::kScattered;
    const std::vector<std::uint32_t> sectors{40, 20, 16};
    for (std::size_t i = 0; i < streams.size(); ++i) {
      EXPECT_EQ(streams[i].entry, 3 - i);
      EXPECT_EQ(streams[i].sectors, sectors[i]);
      EXPECT_EQ(streams[i].fragments, isScattered ? sectors[i] : 1);
      EXPECT_EQ(streams[i].isMini, i == 2);
    }
  }
}

}  // namespace
}  // namespace kelx::test
