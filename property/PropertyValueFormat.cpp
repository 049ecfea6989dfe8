#include <cstddef>
#include <cwchar>

#include "base/KELXDate.h"
#include "property/KELIPropertyStorage.h"

namespace {

constexpr std::size_t kTextLimit = 260;

template <typename Value>
KELXString Format(const wchar_t* format, Value value) {
  wchar_t text[kTextLimit + 1] = {};
  (void)std::swprintf(text, kTextLimit, format, value);
  return KELXString(text);
}

}  // namespace

KELXString KELIPropertyStorage::FormatByte(unsigned char value, const wchar_t* format,
                                           bool isSigned) {
  return Format(format, isSigned ? int{static_cast<signed char>(value)} : int{value});
}

KELXString KELIPropertyStorage::FormatUnsignedShort(unsigned short value, const wchar_t* format,
                                                    bool isSigned) {
  return Format(format, isSigned ? int{static_cast<short>(value)} : int{value});
}

KELXString KELIPropertyStorage::FormatUnsignedInt(unsigned int value, const wchar_t* format,
                                                  bool /*isSigned*/) {
  // As a long, for formats that take one: those that take an int see its low half.
  return Format(format, static_cast<unsigned long>(value));
}

KELXString KELIPropertyStorage::FormatUnsignedInt64(unsigned long long value, const wchar_t* format,
                                                    bool /*isSigned*/) {
  return Format(format, value);
}

KELXString KELIPropertyStorage::FormatFloat(float value, const wchar_t* format) {
  return FormatDouble(static_cast<double>(value), format);
}

KELXString KELIPropertyStorage::FormatDouble(double value, const wchar_t* format) {
  return Format(format, value).replace(',', '.');
}

KELXString KELIPropertyStorage::FormatBoolean(unsigned short value) {
  constexpr unsigned short kTrue = 0xFFFF;
  return KELXString(value == kTrue ? L"True" : L"False");
}

KELXString KELIPropertyStorage::FormatFiletime(unsigned int high, unsigned int low) {
  KELXString text;
  KELXDate::FormatDate(FILETIME{low, high}, text, 1, false);
  return text;
}

KELXString KELIPropertyStorage::FormatCLSID(unsigned char* id) {
  wchar_t text[kTextLimit + 1] = {};
  (void)std::swprintf(text, kTextLimit,
                      L"{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                      id[0], id[1], id[2], id[3], id[4], id[5], id[6], id[7], id[8], id[9], id[10],
                      id[11], id[12], id[13], id[14], id[15]);
  return KELXString(text);
}
