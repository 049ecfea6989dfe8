#include "base/KELXDate.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

constexpr std::uint64_t kTicksASecond = 10'000'000;
constexpr std::uint64_t kTicksADay = 86400 * kTicksASecond;

std::string Format(std::uint64_t ticks) {
  KELXString text(L"replaced");
  KELXDate::FormatDate({static_cast<unsigned int>(ticks), static_cast<unsigned int>(ticks >> 32)},
                       text, 1, false);
  return text.toUtf8();
}

TEST(Date, IsWrittenInUtcForEveryValue) {
  struct Case {
    std::uint64_t ticks;
    const char* text;
  };
  const Case cases[] = {
      {0, "1601-01-01T00:00:00Z"},
      {kTicksASecond - 1, "1601-01-01T00:00:00Z"},
      {kTicksADay - 1, "1601-01-01T23:59:59Z"},
      {116'444'736'000'000'000, "1970-01-01T00:00:00Z"},
      {125'962'991'990'000'000, "2000-02-29T11:59:59Z"},
      {134'083'149'480'000'000, "2025-11-22T19:55:48Z"},
      {2'650'467'743'999'999'999, "9999-12-31T23:59:59Z"},
      {2'650'467'744'000'000'000, "10000-01-01T00:00:00Z"},
      {0xFFFFFFFFFFFFFFFF, "60056-05-28T05:36:10Z"},
  };
  for (const Case& row : cases) EXPECT_EQ(Format(row.ticks), row.text) << row.ticks;
}

/// Steps through 800 years day by day with the rules of the calendar alone.
TEST(Date, FollowsTheCalendar) {
  const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  std::uint64_t ticks = 0;
  for (int year = 1601; year < 2401; ++year) {
    const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= days[month - 1] + (isLeap && month == 2 ? 1 : 0); ++day) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "%04d-%02d-%02dT00:00:00Z", year, month, day);
        ASSERT_EQ(Format(ticks), expected);
        ticks += kTicksADay;
      }
    }
  }
}

}  // namespace
