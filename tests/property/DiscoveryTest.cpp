#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "storage/KELIStorage.h"
#include "storage/KELStgFunctions.h"
#include "tests/property/PropertySetListing.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/PropertySetBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Bytes Named(const char* name) { return PropertySetBuilder().Add(255, Lpstr(name)).Build(); }

/// The root of a file that is there only while it is opened, unless it is kept.
class Opened {
 public:
  explicit Opened(const CompoundFile& file)
      : file_(file.bytes), root(KELStgOpenStorageRoot(KELXFilePath(file_.Path().c_str()))) {}
  explicit Opened(const CompoundFileBuilder& builder) : Opened(builder.Build()) {}

 private:
  TemporaryFile file_;

 public:
  std::unique_ptr<KELIStorage> root;
};

std::vector<std::string> SetNames(KELIStorage& storage) {
  KELXDynamicArray<KELIPropertyStorage*> sets;
  storage.getPropertySetStorage()->GetPropertyStorages(sets);
  std::vector<std::string> names;
  for (KELIPropertyStorage* const set : sets) {
    names.push_back(set->GetPropertyStorageName().toUtf8());
    set->LowerReference();
  }
  return names;
}

TEST(Discovery, TakesStreamsWithTheMarkThatParse) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\u0005B", Named("B"));
  builder.AddStream(kRoot, u"\u0005Refused", Bytes(100, 1));
  builder.AddStream(kRoot, u"\u0005Empty", Bytes());
  builder.AddStream(kRoot, u"Unmarked", Named("unmarked"));
  builder.AddStorage(kRoot, u"\u0005Storage");
  Bytes large = Named("A");
  large.resize(5000);
  builder.AddStream(kRoot, u"\u0005A", large);
  const Opened file(builder);
  EXPECT_THAT(SetNames(*file.root), ElementsAre("B", "A"));
}

TEST(Discovery, NamesThatDifferInCaseAreOneStreamReadTwice) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\u0005name", Named("first"));
  builder.AddStream(kRoot, u"\u0005NAME", Named("second"));
  const Opened file(builder);
  EXPECT_THAT(SetNames(*file.root), ElementsAre("first", "first"));
}

TEST(Discovery, RunsWhileNothingWasFoundAndNeverAfter) {
  CompoundFileBuilder builder;
  Bytes large = Named("late");
  large.resize(5000);
  builder.AddStream(kRoot, u"\u0005Large", large);
  const CompoundFile file = builder.Build();
  const TemporaryFolder folder;
  const std::string path = folder.Write("file", file.bytes);
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(path.c_str())));
  ASSERT_EQ(std::rename(path.c_str(), folder.PathOf("moved").c_str()), 0);
  KELIPropertySetStorage* const sets = root->getPropertySetStorage();
  EXPECT_EQ(sets->GetPropertyStorageCount(), 0);
  folder.Write("file", file.bytes);
  EXPECT_EQ(root->getPropertySetStorage(), sets);
  EXPECT_EQ(sets->GetPropertyStorageCount(), 1);
  EXPECT_EQ(root->getPropertySetStorage()->GetPropertyStorageCount(), 1);
}

TEST(Discovery, ReadsSubStoragesWhenTheyAreOpened) {
  CompoundFileBuilder builder;
  const EntryIndex child = builder.AddStorage(kRoot, u"Child");
  Bytes large = Named("inside");
  large.resize(5000);
  builder.AddStream(child, u"\u0005Large", large);
  std::unique_ptr<KELIStorage> opened;
  {
    const Opened file(builder);
    opened.reset(OpenStorage(file.root.get(), KELXString(L"Child")));
    EXPECT_THAT(SetNames(*file.root), IsEmpty());
  }
  ASSERT_TRUE(opened);
  EXPECT_THAT(SetNames(*opened), ElementsAre("inside"));
}

TEST(Discovery, TheCollectionCanBeReplaced) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\u0005A", Named("A"));
  const Opened file(builder);
  const KELIPropertySetStorageHandle own(new KELIPropertySetStorage);
  own->AddPropertyStorage(Parse(Named("own")));
  EXPECT_THAT(SetNames(*file.root), ElementsAre("A"));
  file.root->setPropertySetStorage(own);
  EXPECT_THAT(SetNames(*file.root), ElementsAre("own"));
  file.root->setPropertySetStorage(nullptr);
  EXPECT_THAT(SetNames(*file.root), ElementsAre("A"));
  EXPECT_EQ(own->GetPropertyStorageCount(), 1);
  KELIStorage none;
  EXPECT_EQ(none.getPropertySetStorage()->GetPropertyStorageCount(), 0);
}

TEST(Discovery, EntriesThatNameOneLargeStreamAreNotAllParsed) {
  constexpr std::uint32_t kSize = 4U << 20;
  CompoundFileBuilder builder;
  Bytes large = PropertySetBuilder().Add(2, Lpstr("x")).Build();
  large.resize(kSize);
  const EntryIndex first = builder.AddStream(kRoot, u"\u0005A", large);
  std::vector<EntryIndex> others;
  for (char16_t letter = u'B'; letter <= u'Z'; ++letter) {
    others.push_back(builder.AddStream(kRoot, std::u16string{u'\u0005', letter}, Bytes(100, 1)));
  }
  CompoundFile file = builder.Build();
  for (const EntryIndex other : others) {
    PatchEntry(file, other, EntryField::kStartSector, file.layout.entries[first].startSector);
    PatchEntry(file, other, EntryField::kSize, kSize);
  }
  const Opened opened(file);
  const int count = opened.root->getPropertySetStorage()->GetPropertyStorageCount();
  EXPECT_GE(count, 2);
  EXPECT_LE(count, 4);
}

/// The texts of each stream take 43 MiB more than 16 times its bytes; all may take 64 MiB more.
TEST(Discovery, AllStreamsOfAStorageShareOneAllowanceForTexts) {
  PropertySetBuilder numbers;
  for (std::uint32_t id = 2; id < 60'000; ++id) numbers.Add(id, Value(5, 0x7FEFFFFFFFFFFFFF, 8));
  const Bytes stream = numbers.Build();
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\u0005A", stream);
  builder.AddStream(kRoot, u"\u0005B", stream);
  const Opened opened(builder);
  KELXDynamicArray<KELIPropertyStorage*> sets;
  opened.root->getPropertySetStorage()->GetPropertyStorages(sets);
  ASSERT_EQ(sets.Count(), 2);
  EXPECT_EQ(ValueLength((*sets.At(0))->GetPropertyWithID(59'999)), 259U);
  EXPECT_EQ(ValueLength((*sets.At(1))->GetPropertyWithID(2)), 259U);
  EXPECT_EQ(ValueLength((*sets.At(1))->GetPropertyWithID(59'999)), 0U);
  for (KELIPropertyStorage* const set : sets) set->LowerReference();
}

/// The properties of a stream of one sector whose entry states `size` bytes.
std::vector<std::string> ListingOf(const Bytes& stream, std::uint32_t size) {
  Format format;
  format.miniStreamCutoff = 512;
  CompoundFileBuilder builder(format);
  const EntryIndex entry = builder.AddStream(kRoot, u"\u0005Short", stream);
  CompoundFile file = builder.Build();
  PatchEntry(file, entry, EntryField::kSize, size);
  const Opened opened(file);
  KELIPropertyStorage* set = nullptr;
  opened.root->getPropertySetStorage()->GetPropertyStorageWithName(KELXString(), set);
  if (set == nullptr) return {};
  const auto listing = Listing(set->GetPropertyArray());
  set->LowerReference();
  return listing;
}

/// A stream with fewer bytes than its entry states goes on with zeros, up to 2 GiB of them.
class ShortStream : public testing::TestWithParam<std::uint32_t> {};

TEST_P(ShortStream, HasZerosAfterItsBytes) {
  constexpr std::uint32_t kEnd = 512 - 48;  // of the bytes held, counted from the section
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4)).AddAt(3, kEnd - 4).AddAt(4, kEnd).AddAt(5, kEnd - 8);
  builder.AddAt(6, 0xFFFFFFF0);
  Bytes stream = builder.Build();
  stream.resize(512);
  Store(stream.data() + 508, 11, 4, ByteOrder::kLittle);
  Store(stream.data() + 504, 30, 4, ByteOrder::kLittle);
  EXPECT_THAT(ListingOf(stream, GetParam()), ElementsAre("2[]2=1", "3[]4=False", "5[]1="));
}

TEST_P(ShortStream, ATextThatRunsIntoTheZerosEndsThere) {
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4)).AddAt(3, 512 - 48 - 12).AddAt(4, 512 - 48 - 24);
  Bytes stream = builder.Build();
  stream.resize(512);
  const Bytes wide = Join({Value(31, 100, 4), Units(u"ab")});
  std::ranges::copy(wide, stream.end() - 12);
  const Bytes narrow = Join({Value(30, 300, 4), {'c', 'd', 0, 'e'}});
  std::ranges::copy(narrow, stream.end() - 24);
  EXPECT_THAT(ListingOf(stream, GetParam()), ElementsAre("2[]2=1", "3[]1=ab", "4[]1=cd"));
}

TEST_P(ShortStream, CountsEndWithTheBytes) {
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4));
  Bytes dictionary = Dictionary(std::vector<std::pair<std::uint32_t, std::u16string>>{{2, u"two"}});
  Store(dictionary.data(), 0xFFFFFFFF, 4, ByteOrder::kLittle);
  builder.Add(0, dictionary);
  Bytes stream = builder.Build();
  stream.resize(512);
  Store(stream.data() + 52, 0xFFFFFFFF, 4, ByteOrder::kLittle);
  EXPECT_THAT(ListingOf(stream, GetParam()), ElementsAre("2[two]2=1"));
}

INSTANTIATE_TEST_SUITE_P(Discovery, ShortStream, testing::Values(5000U, 0x7FFFFFFFU));

/// Sizes are signed when streams are read, so there is nothing to parse.
TEST(Discovery, AStreamIsEmptyFrom2GiBOn) {
  Bytes stream = PropertySetBuilder().Add(2, Lpstr("x")).Build();
  stream.resize(512);
  EXPECT_THAT(ListingOf(stream, 512), ElementsAre("2[]1=x"));
  EXPECT_THAT(ListingOf(stream, 0x80000000), IsEmpty());
  EXPECT_THAT(ListingOf(stream, 0xFFFFFFFF), IsEmpty());
}

}  // namespace
}  // namespace kelx::test
