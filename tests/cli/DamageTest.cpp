#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;

constexpr EntryIndex kOuter = 1;
constexpr EntryIndex kInner = 2;
constexpr EntryIndex kSmall = 3;
constexpr EntryIndex kLarge = 4;
constexpr EntryIndex kEmpty = 5;
constexpr EntryIndex kLast = 6;

CompoundFile ControlFile() {
  CompoundFileBuilder builder;
  builder.AddStorage(kRoot, u"Outer");
  builder.AddStorage(kOuter, u"Inner");
  builder.AddStream(kInner, u"Small", Pattern(4095));
  builder.AddStream(kInner, u"Large", Pattern(4096));
  builder.AddStream(kRoot, u"Empty", Content());
  builder.AddStream(kRoot, u"Last", Pattern(70'000));
  return builder.Build();
}

std::vector<std::string> FilesBelow(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    if (item.is_regular_file()) {
      files.push_back(std::filesystem::relative(item.path(), folder).string());
    }
  }
  std::ranges::sort(files);
  return files;
}

/// One change to the control file, what the tool says of it, and the streams that extraction still
/// delivers.
struct DamageCase {
  const char* name;
  std::function<void(CompoundFile&)> damage;
  std::string message;  ///< after the file's name; empty for none
  std::vector<std::string> extracted;
};

void PrintTo(const DamageCase& row, std::ostream* out) { *out << row.name; }

const std::vector<std::string> kAll{"Empty", "Last", "Outer/Inner/Large", "Outer/Inner/Small"};
const std::vector<std::string> kAllButLast{"Empty", "Outer/Inner/Large", "Outer/Inner/Small"};
const std::vector<std::string> kAllButSmall{"Empty", "Last", "Outer/Inner/Large"};

class DamageTest : public testing::TestWithParam<DamageCase> {};

TEST_P(DamageTest, IsReportedAndTheRestExtracted) {
  CompoundFile damaged = ControlFile();
  GetParam().damage(damaged);
  const TemporaryFile file(damaged.bytes);
  const TemporaryFolder target;
  const RunResult result = RunKelst({"extract", file.Path(), "-C", target.Path()});
  const bool isWhole = GetParam().message.empty();
  EXPECT_EQ(result.exitCode, isWhole ? 0 : 1);
  EXPECT_EQ(result.err, isWhole ? "" : "kelst: " + file.Path() + ": " + GetParam().message + "\n");
  EXPECT_EQ(FilesBelow(target.Path()), GetParam().extracted);
}

INSTANTIATE_TEST_SUITE_P(
    Streams, DamageTest,
    testing::Values(
        DamageCase{"None", [](CompoundFile&) {}, "", kAll},
        DamageCase{"LoopInTheFat",
                   [](CompoundFile& file) {
                     LinkSectorToItself(file, file.layout.entries[kLast].sectors[5]);
                   },
                   "Last: damaged: its chain of sectors cannot be followed to the end",
                   kAllButLast},
        DamageCase{"LoopInTheMiniFat",
                   [](CompoundFile& file) {
                     LinkMiniSectorToItself(file, file.layout.entries[kSmall].sectors[5]);
                   },
                   "Outer/Inner/Small: damaged: its chain of sectors cannot be followed to the end",
                   kAllButSmall},
        DamageCase{"ShortChain",
                   [](CompoundFile& file) {
                     LinkSector(file, file.layout.entries[kLast].sectors[1], kEndOfChain);
                   },
                   "Last: damaged: only 1,024 of 70,000 bytes are there", kAllButLast},
        DamageCase{"ShortMiniChain",
                   [](CompoundFile& file) {
                     LinkMiniSector(file, file.layout.entries[kSmall].sectors[1], kEndOfChain);
                   },
                   "Outer/Inner/Small: damaged: only 128 of 4,095 bytes are there", kAllButSmall},
        DamageCase{"TwoGibibytes",
                   [](CompoundFile& file) { PatchEntry(file, kLast, EntryField::kSize, 1U << 31); },
                   "Last: streams of 2 GiB and more cannot be read (2,147,483,648 bytes)",
                   kAllButLast},
        DamageCase{"FileCutInAStream",
                   [](CompoundFile& file) {
                     const auto& sectors = file.layout.entries[kLast].sectors;
                     TruncateTo(file, file.layout.SectorOffset(sectors.back()) + 70'000 % 512 - 1);
                   },
                   "Last: damaged: the file ends before the stream does", kAllButLast},
        DamageCase{"FileCutBehindTheLastByte",
                   [](CompoundFile& file) {
                     const auto& sectors = file.layout.entries[kLast].sectors;
                     TruncateTo(file, file.layout.SectorOffset(sectors.back()) + 70'000 % 512);
                   },
                   "", kAll},
        DamageCase{"MiniStreamBeyondTheFile",
                   [](CompoundFile& file) {
                     LinkSector(file, file.layout.miniStream[6], file.layout.sectorCount + 3);
                   },
                   "Outer/Inner/Small: damaged: the file ends before the stream does",
                   kAllButSmall},
        DamageCase{
            "ShortMiniStream",
            [](CompoundFile& file) { LinkSector(file, file.layout.miniStream[6], kEndOfChain); },
            "Outer/Inner/Small: damaged: its chain of sectors cannot be followed to the end",
            kAllButSmall},
        DamageCase{"AnotherType",
                   [](CompoundFile& file) { PatchEntry(file, kLast, EntryField::kType, 3); },
                   "Last: is neither a stream nor a storage", kAllButLast}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Links, DamageTest,
    testing::Values(
        DamageCase{"StorageInItself",
                   [](CompoundFile& file) { PatchEntry(file, kInner, EntryField::kChild, kInner); },
                   "Outer/Inner: the storage contains itself (entry 2)",
                   {"Empty", "Last"}},
        DamageCase{
            "StorageInItsChild",
            [](CompoundFile& file) { PatchEntry(file, kLarge, EntryField::kLeftSibling, kOuter); },
            "Outer/Inner: the storage contains itself (entry 1)", kAll},
        DamageCase{
            "TwoWaysToAnEntry",
            [](CompoundFile& file) { PatchEntry(file, kLarge, EntryField::kLeftSibling, kEmpty); },
            "Outer/Inner: entry 5 is reached from two places", kAll},
        DamageCase{"ChildOfAStream",
                   [](CompoundFile& file) { PatchEntry(file, kLast, EntryField::kChild, kOuter); },
                   "", kAll},
        DamageCase{
            "LinkBeyondTheDirectory",
            [](CompoundFile& file) { PatchEntry(file, kLarge, EntryField::kLeftSibling, 8); },
            "Outer/Inner: a link leads to entry 8, beyond the directory", kAll}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CatTest, WritesWhatThereIsOfAShortStream) {
  CompoundFile damaged = ControlFile();
  LinkSector(damaged, damaged.layout.entries[kLast].sectors[1], kEndOfChain);
  const TemporaryFile file(damaged.bytes);
  const RunResult result = RunKelst({"cat", file.Path(), "Last"});
  EXPECT_EQ(result.exitCode, 1);
  const Bytes start = Pattern(1024);
  EXPECT_TRUE(result.out == std::string(start.begin(), start.end()));
}

TEST(CatTest, AnEmptyStreamIsNoFailure) {
  const TemporaryFile file(ControlFile().bytes);
  const RunResult result = RunKelst({"cat", file.Path(), "Empty"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out + result.err, "");
}

/// Storages one in another, `depth` of them, the last one with a stream.
Bytes NestedStorages(int depth) {
  CompoundFileBuilder builder;
  EntryIndex storage = kRoot;
  for (int i = 0; i < depth; ++i) storage = builder.AddStorage(storage, u"s");
  builder.AddStream(storage, u"end", Pattern(10));
  return builder.Build().bytes;
}

TEST(DepthTest, TheLimitIsReachedAndReported) {
  const TemporaryFile within(NestedStorages(255));
  const RunResult listed = RunKelst({"ls", "-1", within.Path()});
  EXPECT_EQ(listed.exitCode, 0) << listed.err;
  EXPECT_EQ(Lines(listed.out).size(), 256U);
  const TemporaryFolder target;
  EXPECT_EQ(RunKelst({"extract", within.Path(), "-C", target.Path()}).exitCode, 0);
  EXPECT_EQ(FilesBelow(target.Path()).size(), 1U);

  const TemporaryFile beyond(NestedStorages(100'000));
  const RunResult cut = RunKelst({"ls", "-1", beyond.Path()});
  EXPECT_EQ(cut.exitCode, 1);
  EXPECT_EQ(Lines(cut.out).size(), 256U);
  EXPECT_THAT(cut.err, HasSubstr("/s: nested deeper than 256 storages\n"));
}

TEST(DamagedDirectoryTest, OnlyTheFirstOfManyMessagesArePrinted) {
  CompoundFileBuilder builder;
  for (int i = 0; i < 1000; ++i)
    builder.AddStorage(kRoot, std::u16string(1, u'A') + char16_t(i + 256));
  CompoundFile file = builder.Build();
  for (EntryIndex i = 1; i <= 1000; ++i) PatchEntry(file, i, EntryField::kChild, 1);
  const TemporaryFile damaged(file.bytes);
  const RunResult result = RunKelst({"ls", "-1", damaged.Path()});
  EXPECT_EQ(Lines(result.out).size(), 1000U);
  EXPECT_EQ(Lines(result.err).size(), 21U);
  EXPECT_THAT(result.err, HasSubstr(": 980 more of such problems\n"));
}

/// Positions have 32 bits, so that the first sector would be read in the place of this one.
TEST(FourGibibytesTest, WhatLiesBeyondIsNotTakenFromElsewhere) {
  constexpr std::uint32_t kBeyond = 1U << 20;
  CompoundFileBuilder builder({.sectorSize = 4096, .extraFatSectors = kBeyond / 1024});
  builder.AddStream(kRoot, u"Far", Pattern(5000));
  CompoundFile built = builder.Build();
  LinkSector(built, built.layout.entries[1].sectors[0], kBeyond);
  LinkSector(built, kBeyond, kEndOfChain);
  const TemporaryFile file(built.bytes);
  std::filesystem::resize_file(file.Path(), built.layout.SectorOffset(kBeyond + 1));
  const RunResult result = RunKelst({"cat", file.Path(), "Far"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "kelst: " + file.Path() +
                            ": Far: what lies beyond the first 4 GiB of a file cannot be read\n");
  EXPECT_THAT(RunKelst({"check", file.Path()}).out, HasSubstr("\nnote file-too-large, 1 found\n"));
}

}  // namespace
}  // namespace kelx::test
