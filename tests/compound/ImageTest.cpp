#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

KELStStorageFileInfo Load(const Bytes& bytes) {
  const TemporaryFile file(bytes);
  return KELStStorageFileInfo(KELXFilePath(file.Path().c_str()));
}

CompoundFile SmallFile(Format format = {}) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"small", Pattern(100));
  builder.AddStream(kRoot, u"large", Pattern(5000));
  return builder.Build();
}

TEST(Header, DecidesWhetherAFileIsAccepted) {
  struct Case {
    const char* change;
    Field field;
    std::uint64_t value;
    bool accepted;
  };
  const Case cases[] = {
      {"none", HeaderField::kReserved, 0, true},
      {"signature", {HeaderField::kSignatureOffset, 8}, 0x123456789ABCDEF0, true},
      {"version", HeaderField::kMajorVersion, 4711, true},
      {"reserved", HeaderField::kReserved, 1, false},
      {"reserved1", HeaderField::kReserved1, 0x80000000, false},
      {"7 directory sectors", HeaderField::kDirectorySectorCount, 7, true},
      {"8 directory sectors", HeaderField::kDirectorySectorCount, 8, false},
      {"sector shift 10", HeaderField::kSectorShift, 10, false},
      {"sector shift 0x209", HeaderField::kSectorShift, 0x209, false},
      {"mini sector shift 7", HeaderField::kMiniSectorShift, 7, false},
      {"cutoff", HeaderField::kMiniStreamCutoff, 0xFFFFFFFF, true},
  };
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    for (const std::uint32_t sectorSize : {512U, 4096U}) {
      for (const Case& one : cases) {
        CompoundFile file = SmallFile({.sectorSize = sectorSize, .byteOrder = order});
        PatchHeader(file, one.field, one.value);
        const KELStStorageFileInfo image = Load(file.bytes);
        EXPECT_EQ(image.checkValidity(), one.accepted) << one.change;
        EXPECT_EQ(image.checkHeader(), one.accepted) << one.change;
        EXPECT_EQ(image.getDirArray().Count() > 0, one.accepted) << one.change;
      }
    }
  }
}

TEST(Header, KeepsWhatWasRead) {
  for (const bool isBig : {false, true}) {
    CompoundFile file = SmallFile({.byteOrder = isBig ? ByteOrder::kBig : ByteOrder::kLittle});
    PatchHeader(file, HeaderField::kTransactionSignature, 0x01020304);
    const KELStStorageHeader header = Load(file.bytes).getHeader();
    EXPECT_EQ(header.headerDifSect, nullptr);
    EXPECT_EQ(header.signature[0], 0xD0);
    EXPECT_EQ(header.byteOrder, isBig ? 0xFEFF : 0xFFFE);
    EXPECT_EQ(header.majorVersion, isBig ? 0x0300 : 3);  // versions keep the order of the file
    EXPECT_EQ(header.sectorShift, 9);
    EXPECT_EQ(header.miniStreamCutoff, 4096U);
    EXPECT_EQ(header.transactionSignature, 0x01020304U);
    EXPECT_EQ(header.numFatSects, file.layout.fat.size());
    EXPECT_EQ(header.dirStartSect, file.layout.directory.front());
    EXPECT_EQ(header.miniFatStartSect, file.layout.miniFat.front());
    EXPECT_EQ(header.sectorBase, 436);
  }
}

TEST(Header, AFileCutShortReadsAsZeros) {
  const Bytes whole = SmallFile().bytes;
  for (std::size_t length = 0; length <= 600; ++length) {
    const KELStStorageFileInfo image = Load(Bytes(whole.begin(), whole.begin() + long(length)));
    EXPECT_EQ(image.checkValidity(), length >= 33) << length;
  }
}

TEST(Image, PathsThatAreNoFile) {
  for (const char* path : {"/no/such/file", "", "/", KELX_TEST_DATA, "/dev/null"}) {
    const KELStStorageFileInfo image((KELXFilePath(path)));
    EXPECT_FALSE(image.checkValidity()) << path;
    EXPECT_EQ(image.getDirArray().Count(), 0) << path;
    EXPECT_EQ(image.getRootDirEntry().getType(), 0) << path;
    EXPECT_EQ(image.GetFilePath().toUtf8(), path);
  }
  EXPECT_FALSE(KELStStorageFileInfo().checkValidity());
}

TEST(Image, CopiesOutliveTheirSource) {
  auto source = std::make_unique<KELStStorageFileInfo>(Load(SmallFile().bytes));
  const KELStStorageFileInfo copy(*source);
  KELStStorageFileInfo assigned;
  const KELStStorageFileInfo returned = assigned = *source;
  source.reset();
  for (const KELStStorageFileInfo* image : {&copy, &std::as_const(assigned), &returned}) {
    EXPECT_TRUE(image->checkValidity());
    EXPECT_EQ(image->getDirArray().Count(), 4);
    EXPECT_EQ(image->getRootDirEntry().getName().toUtf8(), "Root Entry");
    EXPECT_EQ(image->getFatSector().Count(), 128);
    EXPECT_EQ(image->getMiniFatSector().Count(), 128);
  }
}

TEST(Image, AccessorsGiveCopies) {
  const KELStStorageFileInfo image = Load(SmallFile().bytes);
  KELXDynamicArray<unsigned int> fat = image.getFatSector();
  const unsigned int first = *std::as_const(fat).At(0);
  *fat.At(0) = first + 1;
  const KELXDynamicArray<unsigned int> again = image.getFatSector();
  EXPECT_EQ(*again.At(0), first);
}

TEST(Image, AHeaderReadByItselfBelongsToTheImageAlone) {
  const TemporaryFile file(SmallFile().bytes);
  std::FILE* opened = std::fopen(file.Path().c_str(), "rb");
  KELStStorageFileInfo image;
  image.setHeader(nullptr);
  EXPECT_FALSE(image.checkHeader());
  image.setHeader(opened);
  EXPECT_TRUE(image.checkHeader());
  EXPECT_FALSE(image.checkValidity());
  const KELStStorageFileInfo copy(image);
  EXPECT_EQ(copy.getHeader().headerDifSect, nullptr);
  image.readDifSector(opened);
  image.readFatSector(opened);
  image.readDirectorySector(opened);
  EXPECT_EQ(image.getDirArray().Count(), 4);
  std::fclose(opened);
}

TEST(Tables, SectorPositions) {
  const KELStStorageFileInfo small = Load(SmallFile().bytes);
  const KELStStorageFileInfo large = Load(SmallFile({.sectorSize = 4096}).bytes);
  EXPECT_EQ(small.getEquivalentFatBytePos(0), 512U);
  EXPECT_EQ(small.getEquivalentFatBytePos(1), 1024U);
  EXPECT_EQ(small.getEquivalentFatBytePos(0x7FFFFF), 0x100000000UL);
  EXPECT_EQ(small.getEquivalentFatBytePos(0x800000), 512U);  // the distance has 32 bits
  EXPECT_EQ(small.getEquivalentFatBytePos(0xFFFFFFFF), 0x100000000UL);
  EXPECT_EQ(large.getEquivalentFatBytePos(0), 4096U);
  EXPECT_EQ(large.getEquivalentFatBytePos(0x100000), 4096U);
  EXPECT_EQ(small.getEquivalentMiniFatBytePos(3), 192U);
  EXPECT_EQ(small.getEquivalentMiniFatBytePos(0x4000001), 64U);
}

TEST(Tables, TheDifatListsFatSectors) {
  struct Case {
    const char* change;
    std::function<void(CompoundFile&)> damage;
    int fatSectors;
  };
  // Two DIFAT sectors: 127 numbers in the first, and one more in the second.
  const Case cases[] = {
      {"none", [](CompoundFile&) {}, 130},
      {"no DIFAT by its start",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::kDifatStart, kEndOfChain); }, 2},
      {"no DIFAT by its count",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::kDifatSectorCount, 0); }, 2},
      {"one sector, whose link is then an entry",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::kDifatSectorCount, 1); }, 130},
      {"a DIFAT that links to itself",
       [](CompoundFile& file) {
         Patch(file, file.layout.SectorOffset(file.layout.difat[0]) + 508, file.layout.difat[0]);
         PatchHeader(file, HeaderField::kDifatSectorCount, 3);
       },
       2 + 127 + 127 + 128},
      {"a skipped header entry",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::Difat(0), kFreeSector); }, 129},
      {"a mark that counts as a sector",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::Difat(5), kFatSector); }, 131},
      {"a sector beyond the end",
       [](CompoundFile& file) { PatchHeader(file, HeaderField::Difat(5), 1000000U); }, 131},
  };
  CompoundFileBuilder builder({.extraFatSectors = 128, .fatSectorsInHeader = 2});
  builder.AddStream(kRoot, u"small", Pattern(100));
  const CompoundFile valid = builder.Build();
  ASSERT_EQ(valid.layout.difat.size(), 2U);
  ASSERT_EQ(valid.layout.fat.size(), 130U);
  for (const Case& one : cases) {
    CompoundFile file = valid;
    one.damage(file);
    EXPECT_EQ(Load(file.bytes).getFatSector().Count(), one.fatSectors * 128) << one.change;
  }
}

TEST(Tables, AMiniFatFollowsItsChain) {
  for (const std::uint32_t sectorSize : {512U, 4096U}) {
    CompoundFileBuilder builder({.sectorSize = sectorSize});
    for (int i = 0; i < 40; ++i)
      builder.AddStream(kRoot, u"s", Pattern(sectorSize == 512 ? 320 : 4000));
    const CompoundFile file = builder.Build();
    ASSERT_EQ(file.layout.miniFat.size(), sectorSize == 512 ? 2U : 3U);
    const auto entries = static_cast<int>(file.layout.miniFat.size() * sectorSize / 4);
    EXPECT_EQ(Load(file.bytes).getMiniFatSector().Count(), entries);
    CompoundFile looping = file;
    LinkSector(looping, file.layout.miniFat.back(), file.layout.miniFat.front());
    EXPECT_EQ(Load(looping.bytes).getMiniFatSector().Count(), entries);
    CompoundFile without = file;
    PatchHeader(without, HeaderField::kMiniFatStart, kEndOfChain);
    EXPECT_EQ(Load(without.bytes).getMiniFatSector().Count(), 0);
    PatchHeader(without, HeaderField::kMiniFatStart, kFreeSector);
    EXPECT_EQ(Load(without.bytes).getMiniFatSector().Count(), static_cast<int>(sectorSize / 4));
  }
}

TEST(MiniStream, TakesItsSizeFromTheRoot) {
  struct Case {
    const char* change;
    std::function<void(CompoundFile&)> damage;
    int length;
  };
  const auto patchSize = [](std::uint32_t size) {
    return [size](CompoundFile& file) { PatchEntry(file, kRoot, EntryField::kSize, size); };
  };
  const Case cases[] = {
      {"none", [](CompoundFile&) {}, 1024 + 128},
      {"a size inside the second sector", patchSize(1000), 1000},
      {"a size inside the first sector", patchSize(100), 100},
      {"a size beyond the chain", patchSize(5000), 3 * 512},
      {"no size", patchSize(0), 0},
      {"2^31 - 1 bytes", patchSize(0x7FFFFFFF), 3 * 512},
      {"2^31 bytes", patchSize(0x80000000), 0},
      {"2^32 - 1 bytes", patchSize(0xFFFFFFFF), 0},
      {"no chain",
       [](CompoundFile& file) { PatchEntry(file, kRoot, EntryField::kStartSector, kEndOfChain); },
       0},
      {"a start that is no sector",
       [](CompoundFile& file) { PatchEntry(file, kRoot, EntryField::kStartSector, kFreeSector); },
       512},
      {"no root", [](CompoundFile& file) { PatchEntry(file, kRoot, EntryField::kType, 1); }, 0},
      {"a loop",
       [patchSize](CompoundFile& file) {
         patchSize(5000)(file);
         LinkSector(file, file.layout.miniStream[1], file.layout.miniStream[0]);
       },
       1024},
  };
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"small", Pattern(1024 + 100));
  for (const Case& one : cases) {
    CompoundFile file = builder.Build();
    one.damage(file);
    const KELStStorageFileInfo image = Load(file.bytes);
    EXPECT_EQ(image.getMiniStream().Count(), one.length) << one.change;
    EXPECT_TRUE(image.checkValidity());
  }
}

TEST(MiniStream, BytesCanBeAdded) {
  KELStStorageFileInfo image;
  unsigned char bytes[] = {1, 2, 3};
  image.addBytesToMiniBuffer(bytes, 0);
  image.addBytesToMiniBuffer(bytes, -1);
  EXPECT_EQ(image.getMiniStream().Count(), 0);
  image.addBytesToMiniBuffer(bytes, 3);
  image.addBytesToMiniBuffer(bytes + 1, 1);
  const KELXDynamicArray<unsigned char> stream = image.getMiniStream();
  EXPECT_EQ(Bytes(stream.begin(), stream.end()), (Bytes{1, 2, 3, 2}));
}

}  // namespace
