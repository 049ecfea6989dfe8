#include "property/KELXStructuredStorageUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "storage/KELIStorage.h"
#include "storage/KELStgFunctions.h"
#include "tests/property/PropertySetListing.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Utils = KELXStructuredStorageUtils;

KELIStorage* OpenSample(const std::string& name) {
  return KELStgOpenStorageRoot(KELXFilePath((KELX_TEST_DATA "/" + name).c_str()));
}

PropertySetBuilder Sample() {
  PropertySetBuilder builder;
  builder.Add(1, CodePage(65001)).Add(2, Value(11, 0xFFFF, 2)).Add(255, Lpstr("set"));
  builder.Add(0, Dictionary(std::vector<std::pair<std::uint32_t, std::string>>{{2, "Größe"}}));
  return builder;
}

TEST(StructuredStorageUtils, NullObjectsLeaveEveryOutputAlone) {
  KELXString text(L"kept");
  int type = 7;
  int mark = 0;
  auto* const kept = reinterpret_cast<KELIPropertyStorage*>(&mark);
  auto* const keptSet = reinterpret_cast<KELIPropertySetStorage*>(&mark);
  KELIPropertyStorage* set = kept;
  KELIPropertySetStorage* sets = keptSet;
  KELXPropertyContainerHandle container(nullptr);
  KELXDynamicArray<KELIPropertyStorage*> all;
  const unsigned char id[16] = {};
  EXPECT_EQ(Utils::GetValueWithId(2, nullptr, text, type), 0x100000b);
  EXPECT_EQ(Utils::GetValueWithName(text, nullptr, text, type), 0x100000b);
  EXPECT_EQ(Utils::GetPropertySetName(0, nullptr, text), 0x100000b);
  EXPECT_EQ(Utils::GetAllPropertySets(nullptr, container), 0x100000b);
  EXPECT_EQ(Utils::OpenPropertySetWithId(nullptr, id, set), 0x100000b);
  EXPECT_EQ(Utils::OpenPropertySetWithName(nullptr, 0, text, set), 0x100000b);
  EXPECT_EQ(Utils::OpenAllPropertyStorages(nullptr, all), 0x100000b);
  EXPECT_EQ(Utils::OpenPropertySetStorage(nullptr, sets), 0x1000008);
  EXPECT_EQ(text.toUtf8(), "kept");
  EXPECT_EQ(type, 7);
  EXPECT_EQ(set, kept);
  EXPECT_EQ(sets, keptSet);
  EXPECT_FALSE(container.IsValid());
  EXPECT_EQ(all.Count(), 0);
  EXPECT_TRUE(Utils::ClosePropertySetStorage(nullptr));
  EXPECT_TRUE(Utils::ClosePropertyStorage(nullptr));
}

TEST(StructuredStorageUtils, ValuesAreFoundByIdentifierAndName) {
  const KELIPropertyStorageHandle set = Parse(Sample().Build());
  KELXString value;
  int type = 0;
  EXPECT_EQ(Utils::GetValueWithId(2, set, value, type), 0);
  EXPECT_EQ(value.toUtf8(), "True");
  EXPECT_EQ(type, 4);
  EXPECT_EQ(Utils::GetValueWithId(3, set, value, type), 0x1000001);
  EXPECT_EQ(value.toUtf8(), "");
  EXPECT_EQ(type, -1);
  EXPECT_EQ(Utils::GetValueWithName(KELXString(L"Größe"), set, value, type), 0);
  EXPECT_EQ(value.toUtf8(), "True");
  EXPECT_EQ(type, 4);
  EXPECT_EQ(Utils::GetValueWithName(KELXString(L"größe"), set, value, type), 0x1000001);
  EXPECT_EQ(value.toUtf8(), "");
  EXPECT_EQ(type, -1);
  EXPECT_EQ(Utils::GetValueWithName(KELXString(), set, value, type), 0);
  EXPECT_EQ(value.toUtf8(), "-535");
}

TEST(StructuredStorageUtils, ContainersHoldAllPropertiesAndTheName) {
  KELXPropertyContainerHandle container(nullptr);
  {
    const KELIPropertyStorageHandle set = Parse(Sample().Build());
    EXPECT_EQ(Utils::GetAllPropertySets(set, container), 0);
    KELXString name;
    EXPECT_EQ(Utils::GetPropertySetName(-1, set, name), 0);
    EXPECT_EQ(name.toUtf8(), "set");
  }
  EXPECT_EQ(container->GetPropertyName().toUtf8(), "set");
  EXPECT_THAT(Listing(container->GetProperties()),
              ElementsAre("1[]2=-535", "2[Größe]4=True", "ff[]1=set"));
  const KELIPropertyStorageHandle none = Parse(PropertySetBuilder().Build());
  EXPECT_EQ(Utils::GetAllPropertySets(none, container), 0);
  EXPECT_EQ(container->GetProperties().Count(), 0);
  EXPECT_EQ(container->GetPropertyName().toUtf8(), "");
}

TEST(StructuredStorageUtils, OpeningFindsNothingInAnEmptyCollection) {
  const std::unique_ptr<KELIStorage> storage(OpenSample("nested.cfb"));
  ASSERT_TRUE(storage);
  KELIPropertySetStorage* sets = nullptr;
  ASSERT_EQ(Utils::OpenPropertySetStorage(storage.get(), sets), 0);
  KELIPropertyStorage* set = reinterpret_cast<KELIPropertyStorage*>(&sets);
  const unsigned char id[16] = {};
  EXPECT_EQ(Utils::OpenPropertySetWithId(storage.get(), id, set), 0x1000001);
  EXPECT_EQ(set, nullptr);
  set = reinterpret_cast<KELIPropertyStorage*>(&sets);
  EXPECT_EQ(Utils::OpenPropertySetWithName(sets, 0, KELXString(), set), 0x1000001);
  EXPECT_EQ(set, nullptr);
  KELXDynamicArray<KELIPropertyStorage*> all;
  EXPECT_EQ(Utils::OpenAllPropertyStorages(sets, all), 0x1000001);
  all.Add(nullptr);
  EXPECT_EQ(Utils::OpenAllPropertyStorages(sets, all), 0);
  EXPECT_TRUE(Utils::ClosePropertySetStorage(sets));
}

/// Opens, asks and closes as a caller does; the storage goes first.
std::vector<std::string> AllOf(const std::string& name) {
  std::unique_ptr<KELIStorage> storage(OpenSample(name));
  EXPECT_TRUE(storage) << name;
  if (!storage) return {};
  KELIPropertySetStorage* sets = nullptr;
  EXPECT_EQ(Utils::OpenPropertySetStorage(storage.get(), sets), 0);
  KELXDynamicArray<KELIPropertyStorage*> opened;
  Utils::OpenAllPropertyStorages(sets, opened);
  storage.reset();
  Utils::ClosePropertySetStorage(sets);
  std::vector<std::string> all;
  for (KELIPropertyStorage* const set : opened) {
    KELXPropertyContainerHandle container(nullptr);
    EXPECT_EQ(Utils::GetAllPropertySets(set, container), 0);
    Utils::ClosePropertyStorage(set);
    for (const std::string& line : Listing(container->GetProperties())) all.push_back(line);
  }
  return all;
}

TEST(StructuredStorageUtils, Samples) {
  EXPECT_THAT(
      AllOf("metadata.doc"),
      ElementsAre("1[]2=-535", "2[]1=A title", "3[]1=A subject", "4[]1=Anna Writer",
                  "5[]1=alpha, beta, gamma", "6[]1=First line.\nSecond line.", "8[]1=Ben Editor",
                  "9[]1=17", "a[]5=1601-01-01T01:02:03Z", "b[]5=1601-01-01T00:00:00Z",
                  "c[]5=2021-03-04T05:06:07Z", "d[]5=2022-11-30T23:59:58Z", "1[]2=-535",
                  "1[]2=-535", "2[Checked]4=True", "3[Count]3=42.000000",
                  "4[Due]5=2024-02-29T12:00:00Z", "5[Größe]3=12.500000",
                  "6[Megjegyzés]1=árvíztűrő tükörfúrógép", "7[Negative]3=-7.000000",
                  "8[Project]1=Bridge survey", "9[Rejected]4=False", "a[メモ]1=橋の調査 第二版"));
  EXPECT_THAT(AllOf("unicode.doc"),
              testing::IsSupersetOf({"2[]1=Žluťoučký kůň", "3[]1=Отчёт о мосте",
                                     "4[]1=Łukasz Ørsted", "5[]1=橋, γέφυρα", "6[]1=تقرير عن الجسر",
                                     "2[Ключ]1=значение", "3[Ключ2]3=3.250000"}));
  EXPECT_THAT(AllOf("installer.msi"),
              ElementsAre("1[]2=1252", "2[]1=Installation Database", "3[]1=Sample package",
                          "4[]1=A. Writer", "5[]1=Installer", "6[]1=Own content", "7[]1=Intel;1033",
                          "9[]1={F84CCA9E-417A-4B77-8736-8316E650462A}",
                          "c[]5=2026-11-22T20:24:06Z", "d[]5=2026-11-22T20:24:06Z", "e[]2=100",
                          "f[]2=2", "12[]1=msitools 0.101", "13[]2=2"));
  EXPECT_EQ(AllOf("cells.xls").size(), 23U);
  EXPECT_EQ(AllOf("objects.doc").size(), 10U);
  EXPECT_EQ(AllOf("pictures.doc").size(), 13U);
  EXPECT_EQ(AllOf("nested.cfb").size(), 0U);
}

TEST(StructuredStorageUtils, OpensOneSetOfASample) {
  std::unique_ptr<KELIStorage> storage(OpenSample("metadata.doc"));
  ASSERT_TRUE(storage);
  const unsigned char summary[16] = {0xF2, 0x9F, 0x85, 0xE0, 0x4F, 0xF9, 0x10, 0x68,
                                     0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9};
  KELIPropertyStorage* set = nullptr;
  ASSERT_EQ(Utils::OpenPropertySetWithId(storage.get(), summary, set), 0);
  KELIPropertySetStorage* sets = nullptr;
  ASSERT_EQ(Utils::OpenPropertySetStorage(storage.get(), sets), 0);
  KELIPropertyStorage* unnamed = nullptr;
  ASSERT_EQ(Utils::OpenPropertySetWithName(sets, 5, KELXString(), unnamed), 0);
  EXPECT_EQ(unnamed, set);
  storage.reset();
  EXPECT_TRUE(Utils::ClosePropertySetStorage(sets));
  EXPECT_TRUE(Utils::ClosePropertyStorage(unnamed));
  KELXString title;
  int type = 0;
  EXPECT_EQ(Utils::GetValueWithId(2, set, title, type), 0);
  EXPECT_EQ(title.toUtf8(), "A title");
  EXPECT_EQ(type, 1);
  EXPECT_TRUE(Utils::ClosePropertyStorage(set));
}

}  // namespace
}  // namespace kelx::test
