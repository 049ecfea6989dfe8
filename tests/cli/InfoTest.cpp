#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

TEST(InfoTest, TellsHowAFileIsBuilt) {
  const RunResult result = RunKelst({"info", SampleFile("nested.cfb")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, SampleFile("nested.cfb") +
                            "\n"
                            "  size          147,968 bytes (144.5 KiB)\n"
                            "  version       3 (minor 62)\n"
                            "  byte order    little-endian\n"
                            "  sectors       512 bytes\n"
                            "  mini sectors  64 bytes, for streams below 4,096 bytes\n"
                            "  mini stream   3,520 bytes (3.4 KiB)\n"
                            "  FAT           384 entries\n"
                            "  mini FAT      128 entries\n"
                            "  DIFAT         0 sectors\n"
                            "  directory     68 entries: 1 root, 24 storages, 42 streams, 1 empty\n"
                            "  depth         3 levels\n"
                            "  content       42 streams, 130,635 bytes (127.6 KiB)\n");
}

class InfoFormatTest : public testing::TestWithParam<Format> {};

TEST_P(InfoFormatTest, TellsSizesAndCounts) {
  const Format& format = GetParam();
  CompoundFileBuilder builder(format);
  const EntryIndex storage = builder.AddStorage(kRoot, u"storage");
  builder.AddStream(storage, u"small", Pattern(100));
  builder.AddStream(storage, u"large", Pattern(5000));
  const EntryIndex lost = builder.AddStream(kRoot, u"toplevel", Pattern(7));
  CompoundFile built = builder.Build();
  PatchEntry(built, kRoot, EntryField::kChild, storage);
  PatchEntry(built, storage, EntryField::kLeftSibling, kNoEntry);
  PatchEntry(built, storage, EntryField::kRightSibling, kNoEntry);
  ASSERT_EQ(lost, 4U);
  const TemporaryFile file(built.bytes);
  const RunResult result = RunKelst({"info", "--json", file.Path(), file.Path()});
  EXPECT_EQ(result.exitCode, 0);
  const bool isLarge = format.sectorSize == 4096;
  const nlohmann::json expected{
      {"file", file.Path()},
      {"size", built.bytes.size()},
      {"majorVersion", isLarge ? 4 : 3},
      {"minorVersion", 0x3E},
      {"byteOrder", format.byteOrder == ByteOrder::kLittle ? "little-endian" : "big-endian"},
      {"sectorSize", format.sectorSize},
      {"miniSectorSize", 64},
      {"miniStreamCutoff", format.miniStreamCutoff},
      {"miniStreamSize", 192},
      {"fatEntries", built.layout.fat.size() * format.sectorSize / 4},
      {"miniFatEntries", format.sectorSize / 4},
      {"difatSectors", 0},
      {"directoryEntries", isLarge ? 32 : 8},
      {"entriesByKind",
       {{"root", 1}, {"storage", 1}, {"stream", 3}, {"other", 0}, {"empty", isLarge ? 27 : 3}}},
      {"unreachableEntries", 1},
      {"depth", 2},
      {"streams", 2},
      {"streamBytes", 5100}};
  const std::vector<std::string> lines = Lines(result.out);
  ASSERT_EQ(lines.size(), 2U);
  for (const std::string& line : lines) EXPECT_EQ(nlohmann::json::parse(line), expected);
}

INSTANTIATE_TEST_SUITE_P(Formats, InfoFormatTest,
                         testing::Values(Format{}, Format{.byteOrder = ByteOrder::kBig},
                                         Format{.sectorSize = 4096, .miniStreamCutoff = 101}));

}  // namespace
}  // namespace kelx::test
