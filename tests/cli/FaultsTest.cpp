#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

// What goes wrong outside of the file's own bytes: others change it, or the disk is full.

namespace kelx::test {
namespace {

namespace fs = std::filesystem;

TEST(FaultTest, AFileThatChangesWhileItIsReadIsReported) {
  constexpr std::size_t kMoreThanAPipeHolds = 3'000'000;
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"Large", Pattern(kMoreThanAPipeHolds));
  const Bytes bytes = builder.Build().bytes;
  const TemporaryFile twin(bytes);
  struct Case {
    const char* name;
    std::function<void(const std::string&)> change;
    bool isReported;
  };
  const Case cases[] = {
      {"left alone", [](const std::string&) {}, false},
      {"shrunk", [](const std::string& path) { fs::resize_file(path, 1000); }, true},
      {"grown", [](const std::string& path) { std::ofstream(path, std::ios::app) << 'x'; }, true},
      {"replaced by a twin",
       [&](const std::string& path) {
         fs::copy_file(twin.Path(), path + ".new");
         fs::rename(path + ".new", path);
       },
       true},
      {"removed", [](const std::string& path) { fs::remove(path); }, true},
  };
  for (const Case& one : cases) {
    const TemporaryFile file(bytes);
    const RunResult result =
        RunKelstMeanwhile({"cat", file.Path(), "Large"}, [&] { one.change(file.Path()); });
    EXPECT_EQ(result.out.size(), kMoreThanAPipeHolds) << one.name;
    EXPECT_EQ(result.exitCode, one.isReported ? 1 : 0) << one.name;
    EXPECT_EQ(result.err, one.isReported ? "kelst: " + file.Path() +
                                               ": Large: the file changed while it was read\n"
                                         : "")
        << one.name;
  }
}

/// While it lives, no process started from here makes a file longer than `bytes`: a disk that gets
/// full.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST(FaultTest, AStreamThatCannotBeWrittenWholeLeavesNoFile) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"A", Pattern(10'000));
  builder.AddStream(kRoot, u"B", Pattern(100'000));
  builder.AddStream(kRoot, u"C", Pattern(10'000));
  const TemporaryFile file(builder.Build().bytes);
  const TemporaryFolder target;
  RunResult result;
  {
    const FileSizeLimit limit(50'000);
    result = RunKelst({"extract", file.Path(), "-C", target.Path()});
  }
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(Lines(result.err).at(0), "kelst: " + file.Path() + ": B: File too large");
  EXPECT_EQ(std::distance(fs::directory_iterator(target.Path()), {}), 2);
  EXPECT_EQ(fs::file_size(target.PathOf("A")), 10'000U);
  EXPECT_EQ(fs::file_size(target.PathOf("C")), 10'000U);
}

}  // namespace
}  // namespace kelx::test
