#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/KELXHashMap.h"
#include "tests/property/PropertySetListing.h"
#include "tests/support/PropertySetBuilder.h"

// Each of these took minutes or gigabytes if its cost did not follow the length of the stream.

namespace kelx::test {
namespace {

using testing::ElementsAre;

using Names8 = std::vector<std::pair<std::uint32_t, std::string>>;
using Names16 = std::vector<std::pair<std::uint32_t, std::u16string>>;

constexpr std::uint32_t kMany = 100'000;

KELXDynamicArray<KELXPropertyHandle> PropertiesOf(const Bytes& stream) {
  return Parse(stream)->GetPropertyArray();
}

TEST(HostileStream, CountsDoNotOutlastTheStream) {
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 7, 4));
  Bytes stream = builder.Build();
  Store(stream.data() + 52, 0xFFFFFFFF, 4, ByteOrder::kLittle);
  // What follows the table is read as part of it: an entry of the identifier 3, beyond the end.
  EXPECT_THAT(ListingOf(stream), ElementsAre("2[]2=7"));
}

TEST(HostileStream, ManyPropertiesWithOneIdentifierOrMany) {
  PropertySetBuilder distinct;
  PropertySetBuilder equal;
  distinct.Add(2, Value(3, 1, 4));
  equal.Add(2, Value(3, 1, 4));
  for (std::uint32_t i = 1; i < kMany; ++i) {
    distinct.AddShared(0xFFFFFFFF - 2 * i, 0);
    equal.AddShared(2, 0);
  }
  const auto properties = PropertiesOf(distinct.Build());
  EXPECT_EQ(properties.Count(), static_cast<int>(kMany));
  EXPECT_EQ(Describe(*properties.At(kMany - 1)), "fffcf2c1[]2=1");
  EXPECT_THAT(ListingOf(equal.Build()), ElementsAre("2[]2=1"));
}

TEST(HostileStream, ATableHasAMillionEntriesAtMost) {
  constexpr std::uint32_t kMost = 1U << 20;
  Bytes table(8 * (kMost + 10));
  for (std::uint32_t i = 0; i < kMost + 10; ++i) {
    Store(table.data() + 8 * i, i < kMost - 1 ? 2 : i, 4, ByteOrder::kLittle);
    Store(table.data() + 8 * i + 4, 8 + table.size(), 4, ByteOrder::kLittle);
  }
  Bytes stream = PropertySetBuilder().Build();
  Store(stream.data() + 52, kMost + 10, 4, ByteOrder::kLittle);
  EXPECT_THAT(ListingOf(Join({stream, table, Value(3, 5, 4)})),
              ElementsAre("2[]2=5", "fffff[]2=5"));
}

TEST(HostileStream, OneLongStringNamedByManyIsDecodedOnce) {
  PropertySetBuilder builder;
  builder.Add(1, CodePage(65001)).Add(2, Lpstr(std::string(kMany, 'x')));
  for (std::uint32_t id = 3; id < kMany; ++id) builder.AddShared(id, 1);
  const auto properties = PropertiesOf(builder.Build());
  ASSERT_EQ(properties.Count(), static_cast<int>(kMany) - 1);
  EXPECT_EQ(ValueLength(*properties.At(static_cast<int>(kMany) - 2)), std::size_t{kMany});
}

/// Dictionaries of one entry each, whose name runs over all that follow to the end of the stream.
TEST(HostileStream, OverlappingNamesHaveABudget) {
  constexpr std::uint32_t kNames = 400;
  constexpr std::uint32_t kFirstId = 0x10001;  // no 16-bit half of any number is zero
  Bytes body(12 * kNames + 2 * (kFirstId + kNames), 'x');
  PropertySetBuilder builder;
  for (std::uint32_t i = 0; i < kNames; ++i) {
    const std::size_t units = (body.size() - 12 * i - 12) / 2;
    Store(body.data() + 12 * i, 0x10001, 4, ByteOrder::kLittle);
    Store(body.data() + 12 * i + 4, kFirstId + i, 4, ByteOrder::kLittle);
    Store(body.data() + 12 * i + 8, units, 4, ByteOrder::kLittle);
  }
  const std::size_t longest = (body.size() - 12) / 2;
  builder.Add(0, body).Add(kFirstId, Value(3, 1, 4));
  for (std::uint32_t i = 1; i < kNames; ++i) {
    builder.AddShared(0, 0, 12 * i).AddShared(kFirstId + i, 1);
  }
  const Bytes stream = builder.Build();
  const auto properties = PropertiesOf(stream);
  ASSERT_EQ(properties.Count(), static_cast<int>(kNames));
  std::size_t characters = 0;
  for (const KELXPropertyHandle& property : properties) {
    KELXString name;
    KELXString value;
    int kind = 0;
    property->GetData(name, value, kind);
    for (const char byte : name.toUtf8()) characters += (byte & 0xC0) != 0x80 ? 1 : 0;
  }
  const std::size_t budget = (64U << 20) + 16 * stream.size();
  EXPECT_LE(4 * characters, budget);
  EXPECT_GT(4 * characters, budget - 4 * longest);
  EXPECT_EQ(Describe(*properties.At(kNames - 1)).substr(5), "[]2=1");
}

TEST(HostileStream, OneDictionaryNamedByManyIsReadOnce) {
  Names16 names;
  for (std::uint32_t id = 2; id < kMany; ++id) names.push_back({id, u"n"});
  PropertySetBuilder builder;
  builder.Add(0, Dictionary(names)).Add(kMany - 1, Value(3, 1, 4));
  for (std::uint32_t i = 0; i < kMany; ++i) builder.AddShared(0, 0);
  builder.Add(0, Dictionary(Names16{{kMany, u"last"}})).AddShared(kMany, 1);
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("1869f[n]2=1", "186a0[last]2=1"));
}

/// The many begin each 8 bytes after the one before and run on to the end.
TEST(HostileStream, AllDictionariesTogetherHaveSoManyEntries) {
  constexpr std::uint32_t kMost = 1U << 18;
  Bytes body;
  for (std::uint32_t i = 0; i < kMany; ++i) {
    const Bytes entry = Join({Little(0xFFFFFFFF, 4), Little(0, 4)});
    body.insert(body.end(), entry.begin(), entry.end());
  }
  PropertySetBuilder overlapping;
  overlapping.Add(0, Dictionary(Names16{{2, u"two"}}));
  overlapping.Add(9, Dictionary(Names16{{3, u"three"}})).Add(0, body);
  for (std::uint32_t i = 1; i < kMany; ++i) overlapping.AddShared(0, 2, 8 * i);
  overlapping.AddShared(0, 1);
  overlapping.Add(2, Value(3, 1, 4)).Add(3, Value(3, 1, 4));
  EXPECT_THAT(ListingOf(overlapping.Build()), ElementsAre("2[two]2=1", "3[]2=1"));

  Names16 names;
  for (std::uint32_t id = 2; id <= kMost + 2; ++id) names.push_back({id, u"n"});
  PropertySetBuilder builder;
  builder.Add(0, Dictionary(names)).Add(kMost + 1, Value(3, 1, 4)).Add(kMost + 2, Value(3, 1, 4));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("40001[n]2=1", "40002[]2=1"));
}

TEST(HostileStream, LongNumbersAreSharedAndHaveABudget) {
  const Bytes longest = Value(5, 0x7FEFFFFFFFFFFFFF, 8);
  PropertySetBuilder shared;
  PropertySetBuilder distinct;
  shared.Add(2, longest);
  distinct.Add(2, longest);
  for (std::uint32_t id = 3; id < kMany; ++id) {
    shared.AddShared(id, 0);
    distinct.Add(id, longest);
  }
  const int last = static_cast<int>(kMany) - 3;
  EXPECT_EQ(ValueLength(*PropertiesOf(shared.Build()).At(last)), 259U);
  const auto properties = PropertiesOf(distinct.Build());
  EXPECT_EQ(ValueLength(*properties.At(0)), 259U);
  EXPECT_EQ(Describe(*properties.At(last)), "1869f[]3=");
}

TEST(HostileStream, NamesWhoseIdentifiersCollide) {
  constexpr unsigned int kSlots = 17U << 13;
  Names8 names;
  for (unsigned int id = 2; names.size() < kMany; ++id) {
    if (KELXHashMap<unsigned int, KELXString>::keyHasher()(id) % kSlots >= kSlots / 64) continue;
    names.push_back({id, std::to_string(id)});
  }
  const auto [lastId, lastName] = names.back();
  names.push_back({lastId, "late"});
  names.push_back({names.front().first, "late"});
  PropertySetBuilder builder;
  builder.Add(1, CodePage(65001)).Add(0, Dictionary(names)).Add(lastId, Value(3, 1, 4));
  for (const auto& [id, name] : names) builder.AddShared(id, 2);
  const auto properties = PropertiesOf(builder.Build());
  ASSERT_EQ(properties.Count(), static_cast<int>(kMany) + 1);
  for (const KELXPropertyHandle& property : properties) {
    if (property->GetID() == 1) continue;
    ASSERT_STREQ(property->GetName(), std::to_string(property->GetID()).c_str());
  }
}

TEST(HostileStream, CodePagesBeyondTheMostReadAsWindows1252) {
  PropertySetBuilder builder;
  builder.Add(1, CodePage(1251)).Add(2, Lpstr("\xE9"));
  for (std::uint16_t i = 0; i < 255; ++i) {
    builder.Add(1, CodePage(static_cast<std::uint16_t>(30000 + i)));
    builder.Add(100U + i, Lpstr("\xE9"));
  }
  builder.Add(1, CodePage(1253)).Add(3, Lpstr("\xE9")).Add(1, CodePage(1251)).Add(4, Lpstr("\xE9"));
  const KELIPropertyStorageHandle set = Parse(builder.Build());
  EXPECT_EQ(Describe(set->GetPropertyWithID(2)), "2[]1=й");
  EXPECT_EQ(Describe(set->GetPropertyWithID(3)), "3[]1=é");
  EXPECT_EQ(Describe(set->GetPropertyWithID(4)), "4[]1=й");
}

}  // namespace
}  // namespace kelx::test
