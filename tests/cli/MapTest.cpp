#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string Drawn(const std::string& path) {
  const RunResult result = RunKelst({"map", path, "-o", "-"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  return result.out;
}

/// What stands between `before` and `after`, each time.
std::vector<std::string> AllBetween(const std::string& text, const std::string& before,
                                    const std::string& after) {
  std::vector<std::string> found;
  for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
    at += before.size();
    found.push_back(text.substr(at, text.find(after, at) - at));
  }
  return found;
}

/// The words of all cells.
std::vector<std::string> CellsOf(const std::string& svg) {
  return AllBetween(svg, "\"><title>", "</title></rect>");
}

constexpr EntryIndex kFirst = 1;
constexpr EntryIndex kSecond = 2;

/// Sectors: FAT 0, directory 1 and 2, mini FAT 3, mini stream 4, First 5 to 14, Second 15 to 34.
CompoundFile Control() {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"First", Pattern(5000));
  builder.AddStream(kRoot, u"Second", Pattern(10'000));
  builder.AddStream(builder.AddStorage(kRoot, u"Storage"), u"Small", Pattern(100));
  return builder.Build();
}

struct CellCase {
  const char* name;
  std::function<void(CompoundFile&)> change;
  std::vector<std::string> cells;
};

void PrintTo(const CellCase& row, std::ostream* out) { *out << row.name; }

class MapCellsTest : public testing::TestWithParam<CellCase> {};

TEST_P(MapCellsTest, AreDrawnInOrderAndExplained) {
  CompoundFile built = Control();
  GetParam().change(built);
  const TemporaryFile file(built.bytes);
  EXPECT_EQ(CellsOf(Drawn(file.Path())), GetParam().cells);
}

INSTANTIATE_TEST_SUITE_P(
    All, MapCellsTest,
    testing::Values(
        CellCase{"Whole",
                 [](CompoundFile&) {},
                 {"header", "sector 0: FAT", "sectors 1 to 2: directory", "sector 3: mini FAT",
                  "sector 4: mini stream", "sectors 5 to 14: First", "sectors 15 to 30: Second",
                  "sectors 31 to 34: Second"}},
        CellCase{"Damaged",
                 [](CompoundFile& file) {
                   LinkSector(file, file.layout.entries[kSecond].sectors[9],
                              file.layout.entries[kFirst].sectors[9]);
                   TruncateTo(file, file.layout.SectorOffset(32));
                   LinkSector(file, 31, kFreeSector);
                 },
                 {"header", "sector 0: FAT", "sectors 1 to 2: directory", "sector 3: mini FAT",
                  "sector 4: mini stream", "sectors 5 to 13: First",
                  "sector 14: where chains meet, First", "sectors 15 to 24: Second",
                  "sectors 25 to 30: lost", "sector 31: free"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(MapTest, ListsStreamsWithSizesAndFragments) {
  CompoundFileBuilder builder;
  for (std::size_t i = 0; i < 30; ++i) {
    const std::u16string name{u's', static_cast<char16_t>(u'A' + i)};
    builder.AddStream(kRoot, name, Pattern(8000 - 100 * i));
  }
  CompoundFile built = builder.Build();
  // The smallest stream gets two fragments: its second and third sector change places.
  const auto& sectors = built.layout.entries[30].sectors;
  LinkSector(built, sectors[0], sectors[2]);
  LinkSector(built, sectors[2], sectors[1]);
  LinkSector(built, sectors[1], sectors[3]);
  const std::string svg = Drawn(TemporaryFile(built.bytes).Path());
  const auto names = AllBetween(svg, "class=\"name\">", "</text>");
  EXPECT_EQ(names.size(), 13U);
  EXPECT_EQ(names.front(), "sA");
  EXPECT_EQ(names.back(), "s^");
  EXPECT_THAT(svg, HasSubstr(">Streams: the 12 largest of 30, and those in most fragments<"));
  EXPECT_THAT(svg.substr(svg.rfind("s^")), testing::ContainsRegex(">5,100<(.|\n)*>10<(.|\n)*>4<"));
}

struct SizeCase {
  std::uint64_t sectors;
  std::string cellText;
};

TEST(MapTest, IsSmallHoweverLargeTheFileIs) {
  const std::vector<SizeCase> cases{{200, "Each cell is a sector."},
                                    {16'383, "Each cell is a sector."},
                                    {16'384, "Each cell is 2 sectors and "},
                                    {1'000'000, "Each cell is 64 sectors and "},
                                    {8'000'000, "Each cell is 512 sectors and "}};
  for (const SizeCase& row : cases) {
    const TemporaryFile file(Control().bytes);
    fs::resize_file(file.Path(), (row.sectors + 1) * 512);
    const std::string svg = Drawn(file.Path());
    EXPECT_THAT(svg, HasSubstr(row.cellText));
    EXPECT_THAT(svg, HasSubstr("appended: "));
    EXPECT_LT(svg.size(), 40'000U);
  }
}

TEST(MapTest, WritesNamesOfAnyKindAsTextOfBoundedLength) {
  const std::vector<std::pair<std::u16string, std::string>> names{
      {u"</style><script>", "&lt;\\x2Fstyle&gt;&lt;script&gt;"},
      {u"\"'&amp;", "&quot;&#39;&amp;amp;"},
      {std::u16string(u"a\0b", 3), "a\\x00b"},
      {u"\u202Egnp.exe", "\\u202Egnp.exe"},
      {u"]]>\uFFFF\x01", "]]&gt;\\uFFFF\\x01"},
      {std::u16string(32, 0xDFFF), "…FFF\\uDFFF\\uDFFF\\uDFFF\\uDFFF\\uDFFF\\uDFFF</title>"},
      {std::u16string(31, u'\u4840'), "…䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀䡀</title>"}};
  CompoundFileBuilder builder;
  for (const auto& [name, written] : names) builder.AddStream(kRoot, name, Pattern(5000));
  const TemporaryFolder folder;
  const std::string path = folder.Write("<&\"'\x01\xFF>.doc", builder.Build().bytes);
  const std::string svg = Drawn(path);
  for (const auto& [name, written] : names) EXPECT_THAT(svg, HasSubstr(": " + written));
  EXPECT_THAT(svg, HasSubstr("<title>&lt;&amp;&quot;&#39;\\x01"));
  EXPECT_THAT(svg, testing::Not(HasSubstr("<script")));
  const RunResult lint = RunProgram({"xmllint", "--noout", folder.Write("map.svg", {})});
  if (lint.exitCode == 127) GTEST_SKIP() << "no xmllint; scripts/install-packages test has it";
  std::ofstream(folder.PathOf("map.svg")) << svg;
  const RunResult result = RunProgram({"xmllint", "--noout", folder.PathOf("map.svg")});
  EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST(MapTest, TheOneInTheReadmeIsOfThisDay) {
  EXPECT_TRUE(Drawn(SampleFile("nested.cfb")) == ReadFile(SampleFile("../../docs/map.svg")))
      << "run: kelst map tests/data/nested.cfb -o docs/map.svg";
}

class MapOutputTest : public testing::Test {
 protected:
  MapOutputTest() : input_(folder_.Write("in.doc", Control().bytes)) {}

  RunResult Map(const std::string& output) { return RunKelst({"map", input_, "-o", output}); }

  TemporaryFolder folder_;
  std::string input_;
};

TEST_F(MapOutputTest, ReplacesAFileAlsoBehindALink) {
  const std::string path = folder_.PathOf("map.svg");
  std::ofstream(path) << "old";
  fs::create_symlink("map.svg", folder_.PathOf("link.svg"));
  EXPECT_EQ(Map(folder_.PathOf("link.svg")).exitCode, 0);
  EXPECT_TRUE(fs::is_symlink(folder_.PathOf("link.svg")));
  EXPECT_EQ(ReadFile(path), Drawn(input_));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 3);
}

TEST_F(MapOutputTest, NeverReplacesItsInput) {
  fs::create_symlink("in.doc", folder_.PathOf("link"));
  fs::create_hard_link(input_, folder_.PathOf("second"));
  for (const char* const name : {"in.doc", "link", "second"}) {
    const RunResult result = Map(folder_.PathOf(name));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "kelst: " + folder_.PathOf(name) +
                              ": is the compound file itself; name another file with -o\n");
  }
  EXPECT_TRUE(ReadFile(input_).starts_with("\xD0\xCF"));
}

TEST_F(MapOutputTest, SaysWhyItCannotWrite) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {folder_.PathOf("none/map.svg"), "No such file or directory"},
      {folder_.Path(), "Is a directory"},
      {input_ + "/map.svg", "Not a directory"},
      {"/dev/full", "No space left on device"}};
  for (const auto& [path, reason] : cases) {
    const RunResult result = Map(path);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "kelst: " + path + ": " + reason + "\n");
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(MapOutputTest, WritesNothingAboutAFileThatIsNoCompoundFile) {
  for (const char* const command : {"map", "report"}) {
    const std::string path = folder_.PathOf("out");
    EXPECT_EQ(RunKelst({command, SampleFile("README.md"), "-o", path}).exitCode, 3);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(RunKelst({command, input_}).exitCode, 2);
  }
}

}  // namespace
}  // namespace kelx::test
