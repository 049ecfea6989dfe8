#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/PropertySetBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::HasSubstr;

TEST(Props, ShowsNamesKindsAndValues) {
  const RunResult run = RunKelst({"props", SampleFile("metadata.doc")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  for (const char* line : {
           "  FMTID {D5CDD505-2E9C-101B-9397-08002B2CF9AE}\n",
           "         2  Title         text     A title\n",
           "         6  Comments      text     First line.\\x0ASecond line.\n",
           "        12  Created       date     2021-03-04T05:06:07Z\n",
           "         6  Megjegyzés  text     árvíztűrő tükörfúrógép\n",
           "        10  メモ          text     橋の調査 第二版\n",
       }) {
    EXPECT_THAT(run.out, HasSubstr(line));
  }
}

TEST(Props, GivesOneBareValue) {
  const std::string file = SampleFile("metadata.doc");
  struct Case {
    std::vector<std::string> arguments;
    const char* out;
    int exitCode;
  };
  const Case cases[] = {
      {{"--get", "2"}, "A title\n", 0},
      {{"--get", "Comments"}, "First line.\nSecond line.\n", 0},  // as it is: this is no terminal
      {{"--get", "メモ"}, "橋の調査 第二版\n", 0},
      {{"--set", "\\x05DocumentSummaryInformation", "--get", "2"}, "True\n", 0},
      {{"--set", "{D5CDD505-2E9C-101B-9397-08002B2CF9AE}", "--get", "1"}, "-535\n", 0},
      {{"--set", "d5cdd502-2e9c-101b-9397-08002b2cf9ae", "--get", "2"}, "", 1},
      {{"--set", "none", "--get", "2"}, "", 1},
      {{"--get", "title"}, "", 1},
      {{"--get", "2", "--json"}, "", 2},
      {{"--storage", "WordDocument"}, "", 1},
      {{"--storage", "nowhere"}, "", 1},
  };
  for (const Case& one : cases) {
    std::vector<std::string> arguments = {"props", file};
    arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
    const RunResult run = RunKelst(arguments);
    EXPECT_EQ(run.out, one.out) << testing::PrintToString(one.arguments);
    EXPECT_EQ(run.exitCode, one.exitCode) << testing::PrintToString(one.arguments);
    EXPECT_EQ(run.err.empty(), one.exitCode == 0) << run.err;
  }
}

TEST(Props, JsonIsOneLineAFile) {
  const RunResult run = RunKelst(
      {"props", "--json", SampleFile("cells.xls"), "nothing.doc", SampleFile("nested.cfb")});
  EXPECT_EQ(run.exitCode, 3);
  const auto lines = Lines(run.out);
  ASSERT_EQ(lines.size(), 2U);
  const auto first = nlohmann::json::parse(lines[0]);
  const auto& section = first["propertySets"][0]["sections"][0];
  EXPECT_EQ(section["fmtid"], "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}");
  EXPECT_EQ(section["properties"][1],
            nlohmann::json({{"id", 2}, {"name", "Title"}, {"kind", "text"}, {"value", "Cells"}}));
  EXPECT_EQ(nlohmann::json::parse(lines[1])["propertySets"].size(), 0U);
}

TEST(Props, LooksIntoStoragesAndPastDamage) {
  const auto set = [](const char* title) {
    return PropertySetBuilder().Add(1, CodePage(65001)).Add(2, Lpstr(title)).Build();
  };
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"\x05Outer", set("outer"));
  builder.AddStream(kRoot, u"\x05Nothing", Bytes{1, 2, 3, 4});
  const EntryIndex inner = builder.AddStorage(kRoot, u"Inner");
  builder.AddStream(inner, u"\x05Set", set("inner \xFF"));
  const TemporaryFile file(builder.Build().bytes);

  const RunResult root = RunKelst({"props", file.Path()});
  EXPECT_EQ(root.exitCode, 1);
  EXPECT_THAT(root.err, HasSubstr("\\x05Nothing: is not a property set\n"));
  EXPECT_THAT(root.out, HasSubstr("outer"));
  EXPECT_THAT(root.out, testing::Not(HasSubstr("inner")));

  const RunResult storage = RunKelst({"props", "--storage", "Inner", "--get", "2", file.Path()});
  EXPECT_EQ(storage.exitCode, 0) << storage.err;
  EXPECT_EQ(storage.out, "inner \uFFFD\n");

  const RunResult all = RunKelst({"props", "--all", "--json", file.Path()});
  EXPECT_EQ(nlohmann::json::parse(all.out)["propertySets"].size(), 2U);
}

}  // namespace
}  // namespace kelx::test
