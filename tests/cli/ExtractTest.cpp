#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

namespace fs = std::filesystem;

/// A file with the stream "Stream" and the storage "Storage", which holds the stream "Inside"; the
/// folder that is extracted to, and one beside it that must stay as it is.
class ExtractTest : public testing::Test {
 protected:
  ExtractTest() {
    CompoundFileBuilder builder;
    builder.AddStream(kRoot, u"Stream", Pattern(10, 1));
    const EntryIndex storage = builder.AddStorage(kRoot, u"Storage");
    builder.AddStream(storage, u"Inside", Pattern(10, 2));
    folder_.Write("file", builder.Build().bytes);
    fs::create_directory(folder_.PathOf("outside"));
    fs::create_directory(Target());
    std::ofstream(Outside("kept")) << "kept";
  }

  std::string Target(const std::string& name = "") const { return folder_.PathOf("in/" + name); }
  std::string Outside(const std::string& name = "") const {
    return folder_.PathOf("outside/" + name);
  }

  RunResult Extract(std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments{"extract", "file", "-C", "in"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunKelst(arguments, StandardOutput::kFile, folder_.Path());
  }

  void ExpectOutsideUntouched() const {
    EXPECT_EQ(ReadFile(Outside("kept")), "kept");
    EXPECT_EQ(std::distance(fs::directory_iterator(Outside()), {}), 1);
  }

  void ExpectNothingLeftOver() const {
    for (const auto& item : fs::recursive_directory_iterator(Target())) {
      EXPECT_THAT(item.path().filename().string(), testing::Not(testing::StartsWith(".kelst")));
    }
  }

  static std::string Content(std::uint32_t seed) {
    const Bytes bytes = Pattern(10, seed);
    return {bytes.begin(), bytes.end()};
  }

  TemporaryFolder folder_;
};

TEST_F(ExtractTest, SaysWhatItDid) {
  const RunResult result = Extract();
  EXPECT_EQ(result.out, "extracted 2 streams and 1 storage, 20 bytes, to in\n");
  EXPECT_EQ(result.err, "");
  ExpectNothingLeftOver();
}

TEST_F(ExtractTest, TakesOnlyWhatWasAskedFor) {
  EXPECT_EQ(Extract({"Storage/Inside", "Nothing"}).exitCode, 1);
  EXPECT_EQ(ReadFile(Target("Storage/Inside")), Content(2));
  EXPECT_FALSE(fs::exists(Target("Stream")));
}

TEST_F(ExtractTest, MakesAMissingFolder) {
  fs::remove(Target());
  EXPECT_EQ(Extract().exitCode, 0);
  EXPECT_EQ(ReadFile(Target("Stream")), Content(1));
}

TEST_F(ExtractTest, ReplacesFilesOnlyWhenForced) {
  std::ofstream(Target("Stream")) << "mine";
  const RunResult refused = Extract();
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.err, "kelst: file: Stream: exists already, and --force was not given\n");
  EXPECT_EQ(ReadFile(Target("Stream")), "mine");
  EXPECT_EQ(ReadFile(Target("Storage/Inside")), Content(2));
  EXPECT_EQ(Extract({"--force"}).exitCode, 0);
  EXPECT_EQ(ReadFile(Target("Stream")), Content(1));
  ExpectNothingLeftOver();
}

TEST_F(ExtractTest, DoesNotWriteThroughALinkToAFile) {
  fs::create_symlink(Outside("kept"), Target("Stream"));
  EXPECT_EQ(Extract().exitCode, 1);
  EXPECT_TRUE(fs::is_symlink(Target("Stream")));
  EXPECT_EQ(Extract({"-f"}).exitCode, 0);
  EXPECT_FALSE(fs::is_symlink(Target("Stream")));
  ExpectOutsideUntouched();
}

TEST_F(ExtractTest, DoesNotWriteThroughALinkThatLeadsNowhere) {
  fs::create_symlink(Outside("new"), Target("Stream"));
  EXPECT_EQ(Extract().exitCode, 1);
  ExpectOutsideUntouched();
}

TEST_F(ExtractTest, DoesNotEnterALinkToAFolder) {
  fs::create_directory_symlink(Outside(), Target("Storage"));
  const RunResult result = Extract({"--force"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "kelst: file: Storage: something stands in its place that is not a folder\n");
  EXPECT_EQ(ReadFile(Target("Stream")), Content(1));
  ExpectOutsideUntouched();
}

TEST_F(ExtractTest, LeavesAFolderInThePlaceOfAStream) {
  fs::create_directory(Target("Stream"));
  EXPECT_EQ(Extract({"--force"}).exitCode, 1);
  EXPECT_TRUE(fs::is_directory(Target("Stream")));
  ExpectNothingLeftOver();
}

TEST_F(ExtractTest, LeavesAFileInThePlaceOfAStorage) {
  std::ofstream(Target("Storage")) << "mine";
  EXPECT_EQ(Extract({"--force"}).exitCode, 1);
  EXPECT_EQ(ReadFile(Target("Storage")), "mine");
}

}  // namespace
}  // namespace kelx::test
