#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/storage/OpenedFile.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

TEST(Storage, WithoutAnImage) {
  KELIStorage storage;
  EXPECT_EQ(storage.getStStorageFileInfo(), nullptr);
  EXPECT_EQ(storage.getDirectoryEntry().getType(), 0);
  EXPECT_EQ(TryStream(storage, "x").status, -1);
  EXPECT_EQ(TryStream(storage, "x").out, Out::kUntouched);
  EXPECT_EQ(TryStorage(storage, "x").status, -1);
  EXPECT_EQ(TryStorage(storage, "x").out, Out::kNull);
  KELStStorageDirEntry entry;
  entry.setSize(7);
  for (const bool directOnly : {false, true}) {
    EXPECT_FALSE(storage.searchStream(KELXString::fromUtf8("x"), entry, directOnly));
    EXPECT_FALSE(storage.searchStorage(KELXString::fromUtf8("x"), entry, directOnly));
  }
  EXPECT_EQ(entry.getSize(), 7U);
  KELIStream* none = nullptr;
  EXPECT_EQ(storage.getStreamFromFat(entry, &none), -1);
  EXPECT_EQ(storage.getStreamFromFat(entry, nullptr), -1);
  EXPECT_EQ(storage.getStreamFromMiniFat(entry, &none), -1);
  EXPECT_EQ(none, nullptr);
}

TEST(Storage, OfAPathThatIsNoCompoundFile) {
  for (const char* path : {"/no/such/file", "", KELX_TEST_DATA, "/dev/null"}) {
    KELIStorage storage((KELXFilePath(path)));
    ASSERT_NE(storage.getStStorageFileInfo(), nullptr) << path;
    EXPECT_FALSE(storage.getStStorageFileInfo()->checkValidity()) << path;
    EXPECT_EQ(storage.getDirectoryEntry().getType(), 0) << path;
    EXPECT_EQ(TryStream(storage, "x").out, Out::kNull) << path;
    EXPECT_EQ(TryStorage(storage, "x").out, Out::kNull) << path;
  }
}

TEST(Storage, EachOutlivesWhatItCameFrom) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"early", Pattern(10));
  const EntryIndex outer = builder.AddStorage(kRoot, u"Box");
  builder.AddStream(builder.AddStorage(outer, u"Inner"), u"deep", Pattern(30));
  builder.AddStream(outer, u"large", Pattern(5000));
  auto opened = std::make_unique<OpenedFile>(builder.Build());
  auto early = TryStream(*opened->root, "early");
  auto box = TryStorage(*opened->root, "Box");
  opened->root.reset();
  auto inner = TryStorage(*box.object, "Inner");
  EXPECT_EQ(Contents(*box.object, "LARGE"), Pattern(5000));
  KELXDynamicArray<KELStStorageDirEntry> elements;
  EXPECT_EQ(box.object->enumElements(elements), 0);
  box.object.reset();
  opened.reset();  // the file too
  EXPECT_EQ(Contents(*inner.object, "deep"), Pattern(30));
  inner.object.reset();
  EXPECT_EQ(Rest(*early.object), Pattern(10));
  EXPECT_EQ(NamesIn(elements), (std::vector<std::string>{"Inner", "large"}));
}

CompoundFile OneStream(const char16_t* name, std::uint32_t seed) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, name, Pattern(100, seed));
  return builder.Build();
}

TEST(Storage, TakesACopyOfAnImage) {
  const OpenedFile first(OneStream(u"a", 1));
  auto second = std::make_unique<OpenedFile>(OneStream(u"b", 2));
  KELIStorage storage;
  storage.setDirectoryEntry(first.root->getDirectoryEntry());
  storage.setStStorageFileInfo(first.root->getStStorageFileInfo());
  EXPECT_NE(storage.getStStorageFileInfo(), first.root->getStStorageFileInfo());
  EXPECT_EQ(Contents(storage, "a"), Pattern(100, 1));

  storage.setStStorageFileInfo(storage.getStStorageFileInfo());
  EXPECT_EQ(Contents(storage, "a"), Pattern(100, 1));

  storage.setStStorageFileInfo(second->root->getStStorageFileInfo());
  EXPECT_EQ(Contents(*second->root, "b"), Pattern(100, 2));  // the argument is as it was
  const std::string path = second->file.Path();
  second.reset();
  EXPECT_EQ(storage.getStStorageFileInfo()->GetFilePath().toUtf8(), path);
  KELXDynamicArray<KELStStorageDirEntry> elements;
  EXPECT_EQ(storage.enumElements(elements), 0);
  EXPECT_EQ(NamesIn(elements), std::vector<std::string>{"a"});  // the list of children stays
  EXPECT_EQ(Contents(storage, "a"), Pattern(100, 2));
  EXPECT_EQ(TryStream(storage, "b").out, Out::kNull);

  storage.setStStorageFileInfo(nullptr);
  EXPECT_EQ(Contents(storage, "a"), Pattern(100, 2));
}

TEST(Storage, ReadsAnEntryFromWhereTheCallerSays) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"small", Pattern(100));
  builder.AddStream(kRoot, u"large", Pattern(5000));
  const OpenedFile opened(builder.Build());
  KELIStorage& root = *opened.root;
  struct Case {
    const char* name;
    bool fromFat;
    unsigned long size;
  };
  const Case cases[] = {
      {"small", false, 100},
      {"small", false, 128},
      {"large", true, 5000},
      {"large", true, 100},
  };
  for (const Case& one : cases) {
    KELStStorageDirEntry entry;
    ASSERT_TRUE(root.searchStream(KELXString::fromUtf8(one.name), entry, true));
    entry.setSize(one.size);
    KELIStream sentinel(0);
    const auto stream = Try(sentinel, [&](KELIStream** out) {
      return one.fromFat ? root.getStreamFromFat(entry, out)
                         : root.getStreamFromMiniFat(entry, out);
    });
    EXPECT_EQ(stream.status, 0) << one.name << one.size;
    ASSERT_TRUE(stream.object);
    EXPECT_EQ(Rest(*stream.object).size(), one.size);
    EXPECT_EQ(stream.object->getDirEntry().getSize(), one.size);
    EXPECT_EQ(root.getStreamFromFat(entry, nullptr), -1);
  }
}

}  // namespace
