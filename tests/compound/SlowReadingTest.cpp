#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "storage/KELIStorage.h"
#include "storage/KELIStream.h"
#include "tests/compound/SlowReader.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

// Reading in bulk must give what reading value by value gives, whatever the file holds.

namespace {

using kelx::test::ByteOrder;
using kelx::test::Bytes;

std::string Latin1AsUtf8(const std::string& name) {
  std::wstring wide;
  for (const char character : name) wide.push_back(static_cast<unsigned char>(character));
  return KELXString(wide.c_str()).toUtf8();
}

template <typename Element>
std::vector<Element> Elements(const KELXDynamicArray<Element>& array) {
  return {array.begin(), array.end()};
}

void ExpectSameStream(KELIStorage& storage, const KELStStorageDirEntry& entry, SlowReader& slow,
                      const SlowReader::Entry& expectedEntry) {
  std::string expected;
  const bool isReadable = slow.ReadStream(expectedEntry, expected);
  const bool isLarge =
      entry.getSize() >= storage.getStStorageFileInfo()->getHeader().miniStreamCutoff;
  KELIStream* stream = nullptr;
  const int status = isLarge ? storage.getStreamFromFat(entry, &stream)
                             : storage.getStreamFromMiniFat(entry, &stream);
  ASSERT_EQ(status, isReadable ? 0 : -1) << expectedEntry.start << ' ' << expectedEntry.size;
  ASSERT_EQ(stream == nullptr, isLarge && !isReadable);
  const std::unique_ptr<KELIStream> owned(stream);
  if (!owned) return;
  std::string bytes(expected.size() + 1, '\0');
  unsigned long read = 0;
  owned->Read(bytes.data(), bytes.size(), &read);
  bytes.resize(read);
  ASSERT_TRUE(bytes == expected) << read << " bytes, " << expected.size() << " expected";
}

void ExpectSame(const std::string& path) {
  KELIStorage storage((KELXFilePath(path.c_str())));
  const KELStStorageFileInfo& image = *storage.getStStorageFileInfo();
  if (!image.checkValidity()) return;
  SlowReader slow(image);
  ASSERT_EQ(Elements(image.getFatSector()), slow.fat);
  ASSERT_EQ(Elements(image.getMiniFatSector()), slow.miniFat);
  const auto miniStream = Elements(image.getMiniStream());
  ASSERT_TRUE(std::string(miniStream.begin(), miniStream.end()) == slow.miniStream);
  const KELXDynamicArray<KELStStorageDirEntry> directory = image.getDirArray();
  ASSERT_EQ(static_cast<std::size_t>(directory.Count()), slow.entries.size());
  for (int i = 0; i < directory.Count(); ++i) {
    const KELStStorageDirEntry& entry = *directory.At(i);
    SlowReader::Entry expected = slow.entries[static_cast<std::size_t>(i)];
    ASSERT_EQ(entry.getName().toUtf8(), Latin1AsUtf8(expected.name));
    ASSERT_EQ(entry.getType(), expected.type);
    ASSERT_EQ(entry.getLeftSib(), expected.left);
    ASSERT_EQ(entry.getRightSib(), expected.right);
    ASSERT_EQ(entry.getChild(), expected.child);
    ASSERT_EQ(entry.getStartSect(), expected.start);
    ASSERT_EQ(entry.getSize(), expected.size);
    if (entry.isStream()) ExpectSameStream(storage, entry, slow, expected);
  }
}

Bytes SmallFile(kelx::test::Format format) {
  kelx::test::CompoundFileBuilder builder(format);
  const auto inner = builder.AddStorage(kelx::test::kRoot, u"Inner");
  builder.AddStream(kelx::test::kRoot, u"large", kelx::test::Pattern(9000));
  builder.AddStream(inner, u"small", kelx::test::Pattern(200));
  builder.AddStream(inner, u"tiny", kelx::test::Pattern(3));
  builder.AddStream(inner, u"empty", {});
  return builder.Build().bytes;
}

std::vector<Bytes> SmallFiles() {
  std::vector<Bytes> files;
  for (const std::uint32_t sectorSize : {512U, 4096U}) {
    for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
      files.push_back(SmallFile({.sectorSize = sectorSize, .byteOrder = order}));
      files.push_back(SmallFile({.sectorSize = sectorSize,
                                 .byteOrder = order,
                                 .placement = kelx::test::Placement::kScattered,
                                 .fatSectorsInHeader = 0}));
    }
  }
  return files;
}

TEST(SlowReading, SamplesAgree) {
  for (const char* name : {"cells.xls", "installer.msi", "metadata.doc", "nested.cfb",
                           "objects.doc", "pictures.doc", "unicode.doc"}) {
    SCOPED_TRACE(name);
    ExpectSame(std::string(KELX_TEST_DATA "/") + name);
  }
}

TEST(SlowReading, FilesCutAnywhereAgree) {
  const kelx::test::TemporaryFolder folder;
  for (const Bytes& whole : SmallFiles()) {
    const std::size_t step = whole.size() > 20000 ? 397 : 127;
    for (std::size_t length = 0; length <= whole.size(); length += step) {
      ExpectSame(folder.Write("file", std::span(whole).first(length)));
      if (HasFatalFailure()) FAIL() << "at length " << length << " of " << whole.size();
    }
  }
}

/// Changes a few places, mostly in the header, the tables and the directory: words that are
/// likely to be taken for sector numbers, marks or sizes.
void Damage(Bytes& bytes, std::mt19937& random) {
  const unsigned int words[] = {0,          1,          2,          3,          7,
                                64,         100,        127,        128,        4095,
                                4096,       0x7FFFFFFF, 0x80000000, 0x800000,   0x4000000,
                                0xFFFFFFFB, 0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF};
  for (auto changes = 1 + random() % 6; changes > 0; --changes) {
    // Not the fields that the file is refused for, which would end the matter.
    const std::size_t place = 44 + random() % (bytes.size() - 48);
    const auto any = static_cast<unsigned int>(random());
    const unsigned int word = any % 3 == 0 ? any : words[random() % std::size(words)];
    if (random() % 4 == 0) {
      bytes[place] = static_cast<unsigned char>(word);
    } else {
      std::memcpy(bytes.data() + place / 4 * 4, &word, sizeof(word));
    }
  }
}

TEST(SlowReading, DamagedFilesAgree) {
  const kelx::test::TemporaryFolder folder;
  std::mt19937 random(20261122);
  const std::vector<Bytes> files = SmallFiles();
  for (int round = 0; round < 300; ++round) {
    Bytes bytes = files[static_cast<std::size_t>(round) % files.size()];
    Damage(bytes, random);
    ExpectSame(folder.Write("file", bytes));
    if (HasFatalFailure()) FAIL() << "in round " << round;
  }
}

}  // namespace
