#include "compound/KELStStorageDirEntry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace {

using kelx::test::kRoot;

KELStStorageDirEntry Named(std::u16string name) {
  name.resize(32);
  unsigned char raw[64];
  std::memcpy(raw, name.data(), sizeof(raw));
  KELStStorageDirEntry entry;
  entry.setName(raw);
  return entry;
}

KELStStorageDirEntry ValidStream() {
  KELStStorageDirEntry entry = Named(u"name");
  entry.setNameLength(10);
  entry.setType(2);
  return entry;
}

TEST(DirEntry, NamesKeepTheLowByteOfEachCharacter) {
  EXPECT_EQ(Named(u"Root Entry").getName().toUtf8(), "Root Entry");
  EXPECT_EQ(Named(u"\u0151A").getName().toUtf8(), "QA");
  EXPECT_EQ(Named(u"\u00e9").getName().toUtf8(), "é");
  EXPECT_EQ(Named(u"a\u0100b").getName().toUtf8(), "a");  // ends at a low byte of zero
  EXPECT_EQ(Named(std::u16string(32, u'x')).getName().toUtf8(), std::string(32, 'x'));
  EXPECT_EQ(Named(u"").getName().toUtf8(), "");
}

TEST(DirEntry, Validity) {
  struct Case {
    const char* change;
    std::function<void(KELStStorageDirEntry&)> damage;
    bool nameValid;
    bool valid;
  };
  unsigned char zeros[64] = {};
  const Case cases[] = {
      {"none", [](auto&) {}, true, true},
      {"no name length", [](auto& entry) { entry.setNameLength(0); }, false, false},
      {"name length 65", [](auto& entry) { entry.setNameLength(65); }, false, false},
      {"name length 64", [](auto& entry) { entry.setNameLength(64); }, true, true},
      {"no name", [&](auto& entry) { entry.setName(zeros); }, false, false},
      {"type 0", [](auto& entry) { entry.setType(0); }, true, false},
      {"type 3", [](auto& entry) { entry.setType(3); }, true, true},
      {"type 6", [](auto& entry) { entry.setType(6); }, true, false},
      {"colour 1", [](auto& entry) { entry.setBFlag(1); }, true, true},
      {"colour 2", [](auto& entry) { entry.setBFlag(2); }, true, false},
  };
  for (const Case& one : cases) {
    KELStStorageDirEntry entry = ValidStream();
    one.damage(entry);
    EXPECT_EQ(entry.isNameValid(), one.nameValid) << one.change;
    EXPECT_EQ(entry.isValid(), one.valid) << one.change;
  }
  EXPECT_FALSE(KELStStorageDirEntry().isValid());
}

TEST(DirEntry, TypesAreKeptApart) {
  KELStStorageDirEntry entry;
  for (int type = 0; type < 256; ++type) {
    entry.setType(static_cast<unsigned char>(type));
    EXPECT_EQ(entry.isStorage(), type == 1);
    EXPECT_EQ(entry.isStream(), type == 2);
    EXPECT_EQ(entry.isRoot(), type == 5);
  }
}

TEST(DirEntry, EqualByNameOrByEverythingElse) {
  KELStStorageDirEntry other = ValidStream();
  other.setType(1);
  EXPECT_TRUE(ValidStream() == other);  // one name
  unsigned char name[64] = {'x'};
  other = ValidStream();
  other.setName(name);
  other.setStartSect(9);
  other.setUserFlag(9);
  other.setPropertyType(9);
  EXPECT_TRUE(ValidStream() == other);  // another name, the compared fields agree
  const std::function<void(KELStStorageDirEntry&)> changes[] = {
      [](auto& entry) { entry.setNameLength(8); }, [](auto& entry) { entry.setType(1); },
      [](auto& entry) { entry.setBFlag(1); },      [](auto& entry) { entry.setLeftSib(1); },
      [](auto& entry) { entry.setRightSib(1); },   [](auto& entry) { entry.setChild(1); },
      [](auto& entry) { entry.setSize(1); },
  };
  for (const auto& change : changes) {
    KELStStorageDirEntry changed = other;
    change(changed);
    EXPECT_FALSE(ValidStream() == changed);
  }
}

TEST(DirEntry, IsReadFromAFile) {
  for (const auto order : {kelx::test::ByteOrder::kLittle, kelx::test::ByteOrder::kBig}) {
    kelx::test::CompoundFileBuilder builder({.byteOrder = order});
    const auto storage = builder.AddStorage(kRoot, u"Storage");
    const auto stream = builder.AddStream(storage, u"Stream", kelx::test::Pattern(5000));
    const kelx::test::CompoundFile built = builder.Build();
    const kelx::test::TemporaryFile path(built.bytes);
    std::FILE* file = std::fopen(path.Path().c_str(), "rb");
    KELStStorageFileInfo image;
    image.setHeader(file);
    KELStStorageDirEntry entry;
    KELSetPosition(file, built.layout.entries[storage].offset);
    image.readDirEntry(file, entry);
    EXPECT_TRUE(entry.isStorage());
    EXPECT_EQ(entry.getName().toUtf8(), "Storage");
    EXPECT_EQ(entry.getChild(), stream);
    EXPECT_EQ(entry.getLeftSib(), 0xFFFFFFFF);
    EXPECT_EQ(KELGetPosition(file),
              static_cast<std::int64_t>(built.layout.entries[storage].offset + 128));
    image.readDirEntry(file, entry);
    EXPECT_TRUE(entry.isStream());
    EXPECT_EQ(entry.getSize(), 5000U);
    EXPECT_EQ(entry.getStartSect(), built.layout.entries[stream].startSector);
    EXPECT_TRUE(entry.isValid());
    KELSetPosition(file, built.layout.FileSize());
    image.readDirEntry(file, entry);
    EXPECT_FALSE(entry.isValid());
    EXPECT_EQ(entry.getName().toUtf8(), "");
    std::fclose(file);
  }
}

TEST(Directory, LoopsAndGapsEndIt) {
  kelx::test::CompoundFileBuilder builder;
  for (int i = 0; i < 11; ++i) builder.AddStream(kRoot, u"s", kelx::test::Pattern(10));
  const kelx::test::CompoundFile valid = builder.Build();
  const auto& sectors = valid.layout.directory;
  ASSERT_EQ(sectors.size(), 3U);
  struct Case {
    std::uint32_t from;
    std::uint32_t to;
    int entries;
  };
  const Case cases[] = {
      {sectors[2], 0xFFFFFFFC, 12}, {sectors[2], sectors[0], 12}, {sectors[1], sectors[1], 8},
      {sectors[0], 100000, 8},  // one sector of zeros, which the FAT has no entry for
      {sectors[2], 0xFFFFFFFB, 16},
  };
  for (const Case& one : cases) {
    kelx::test::CompoundFile file = valid;
    kelx::test::LinkSector(file, one.from, one.to);
    const kelx::test::TemporaryFile path(file.bytes);
    const KELStStorageFileInfo image((KELXFilePath(path.Path().c_str())));
    EXPECT_EQ(image.getDirArray().Count(), one.entries) << one.from << " to " << one.to;
  }
}

}  // namespace
