#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "property/KELIPropertyStorage.h"
#include "tests/support/TemporaryFile.h"

namespace {

using Set = KELIPropertyStorage;

/// The locale of the process with a decimal comma, for as long as this lives.
class DecimalComma {
 public:
  DecimalComma() {
    const std::string command = "localedef --no-archive -i de_DE -f UTF-8 '" + folder_.Path() +
                                "/de_DE.UTF-8' >/dev/null 2>&1";
    if (std::system(command.c_str()) == -1) return;
    setenv("LOCPATH", folder_.Path().c_str(), 1);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
  }
  ~DecimalComma() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }
  bool IsInForce() const { return *std::localeconv()->decimal_point == ','; }

 private:
  kelx::test::TemporaryFolder folder_;
};

TEST(ValueFormat, Integers) {
  struct Case {
    KELXString text;
    const char* expected;
  };
  const Case cases[] = {
      {Set::FormatByte(0xFF, L"%i", true), "-1"},
      {Set::FormatByte(0xFF, L"%i", false), "255"},
      {Set::FormatByte(0x80, L"<%u>", false), "<128>"},
      {Set::FormatUnsignedShort(0xFDE9, L"%i", true), "-535"},
      {Set::FormatUnsignedShort(0xFDE9, L"%i", false), "65001"},
      {Set::FormatUnsignedInt(0xFFFFFFFF, L"%lu", true), "4294967295"},
      {Set::FormatUnsignedInt(0xFFFFFFFF, L"%li", true), "4294967295"},
      {Set::FormatUnsignedInt(0xFFFFFFFF, L"%i", false), "-1"},
      {Set::FormatUnsignedInt(0x8004ab, L"0x%08X", false), "0x008004AB"},
      {Set::FormatUnsignedInt64(0x8000000000000000, L"%lli", false), "-9223372036854775808"},
      {Set::FormatUnsignedInt64(0xFFFFFFFFFFFFFFFF, L"%llu", true), "18446744073709551615"},
  };
  for (const Case& row : cases) EXPECT_EQ(row.text.toUtf8(), row.expected);
}

TEST(ValueFormat, FloatingPointNumbers) {
  struct Case {
    KELXString text;
    const char* expected;
  };
  const Case cases[] = {
      {Set::FormatFloat(1.5F, L"%f"), "1.500000"},
      {Set::FormatFloat(-0.0F, L"%f"), "-0.000000"},
      {Set::FormatFloat(0.1F, L"%f"), "0.100000"},
      {Set::FormatDouble(12.3456, L"$%lf"), "$12.345600"},
      {Set::FormatDouble(1e-7, L"%lf"), "0.000000"},
      {Set::FormatDouble(0.5, L"1,%lf,"), "1.0.500000."},
      {Set::FormatDouble(std::numeric_limits<double>::infinity(), L"%lf"), "inf"},
      {Set::FormatDouble(-std::numeric_limits<double>::infinity(), L"%lf"), "-inf"},
      {Set::FormatDouble(std::numeric_limits<double>::quiet_NaN(), L"%lf"), "nan"},
  };
  for (const Case& row : cases) EXPECT_EQ(row.text.toUtf8(), row.expected);
}

/// 10^251 has 252 digits and with ".000000" just fits; what is longer is cut at 259 characters.
TEST(ValueFormat, LongNumbersAreCut) {
  for (const double value : {1e251, 1e252, 1e308, -1e251, -1e308}) {
    char whole[512];
    std::snprintf(whole, sizeof whole, "%f", value);
    EXPECT_EQ(Set::FormatDouble(value, L"%lf").toUtf8(), std::string(whole).substr(0, 259));
  }
  EXPECT_EQ(Set::FormatByte(1, L"%300d", false).toUtf8(), std::string(259, ' '));
}

TEST(ValueFormat, ADecimalCommaBecomesAPoint) {
  const DecimalComma locale;
  if (!locale.IsInForce()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
  EXPECT_EQ(Set::FormatFloat(1.5F, L"%f").toUtf8(), "1.500000");
  EXPECT_EQ(Set::FormatDouble(-1234567.25, L"$%lf").toUtf8(), "$-1234567.250000");
  EXPECT_EQ(Set::FormatFiletime(0, 0).toUtf8(), "1601-01-01T00:00:00Z");
}

TEST(ValueFormat, BooleansDatesAndGuids) {
  EXPECT_EQ(Set::FormatBoolean(0xFFFF).toUtf8(), "True");
  for (const unsigned short value : std::initializer_list<unsigned short>{0, 1, 0x8000, 0xFFFE}) {
    EXPECT_EQ(Set::FormatBoolean(value).toUtf8(), "False") << value;
  }
  // 2021-03-04T05:06:07Z is 0x01D710B2'12A1CB80.
  EXPECT_EQ(Set::FormatFiletime(0x01D710B2, 0x12A1CB80).toUtf8().substr(0, 10), "2021-03-04");
  unsigned char zeros[16] = {};
  EXPECT_EQ(Set::FormatCLSID(zeros).toUtf8(), "{00000000-0000-0000-0000-000000000000}");
  unsigned char guid[16] = {0xF2, 0x9F, 0x85, 0xE0, 0x4F, 0xF9, 0x10, 0x68,
                            0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0x0A};
  EXPECT_EQ(Set::FormatCLSID(guid).toUtf8(), "{F29F85E0-4FF9-1068-AB91-08002B27B30A}");
}

}  // namespace
