#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "tests/property/PropertySetListing.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {
namespace {

using testing::ElementsAre;

std::string Show(const Bytes& value) {
  const std::vector<std::string> listing = ListingOf(PropertySetBuilder().Add(9, value).Build());
  return listing.empty() ? "none" : listing.front().substr(3);
}

Bytes Float(float value) { return Value(4, std::bit_cast<std::uint32_t>(value), 4); }
Bytes Double(double value) { return Value(5, std::bit_cast<std::uint64_t>(value), 8); }
Bytes Bstr(std::uint32_t byteCount, std::u16string_view units) {
  return Value(8, Join({Little(byteCount, 4), Units(units)}));
}

TEST(ValueType, EachHasItsKindAndText) {
  struct Case {
    Bytes value;
    const char* expected;
  };
  const std::vector<Case> cases = {
      {Value(2, 0x7FFF, 2), "2=32767"},
      {Value(2, 0xFDE9, 2), "2=-535"},
      {Value(3, 0x80000000, 4), "2=-2147483648"},
      {Value(3, 0xFFFFFFFF, 4), "2=-1"},
      {Float(1.5F), "3=1.500000"},
      {Float(std::nanf("")), "3=nan"},
      {Double(-0.1), "3=-0.100000"},
      {Double(HUGE_VAL), "3=inf"},
      {Value(6, 123456, 8), "1=$12.345600"},
      {Value(6, static_cast<std::uint64_t>(-1), 8), "1=$-0.000100"},
      {Bstr(4, std::u16string_view(u"ab\0", 3)), "1=ab"},
      {Value(10, 0x80004005, 4), "2=0x80004005"},
      {Value(10, 0xAB, 4), "2=0x000000AB"},
      {Value(11, 0xFFFF, 2), "4=True"},
      {Value(11, 1, 2), "4=False"},
      {Value(17, 200, 1), "1=200"},
      {Value(18, 65535, 2), "2=65535"},
      {Value(19, 0xFFFFFFFF, 4), "2=4294967295"},
      {Value(20, 0x8000000000000000, 8), "2=-9223372036854775808"},
      {Value(20, 7, 8), "2=7"},
      {Value(21, 0xFFFFFFFFFFFFFFFF, 8), "2=18446744073709551615"},
      {Lpstr("abc\xE9"), "1=abcé"},
      {Lpwstr(u"z\u4e2d\U0001F600"), "1=z中😀"},
      {Value(64, 2'650'467'744'000'000'000, 8), "5=10000-01-01T00:00:00Z"},
      {Value(64, 0, 8), "5=1601-01-01T00:00:00Z"},
      {Value(72, Bytes(kSummaryId.begin(), kSummaryId.end())),
       "2={F29F85E0-4FF9-1068-AB91-08002B27B3D9}"},
  };
  for (const Case& row : cases) EXPECT_EQ(Show(row.value), row.expected);
}

TEST(ValueType, OthersGiveNoProperty) {
  const std::vector<std::uint32_t> served = {2,  3,  4,  5,  6,  8,  10, 11, 17,
                                             18, 19, 20, 21, 30, 31, 64, 72};
  for (std::uint32_t type = 0; type < 300; ++type) {
    const bool isServed = std::ranges::find(served, type) != served.end();
    EXPECT_EQ(Show(Value(type, Bytes(32))) == "none", !isServed) << type;
  }
  for (const std::uint32_t type : {0x10003U, 0x80000003U, 0x1003U, 0x2003U, 0x101EU}) {
    EXPECT_EQ(Show(Value(type, 1, 4)), "none") << type;
  }
}

/// A stream that ends inside a value still has the property, with what reads as zero.
TEST(ValueType, ACutValueIsZero) {
  struct Case {
    std::uint32_t type;
    std::size_t size;
    const char* expected;
  };
  const Case cases[] = {
      {2, 2, "2=0"},
      {3, 4, "2=0"},
      {4, 4, "3=0.000000"},
      {5, 8, "3=0.000000"},
      {6, 8, "1=$0.000000"},
      {10, 4, "2=0x00000000"},
      {11, 2, "4=False"},
      {17, 1, "1=0"},
      {18, 2, "2=0"},
      {19, 4, "2=0"},
      {20, 8, "2=0"},
      {21, 8, "2=0"},
      {72, 16, "2={00000000-0000-0000-0000-000000000000}"},
  };
  for (const Case& row : cases) {
    EXPECT_NE(Show(Value(row.type, Bytes(row.size, 0xFF))), row.expected) << row.type;
    for (std::size_t held = 0; held < row.size; ++held) {
      EXPECT_EQ(Show(Value(row.type, Bytes(held, 0xFF))), row.expected) << row.type << ' ' << held;
    }
  }
  // The two halves of a date are two reads.
  EXPECT_EQ(Show(Value(64, Bytes(3, 0xFF))), "5=1601-01-01T00:00:00Z");
  EXPECT_EQ(Show(Value(64, Bytes(4, 0xFF))), "5=1601-01-01T00:07:09Z");
  EXPECT_EQ(Show(Value(64, Bytes(7, 0xFF))), "5=1601-01-01T00:07:09Z");
}

TEST(ValueType, ACutTypeLeavesThePropertyOut) {
  PropertySetBuilder builder;
  builder.Add(3, Value(3, 1, 4)).Add(4, Little(3, 3));
  EXPECT_THAT(ListingOf(builder.Build()), ElementsAre("3[]2=1"));
}

TEST(ValueType, TextsThatDoNotFitAreEmpty) {
  struct Case {
    Bytes value;
    const char* expected;
  };
  const std::vector<Case> cases = {
      {Value(30, Join({Little(2, 4), {'a', 'b'}})), "1=ab"},
      {Value(30, Join({Little(3, 4), {'a', 'b'}})), "1="},
      {Value(30, Join({Little(0xFFFFFFFF, 4), {'a', 'b'}})), "1="},
      {Value(30, Bytes{1, 0}), "1="},
      {Value(31, Join({Little(2, 4), Units(u"ab")})), "1=ab"},
      {Value(31, Join({Little(3, 4), Units(u"ab")})), "1="},
      {Value(31, Join({Little(0x80000001, 4), Units(u"ab")})), "1="},
      {Value(31, Join({Little(0, 4), Units(u"ab")})), "1="},
      {Bstr(4, u"ab"), "1="},  // needs one unit more than its count
      {Bstr(3, u"ab"), "1=ab"},
      {Bstr(2, u"ab"), "1=ab"},  // the unit after the count counts too
      {Bstr(0, u"ab"), "1=a"},
      {Bstr(0xFFFFFFFF, u"ab"), "1="},
      {Value(8, Bytes{2, 0}), "1="},
  };
  for (const Case& row : cases) EXPECT_EQ(Show(row.value), row.expected);
}

TEST(ValueType, TextsEndAtTheFirstNul) {
  EXPECT_EQ(Show(Value(30, Join({Little(5, 4), {'a', 0, 'b', 'c', 0}}))), "1=a");
  EXPECT_EQ(Show(Value(31, Join({Little(3, 4), Units({u"a\0b", 3})}))), "1=a");
  EXPECT_EQ(Show(Value(31, Join({Little(2, 4), Units({u"\0b", 2})}))), "1=");
  EXPECT_EQ(Show(Value(31, Join({Little(2, 4), Units({u"\xD800z", 2})}))), "1=\uFFFDz");
}

}  // namespace
}  // namespace kelx::test
