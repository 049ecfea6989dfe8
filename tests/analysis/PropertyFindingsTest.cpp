#include <gtest/gtest.h>

#include "tests/analysis/ControlFile.h"

namespace kelx::test {
namespace {

/// A property-set stream, and what is found in it.
struct PropertyCase {
  const char* name;
  Bytes stream;
  Codes codes;
};

void PrintTo(const PropertyCase& row, std::ostream* out) { *out << row.name; }

class PropertyFindingsTest : public testing::TestWithParam<PropertyCase> {};

TEST_P(PropertyFindingsTest, TellDamage) {
  EXPECT_EQ(CodesOf(Control({}, GetParam().stream)), GetParam().codes);
}

Bytes Cut(Bytes bytes, std::size_t less) {
  bytes.resize(bytes.size() - less);
  return bytes;
}

Bytes Changed(Bytes bytes, std::size_t offset, unsigned char value) {
  bytes[offset] = value;
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Streams, PropertyFindingsTest,
    testing::Values(
        PropertyCase{"TwoSections",
                     Properties().Section(kUserDefinedId, 8).Add(1, CodePage(1200)).Build(),
                     {}},
        PropertyCase{"CodePageOfTheFirstSection",
                     Properties()
                         .Section(kUserDefinedId)
                         .Add(0, Dictionary({{2, std::string("A long name")}}))
                         .Build(),
                     {}},
        PropertyCase{
            "Version", PropertySetBuilder({.formatVersion = 1}).Build(), {"property-set-rejected"}},
        PropertyCase{"HeaderCut", Cut(PropertySetBuilder().Build(), 9), {"property-set-cut"}},
        PropertyCase{"SectionCut", Cut(PropertySetBuilder().Build(), 1), {"property-set-cut"}},
        PropertyCase{"SectionCount",
                     PropertySetBuilder({.sectionCount = 3}).Build(),
                     {"property-section-count"}},
        PropertyCase{"SectionMoved",
                     Changed(Join({Properties().Build(), Bytes(64)}), 44, 52),
                     {"property-section-moved", "property-type-unknown"}},
        PropertyCase{"PropertyCount",
                     Changed(Properties().Build(), 54, 1),
                     {"property-set-cut", "property-type-unknown", "property-value-outside"}},
        PropertyCase{
            "ValueOutside", Properties().AddAt(3, 5000).Build(), {"property-value-outside"}},
        PropertyCase{"TextOutside",
                     Properties().Add(3, Value(30, 5000, 4)).Build(),
                     {"property-value-outside"}},
        PropertyCase{"DictionaryOutside",
                     PropertySetBuilder().Add(0, Little(5000, 4)).Build(),
                     {"property-value-outside"}},
        PropertyCase{
            "Type", Properties().Add(3, Value(71, 0, 4)).Build(), {"property-type-unknown"}},
        PropertyCase{
            "TooLarge", Join({Properties().Build(), Bytes(17 << 20)}), {"property-set-too-large"}}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace kelx::test
