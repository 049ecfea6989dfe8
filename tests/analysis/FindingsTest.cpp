#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "tests/analysis/ControlFile.h"
#include "tests/support/Damage.h"

namespace kelx::test {
namespace {

/// One change to the control file, and all that is then found.
struct FindingCase {
  const char* name;
  std::function<void(CompoundFile&)> damage;
  Codes codes;
  Format format{};
};

void PrintTo(const FindingCase& row, std::ostream* out) { *out << row.name; }

class FindingsTest : public testing::TestWithParam<FindingCase> {};

TEST_P(FindingsTest, TellDamage) {
  CompoundFile file = Control(GetParam().format);
  ASSERT_EQ(CodesOf(file), GetParam().format.byteOrder == ByteOrder::kBig
                               ? Codes{"byte-order-reversed"}
                               : Codes{});
  GetParam().damage(file);
  EXPECT_EQ(CodesOf(file), GetParam().codes);
}

std::string NameOf(const testing::TestParamInfo<FindingCase>& row) { return row.param.name; }

auto Header(Field field, std::uint64_t value) {
  return [=](CompoundFile& file) { PatchHeader(file, field, value); };
}

auto Entry(EntryIndex index, Field field, std::uint64_t value) {
  return [=](CompoundFile& file) { PatchEntry(file, index, field, value); };
}

/// Links the sector in place `at` of a stream's chain to `next`.
auto Link(EntryIndex index, std::size_t at, std::uint32_t next) {
  return [=](CompoundFile& file) {
    const Layout::Entry& entry = file.layout.entries[index];
    (entry.inMiniStream ? LinkMiniSector : LinkSector)(file, entry.sectors[at], next);
  };
}

const Format kVersion4{.sectorSize = 4096};

INSTANTIATE_TEST_SUITE_P(
    Header, FindingsTest,
    testing::Values(
        FindingCase{
            "Signature", [](CompoundFile& file) { file.bytes[0] = 'X'; }, {"signature-wrong"}},
        FindingCase{"BigEndian",
                    [](CompoundFile&) {},
                    {"byte-order-reversed"},
                    {.byteOrder = ByteOrder::kBig}},
        FindingCase{"ByteOrder",
                    [](CompoundFile& file) { file.bytes[28] = 0; },
                    {"byte-order-unknown"},
                    {.byteOrder = ByteOrder::kBig}},
        FindingCase{"Version", Header(HeaderField::kMajorVersion, 4), {"version-wrong"}},
        FindingCase{"Cutoff", Header(HeaderField::kMiniStreamCutoff, 4095), {"cutoff-unusual"}},
        FindingCase{"Cut",
                    [](CompoundFile& file) { TruncateTo(file, 100); },
                    {"chain-cut", "chain-outside", "fat-list-gap", "fat-sector-outside",
                     "header-count-wrong", "header-cut", "root-missing"}},
        FindingCase{"DirectoryCount",
                    Header(HeaderField::kDirectorySectorCount, 1),
                    {"header-count-wrong"}},
        FindingCase{"DirectoryCount4",
                    Header(HeaderField::kDirectorySectorCount, 0),
                    {"header-count-wrong"},
                    kVersion4},
        FindingCase{"FatCount", Header(HeaderField::kFatSectorCount, 3), {"header-count-wrong"}},
        FindingCase{
            "MiniFatCount", Header(HeaderField::kMiniFatSectorCount, 0), {"header-count-wrong"}},
        FindingCase{
            "DifatCount", Header(HeaderField::kDifatSectorCount, 1), {"header-count-wrong"}},
        FindingCase{"DifatLoop",
                    [](CompoundFile& file) {
                      PatchHeader(file, HeaderField::kDifatSectorCount, 2);
                      const std::uint32_t difat = file.layout.difat[0];
                      Patch(file, file.layout.SectorOffset(difat) + 508, difat);
                    },
                    {"chain-loops", "header-count-wrong"},
                    {.extraFatSectors = 110}},
        FindingCase{"DifatOutside",
                    Header(HeaderField::kDifatStart, 5000),
                    {"chain-outside", "header-count-wrong", "sector-marked-wrong"},
                    {.extraFatSectors = 110}},
        FindingCase{"DifatUncounted",
                    Header(HeaderField::kDifatSectorCount, 0),
                    {"chain-long", "header-count-wrong", "sector-marked-wrong"},
                    {.extraFatSectors = 110}}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Tables, FindingsTest,
    testing::Values(
        FindingCase{"FatSectorOutside",
                    Header(HeaderField::Difat(1), 5000),
                    {"chain-outside", "fat-sector-outside", "sector-marked-wrong"}},
        FindingCase{"FatLost",
                    [](CompoundFile& file) { TruncateTo(file, file.layout.SectorOffset(100)); },
                    {"chain-cut", "chain-outside", "fat-sector-outside", "root-missing"},
                    {.placement = Placement::kScattered, .tablesLast = true}},
        FindingCase{"FatSectorRepeated",
                    Header(HeaderField::Difat(1), 0),
                    {"chain-outside", "fat-sector-repeated", "sector-marked-wrong"}},
        FindingCase{"FatSectorUnmarked",
                    [](CompoundFile& file) { LinkSector(file, file.layout.fat[0], kFreeSector); },
                    {"fat-sector-unmarked"}},
        FindingCase{"Gap",
                    [](CompoundFile& file) {
                      PatchHeader(file, HeaderField::Difat(1), kFreeSector);
                      PatchHeader(file, HeaderField::Difat(3), file.layout.fat[1]);
                    },
                    {"fat-list-gap"}},
        FindingCase{"DifatSectorUnmarked",
                    [](CompoundFile& file) { LinkSector(file, file.layout.difat[0], kEndOfChain); },
                    {"difat-sector-unmarked"},
                    {.extraFatSectors = 110}},
        FindingCase{"SectorMarkedAsFat", Link(kOther, 9, kFatSector), {"sector-marked-wrong"}},
        FindingCase{"HiddenInAnImpossibleChain",
                    [](CompoundFile& file) {
                      file.bytes.resize(file.bytes.size() + 512);
                      LinkSector(file, file.layout.sectorCount, 0xFFFFFFFB);
                    },
                    {"sector-lost"}},
        FindingCase{"StrayEntry",
                    [](CompoundFile& file) { LinkSector(file, file.layout.sectorCount + 1, 0); },
                    {"fat-entry-stray"}},
        FindingCase{
            "Padding",
            [](CompoundFile& file) { LinkSector(file, file.layout.sectorCount, kEndOfChain); },
            {"table-padding"}},
        FindingCase{"DirectoryLoop",
                    [](CompoundFile& file) {
                      LinkSector(file, file.layout.directory.back(), file.layout.directory[0]);
                    },
                    {"chain-loops"}},
        FindingCase{
            "NoDirectory",
            Header(HeaderField::kDirectoryStart, 0xFFFFFFFB),
            {"chain-outside", "mini-stream-short", "root-missing", "sector-lost", "table-padding"}},
        FindingCase{"MiniFatLoop",
                    [](CompoundFile& file) { LinkSectorToItself(file, file.layout.miniFat[0]); },
                    {"chain-loops"}},
        FindingCase{"MiniStreamShort",
                    Entry(kRoot, EntryField::kSize, 512),
                    {"chain-cut", "chain-long", "mini-stream-short"}}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Streams, FindingsTest,
    testing::Values(
        FindingCase{"Loop",
                    [](CompoundFile& file) {
                      LinkSectorToItself(file, file.layout.entries[kLarge].sectors.back());
                    },
                    {"chain-loops"}},
        FindingCase{"MiniLoop",
                    [](CompoundFile& file) {
                      LinkMiniSectorToItself(file, file.layout.entries[kSmall].sectors.back());
                    },
                    {"chain-loops"}},
        FindingCase{"Short", Link(kLarge, 10, kEndOfChain), {"chain-short", "sector-lost"}},
        FindingCase{"MiniShort", Link(kSmall, 3, kEndOfChain), {"chain-short", "sector-lost"}},
        FindingCase{"NoStart",
                    Entry(kLarge, EntryField::kStartSector, kEndOfChain),
                    {"chain-short", "sector-lost"}},
        FindingCase{"Free", Link(kLarge, 136, kFreeSector), {"sector-free-but-used"}},
        FindingCase{"Long", Entry(kLarge, EntryField::kSize, 60'000), {"chain-long"}},
        FindingCase{"MiniLong", Entry(kSmall, EntryField::kSize, 900), {"mini-chain-long"}},
        FindingCase{"Outside", Link(kLarge, 136, 5000), {"chain-outside"}},
        FindingCase{"Crossing",
                    [](CompoundFile& file) {
                      LinkSector(file, file.layout.entries[kOther].sectors[3],
                                 file.layout.entries[kLarge].sectors[7]);
                    },
                    {"chain-crosses", "sector-lost"}},
        FindingCase{"MiniCrossing",
                    [](CompoundFile& file) {
                      PatchEntry(file, kProperties, EntryField::kStartSector,
                                 file.layout.entries[kSmall].sectors[7]);
                    },
                    {"chain-crosses", "sector-lost"}},
        FindingCase{"Cut",
                    [](CompoundFile& file) { TruncateTo(file, file.bytes.size() - 512); },
                    {"chain-cut"}},
        FindingCase{"CutWithinASector",
                    [](CompoundFile& file) { TruncateTo(file, file.bytes.size() - 511); },
                    {"chain-cut"}},
        FindingCase{"CutBehindTheLastByte",
                    [](CompoundFile& file) {
                      const auto last = file.layout.entries[kOther].sectors.back();
                      TruncateTo(file, file.layout.SectorOffset(last) + 5000 % 512);
                    },
                    {}},
        FindingCase{"FreeSectorAtTheEnd",
                    [](CompoundFile& file) { file.bytes.resize(file.bytes.size() + 512); },
                    {"free-tail"}},
        FindingCase{"Appended",
                    [](CompoundFile& file) { file.bytes.resize(file.bytes.size() + 1); },
                    {"appended-data"}},
        FindingCase{"AppendedBeyondTheFat",
                    [](CompoundFile& file) { file.bytes.resize(file.bytes.size() + 512 * 300); },
                    {"appended-data"}},
        FindingCase{"SizeHalf", Entry(kLarge, EntryField::kSizeHigh, 1), {"size-high-bits"}},
        FindingCase{"TooLarge",
                    Entry(kLarge, EntryField::kSizeHigh, 1),
                    {"chain-short", "stream-too-large"},
                    kVersion4}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Directory, FindingsTest,
    testing::Values(
        FindingCase{"NoRoot",
                    Entry(kRoot, EntryField::kType, kStorageType),
                    {"chain-cut", "mini-stream-short", "root-missing", "sector-lost"}},
        FindingCase{"TwoRoots",
                    Entry(kOuter, EntryField::kType, kRootType),
                    {"entry-unreachable", "root-repeated"}},
        FindingCase{
            "RootSibling", Entry(kRoot, EntryField::kLeftSibling, kOther), {"root-has-siblings"}},
        FindingCase{"Type", Entry(kEmpty, EntryField::kType, 4), {"entry-type-unknown"}},
        FindingCase{
            "NameLength", Entry(kEmpty, EntryField::kNameLength, 66), {"entry-name-invalid"}},
        FindingCase{
            "NameLengthOdd", Entry(kEmpty, EntryField::kNameLength, 11), {"entry-name-invalid"}},
        FindingCase{
            "NameWithoutZero", Entry(kEmpty, EntryField::kNameLength, 10), {"entry-name-invalid"}},
        FindingCase{"NameCharacter", Entry(kEmpty, {2, 2}, u'/'), {"entry-name-character"}},
        FindingCase{"Colour", Entry(kEmpty, EntryField::kColour, 2), {"entry-colour-invalid"}},
        FindingCase{
            "LinkOutside", Entry(kOther, EntryField::kLeftSibling, 4000), {"entry-link-outside"}},
        FindingCase{"LinkToItself",
                    Entry(kOuter, EntryField::kChild, kOuter),
                    {"entry-reached-twice", "entry-unreachable"}},
        FindingCase{
            "LinkToASlot", Entry(kEmpty, EntryField::kRightSibling, kSlot), {"entry-empty-linked"}},
        FindingCase{
            "Unreachable", Entry(kOuter, EntryField::kChild, kNoEntry), {"entry-unreachable"}},
        FindingCase{"EqualNames",
                    [](CompoundFile& file) {
                      constexpr std::u16string_view name = u"EMPTy";
                      for (std::size_t i = 0; i < name.size(); ++i) {
                        PatchEntry(file, kLarge, {2 * i, 2}, name[i]);
                      }
                    },
                    {"entry-names-equal"}},
        FindingCase{"Order", Entry(kLarge, {0, 2}, u'A'), {"entry-out-of-order"}},
        FindingCase{
            "ChildOfAStream", Entry(kLarge, EntryField::kChild, kOther), {"stream-has-child"}}),
    NameOf);

TEST(FindingListTest, NeighbouringSectorsAreOneFinding) {
  CompoundFile file = Control();
  LinkSector(file, file.layout.entries[kLarge].sectors[9], kEndOfChain);
  const MappedFile mapped(file.bytes);
  const kelst::FindingList findings = FindingsOf(mapped);
  const auto& lost = findings.Of(kelst::FindingCode::kSectorLost);
  ASSERT_EQ(lost.kept.size(), 1U);
  EXPECT_EQ(lost.kept[0].place.first, file.layout.entries[kLarge].sectors[10]);
  EXPECT_EQ(lost.kept[0].place.count, file.layout.entries[kLarge].sectors.size() - 10);
}

/// Whatever is damaged, the checks come to an end and name places that exist.
TEST(RandomDamageTest, IsSurvived) {
  std::mt19937 random(11);
  const auto below = [&random](std::size_t end) {
    return static_cast<std::size_t>(random() % end);
  };
  for (int round = 0; round < 400; ++round) {
    CompoundFile file =
        Control({.sectorSize = round % 2 == 0 ? 512U : 4096U, .placement = Placement::kScattered});
    const std::size_t tables = round % 3 == 0 ? file.bytes.size() : 4096;
    for (int i = 0; i < 30; ++i) {
      const std::size_t offset = i == 0 ? below(512) : below(tables);
      const bool isTested = offset >= 28 && offset < 44;  // else the file would be refused
      if (!isTested) file.bytes[offset] = static_cast<unsigned char>(random());
    }
    if (round % 5 == 0) TruncateTo(file, 512 + below(file.bytes.size()));
    const MappedFile mapped(file.bytes);
    const kelst::FindingList findings = FindingsOf(mapped, 1000);
    for (const kelst::CodeFacts& facts : kelst::AllCodes()) {
      for (const kelst::Finding& finding : findings.Of(facts.code).kept) {
        EXPECT_LT(finding.place.entry.value_or(0), mapped.tables.Directory().Count());
        EXPECT_FALSE(finding.text.empty());
      }
    }
  }
}

/// Each line of the table in docs/findings.md is "| `code` | severity | meaning | what to do |".
TEST(FindingCodesTest, AreThoseOfTheDocument) {
  std::ifstream document(KELX_TEST_DATA "/../../docs/findings.md");
  std::vector<std::string> documented;
  for (std::string line; std::getline(document, line);) {
    if (line.starts_with("| `"))
      documented.push_back(line.substr(0, line.find('|', line.find('|', 1) + 1) + 1));
  }
  std::vector<std::string> codes;
  for (const kelst::CodeFacts& facts : kelst::AllCodes()) {
    codes.push_back("| `" + std::string(facts.name) + "` | " +
                    std::string(kelst::NameOf(facts.severity)) + " |");
  }
  EXPECT_EQ(documented, codes);
}

}  // namespace
}  // namespace kelx::test
