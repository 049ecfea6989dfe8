#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/KELXHashOption.h"
#include "tests/property/PropertySetListing.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;

using Names = std::vector<std::pair<std::uint32_t, std::u16string>>;

const Bytes kNames = Dictionary(Names{{2, u"Title"}, {3, u"メモ"}});

PropertySetBuilder OneSection() {
  PropertySetBuilder builder;
  builder.Add(0, kNames).Add(2, Value(3, 1, 4)).Add(3, Value(3, 2, 4)).Add(4, Value(3, 3, 4));
  return builder;
}

PropertySetBuilder TwoSections() {
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4)).Add(3, Value(3, 2, 4)).Section(kUserDefinedId);
  builder.Add(0, kNames).Add(2, Value(3, 3, 4)).Add(3, Value(3, 4, 4));
  return builder;
}

TEST(DisplayNames, OneSectionGetsThem) {
  for (const bool standard : {false, true}) {
    KELXHashOption::SetUseStdHash(standard);
    EXPECT_THAT(ListingOf(OneSection().Build()),
                ElementsAre("2[Title]2=1", "3[メモ]2=2", "4[]2=3"));
    EXPECT_THAT(ListingOf(TwoSections().Build()),
                ElementsAre("2[]2=1", "3[]2=2", "2[Title]2=3", "3[メモ]2=4"));
    KELXHashOption::SetUseStdHash(false);
  }
}

TEST(DisplayNames, OfTheFirstSectionNameTheSecond) {
  PropertySetBuilder builder = OneSection();
  builder.Section(kUserDefinedId).Add(3, Value(3, 9, 4));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[]2=1", "3[]2=2", "4[]2=3", "3[メモ]2=9"));
}

TEST(DisplayNames, OfASecondSectionWithoutPropertiesNameTheFirst) {
  PropertySetBuilder builder;
  builder.Add(2, Value(3, 1, 4)).Add(5, Value(3, 2, 4));
  builder.Section(kUserDefinedId).Add(0, kNames);
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("2[Title]2=1", "5[]2=2"));
}

TEST(DisplayNames, AppliesToAnyArrayAndExchangesTheProperty) {
  const KELIPropertyStorageHandle set = Parse(OneSection().Build());
  KELXDynamicArray<KELXPropertyHandle> array;
  array.Add(KELXPropertyHandle(nullptr));
  array.Add(Parse(TwoSections().Build())->GetPropertyWithID(3));
  const KELXPropertyHandle old = *array.At(1);
  set->AddPropertyDisplayName(array);
  EXPECT_THAT(Listing(array), ElementsAre("none", "3[メモ]2=2"));
  EXPECT_EQ(Describe(old), "3[]2=2");
}

TEST(DisplayNames, MergingAgainAppendsAgain) {
  const KELIPropertyStorageHandle set = Parse(TwoSections().Build());
  const KELXDynamicArray<KELXPropertyHandle> before = set->GetPropertyArray();
  set->MergeDisplayNames();
  EXPECT_EQ(before.Count(), 4);
  EXPECT_THAT(
      Listing(set->GetPropertyArray()),
      ElementsAre("2[]2=1", "3[]2=2", "2[Title]2=3", "3[メモ]2=4", "2[Title]2=3", "3[メモ]2=4"));
}

TEST(DisplayNames, PropertiesAreFoundByIdentifier) {
  PropertySetBuilder builder = TwoSections();
  builder.Add(7, Value(3, 5, 4)).Add(0x80000000, Value(19, 6, 4));
  const KELIPropertyStorageHandle set = Parse(builder.Build());
  EXPECT_EQ(Describe(set->GetPropertyWithID(2)), "2[]2=1");
  EXPECT_EQ(Describe(set->GetPropertyWithID(7)), "7[]2=5");
  EXPECT_EQ(Describe(set->GetPropertyWithID(8)), "none");
  EXPECT_EQ(Describe(set->GetPropertyWithID(static_cast<int>(0x80000000))), "none");
}

TEST(DisplayNames, PropertiesAreFoundByName) {
  const KELIPropertyStorageHandle set = Parse(TwoSections().Build());
  EXPECT_EQ(Describe(set->GetPropertyWithName(KELXString(L"Title"))), "2[Title]2=3");
  EXPECT_EQ(Describe(set->GetPropertyWithName(KELXString(L"メモ"))), "3[メモ]2=4");
  EXPECT_EQ(Describe(set->GetPropertyWithName(KELXString(L"title"))), "none");
  EXPECT_EQ(Describe(set->GetPropertyWithName(KELXString())), "2[]2=1");
}

TEST(DisplayNames, TheLastSectionIdentifiesTheSet) {
  struct Case {
    Bytes stream;
    const char* id;
  };
  PropertySetBuilder one({.sectionCount = 1});
  PropertySetBuilder three({.sectionCount = 3});
  one.Section(kUserDefinedId);
  three.Section(kUserDefinedId);
  for (const Case& row : {Case{OneSection().Build(), kSummaryText},
                          {TwoSections().Build(), kUserDefinedText},
                          {one.Build(), kSummaryText},
                          {three.Build(), kSummaryText}}) {
    Bytes id(16);
    Parse(row.stream)->GetPropertyStorageID(id.data());
    EXPECT_EQ(KELIPropertyStorage::FormatCLSID(id.data()).toUtf8(), row.id);
  }
}

}  // namespace
}  // namespace kelx::test
