#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>

#include "tests/property/PropertySetListing.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names8 = std::vector<std::pair<std::uint32_t, std::string>>;
using Names16 = std::vector<std::pair<std::uint32_t, std::u16string>>;

TEST(StreamParsing, ReadsTheHeader) {
  PropertySetHeader header{.osVersion = 0x0A06, .osKind = 2, .classId = kUserDefinedId};
  const KELIPropertyStorageHandle set = Parse(PropertySetBuilder(header).Build());
  ASSERT_TRUE(set.IsValid());
  EXPECT_EQ(set->GetByteOrder(), 0xFFFE);
  EXPECT_EQ(set->GetFormatVersion(), 0);
  EXPECT_EQ(set->GetOSVersion(), 0x0A06);
  EXPECT_EQ(set->GetOSKind(), 2);
  EXPECT_EQ(set->GetSectionCount(), 1U);
  Bytes classId(16);
  set->GetClassID(classId.data());
  EXPECT_EQ(KELIPropertyStorage::FormatCLSID(classId.data()).toUtf8(), kUserDefinedText);
}

TEST(StreamParsing, OnlyTheFirstFourBytesCanMakeItFail) {
  struct Case {
    const char* what;
    Bytes stream;
    bool isAccepted;
  };
  const std::vector<Case> cases = {
      {"four bytes", {0xFE, 0xFF, 0, 0}, true},
      {"no version", {0xFE, 0xFF}, true},
      {"half a version", {0xFE, 0xFF, 1}, true},
      {"another version", {0xFE, 0xFF, 1, 0}, false},
      {"another version, high byte", {0xFE, 0xFF, 0, 1}, false},
      {"another byte order", {0xFF, 0xFE, 0, 0}, false},
      {"one byte", {0xFE}, false},
  };
  for (const Case& row : cases) {
    const KELIPropertyStorageHandle set = Parse(row.stream);
    EXPECT_EQ(set.IsValid(), row.isAccepted) << row.what;
    EXPECT_EQ(set.IsValid() ? set->GetPropertyArray().Count() : 0, 0) << row.what;
  }
}

TEST(StreamParsing, ARefusedSetKeepsWhatWasRead) {
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  EXPECT_EQ(set->GetOSKind(), 0xFF);
  const Bytes stream = {0xFE, 0xFF, 3, 0, 1, 0, 2, 0};
  EXPECT_FALSE(set->InitializeFromBuffer(stream.data(), 8));
  EXPECT_EQ(set->GetByteOrder(), 0xFFFE);
  EXPECT_EQ(set->GetFormatVersion(), 3);
  EXPECT_EQ(set->GetOSKind(), 0xFF);
  EXPECT_FALSE(set->InitializeFromBuffer(nullptr, 8));
  EXPECT_EQ(set->GetByteOrder(), 0);
}

/// A class identifier that is cut is not read, and what follows it is read in its place.
TEST(StreamParsing, AShortStreamTakesItsSectionCountFromTheClassIdentifier) {
  const Bytes stream = PropertySetBuilder({.classId = {7, 0, 0, 0, 9}}).Build();
  for (const auto& [length, count] : {std::pair{11, 0U}, {12, 7U}, {23, 7U}, {24, 0U}, {28, 1U}}) {
    const KELIPropertyStorageHandle set = Parse(Bytes(stream.begin(), stream.begin() + length));
    EXPECT_EQ(set->GetSectionCount(), count) << length;
  }
}

TEST(StreamParsing, TheFirstSectionFollowsTheHeader) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("first"));
  Bytes stream = builder.Build();
  Store(stream.data() + 44, 0x1000, 4, ByteOrder::kLittle);
  EXPECT_THAT(ListingOf(stream), ElementsAre("2[]1=first"));
  for (const std::uint32_t count : {0U, 3U, 0xFFFFFFFFU}) {
    Store(stream.data() + 24, count, 4, ByteOrder::kLittle);
    EXPECT_THAT(ListingOf(stream), ElementsAre("2[]1=first")) << count;
  }
}

TEST(StreamParsing, TheSecondSectionIsWhereTheHeaderSays) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("first"));
  builder.Section(kUserDefinedId, 57).Add(2, Lpstr("second")).Add(3, Value(3, 3, 4));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[]1=first", "2[]1=second", "3[]2=3"));
  Bytes stream = builder.Build();
  for (const std::uint32_t offset : {0xFFFFFFFFU, static_cast<std::uint32_t>(stream.size())}) {
    Store(stream.data() + 64, offset, 4, ByteOrder::kLittle);
    EXPECT_THAT(ListingOf(stream), ElementsAre("2[]1=first")) << offset;
  }
}

TEST(StreamParsing, AnIdentifierReadAgainReplacesInPlace) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("a")).Add(3, Lpstr("b")).Add(2, Lpstr("c")).Add(4, Value(0, 0, 4));
  builder.Add(2, Value(0, 0, 4)).Add(3, Value(3, 5, 4)).Add(2, Value(11, 0xFFFF, 2));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[]4=True", "3[]2=5"));
}

TEST(StreamParsing, CodePagesDecideHowTextIsRead) {
  struct Case {
    std::uint16_t codePage;
    const char* bytes;
    const char* text;
  };
  const Case cases[] = {
      {0, "\x80\xE9", "€é"},
      {1252, "\x80\xE9", "€é"},
      {1200, "\x2D\x4E", "中"},
      {932, "\x93\xFA\x96\x7B", "日本"},
      {65001, "\xE6\x97\xA5\xFF", "日\uFFFD"},
      {10000, "\x8E", "é"},
      {54321, "\x80\xE9", "€é"},  // there is no such code page
  };
  for (const Case& row : cases) {
    PropertySetBuilder builder;
    builder.Add(1, CodePage(row.codePage)).Add(2, Lpstr(row.bytes));
    const KELIPropertyStorageHandle set = Parse(builder.Build());
    EXPECT_EQ(Describe(set->GetPropertyWithID(2)), std::string("2[]1=") + row.text) << row.codePage;
    EXPECT_EQ(set->GetCodePage(), row.codePage);
  }
}

TEST(StreamParsing, TheCodePageInForceIsTheLastOneRead) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("\xE9")).Add(1, CodePage(1251)).Add(3, Lpstr("\xE9"));
  builder.AddShared(4, 0).Add(1, Value(3, 1252, 4)).Add(5, Lpstr("\xE9"));
  builder.Section(kUserDefinedId).Add(6, Lpstr("\xE9")).Add(1, CodePage(0)).Add(7, Lpstr("\xE9"));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[]1=é", "1[]2=1252", "3[]1=й", "4[]1=й",
                                                      "5[]1=й", "6[]1=й", "1[]2=0", "7[]1=é"));
}

TEST(StreamParsing, ACodePageThatDoesNotFitIsNone) {
  PropertySetBuilder builder;
  builder.Add(1, CodePage(1251)).Add(2, Lpstr("\xE9")).Add(1, Little(2, 4));
  const KELIPropertyStorageHandle set = Parse(builder.Build());
  EXPECT_THAT(Listing(set->GetPropertyArray()), ElementsAre("1[]2=0", "2[]1=й"));
  EXPECT_EQ(set->GetCodePage(), 0);
}

TEST(StreamParsing, DictionariesAreReadInTheCodePageInForce) {
  struct Case {
    const char* what;
    PropertySetBuilder builder;
    std::vector<std::string> expected;
  };
  const Bytes narrow = Dictionary(Names8{{2, "Pr\xE9"}, {3, "abcd"}, {2, "late"}});
  const Bytes wide = Dictionary(Names16{{2, u"Prénom"}, {3, u"\u4e2d"}, {3, u"late"}});
  const Bytes value = Value(3, 1, 4);
  const std::vector<Case> cases = {
      {"no code page",
       PropertySetBuilder().Add(0, wide).Add(2, value).Add(3, value),
       {"2[Prénom]2=1", "3[中]2=1"}},
      {"UTF-16",
       PropertySetBuilder().Add(1, CodePage(1200)).Add(0, wide).Add(2, value).Add(3, value),
       {"1[]2=1200", "2[Prénom]2=1", "3[中]2=1"}},
      {"8 bits",
       PropertySetBuilder().Add(1, CodePage(1252)).Add(0, narrow).Add(2, value).Add(3, value),
       {"1[]2=1252", "2[Pré]2=1", "3[abcd]2=1"}},
      {"the code page comes too late",
       PropertySetBuilder().Add(0, wide).Add(1, CodePage(1252)).Add(2, value),
       {"1[]2=1252", "2[Prénom]2=1"}},
      {"two dictionaries",
       PropertySetBuilder()
           .Add(0, wide)
           .Add(0, Dictionary(Names16{{2, u"x"}, {4, u"y"}}))
           .Add(2, value)
           .Add(4, value),
       {"2[Prénom]2=1", "4[y]2=1"}},
      {"the same dictionary in two code pages",
       PropertySetBuilder()
           .Add(1, CodePage(1252))
           .Add(0, narrow)
           .Add(1, CodePage(1251))
           .AddShared(0, 1)
           .Add(2, value),
       {"1[]2=1251", "2[Pré]2=1"}},
      {"names without properties", PropertySetBuilder().Add(0, wide).Add(5, value), {"5[]2=1"}},
  };
  for (const Case& row : cases) EXPECT_EQ(ListingOf(row.builder.Build()), row.expected) << row.what;
}

TEST(StreamParsing, ADictionaryEndsWithTheStream) {
  const Bytes dictionary = Dictionary(Names16{{2, u"two"}, {3, u"four"}});
  Bytes counted = dictionary;
  Store(counted.data(), 0xFFFFFFFF, 4, ByteOrder::kLittle);
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4)).Add(3, Value(3, 1, 4)).Add(0, counted);
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[two]2=1", "3[four]2=1"));
  Bytes stream = builder.Build();
  stream.resize(stream.size() - 1);  // the padding
  EXPECT_THAT(ListingOf(stream), ElementsAre("2[two]2=1", "3[four]2=1"));
  stream.resize(stream.size() - 2);
  EXPECT_THAT(ListingOf(stream), ElementsAre("2[two]2=1", "3[]2=1"));
}

TEST(StreamParsing, TheLastNamePropertyNamesTheSet) {
  PropertySetBuilder builder;
  EXPECT_EQ(Parse(builder.Build())->GetPropertyStorageName().toUtf8(), "");
  builder.Add(255, Lpstr("Parts")).Add(2, Lpstr("x"));
  EXPECT_EQ(Parse(builder.Build())->GetPropertyStorageName().toUtf8(), "Parts");
  builder.Section(kUserDefinedId).Add(255, Value(3, 17, 4)).Add(255, Value(0, 17, 4));
  EXPECT_EQ(Parse(builder.Build())->GetPropertyStorageName().toUtf8(), "17");
}

TEST(StreamParsing, TheLocaleIsAnUnsignedLong) {
  PropertySetBuilder builder;
  builder.Add(0x80000000, Value(19, 0x0407, 4));
  EXPECT_EQ(Parse(builder.Build())->GetLocaleID(), 0x0407U);
  builder.Add(0x80000000, Value(3, 0x0409, 4));
  EXPECT_EQ(Parse(builder.Build())->GetLocaleID(), 0x0407U);
}

PropertySetBuilder Rich() {
  PropertySetBuilder builder;
  builder.Add(1, CodePage(1252)).Add(2, Lpstr("title")).Add(3, Lpwstr(u"wide"));
  builder.Add(4, Value(5, 1, 8)).Add(255, Lpstr("name"));
  builder.Section(kUserDefinedId).Add(0, Dictionary(Names8{{2, "two"}, {3, "three"}}));
  builder.Add(1, CodePage(65001)).Add(2, Value(64, 1, 8)).Add(3, Value(72, Bytes(16, 1)));
  return builder;
}

/// Wherever a stream ends it is parsed, and the values before the end are as in the whole one.
TEST(StreamParsing, EveryLengthIsParsed) {
  const Bytes whole = Rich().Build();
  const std::vector<std::string> all = ListingOf(whole);
  ASSERT_EQ(all.size(), 8U);
  std::size_t before = 0;
  for (std::size_t length = 2; length <= whole.size(); ++length) {
    const auto end = whole.begin() + static_cast<std::ptrdiff_t>(length);
    const std::vector<std::string> cut = ListingOf(Bytes(whole.begin(), end));
    EXPECT_LE(before, cut.size()) << length;
    before = cut.size();
  }
  EXPECT_EQ(before, all.size());
}

TEST(StreamParsing, EveryByteMayBeAnyOther) {
  const Bytes whole = Rich().Build();
  for (std::size_t at = 4; at < whole.size(); ++at) {
    for (const int flip : {0x01, 0x80, 0xFF}) {
      Bytes changed = whole;
      changed[at] = static_cast<unsigned char>(changed[at] ^ flip);
      EXPECT_TRUE(Parse(changed).IsValid()) << at;
    }
  }
}

/// From 2 GiB on a length is negative as an int.
TEST(StreamParsing, LengthsAreUnsigned) {
  constexpr std::size_t kLength = 0x80000100;
  void* const memory = mmap(nullptr, kLength, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) GTEST_SKIP() << "no address space for 2 GiB";
  auto* const bytes = static_cast<unsigned char*>(memory);
  std::ranges::copy(PropertySetBuilder().AddAt(2, 0x80000000).Build(), bytes);
  std::ranges::copy(Value(3, 7, 4), bytes + 48 + 0x80000000);
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  EXPECT_TRUE(set->InitializeFromBuffer(bytes, static_cast<int>(kLength)));
  munmap(memory, kLength);
  EXPECT_EQ(Describe(set->GetPropertyWithID(2)), "2[]2=7");
}

TEST(StreamParsing, TheStepsCanBeTakenOneByOne) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("two")).Add(0, Dictionary(Names16{{3, u"three"}})).Add(3, Value(9, 0, 4));
  builder.Section(kUserDefinedId).Add(2, Lpstr("second"));
  Bytes stream = builder.Build();
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  ASSERT_TRUE(set->InitializeFromBuffer(stream.data(), static_cast<int>(stream.size())));
  unsigned char* const start = stream.data() + 68;
  unsigned char* cursor = start + 8;
  const KELXPropertyHandle two(set->ReadPropertyFromSection(cursor, start));
  EXPECT_EQ(Describe(two), "2[]1=two");
  EXPECT_EQ(set->ReadPropertyFromSection(cursor, start), nullptr);
  EXPECT_EQ(set->ReadPropertyFromSection(cursor, start), nullptr);
  EXPECT_EQ(cursor, start + 8 + 3 * 8);
  set->ReadExtendedSection();
  set->MergePropertyArray();
  EXPECT_THAT(Listing(set->GetPropertyArray()),
              ElementsAre("2[]1=two", "2[]1=second", "2[]1=second"));
}

TEST(StreamParsing, ReadingAgainUpdatesTheFirstOfEachIdentifier) {
  PropertySetBuilder builder;
  builder.Add(2, Lpstr("first")).Section(kUserDefinedId).Add(2, Lpstr("second"));
  const Bytes stream = builder.Build();
  const KELIPropertyStorageHandle set = Parse(stream);
  EXPECT_TRUE(set->InitializeFromBuffer(stream.data(), static_cast<int>(stream.size())));
  EXPECT_THAT(Listing(set->GetPropertyArray()),
              ElementsAre("2[]1=first", "2[]1=second", "2[]1=second"));
}

TEST(StreamParsing, AddOrUpdateReplacesTheFirstOfItsIdentifier) {
  const KELIPropertyStorageHandle set(new KELIPropertyStorage);
  const auto make = [](unsigned long id, const wchar_t* text) {
    KELXString name;
    KELXString value(text);
    auto* const property = new KELXProperty(name, ValueTypeText, value);
    property->SetID(id);
    return property;
  };
  KELXDynamicArray<KELXPropertyHandle> array;
  array.Add(KELXPropertyHandle(nullptr));
  set->AddOrUpdateProperty(nullptr, array);
  set->AddOrUpdateProperty(make(2, L"a"), array);
  set->AddOrUpdateProperty(make(3, L"b"), array);
  set->AddOrUpdateProperty(make(2, L"c"), array);
  EXPECT_THAT(Listing(array), ElementsAre("none", "2[]1=c", "3[]1=b"));
}

}  // namespace
}  // namespace kelx::test
