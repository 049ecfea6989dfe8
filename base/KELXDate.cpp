#include "base/KELXDate.h"

#include <cstddef>
#include <cwchar>

namespace {

/// The widest type that the formatting functions take.
using Number = unsigned long long;

constexpr Number kTicksASecond = 10'000'000;
constexpr Number kSecondsADay = Number{24} * 60 * 60;

struct Date {
  Number year;
  Number month;
  Number day;
};

/// The date that is `days` days after 1601-01-01. Counts years from March, so that the day that
/// leap years add is the last of its year.
Date DateOf(Number days) {
  constexpr Number kDaysFromMarch1600 = 306;
  constexpr Number kDaysAYear = 365;
  constexpr Number kDaysIn4Years = 4 * kDaysAYear + 1;
  constexpr Number kDaysIn100Years = 25 * kDaysIn4Years - 1;
  constexpr Number kDaysIn400Years = 4 * kDaysIn100Years + 1;
  days += kDaysFromMarch1600;
  const Number era = days / kDaysIn400Years;
  const Number dayOfEra = days % kDaysIn400Years;
  const Number yearOfEra = (dayOfEra - dayOfEra / (kDaysIn4Years - 1) + dayOfEra / kDaysIn100Years -
                            dayOfEra / (kDaysIn400Years - 1)) /
                           kDaysAYear;
  const Number dayOfYear = dayOfEra - (kDaysAYear * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  // From March on every five months have 153 days.
  const Number month = (5 * dayOfYear + 2) / 153;
  const Number day = dayOfYear - (153 * month + 2) / 5 + 1;
  const bool isBeforeMarch = month >= 10;
  return {1600 + 400 * era + yearOfEra + (isBeforeMarch ? 1 : 0),
          isBeforeMarch ? month - 9 : month + 3, day};
}

}  // namespace

void KELXDate::FormatDate(const FILETIME& time, KELXString& out, int /*style*/, bool /*flag*/) {
  const Number ticks = Number{time.dwHighDateTime} << 32 | time.dwLowDateTime;
  const Number seconds = ticks / kTicksASecond;
  const Number second = seconds % kSecondsADay;
  const Date date = DateOf(seconds / kSecondsADay);
  constexpr std::size_t kLongestText = 32;
  wchar_t text[kLongestText] = {};
  (void)std::swprintf(text, kLongestText, L"%04llu-%02llu-%02lluT%02llu:%02llu:%02lluZ", date.year,
                      date.month, date.day, second / 3600, second / 60 % 60, second % 60);
  out = KELXString(text);
}
