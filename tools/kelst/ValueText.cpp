#include "tools/kelst/ValueText.h"

#include <algorithm>
#include <cstdio>

namespace kelst {

namespace {

constexpr std::uint64_t kTicksASecond = 10'000'000;
constexpr std::uint64_t kSecondsADay = 86'400;

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 64> text;
  static_cast<void>(std::snprintf(text.data(), text.size(), format, values...));
  return text.data();
}

constexpr bool IsLeapYear(std::uint64_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

struct Date {
  std::uint64_t year;
  unsigned int month;
  unsigned int day;
};

/// The date that comes `days` days after 1601-01-01, with which a cycle of 400 years begins.
Date DateOf(std::uint64_t days) {
  constexpr std::uint64_t kDays400Years = 146'097;
  std::uint64_t year = 1601 + days / kDays400Years * 400;
  days %= kDays400Years;
  const auto daysOf = [](std::uint64_t y) { return IsLeapYear(y) ? 366U : 365U; };
  for (; days >= daysOf(year); ++year) days -= daysOf(year);
  std::array<unsigned int, 12> lengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (IsLeapYear(year)) lengths[1] = 29;
  unsigned int month = 0;
  for (; days >= lengths[month]; ++month) days -= lengths[month];
  return {year, month + 1, static_cast<unsigned int>(days) + 1};
}

}  // namespace

std::string Grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t place = text.size(); place > 3;) text.insert(place -= 3, 1, ',');
  return text;
}

std::string WithUnit(std::uint64_t number, std::string_view noun) {
  return Grouped(number) + ' ' + std::string(noun) + (number == 1 ? "" : "s");
}

std::string SizeText(std::uint64_t bytes) {
  constexpr std::array kUnits{"KiB", "MiB", "GiB", "TiB"};
  std::string exact = WithUnit(bytes, "byte");
  if (bytes < 1024) return exact;
  double scaled = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  for (; scaled >= 1023.95 && unit + 1 < kUnits.size(); ++unit) scaled /= 1024;
  return exact + Format(" (%.1f %s)", scaled, kUnits[unit]);
}

std::string TimeText(std::uint64_t time) {
  if (time == 0) return "";
  const std::uint64_t seconds = time / kTicksASecond;
  const Date date = DateOf(seconds / kSecondsADay);
  const auto second = static_cast<unsigned int>(seconds % kSecondsADay);
  return Format("%04llu-%02u-%02uT%02u:%02u:%02uZ", static_cast<unsigned long long>(date.year),
                date.month, date.day, second / 3600, second / 60 % 60, second % 60);
}

std::string ClassIdText(const std::array<unsigned char, 16>& id) {
  if (std::ranges::all_of(id, [](unsigned char byte) { return byte == 0; })) return "";
  return Format("{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id[3],
                id[2], id[1], id[0], id[5], id[4], id[7], id[6], id[8], id[9], id[10], id[11],
                id[12], id[13], id[14], id[15]);
}

std::string KindText(const KELStStorageDirEntry& entry) {
  if (entry.isStorage()) return "storage";
  if (entry.isStream()) return "stream";
  if (entry.isRoot()) return "root";
  return entry.getType() == 0 ? "empty" : "type " + std::to_string(entry.getType());
}

}  // namespace kelst
