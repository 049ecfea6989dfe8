#include "base/KELXString.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/KELXTextDecoder.h"

namespace {

TEST(String, IsMadeOfEveryKindOfText) {
  const unsigned short pair[] = {'a', 0xD83D, 0xDE00, 0xD800, 'z', 0};
  EXPECT_EQ(KELXString().toUtf8(), "");
  EXPECT_EQ(KELXString(L"").toUtf8(), "");
  EXPECT_EQ(KELXString(L"\u00e9\u4e2d\U0001F600").toUtf8(), "é中😀");
  EXPECT_EQ(KELXString(pair).toUtf8(), "a😀\uFFFDz");
  EXPECT_EQ(KELXString(wchar_t(5)).toUtf8(), "\x05");
  EXPECT_EQ(KELXString(wchar_t(0)).toUtf8(), std::string(1, '\0'));
  EXPECT_EQ(KELXString(wchar_t(0x110000)).toUtf8(), "\uFFFD");
  EXPECT_EQ(KELXString(static_cast<const wchar_t*>(nullptr)).toUtf8(), "");
  EXPECT_EQ(KELXString(static_cast<const char*>(nullptr), "US-ASCII").toUtf8(), "");
}

TEST(String, TakesOnlyWellFormedUtf8) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"\u00e9\u20ac\U0001F600", "é€😀"},
      {"a\x80z", "a\uFFFDz"},
      {"\xC0\x80", "\uFFFD\uFFFD"},                      // overlong
      {"\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // surrogate
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last code point
      {"\xE2\x82", "\uFFFD\uFFFD"},                      // cut short
      {"\xE2\x82z", "\uFFFD\uFFFDz"},
      {std::string("a\0b", 3), std::string("a\0b", 3)},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(KELXString::fromUtf8(text).toUtf8(), expected);
}

TEST(String, ConvertsCodePages) {
  struct Case {
    const char* charset;
    const char* bytes;
    const char* expected;
  };
  const Case cases[] = {
      {"US-ASCII", "r\xC3\xA9sum\xC3\xA9", "résumé"},
      {"CP65001", "\xC3\xA9\xFF", "é\uFFFD"},
      {"CP1252", "\x80 \xE9", "€ é"},
      {"CP1252", "\x81", "\uFFFD"},
      {"CP1251", "\xC4\xE0", "Да"},
      {"CP932", "\x93\xFA\x96\x7B", "日本"},
      {"CP932", "a\x93", "a\uFFFD"},
      {"CP936", "\xD6\xD0", "中"},
      {"CP949", "\xC7\xD1", "한"},
      {"CP10000", "\x8E", "é"},
      {"CP20127", "a\xE9", "a\uFFFD"},
      {"CP28591", "\xE9", "é"},
      {"CP28605", "\xA4", "€"},
      {"CP1200", "A", "\uFFFD"},  // half a unit
      {"CP1255", "\xE9", "י"},    // held back by the converter until the end is known
      {"CP4711", "\x80", "€"},    // unknown: as 1252
      {"CP", "\x80", "€"},
      {"no such charset", "\x80", "€"},
      {nullptr, "\x80\xE9", "€é"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(KELXString(one.bytes, one.charset).toUtf8(), one.expected)
        << (one.charset == nullptr ? "null" : one.charset) << " "
        << testing::PrintToString(one.bytes);
  }
}

TEST(String, DecoderIsUsedAgainAfterAnUnfinishedText) {
  const KELXTextDecoder decoder("CP50220");
  EXPECT_EQ(decoder.Decode("\x1B$BF|").toUtf8(), "日");  // left in the two-byte state
  EXPECT_EQ(decoder.Decode("ab").toUtf8(), "ab");
  EXPECT_EQ(decoder.Decode(std::string(5000, 'x')).toUtf8(), std::string(5000, 'x'));
}

TEST(String, ComparesByCodePoint) {
  struct Case {
    const wchar_t* left;
    const wchar_t* right;
    int exact;
    int ignoringCase;
  };
  const Case cases[] = {
      {L"abc", L"abc", 0, 0},
      {L"abc", L"ABC", 1, 0},
      {L"ab", L"abc", -1, -1},
      {L"", L"a", -1, -1},
      {L"b", L"A", 1, 1},
      {L"B", L"a", -1, 1},
      {L"\u00c9", L"\u00e9", -1, 0},
      {L"\u0416", L"\u0436", -1, 0},
      {L"\u00df", L"ss", 1, 1},
      {L"\uFFFD", L"\U0001F600", -1, -1},
  };
  const auto sign = [](int value) { return (value > 0) - (value < 0); };
  for (const auto& [left, right, exact, ignoringCase] : cases) {
    const KELXString a(left);
    const KELXString b(right);
    EXPECT_EQ(sign(a.compareTo(b)), exact);
    EXPECT_EQ(sign(b.compareTo(a)), -exact);
    EXPECT_EQ(sign(a.compareToIgnoreCase(b)), ignoringCase);
    EXPECT_EQ(sign(b.compareToIgnoreCase(a)), -ignoringCase);
    EXPECT_EQ(a.equals(b), exact == 0);
    EXPECT_EQ(a > b, exact > 0);
    EXPECT_EQ(a <= b, exact <= 0);
    EXPECT_TRUE(exact != 0 || a.hash() == b.hash());
    EXPECT_TRUE(ignoringCase != 0 || a.hashIgnoreCase() == b.hashIgnoreCase());
  }
}

TEST(String, StartsWithAndReplace) {
  const KELXString name(L"\x05Summary");
  EXPECT_TRUE(name.startsWith(KELXString(wchar_t(5))));
  EXPECT_TRUE(name.startsWith(KELXString()));
  EXPECT_FALSE(KELXString(L"Summary").startsWith(KELXString(wchar_t(5))));
  EXPECT_FALSE(KELXString().startsWith(name));
  const KELXString number(L"1,2,3");
  EXPECT_EQ(number.replace(',', '.').toUtf8(), "1.2.3");
  EXPECT_EQ(number.toUtf8(), "1,2,3");
}

TEST(String, AppendsInPlaceAlthoughConst) {
  const KELXString text(L"ab");
  const KELXString before(text);
  EXPECT_EQ((text += KELXString(L"cd")).toUtf8(), "abcd");
  EXPECT_EQ(text.toUtf8(), "abcd");
  EXPECT_EQ(before.toUtf8(), "ab");
  text += text;
  EXPECT_EQ(text.toUtf8(), "abcdabcd");
  const KELXString empty;
  empty += before;
  EXPECT_EQ(empty.toUtf8(), "ab");
}

TEST(String, CopiesOutliveTheirSource) {
  KELXString copy;
  {
    const KELXString source(L"text");
    copy = source;
    const KELXString& same = copy;
    copy = same;
  }
  EXPECT_EQ(copy.toUtf8(), "text");
}

}  // namespace
