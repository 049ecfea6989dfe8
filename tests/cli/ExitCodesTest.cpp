#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

TEST(RefusalTest, SaysWhichFieldOfTheHeaderIsWrong) {
  const std::vector<std::tuple<Field, std::uint32_t, std::string>> cases{
      {HeaderField::kMajorVersion, 3, ""},
      {HeaderField::kByteOrder, 0, "not a compound file: byte-order mark is 0 (65534 expected)"},
      {HeaderField::kSectorShift, 10, "not a compound file: sector shift is 10 (9 or 12 expected)"},
      {HeaderField::kMiniSectorShift, 7,
       "not a compound file: mini sector shift is 7 (6 expected)"},
      {HeaderField::kReserved, 1,
       "not a compound file: reserved field at byte 34 is 1 (0 expected)"},
      {HeaderField::kReserved1, 2,
       "not a compound file: reserved field at byte 36 is 2 (0 expected)"},
      {HeaderField::kDirectorySectorCount, 8,
       "its header states 8 directory sectors; kelst reads files that state less than 8"},
  };
  for (const auto& [field, value, message] : cases) {
    CompoundFile file = CompoundFileBuilder().Build();
    PatchHeader(file, field, value);
    const TemporaryFile changed(file.bytes);
    const RunResult result = RunKelst({"ls", changed.Path()});
    EXPECT_EQ(result.exitCode, message.empty() ? 0 : 3) << message;
    const std::string start = "kelst: " + changed.Path() + ": ";
    EXPECT_EQ(result.err, message.empty() ? "" : start + message + '\n');
  }
}

TEST(RefusalTest, SaysWhatElseAFileIs) {
  const TemporaryFolder folder;
  folder.Write("empty", {});
  folder.Write("short", Bytes(33, 'a'));
  folder.Write("text", Bytes(100, ' '));
  const std::vector<std::pair<std::string, std::string>> cases{
      {"empty", "not a compound file: the file is empty"},
      {"short", "not a compound file: the file is too short (33 bytes)"},
      {"text", "not a compound file: sector shift is 8224 (9 or 12 expected)"},
      {".", "is a directory"},
      {"/dev/null", "is not a regular file"},
      {"missing", "No such file or directory"},
      {"mis\x1Bsing", "No such file or directory"},
  };
  for (const std::string command : {"info", "ls"}) {
    for (const auto& [name, message] : cases) {
      const RunResult result = RunKelst({command, name}, StandardOutput::kFile, folder.Path());
      EXPECT_EQ(result.exitCode, 3);
      EXPECT_THAT(result.err, EndsWith(": " + message + "\n"));
      EXPECT_THAT(result.err, Not(HasSubstr("\x1B")));
    }
  }
}

TEST(ExitCodeTest, TheHighestOfAllFilesCounts) {
  const std::string good = SampleFile("cells.xls");
  const std::vector<std::pair<std::vector<std::string>, int>> cases{
      {{"info", good, good}, 0},
      {{"info", "/missing", good}, 3},
      {{"ls", "-p", "missing", good, "/missing", good}, 3},
      {{"ls", "-p", "missing", good, good}, 1},
      {{"ls", good, "missing"}, 1},
      {{"cat", good, "missing"}, 1},
      {{"cat", SampleFile("nested.cfb"), "st0"}, 1},
      {{"cat", good, "/"}, 1},
      {{"cat", "/missing", "x"}, 3},
      {{"hexdump", good, "/"}, 1},
      {{"hexdump", "/missing", "x"}, 3},
      {{"find", "/missing", good, "--name", "workbook"}, 3},
      {{"extract", "/missing"}, 3},
      {{"extract", good, "-C", "/missing/folder"}, 1},
  };
  for (const auto& [arguments, code] : cases) {
    const RunResult result = RunKelst(arguments);
    EXPECT_EQ(result.exitCode, code) << testing::PrintToString(arguments);
    EXPECT_EQ(result.err.empty(), code == 0) << result.err;
  }
}

TEST(ExitCodeTest, AFileThatIsMissingIsNamedOnceWhateverPathWasAskedFor) {
  const RunResult result = RunKelst({"ls", "/missing", "path"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err, "kelst: /missing: No such file or directory\n");
}

TEST(ExitCodeTest, WrongUsageIsExplained) {
  const std::vector<std::vector<std::string>> cases{{},
                                                    {"nothing"},
                                                    {"info"},
                                                    {"ls"},
                                                    {"ls", "-1", "-l", "x"},
                                                    {"ls", "--json", "-1", "x"},
                                                    {"cat", "x"},
                                                    {"ls", "--sort", "time", "x"},
                                                    {"cat", "x", "y", "z"},
                                                    {"find", "x"},
                                                    {"hexdump", "x", "y", "--offset", "-1"},
                                                    {"hexdump", "x", "y", "--offset", "0x"},
                                                    {"hexdump", "x", "y", "--length", "1k"},
                                                    {"hexdump", "x", "y", "--length", "0x1g"},
                                                    {"extract", "x", "-C"},
                                                    {"info", "--bogus", "x"}};
  for (const auto& arguments : cases) {
    const RunResult result = RunKelst(arguments);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(result.err, EndsWith("--help'\n"));
  }
}

TEST(ExitCodeTest, AWordThatIsNoCommandIsNamed) {
  EXPECT_EQ(RunKelst({"chekc", "x"}).err,
            "kelst: no command named \"chekc\"; see 'kelst --help'\n");
}

TEST(HelpTest, EveryCommandHasHelpAndAVersion) {
  EXPECT_EQ(RunKelst({"--version"}).out, "kelst " KELX_VERSION "\n");
  EXPECT_THAT(RunKelst({"--help"}).out, HasSubstr("Exit codes:"));
  for (const std::string command :
       {"info", "ls", "find", "cat", "hexdump", "extract", "props", "check"}) {
    EXPECT_EQ(RunKelst({command, "--version"}).out, "kelst " KELX_VERSION "\n");
    const RunResult help = RunKelst({command, "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, HasSubstr("Usage: kelst " + command));
  }
}

TEST(StandardOutputTest, AFullDiskIsReportedAndAClosedPipeIsNot) {
  const std::string sample = SampleFile("pictures.doc");
  const TemporaryFolder target;
  const std::vector<std::vector<std::string>> cases{{"cat", sample, "Data"},
                                                    {"extract", "-f", "-C", target.Path(), sample},
                                                    {"props", sample},
                                                    {"hexdump", sample, "Data"},
                                                    {"find", sample, "--name", "*"},
                                                    {"ls", sample},
                                                    {"ls", "--json", sample},
                                                    {"check", sample},
                                                    {"check", "--json", sample},
                                                    {"info", sample},
                                                    {"--help"}};
  for (const auto& arguments : cases) {
    const RunResult full = RunKelst(arguments, StandardOutput::kFullDevice);
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(full.err, "kelst: standard output: No space left on device\n");
    const RunResult closed = RunKelst(arguments, StandardOutput::kClosedPipe);
    EXPECT_EQ(closed.exitCode, 1);
    EXPECT_EQ(closed.err, "");
  }
}

}  // namespace
}  // namespace kelx::test
