#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

std::string TextOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

struct NameCase {
  std::u16string name;
  std::string written;
  std::string fileName;
};

const std::u16string kHalfPairs{u'a', 0xDC00, 0xD800};
const std::u16string kZeroInside{u'a', 0, u'b'};

std::string Repeated(const std::string& part, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

const std::vector<NameCase> kNames{
    {u"plain", "plain", "plain"},
    {u"a", "a", "a"},
    {u"A", "A", "A"},
    {u"\x05Summary\x9F", "\\x05Summary\\x9F", "%x05Summary%x9F"},
    {u"..", "..", "%x2E%x2E"},
    {u".", ".", "%x2E"},
    {u"...", "...", "..."},
    {u"../../up", "..\\x2F..\\x2Fup", "..%x2F..%x2Fup"},
    {u"/root", "\\x2Froot", "%x2Froot"},
    {u"\\x05", "\\\\x05", "%x5Cx05"},
    {u"%x05", "%x05", "%%x05"},
    {u"a\\#1", "a\\\\#1", "a%x5C#1"},
    {u"a%#1", "a%#1", "a%%#1"},
    {u"empty", "empty", "empty"},
    {u"", "\\empty", "%empty"},
    {kZeroInside, "a\\x00b", "a%x00b"},
    {kHalfPairs, "a\\uDC00\\uD800", "a%uDC00%uD800"},
    {u"\U0001F600\u4840", "\U0001F600\u4840", "\U0001F600\u4840"},
    {u"\u202Egnp.\uFEFF", "\\u202Egnp.\\uFEFF", "%u202Egnp.%uFEFF"},
    {u"tag\U000E0041", "tag\\uDB40\\uDC41", "tag%uDB40%uDC41"},
    {u"[a,b]", "[a,b]", "[a,b]"},
    {u"12345678901234567890123456789012", "12345678901234567890123456789012",
     "12345678901234567890123456789012"},
    {std::u16string(32, 0xDFFF), Repeated("\\uDFFF", 32), Repeated("%uDFFF", 32)},
};

class NamesTest : public testing::TestWithParam<ByteOrder> {};

TEST_P(NamesTest, EveryNameIsShownFoundAndExtracted) {
  CompoundFileBuilder builder({.byteOrder = GetParam()});
  for (std::uint32_t i = 0; i < kNames.size(); ++i) {
    builder.AddStream(kRoot, kNames[i].name, Pattern(40, i));
  }
  const TemporaryFile file(builder.Build().bytes);
  const TemporaryFolder target;
  EXPECT_EQ(RunKelst({"extract", file.Path(), "-C", target.Path()}).exitCode, 0);
  const std::vector<std::string> listed = Lines(RunKelst({"ls", "-1", file.Path()}).out);
  ASSERT_EQ(listed.size(), kNames.size());
  for (std::uint32_t i = 0; i < kNames.size(); ++i) {
    const auto& [name, written, fileName] = kNames[i];
    EXPECT_EQ(listed[i], written);
    const std::string content = TextOf(Pattern(40, i));
    EXPECT_TRUE(RunKelst({"cat", file.Path(), "--", written}).out == content) << written;
    EXPECT_TRUE(ReadFile(target.PathOf(fileName)) == content) << fileName;
  }
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, NamesTest,
                         testing::Values(ByteOrder::kLittle, ByteOrder::kBig));

TEST(EqualNamesTest, AllAreShownFoundAndExtracted) {
  CompoundFileBuilder builder({.siblings = Siblings::kInsertionOrder});
  builder.AddStream(kRoot, u"Same", Pattern(10, 1));
  const EntryIndex storage = builder.AddStorage(kRoot, u"Same");
  builder.AddStream(kRoot, u"Same", Pattern(10, 3));
  builder.AddStream(storage, u"Same", Pattern(10, 4));
  const TemporaryFile file(builder.Build().bytes);
  const TemporaryFolder target;
  EXPECT_EQ(Lines(RunKelst({"ls", "-1", file.Path()}).out),
            (std::vector<std::string>{"Same", "Same\\#2", "Same\\#2/Same", "Same\\#3"}));
  RunKelst({"extract", file.Path(), "-C", target.Path()});
  const std::vector<std::tuple<std::string, std::string, std::uint32_t>> streams{
      {"Same", "Same", 1},
      {"Same\\#1", "Same", 1},
      {"Same\\#3", "Same%#3", 3},
      {"Same\\#2/Same", "Same%#2/Same", 4}};
  for (const auto& [path, fileName, seed] : streams) {
    EXPECT_EQ(RunKelst({"cat", file.Path(), path}).out, TextOf(Pattern(10, seed))) << path;
    EXPECT_EQ(ReadFile(target.PathOf(fileName)), TextOf(Pattern(10, seed))) << path;
  }
  EXPECT_EQ(RunKelst({"cat", file.Path(), "Same\\#4"}).exitCode, 1);
}

TEST(LetterCaseTest, StreamsAreFoundInAnyAndStoragesInTheirs) {
  CompoundFileBuilder builder;
  const EntryIndex storage = builder.AddStorage(kRoot, u"Caf\u00C9");
  builder.AddStream(storage, u"Stra\u00DFe \u0424", Pattern(10, 1));
  builder.AddStream(storage, u"STRA\u00DFE \u0444", Pattern(10, 2));
  const TemporaryFile file(builder.Build().bytes);
  EXPECT_EQ(RunKelst({"cat", file.Path(), "CafÉ/STRAßE ф"}).out, TextOf(Pattern(10, 2)));
  EXPECT_EQ(RunKelst({"cat", file.Path(), "CafÉ/straße ф"}).out, TextOf(Pattern(10, 1)));
  const RunResult result = RunKelst({"cat", file.Path(), "café/straße ф"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "kelst: " + file.Path() +
                            ": no stream named \"café/straße ф\" (is it \"CafÉ/Straße Ф\"?)\n");
}

TEST(PathTest, WhatNoNameIsWrittenAsIsRefused) {
  for (const char* const path : {"a\\q", "\\x0", "\\u12G4", "\\#", "\\#1x", "\\#99999999999",
                                 "\\emptyx", "a\\", "\xFF", "\xED\xA0\x80"}) {
    EXPECT_EQ(RunKelst({"cat", SampleFile("cells.xls"), path}).exitCode, 2) << path;
  }
}

struct FactsCase {
  std::uint64_t time;
  std::string text;
};

TEST(EntryFactsTest, TimesClassIdAndStateBitsAreShown) {
  const std::vector<FactsCase> cases{
      {1, "1601-01-01T00:00:00Z"},
      {125962560000000000, "2000-02-29T00:00:00Z"},
      {125962559999999999, "2000-02-28T23:59:59Z"},
      {134398509480000000, "2026-11-22T19:55:48Z"},
      {~std::uint64_t{0}, "60056-05-28T05:36:10Z"},
  };
  CompoundFileBuilder builder;
  EntryOptions options{.stateBits = 0x80000001};
  for (unsigned char i = 0; i < 16; ++i) options.classId[i] = i;
  std::u16string name;
  for (const FactsCase& facts : cases) {
    options.created = options.modified = facts.time;
    builder.AddStorage(kRoot, name += u'a', options);
  }
  const TemporaryFile file(builder.Build().bytes);
  const auto document = nlohmann::json::parse(RunKelst({"ls", "--json", file.Path()}).out);
  const RunResult table = RunKelst({"ls", "-l", file.Path()});
  EXPECT_FALSE(document["entries"][0].contains("created"));
  EXPECT_FALSE(document["entries"][0].contains("classId"));
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto entry = document["entries"][i + 1];
    EXPECT_EQ(entry["created"], cases[i].text);
    EXPECT_EQ(entry["modified"], cases[i].text);
    EXPECT_EQ(entry["classId"], "{03020100-0504-0706-0809-0A0B0C0D0E0F}");
    EXPECT_EQ(entry["stateBits"], 0x80000001);
    EXPECT_THAT(table.out,
                testing::ContainsRegex(cases[i].text + " +" + cases[i].text + " +\\{03020100-"));
  }
}

}  // namespace
}  // namespace kelx::test
