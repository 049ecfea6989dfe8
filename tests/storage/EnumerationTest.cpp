#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <utility>

#include "storage/KELXQuickSort.h"
#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

using Indices = std::vector<unsigned long>;
using Names = std::vector<std::string>;

/// The root with the children "1" to "14", each named for its directory index; 16 entries in all.
constexpr std::uint32_t kChildren = 14;
constexpr std::uint32_t kDirectorySize = 16;

struct Link {
  EntryIndex entry;
  Field field;
  std::uint32_t target;
};
using Links = std::vector<Link>;

Link Left(EntryIndex entry, std::uint32_t to) { return {entry, EntryField::kLeftSibling, to}; }
Link Right(EntryIndex entry, std::uint32_t to) { return {entry, EntryField::kRightSibling, to}; }

/// Entry 7 is the root's child; beside the given links there are none.
CompoundFile FileWith(const Links& links, Format format = {}) {
  CompoundFileBuilder builder(format);
  for (std::uint32_t i = 1; i <= kChildren; ++i) {
    const std::string name = std::to_string(i);
    builder.AddStream(kRoot, std::u16string(name.begin(), name.end()), Pattern(i));
  }
  CompoundFile file = builder.Build();
  for (EntryIndex entry = 1; entry <= kChildren; ++entry) {
    PatchEntry(file, entry, EntryField::kLeftSibling, kNoEntry);
    PatchEntry(file, entry, EntryField::kRightSibling, kNoEntry);
  }
  PatchEntry(file, kRoot, EntryField::kChild, 7);
  for (const Link& link : links) PatchEntry(file, link.entry, link.field, link.target);
  return file;
}

Indices Collect(KELIStorage& storage, unsigned long from, const Indices& listed = {}) {
  KELXDynamicArray<unsigned long> indices;
  for (const unsigned long index : listed) indices.Add(index);
  storage.getColleagueIndexArray(from, indices);
  return {indices.begin(), indices.end()};
}

Indices Sorted(Indices indices) {
  std::ranges::sort(indices);
  return indices;
}

TEST(Enumeration, FollowsSiblingLinks) {
  struct Case {
    const char* tree;
    Links links;
    Indices indices;
    Names names;
  };
  const Case cases[] = {
      {"one child", {}, {7}, {"7"}},
      {"two siblings", {Left(7, 3), Right(7, 12)}, {3, 7, 12}, {"3", "7", "12"}},
      {"two levels",
       {Left(7, 12), Right(12, 3), Left(12, 13), Right(3, 9)},
       {3, 7, 9, 12, 13},
       {"3", "7", "9", "12", "13"}},
      {"child links are not followed", {{7, EntryField::kChild, 3}}, {7}, {"7"}},
      {"no more than marks", {Left(7, 0xFFFFFFFE), Right(7, 0xFFFFFFFF)}, {7}, {"7"}},
      {"a link to itself", {Left(7, 7), Right(7, 3)}, {3, 7}, {"3", "7"}},
      {"a link back", {Left(7, 3), Right(3, 12), Left(12, 7)}, {3, 7, 12}, {"3", "7", "12"}},
      {"two links to one", {Left(7, 3), Right(7, 3), Left(3, 4)}, {3, 4, 7}, {"3", "4", "7"}},
      {"a link to the root", {Left(7, 0)}, {0, 7}, {"Root Entry", "7"}},
      {"beyond the directory by one",
       {Left(7, kDirectorySize), Right(7, 3)},
       {3, 7, kDirectorySize},
       {"3", "7"}},
      {"beyond it twice", {Left(7, 1000), Right(7, 3), Right(3, 1000)}, {3, 7, 1000}, {"3", "7"}},
      {"far beyond it",
       {Left(7, 0xFFFFFFFC), Right(7, 0xFFFFFFFD)},
       {7, 0xFFFFFFFC, 0xFFFFFFFD},
       {"7"}},
      {"an empty slot", {Left(7, 15)}, {7, 15}, {"7", ""}},
      {"an empty slot of zeros",
       {Left(7, 14), {14, EntryField::kType, 0}, Left(14, 0), Right(14, 0)},
       {0, 7, 14},
       {"Root Entry", "7", "14"}},
      {"no stream, and not valid",
       {Left(7, 3), {3, EntryField::kType, 4}, {3, EntryField::kNameLength, 0}},
       {3, 7},
       {"3", "7"}},
  };
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    for (const Case& one : cases) {
      const OpenedFile file(FileWith(one.links, {.byteOrder = order}));
      EXPECT_EQ(Sorted(Collect(*file.root, 7)), one.indices) << one.tree;
      KELXDynamicArray<KELStStorageDirEntry> elements(3, {});
      EXPECT_EQ(file.root->enumElements(elements), 0) << one.tree;
      EXPECT_EQ(NamesIn(elements), one.names) << one.tree;
      EXPECT_EQ(file.root->enumElements(elements), 0) << one.tree;
      EXPECT_EQ(NamesIn(elements), one.names) << one.tree;
    }
  }
}

TEST(Enumeration, AddsToIndicesListedBefore) {
  const OpenedFile file(FileWith({Left(7, 3), Right(7, 12), Left(3, 1)}));
  KELIStorage& root = *file.root;
  EXPECT_EQ(Collect(root, 7), (Indices{7, 12, 3, 1}));  // the right ones first
  EXPECT_EQ(Collect(root, 3, {9, 2}), (Indices{9, 2, 3, 1}));
  EXPECT_EQ(Collect(root, 7, {1, 12}), (Indices{1, 12, 7, 3}));
  EXPECT_EQ(Collect(root, 7, {7}), (Indices{7, 12, 3, 1}));
  EXPECT_EQ(Collect(root, kDirectorySize), (Indices{kDirectorySize}));
  EXPECT_EQ(Collect(root, 0x100000007), (Indices{0x100000007}));
  EXPECT_EQ(Collect(root, 7, {0x100000007}), (Indices{0x100000007, 7, 12, 3, 1}));
  KELIStorage withoutImage;
  EXPECT_EQ(Collect(withoutImage, 7, {9}), (Indices{9}));
}

TEST(Enumeration, WithoutChildren) {
  enum class Elements { kUntouched, kEmptied };
  struct Case {
    std::uint32_t child;
    bool hasImage;
    Elements elements;
  };
  const Case cases[] = {
      {0xFFFFFFFF, true, Elements::kUntouched},  {0xFFFFFFFC, true, Elements::kUntouched},
      {0xFFFFFFFB, true, Elements::kEmptied},    {kDirectorySize, true, Elements::kEmptied},
      {0xFFFFFFFF, false, Elements::kUntouched}, {0xFFFFFFFC, false, Elements::kUntouched},
      {0xFFFFFFFB, false, Elements::kEmptied},   {7, false, Elements::kEmptied},
  };
  const OpenedFile file(FileWith({}));
  for (const Case& one : cases) {
    KELIStorage storage;
    if (one.hasImage) storage.setStStorageFileInfo(file.root->getStStorageFileInfo());
    KELStStorageDirEntry entry;
    entry.setChild(one.child);
    storage.setDirectoryEntry(entry);
    KELXDynamicArray<KELStStorageDirEntry> elements(3, {});
    EXPECT_EQ(storage.enumElements(elements), -1) << one.child;
    EXPECT_EQ(elements.Count(), one.elements == Elements::kUntouched ? 3 : 0) << one.child;
  }
}

TEST(Enumeration, OnlyAListThatIsNotEmptyIsKept) {
  const OpenedFile file(FileWith({Left(7, 3)}));
  KELIStorage& root = *file.root;
  const KELStStorageDirEntry seven = root.getDirectoryEntry();
  KELStStorageDirEntry other;
  KELXDynamicArray<KELStStorageDirEntry> elements;

  other.setChild(kNoEntry);
  root.setDirectoryEntry(other);
  EXPECT_EQ(root.enumElements(elements), -1);
  root.setDirectoryEntry(seven);
  EXPECT_EQ(root.enumElements(elements), 0);
  EXPECT_EQ(NamesIn(elements), (Names{"3", "7"}));

  elements.Clear();  // a copy of the caller's own
  other.setChild(12);
  root.setDirectoryEntry(other);
  EXPECT_EQ(root.getDirectoryEntry().getChild(), 12U);
  EXPECT_EQ(root.enumElements(elements), 0);
  EXPECT_EQ(NamesIn(elements), (Names{"3", "7"}));
}

TEST(Enumeration, ALongListOfRightSiblings) {
  constexpr std::uint32_t kCount = 200000;
  CompoundFileBuilder builder(
      {.sectorSize = 4096, .siblings = Siblings::kRightList, .statedDirectorySectors = 0});
  for (std::uint32_t i = 0; i < kCount; ++i) builder.AddStream(kRoot, u"s", {});
  CompoundFile file = builder.Build();
  PatchEntry(file, kCount, EntryField::kRightSibling, 1);
  const OpenedFile opened(file);
  KELXDynamicArray<KELStStorageDirEntry> elements;
  EXPECT_EQ(opened.root->enumElements(elements), 0);
  EXPECT_EQ(elements.Count(), static_cast<int>(kCount));
}

std::vector<unsigned long> QuickSorted(const Indices& values, int left, int right) {
  KELXDynamicArray<unsigned long> array;
  for (const unsigned long value : values) array.Add(value);
  const KELXDynamicArray<unsigned long> before(array);
  qsort(array, left, right);
  EXPECT_EQ(Indices(before.begin(), before.end()), values);
  return {array.begin(), array.end()};
}

TEST(QuickSort, SortsTheGivenPositions) {
  struct Case {
    Indices values;
    int left;
    int right;
    Indices sorted;
  };
  const Case cases[] = {
      {{}, 0, -1, {}},
      {{5}, 0, 0, {5}},
      {{2, 1}, 0, 1, {1, 2}},
      {{1, 2}, 0, 1, {1, 2}},
      {{2, 1}, 1, 0, {2, 1}},
      {{5, 1, 4, 1}, 0, 3, {1, 1, 4, 5}},
      {{5, 4, 3, 2, 1}, 1, 3, {5, 2, 3, 4, 1}},
      {{0x100000000, 0xFFFFFFFF, 0}, 0, 2, {0, 0xFFFFFFFF, 0x100000000}},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(QuickSorted(one.values, one.left, one.right), one.sorted);
  }
}

TEST(QuickSort, SortsLongArraysOfAnyKind) {
  constexpr unsigned long kCount = 200000;
  std::mt19937 random(20261122);
  const std::function<unsigned long(unsigned long)> kinds[] = {
      [](unsigned long) { return 7; },
      [](unsigned long i) { return i; },
      [](unsigned long i) { return kCount - i; },
      [](unsigned long i) { return i % 2; },
      [&random](unsigned long) { return random(); },
  };
  for (const auto& valueAt : kinds) {
    Indices values(kCount);
    for (unsigned long i = 0; i < kCount; ++i) values[i] = valueAt(i);
    EXPECT_TRUE(QuickSorted(values, 0, kCount - 1) == Sorted(values));
  }
}

TEST(QuickSort, SortsNamesByCodePoint) {
  KELXDynamicArray<KELXString> names;
  for (const char* name : {"b", "ä", "a", "B", "", "a", "\U0001F600", "\uFFFD"}) {
    names.Add(KELXString::fromUtf8(name));
  }
  qsort(names, 0, names.Count() - 1);
  Names sorted;
  for (const KELXString& name : std::as_const(names)) sorted.push_back(name.toUtf8());
  EXPECT_EQ(sorted, (Names{"", "B", "a", "a", "b", "ä", "\uFFFD", "\U0001F600"}));
}

}  // namespace
