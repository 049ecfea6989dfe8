#include "tools/kelst/ValueText.h"

#include <algorithm>
#include <cstdio>

namespace kelst {

namespace {

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 64> text;
  static_cast<void>(std::snprintf(text.data(), text.size(), format, values...));
  return text.data();
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
  KELXString text;
  KELXDate::FormatDate({static_cast<unsigned int>(time), static_cast<unsigned int>(time >> 32)},
                       text, 1, false);
  return text.toUtf8();
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
