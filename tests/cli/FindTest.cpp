#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

struct FindCase {
  std::vector<std::string> arguments;
  std::vector<std::string> paths;
};

TEST(FindTest, NamesAreComparedWhole) {
  CompoundFileBuilder builder;
  const EntryIndex storage = builder.AddStorage(kRoot, u"Inner");
  builder.AddStream(storage, u"Data1", Pattern(100));
  builder.AddStream(storage, u"data\u00C42", Pattern(200));
  builder.AddStream(kRoot, u"\x05Set", Pattern(50));
  builder.AddStream(kRoot, u"a*b]", Pattern(1));
  builder.AddStream(kRoot, u"/\u202E\U0001F600", Bytes());
  builder.AddStream(kRoot, u"aabaab", Bytes());
  const TemporaryFile file(builder.Build().bytes);
  const std::string one = "Inner/Data1";
  const std::string two = "Inner/dataÄ2";
  const std::string hostile = "\\x2F\\u202E\U0001F600";
  const std::vector<FindCase> cases{
      {{"*"}, {"Inner", one, two, "\\x05Set", "a*b]", hostile, "aabaab"}},
      {{"data*"}, {one, two}},
      {{"DATAä?"}, {two}},
      {{"data?"}, {one}},
      {{"dat"}, {}},
      {{""}, {}},
      {{"*[0-9]"}, {one, two}},
      {{"*[!13-9Z]"}, {"Inner", two, "\\x05Set", "a*b]", hostile, "aabaab"}},
      {{"[b-dX]ata[^2]*"}, {one, two}},
      {{"*[à-å]2"}, {two}},
      {{"a[*]b[]]"}, {"a*b]"}},
      {{"a*b]"}, {"a*b]"}},
      {{"[a*"}, {}},
      {{"*a*b"}, {"aabaab"}},
      {{"a*aab"}, {"aabaab"}},
      {{"\\x05*"}, {"\\x05Set"}},
      {{"\\x2f*\U0001F600"}, {hostile}},
      {{"*", "--min-size", "0x64"}, {"Inner", one, two}},
      {{"*", "--min-size", "301"}, {}},
  };
  for (const FindCase& each : cases) {
    std::vector<std::string> arguments{"find", file.Path(), "--name"};
    arguments.insert(arguments.end(), each.arguments.begin(), each.arguments.end());
    std::vector<std::string> lines;
    for (const std::string& path : each.paths) lines.push_back(file.Path() + ": " + path);
    const RunResult result = RunKelst(arguments);
    EXPECT_EQ(Lines(result.out), lines) << testing::PrintToString(each.arguments);
    EXPECT_EQ(result.exitCode, lines.empty() ? 1 : 0);
    EXPECT_EQ(result.err, "");
  }
  EXPECT_EQ(RunKelst({"find", file.Path(), "--name", "\xFF"}).exitCode, 2);
}

TEST(FindTest, LooksIntoEveryFileAndEqualNames) {
  CompoundFileBuilder builder({.siblings = Siblings::kInsertionOrder});
  builder.AddStream(kRoot, u"Same", Pattern(1));
  builder.AddStream(kRoot, u"Same", Pattern(2));
  const TemporaryFile file(builder.Build().bytes);
  const RunResult result =
      RunKelst({"find", file.Path(), "/missing", SampleFile("cells.xls"),
                SampleFile("installer.msi"), "--json", "--name", "[sw_][ao]*"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err, "kelst: /missing: No such file or directory\n");
  const auto lines = Lines(result.out);
  ASSERT_EQ(lines.size(), 4U);
  const std::vector<std::pair<std::string, std::string>> expected{
      {file.Path(), "Same"},
      {file.Path(), "Same\\#2"},
      {SampleFile("cells.xls"), "Workbook"},
      {SampleFile("installer.msi"), "\u4136\u44F0\u422F\u41BE\u4164"}};
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto entry = nlohmann::json::parse(lines[i]);
    EXPECT_EQ(entry["file"], expected[i].first);
    EXPECT_EQ(entry["path"], expected[i].second);
  }
}

}  // namespace
}  // namespace kelx::test
