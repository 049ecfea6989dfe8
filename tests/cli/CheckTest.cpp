#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

constexpr EntryIndex kNamed = 1;
constexpr EntryIndex kFirst = 2;

/// Two streams, and a storage whose name is not fit for a terminal.
CompoundFile Control() {
  CompoundFileBuilder builder;
  builder.AddStorage(kRoot, u"Clear\x1B[2J");
  builder.AddStream(kNamed, u"First", Pattern(5000));
  builder.AddStream(kRoot, u"Second", Pattern(100));
  return builder.Build();
}

TEST(CheckTest, SamplesOfOrdinaryProgramsAreClean) {
  for (const std::string sample : {"cells.xls", "installer.msi", "metadata.doc", "nested.cfb",
                                   "objects.doc", "pictures.doc", "unicode.doc"}) {
    const RunResult result = RunKelst({"check", "--json", SampleFile(sample)});
    EXPECT_EQ(result.exitCode, 0) << sample;
    const auto document = nlohmann::json::parse(result.out);
    EXPECT_EQ(document["clean"], true) << result.out;
    EXPECT_EQ(document["notes"], sample == "nested.cfb" ? 2 : 0) << result.out;
  }
}

TEST(CheckTest, PrintsFindingsByCodeTheGravestFirst) {
  CompoundFile built = Control();
  PatchHeader(built, HeaderField::kFatSectorCount, 2);
  const auto& sectors = built.layout.entries[kFirst].sectors;
  LinkSector(built, sectors[1], kEndOfChain);
  const TemporaryFile file(built.bytes);
  const RunResult result = RunKelst({"check", file.Path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(Lines(result.out),
            (std::vector<std::string>{
                file.Path() + ": 1 error, 2 warnings",
                "error chain-short, 1 found",
                "  Clear\\x1B[2J/First (entry 2), sector " + std::to_string(sectors[1]) +
                    ": its chain has 2 sectors, but its size of 5,000 bytes takes 10",
                "warning header-count-wrong, 1 found",
                "  byte 44: the header states 2 FAT sectors, there are 1",
                "warning sector-lost, 1 found",
                "  sectors " + std::to_string(sectors[2]) + " to " + std::to_string(sectors[9]) +
                    ": marked as in use, but part of nothing",
            }));

  const auto document = nlohmann::json::parse(RunKelst({"check", "--json", file.Path()}).out);
  EXPECT_EQ(document["errors"], 1);
  const auto& lost = document["groups"][2];
  EXPECT_EQ(lost["code"], "sector-lost");
  EXPECT_EQ(lost["findings"][0]["sector"], sectors[2]);
  EXPECT_EQ(lost["findings"][0]["count"], 8);
  EXPECT_EQ(lost["findings"][0]["offset"], built.layout.SectorOffset(sectors[2]));
}

TEST(CheckTest, AHundredThousandFindingsStayAFewLines) {
  constexpr std::uint32_t kCount = 100'000;
  CompoundFile built = CompoundFileBuilder({.extraFatSectors = 2 * kCount / 128 + 1}).Build();
  built.bytes.resize(built.layout.SectorOffset(2 * kCount + 2000));
  for (std::uint32_t i = 0; i < kCount; ++i) {
    LinkSector(built, built.layout.sectorCount + 1 + 2 * i, kEndOfChain);
  }
  const TemporaryFile file(built.bytes);
  const RunResult result = RunKelst({"check", file.Path()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(Lines(result.out), SizeIs(10));
  EXPECT_THAT(result.out, HasSubstr("warning sector-lost, 100,000 found\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  99,995 more; --all shows them\n"));
  EXPECT_THAT(Lines(RunKelst({"check", "--all", file.Path()}).out), SizeIs(kCount + 4));
}

/// Files of more than 2 GiB keep one sector free for locks. A file with a hole takes no room.
TEST(CheckTest, TheSectorForLocksIsNotLost) {
  constexpr std::uint32_t kLocked = 0x7FFFF - 1;
  CompoundFile built =
      CompoundFileBuilder({.sectorSize = 4096, .extraFatSectors = kLocked / 1024}).Build();
  LinkSector(built, kLocked, kEndOfChain);
  const TemporaryFile file(built.bytes);
  std::filesystem::resize_file(file.Path(), built.layout.SectorOffset(kLocked + 1));
  EXPECT_EQ(RunKelst({"check", file.Path()}).out, file.Path() + ": clean\n");
}

TEST(CheckTest, FilesThatAreNoneAreRefusedAndTheOthersChecked) {
  const TemporaryFolder folder;
  folder.Write("text", Bytes(600, ' '));
  folder.Write("whole", Control().bytes);
  const RunResult result =
      RunKelst({"check", "text", "missing", "whole"}, StandardOutput::kFile, folder.Path());
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.out, "whole: clean\n");
  EXPECT_EQ(result.err,
            "kelst: text: not a compound file: sector shift is 8224 (9 or 12 expected)\n"
            "kelst: missing: No such file or directory\n");
}

}  // namespace
}  // namespace kelx::test
