#include "base/KELXHashMap.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "base/KELXString.h"

namespace {

using Map = KELXHashMap<unsigned int, KELXString>;

/// Turns the switch on for one test.
class StandardHash {
 public:
  StandardHash() { KELXHashOption::SetUseStdHash(true); }
  ~StandardHash() { KELXHashOption::SetUseStdHash(false); }
};

KELXString Text(unsigned int number) { return KELXString::fromUtf8(std::to_string(number)); }

std::string ValueOf(const Map& map, unsigned int key) {
  KELXString value(L"absent");
  return map.Lookup(key, value) ? value.toUtf8() : "(" + value.toUtf8() + ")";
}

void Fill(Map& map, unsigned int first, unsigned int count) {
  for (unsigned int key = first; key < first + count; ++key) EXPECT_TRUE(map.Add(key, Text(key)));
}

unsigned int Last(const unsigned int&) { return 16; }
bool SameTens(const unsigned int& a, const unsigned int& b) { return a / 10 == b / 10; }

TEST(HashMap, TheFirstValueOfAKeyStays) {
  for (const bool standard : {false, true}) {
    KELXHashOption::SetUseStdHash(standard);
    Map map(12, true);
    EXPECT_TRUE(map.Add(5, KELXString(L"A")));
    EXPECT_FALSE(map.Add(5, KELXString(L"B")));
    EXPECT_EQ(ValueOf(map, 5), "A");
    EXPECT_EQ(ValueOf(map, 6), "(absent)");
    EXPECT_EQ(map.FindKey(6), -1);
    EXPECT_EQ(map.Count(), 1);
    Fill(map, 100, 1000);
    EXPECT_EQ(map.Count(), 1001);
    for (unsigned int key = 100; key < 1100; ++key)
      EXPECT_EQ(ValueOf(map, key), std::to_string(key));
    EXPECT_EQ(ValueOf(map, 1100), "(absent)");
    KELXHashOption::SetUseStdHash(false);
  }
}

TEST(HashMap, HashesKeysToKnownPlaces) {
  EXPECT_EQ(Map::keyHasher()(0), 0U);
  EXPECT_EQ(Map::keyHasher()(1), 0x23744b91U);
  Map map(12, false);
  EXPECT_EQ(map.FindKey(7), -1);
  map.Add(7, Text(7));
  map.Add(8, Text(8));
  EXPECT_EQ(map.FindKey(7), 2);
  EXPECT_EQ(map.FindKey(8), 3);
  const StandardHash on;
  EXPECT_EQ(Map::keyHasher()(1), 1U);
}

/// The place of a key with a hash of the slot count - 1 tells how many slots there are.
TEST(HashMap, HasSlotsForFourThirdsAndDoubles) {
  struct Case {
    int initialSize;
    int slots;
  };
  const StandardHash identity;
  for (const Case& row : {Case{12, 17}, {3, 5}, {1, 2}, {100, 134}}) {
    Map map(row.initialSize, false);
    map.Add(static_cast<unsigned int>(2 * row.slots - 1), Text(0));
    EXPECT_EQ(map.FindKey(static_cast<unsigned int>(2 * row.slots - 1)), row.slots - 1);
  }
  Map map(12, false);
  Fill(map, 17, 12);
  EXPECT_EQ(map.FindKey(18), 1);
  EXPECT_FALSE(map.Add(18, Text(0)));  // doubles all the same
  EXPECT_EQ(map.FindKey(18), 18);
  EXPECT_EQ(map.Count(), 12);
  Map single(0, false);
  EXPECT_TRUE(single.Add(3, Text(3)));
  EXPECT_EQ(single.FindKey(3), 1);
}

TEST(HashMap, WithoutSlotsAcceptsNothing) {
  for (const int size : {-1, -12, 1610612736, INT_MAX}) {
    Map map(size, false);
    EXPECT_FALSE(map.Add(1, Text(1))) << size;
    EXPECT_EQ(map.FindKey(1), -1) << size;
    EXPECT_EQ(map.Count(), 0) << size;
  }
  const StandardHash on;
  Map standard(-1, true);
  EXPECT_TRUE(standard.Add(1, Text(1)));
}

TEST(HashMap, ProbingWrapsAroundTheEnd) {
  Map map(12, false);
  map.SetKeyFunctions(Last, SameTens);
  EXPECT_TRUE(map.Add(10, Text(10)));
  EXPECT_TRUE(map.Add(20, Text(20)));
  EXPECT_TRUE(map.Add(30, Text(30)));
  EXPECT_FALSE(map.Add(25, Text(25)));
  EXPECT_EQ(map.FindKey(11), 16);
  EXPECT_EQ(map.FindKey(25), 0);
  EXPECT_EQ(map.FindKey(39), 1);
  EXPECT_EQ(map.FindKey(40), -1);
}

TEST(HashMap, RehashKeepsEntriesOrIsIgnored) {
  const StandardHash identity;
  Map map(12, false);
  Fill(map, 1, 3);
  for (const int size : {3, -1, 100}) {
    map.Rehash(size);
    EXPECT_EQ(ValueOf(map, 3), "3");
    EXPECT_EQ(map.Count(), 3);
  }
  EXPECT_TRUE(map.Add(199, Text(199)));
  EXPECT_EQ(map.FindKey(199), 99);
}

TEST(HashMap, InsertsIntoSlotsGiven) {
  Map map(12, false);
  KELXDynamicArray<unsigned int> keys(2, 0);
  KELXDynamicArray<KELXString> values(2, KELXString());
  KELXDynamicArray<bool> used(2, false);
  EXPECT_TRUE(map.Add(keys, values, used, 1, Text(1)));
  EXPECT_FALSE(map.Add(keys, values, used, 1, Text(2)));
  EXPECT_TRUE(map.Add(keys, values, used, 2, Text(2)));
  EXPECT_FALSE(map.Add(keys, values, used, 3, Text(3)));  // full
  EXPECT_EQ(map.Count(), 0);
}

TEST(HashMap, TheSwitchChoosesTheModeWhereItIsAllowed) {
  const StandardHash on;
  Map standard(12, true);
  Map own(12, false);
  Fill(standard, 1, 1);
  Fill(own, 18, 1);
  EXPECT_EQ(own.FindKey(18), 1);  // the identity, modulo 17 slots
  EXPECT_GE(standard.FindKey(1), 0);
  standard.Rehash(1000);
  EXPECT_EQ(standard.FindKey(1), 1);
  EXPECT_EQ(standard.Count(), 1);
}

}  // namespace
