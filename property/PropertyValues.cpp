#include <array>
#include <bit>
#include <charconv>
#include <limits>
#include <string>

#include "property/PropertyStreamParser.h"

namespace {

enum PropertyType : unsigned int {
  kI2 = 2,
  kI4 = 3,
  kR4 = 4,
  kR8 = 5,
  kCurrency = 6,
  kBstr = 8,
  kError = 10,
  kBool = 11,
  kUI1 = 17,
  kUI2 = 18,
  kUI4 = 19,
  kI8 = 20,
  kUI8 = 21,
  kLpstr = 30,
  kLpwstr = 31,
  kFiletime = 64,
  kClsid = 72,
};

constexpr unsigned int kCodePageId = 1;
constexpr unsigned int kLocaleId = 0x80000000;
constexpr std::size_t kGuidBytes = 16;

constexpr double CurrencyOf(std::uint64_t tenThousandths) {
  return static_cast<double>(static_cast<std::int64_t>(tenThousandths)) / 10000.0;
}

/// What FormatDouble makes of "%lf", `before` standing before it. A number of 300 digits takes
/// swprintf some 10 microseconds and 20 bytes of a stream: too long for a million of them.
KELXString FixedPoint(double value, const char* before = "") {
  constexpr int kDecimals = 6;
  constexpr std::size_t kTextLimit = 259;  // as FormatDouble has it
  std::array<char, std::numeric_limits<double>::max_exponent10 + kDecimals + 3> digits;
  const auto end =
      std::to_chars(digits.begin(), digits.end(), value, std::chars_format::fixed, kDecimals).ptr;
  const std::string text = before + std::string(digits.begin(), end);
  return KELXString::fromUtf8(std::string_view(text).substr(0, kTextLimit));
}

constexpr std::uint64_t WidenWithSign(std::uint32_t value) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(value)));
}

}  // namespace

/// What a property says of the set as a whole.
void KELIPropertyStorage::Parser::ReadSettings(unsigned int id, unsigned char* cursor) {
  const auto type = bytes_.Read<std::uint32_t>(cursor);
  if (id == kCodePageId && type == kI2) set_.codePage_ = bytes_.Read<std::uint16_t>(cursor);
  if (id == kLocaleId && type == kUI4) set_.localeId_ = bytes_.Read<std::uint32_t>(cursor);
}

std::optional<KELIPropertyStorage::Parser::Value> KELIPropertyStorage::Parser::ReadValue(
    unsigned char* cursor) {
  // A type that does not fit reads as 0, which is none of these.
  const auto type = bytes_.Read<std::uint32_t>(cursor);
  switch (type) {
    case kBstr:
      return Value{ValueTypeText, ReadBstr(cursor)};
    case kLpstr:
      return Value{ValueTypeText, ReadMBCSString(cursor, true)};
    case kLpwstr:
      return Value{ValueTypeText, ReadUTF16String(cursor, true, false)};
    default: {
      std::optional<Value> number = ReadNumber(type, cursor);
      if (number) number->text = texts_.Limit(number->text);
      return number;
    }
  }
}

std::optional<KELIPropertyStorage::Parser::Value> KELIPropertyStorage::Parser::ReadNumber(
    unsigned int type, unsigned char* cursor) {
  const auto read1 = [&] { return bytes_.Read<std::uint8_t>(cursor); };
  const auto read2 = [&] { return bytes_.Read<std::uint16_t>(cursor); };
  const auto read4 = [&] { return bytes_.Read<std::uint32_t>(cursor); };
  const auto read8 = [&] { return bytes_.Read<std::uint64_t>(cursor); };
  switch (type) {
    case kI2:
      return Value{ValueTypeInteger, FormatUnsignedShort(read2(), L"%i", true)};
    case kI4:
      return Value{ValueTypeInteger, FormatUnsignedInt64(WidenWithSign(read4()), L"%lli", true)};
    case kR4:
      return Value{ValueTypeFloat, FixedPoint(double{std::bit_cast<float>(read4())})};
    case kR8:
      return Value{ValueTypeFloat, FixedPoint(std::bit_cast<double>(read8()))};
    case kCurrency:
      return Value{ValueTypeText, FixedPoint(CurrencyOf(read8()), "$")};
    case kError:
      return Value{ValueTypeInteger, FormatUnsignedInt(read4(), L"0x%08X", false)};
    case kBool:
      return Value{ValueTypeBoolean, FormatBoolean(read2())};
    case kUI1:
      return Value{ValueTypeText, FormatByte(read1(), L"%u", false)};
    case kUI2:
      return Value{ValueTypeInteger, FormatUnsignedShort(read2(), L"%u", false)};
    case kUI4:
      return Value{ValueTypeInteger, FormatUnsignedInt(read4(), L"%lu", false)};
    case kI8:
      return Value{ValueTypeInteger, FormatUnsignedInt64(read8(), L"%lli", true)};
    case kUI8:
      return Value{ValueTypeInteger, FormatUnsignedInt64(read8(), L"%llu", false)};
    case kFiletime:
      return Value{ValueTypeDate, ReadFiletime(cursor)};
    case kClsid:
      return Value{ValueTypeInteger, ReadGuid(cursor)};
    default:
      return std::nullopt;
  }
}

/// Two reads: when the end of the stream cuts the value, the low half still counts.
KELXString KELIPropertyStorage::Parser::ReadFiletime(unsigned char* cursor) {
  const auto low = bytes_.Read<std::uint32_t>(cursor);
  const auto high = bytes_.Read<std::uint32_t>(cursor);
  return FormatFiletime(high, low);
}

KELXString KELIPropertyStorage::Parser::ReadGuid(unsigned char* cursor) {
  unsigned char guid[kGuidBytes];
  bytes_.ReadGuid(cursor, guid);
  return FormatCLSID(guid);
}
