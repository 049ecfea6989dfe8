#include <gtest/gtest.h>

#include <functional>

#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

/// Each stream of the tree has a size of its own, which tells them apart.
CompoundFile Tree(Format format = {}) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"Early", Pattern(10));           //  1
  const EntryIndex box = builder.AddStorage(kRoot, u"Box");  //  2
  builder.AddStream(kRoot, u"late", Pattern(11));            //  3
  builder.AddStorage(kRoot, u"Twin");                        //  4
  const EntryIndex twin = builder.AddStorage(kRoot, u"Twin");
  builder.AddStream(box, u"early", Pattern(20));   //  6
  builder.AddStream(box, u"Late", Pattern(21));    //  7
  builder.AddStream(box, u"inside", Pattern(22));  //  8
  const EntryIndex inner = builder.AddStorage(box, u"Inner");
  builder.AddStream(inner, u"deep", Pattern(30));  // 10
  builder.AddStorage(inner, u"Deepest");           // 11
  builder.AddStream(twin, u"second", Pattern(40));
  builder.AddStorage(kRoot, u"late");   // 13
  builder.AddStorage(kRoot, u"Inner");  // 14
  builder.AddStream(kRoot, u"\u00c4RGER", Pattern(12));
  builder.AddStream(box, u"large", Pattern(5000));
  return builder.Build();
}

TEST(OpenStorage, FailureTable) {
  struct Case {
    const char* change;
    const char* name;
    std::function<void(CompoundFile&)> damage;
    Out out;
  };
  const auto none = [](CompoundFile&) {};
  const auto set = [](Field field, std::uint64_t value) {
    return [=](CompoundFile& file) { PatchEntry(file, 2, field, value); };
  };
  const Case cases[] = {
      {"none", "Box", none, Out::kObject},
      {"another case", "box", none, Out::kNull},
      {"an unknown name", "Bo", none, Out::kNull},
      {"a stream's name", "Early", none, Out::kNull},
      {"a grandchild's name", "Deepest", none, Out::kNull},
      {"a storage beside a stream", "late", none, Out::kObject},
      {"name length 0", "Box", set(EntryField::kNameLength, 0), Out::kNull},
      {"colour 2", "Box", set(EntryField::kColour, 2), Out::kNull},
      {"type 2", "Box", set(EntryField::kType, 2), Out::kNull},
      {"type 5", "Box", set(EntryField::kType, 5), Out::kNull},
      {"no children", "Box",
       [](CompoundFile& file) { PatchEntry(file, kRoot, EntryField::kChild, kNoEntry); },
       Out::kNull},
  };
  for (const Case& one : cases) {
    CompoundFile file = Tree();
    one.damage(file);
    const OpenedFile opened(file);
    const auto storage = TryStorage(*opened.root, one.name);
    EXPECT_EQ(storage.status, one.out == Out::kObject ? 0 : -1) << one.change;
    EXPECT_EQ(storage.out, one.out) << one.change;
    if (!storage.object) continue;
    EXPECT_EQ(storage.object->getDirectoryEntry().getName().toUtf8(), one.name);
    EXPECT_NE(storage.object->getStStorageFileInfo(), opened.root->getStStorageFileInfo());
  }
}

/// The size of the stream found, or the first child's index of the storage; 0 for none.
unsigned long Search(KELIStorage& storage, const char* name, bool isStream, bool directOnly) {
  const KELXString text = KELXString::fromUtf8(name);
  KELStStorageDirEntry entry;
  entry.setType(99);
  const bool isFound = isStream ? storage.searchStream(text, entry, directOnly)
                                : storage.searchStorage(text, entry, directOnly);
  EXPECT_EQ(entry.getType(), isFound ? (isStream ? 2 : 1) : 99) << name;
  if (!isFound) return 0;
  return isStream ? entry.getSize() : entry.getChild();
}

TEST(Search, StreamsByNameIgnoringCase) {
  struct Case {
    const char* name;
    unsigned long direct;
    unsigned long below;
  };
  const Case cases[] = {
      {"Early", 10, 10},                         // a child before the storage that has one too
      {"eARLY", 10, 10},      {"late", 11, 21},  // the storage comes first
      {"inside", 0, 22},      {"INSIDE", 0, 22}, {"deep", 0, 0},  // two levels down
      {"second", 0, 0},  // in the second of two storages of one name; the first opens twice
      {"\u00e4rger", 12, 12}, {"argeR", 0, 0},   {"Box", 0, 0},  {"", 0, 0},
  };
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    const OpenedFile opened(Tree({.byteOrder = order}));
    for (const Case& one : cases) {
      EXPECT_EQ(Search(*opened.root, one.name, true, true), one.direct) << one.name;
      EXPECT_EQ(Search(*opened.root, one.name, true, false), one.below) << one.name;
    }
  }
}

TEST(Search, StoragesByExactName) {
  CompoundFile file = Tree();
  // Entries without children are told apart by what is written in their place.
  for (const EntryIndex entry : {4U, 11U, 13U, 14U}) {
    PatchEntry(file, entry, EntryField::kChild, 1000 + entry);
  }
  const OpenedFile opened(file);
  const auto box = TryStorage(*opened.root, "Box");
  ASSERT_TRUE(box.object);
  const auto inner = TryStorage(*box.object, "Inner");
  ASSERT_TRUE(inner.object);
  const unsigned long boxChild = box.object->getDirectoryEntry().getChild();
  const unsigned long innerChild = inner.object->getDirectoryEntry().getChild();
  struct Case {
    const char* name;
    unsigned long direct;
    unsigned long below;
  };
  const Case cases[] = {
      {"Box", boxChild, boxChild},
      {"BOX", 0, 0},
      {"Twin", 1004, 1004},  // of two the first
      {"late", 1013, 1013},
      {"Late", 0, 0},
      {"Inner", 1014, innerChild},  // the one in the earlier storage
      {"inner", 0, 0},
      {"Deepest", 0, 0},
      {"Early", 0, 0},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(Search(*opened.root, one.name, false, true), one.direct) << one.name;
    EXPECT_EQ(Search(*opened.root, one.name, false, false), one.below) << one.name;
  }
  EXPECT_EQ(Search(*inner.object, "Deepest", false, true), 1011U);
}

TEST(Search, PassesOverStoragesThatCannotBeOpened) {
  CompoundFile file = Tree();
  PatchEntry(file, 2, EntryField::kColour, 2);
  const OpenedFile opened(file);
  EXPECT_EQ(Search(*opened.root, "late", true, false), 11U);
  EXPECT_EQ(Search(*opened.root, "inside", true, false), 0U);
}

TEST(OpenStream, OfTwoNamesThatDifferInCaseTheFirst) {
  for (const Siblings siblings : {Siblings::kBalanced, Siblings::kRightList}) {
    CompoundFileBuilder builder({.siblings = siblings});
    for (const char16_t* name : {u"z", u"Dup", u"a", u"dUP", u"m", u"dup", u"z"}) {
      builder.AddStream(kRoot, name, Pattern(50 + builder.Build().layout.entries.size()));
    }
    const OpenedFile opened(builder.Build());
    for (const char* name : {"dup", "DUP", "Dup", "dUP"}) {
      EXPECT_EQ(Contents(*opened.root, name).size(), 52U) << name;
    }
    EXPECT_EQ(Contents(*opened.root, "Z").size(), 51U);
  }
}

}  // namespace
