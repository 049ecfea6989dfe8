#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "KELXStStorage.h"
#include "tests/cli/RunKelst.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

/// The directory indexes of all entries that the library reaches from the root.
std::set<unsigned long> ReachableIndexes(KELIStorage& storage) {
  const auto directory = storage.getStStorageFileInfo()->getDirArray();
  std::set<unsigned long> reachable{0};
  std::vector<unsigned long> pending{0};
  while (!pending.empty()) {
    const auto* const entry = directory.At(static_cast<int>(pending.back()));
    pending.pop_back();
    if (entry == nullptr || entry->isStream() || entry->getChild() == 0xFFFFFFFF) continue;
    KELXDynamicArray<unsigned long> children;
    storage.getColleagueIndexArray(entry->getChild(), children);
    for (const unsigned long child : children) {
      if (reachable.insert(child).second) pending.push_back(child);
    }
  }
  return reachable;
}

std::string LibraryBytes(KELIStorage& storage, int index) {
  const auto directory = storage.getStStorageFileInfo()->getDirArray();
  const KELStStorageDirEntry& entry = *directory.At(index);
  KELIStream* opened = nullptr;
  if (entry.getSize() >= storage.getStStorageFileInfo()->getHeader().miniStreamCutoff) {
    storage.getStreamFromFat(entry, &opened);
  } else {
    storage.getStreamFromMiniFat(entry, &opened);
  }
  const std::unique_ptr<KELIStream> stream(opened);
  std::string bytes(entry.getSize(), '\0');
  EXPECT_TRUE(ReadStream(opened, bytes.data(), bytes.size()));
  return bytes;
}

class SamplesTest : public testing::TestWithParam<const char*> {};

TEST_P(SamplesTest, ToolShowsAndReadsWhatTheLibraryReads) {
  const std::string path = SampleFile(GetParam());
  KELIStorage storage(KELXFilePath(path.c_str()));
  const TemporaryFolder target;
  const RunResult extracted = RunKelst({"extract", path, "-C", target.Path()});
  EXPECT_EQ(extracted.exitCode, 0) << extracted.err;

  const RunResult listed = RunKelst({"ls", "--json", path});
  ASSERT_EQ(listed.exitCode, 0) << listed.err;
  const auto document = nlohmann::json::parse(listed.out);
  std::set<unsigned long> shown;
  for (const auto& entry : document["entries"]) {
    shown.insert(entry["index"].get<unsigned long>());
    if (entry["kind"] != "stream") continue;
    const std::string bytes = LibraryBytes(storage, entry["index"]);
    const std::string entryPath = entry["path"];
    EXPECT_TRUE(RunKelst({"cat", path, entryPath}).out == bytes) << entryPath;
    std::string fileName = entryPath;
    std::ranges::replace(fileName, '\\', '%');
    EXPECT_TRUE(ReadFile(target.PathOf(fileName)) == bytes) << entryPath;
  }
  EXPECT_EQ(shown, ReachableIndexes(storage));
}

INSTANTIATE_TEST_SUITE_P(All, SamplesTest,
                         testing::Values("metadata.doc", "unicode.doc", "objects.doc",
                                         "pictures.doc", "cells.xls", "installer.msi",
                                         "nested.cfb"));

TEST(LsTest, PrintsATreeWithTotals) {
  const RunResult result = RunKelst({"ls", "objects.doc", "ObjectPool/_2147483647"},
                                    StandardOutput::kFile, KELX_TEST_DATA);
  EXPECT_EQ(result.out,
            "objects.doc\n"
            "     182  storage  ObjectPool/_2147483647/\n"
            "      20  stream   ├── \\x01Ole\n"
            "     102  stream   ├── \\x01CompObj\n"
            "      60  stream   └── Equation Native\n"
            "     182  bytes in 3 streams\n");
}

TEST(LsTest, ShowsTheWholeNameBesideTheLibrarys) {
  const RunResult result = RunKelst({"ls", "--json", SampleFile("installer.msi")});
  const auto entry = nlohmann::json::parse(result.out)["entries"][1];
  EXPECT_EQ(entry["name"], "\u4840\u3F3F\u4577\u446C\u3B6A\u45E4\u4824");
  EXPECT_EQ(entry["libraryName"], "@?wlj\u00E4$");
}

/// The command line, and the lines of standard output; the files are samples.
struct ListingCase {
  const char* name;
  std::vector<std::string> arguments;
  std::vector<std::string> lines;
};

class ListingTest : public testing::TestWithParam<ListingCase> {};

TEST_P(ListingTest, PrintsPaths) {
  std::vector<std::string> arguments{"ls", "-1"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const RunResult result = RunKelst(arguments, StandardOutput::kFile, KELX_TEST_DATA);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(Lines(result.out), GetParam().lines);
}

const std::vector<std::string> kCells{"Workbook", "\\x01CompObj", "\\x01Ole",
                                      "\\x05SummaryInformation", "\\x05DocumentSummaryInformation"};

std::vector<std::string> Joined(std::vector<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ListingTest,
    testing::Values(
        ListingCase{"OneFile", {"cells.xls"}, kCells},
        ListingCase{"Root", {"cells.xls", "/"}, kCells},
        ListingCase{"Stream", {"cells.xls", "Workbook"}, {"Workbook"}},
        ListingCase{"StreamInOtherCase", {"cells.xls", "workBOOK"}, {"Workbook"}},
        ListingCase{"Storage", {"nested.cfb", "st0/in1"}, {"st0/in1/large", "st0/in1/small"}},
        ListingCase{
            "SlashAtTheEnd", {"nested.cfb", "st0/in1/"}, {"st0/in1/large", "st0/in1/small"}},
        ListingCase{"TwoFiles",
                    {"cells.xls", "cells.xls"},
                    Joined({{"cells.xls:"}, kCells, {"", "cells.xls:"}, kCells})},
        ListingCase{"OnePathInTwoFiles",
                    {"-p", "\\x01ole", "metadata.doc", "cells.xls"},
                    {"metadata.doc:", "\\x01Ole", "", "cells.xls:", "\\x01Ole"}}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace kelx::test
