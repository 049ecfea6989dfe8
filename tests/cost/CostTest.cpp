#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "KELXStStorage.h"
#include "tests/cost/Counters.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

// Counts what cost is made of, which no noise of the machine can change. The bounds stand a little
// above what is needed: a loop that reads, seeks or allocates for each sector passes them at once.

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

TEST(Cost, TablesAreReadInRuns) {
  CompoundFileBuilder builder;
  for (int i = 0; i < 2000; ++i) builder.AddStream(kRoot, u"stream", GeneratedPattern(4000));
  const TemporaryFile path(builder.Build().bytes);  // 126 FAT sectors, 500 of directory
  counters = {};
  const KELStStorageFileInfo image((KELXFilePath(path.Path().c_str())));
  EXPECT_EQ(image.getDirArray().Count(), 2004);
  EXPECT_EQ(image.getMiniStream().Count(), 2000 * 4032);
  EXPECT_LE(counters.reads, 20);
  EXPECT_LE(counters.seeks, 20);
}

TEST(Cost, AContiguousStreamTakesOneRead) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"large", GeneratedPattern(512'000));
  const TemporaryFile path(builder.Build().bytes);
  const std::unique_ptr<KELIStorage> root(KELStgOpenStorageRoot(KELXFilePath(path.Path().c_str())));
  counters = {};
  CloseStream(OpenStream(root.get(), KELXString(L"large")));
  EXPECT_EQ(counters.reads, 1);
  EXPECT_EQ(counters.seeks, 1);
}

/// Allocations of opening and closing the stream `name`.
int CostOfOpening(KELIStorage& storage, const KELXString& name) {
  const int before = counters.allocations;
  const std::unique_ptr<KELIStream> stream(OpenStream(&storage, name));
  EXPECT_NE(stream, nullptr);
  return counters.allocations - before;
}

TEST(Cost, OpeningAStreamAllocatesTheSameWhateverTheSizes) {
  int costs[2][2] = {};
  for (const bool isLarge : {false, true}) {
    CompoundFileBuilder builder;
    builder.AddStream(kRoot, u"large", GeneratedPattern(isLarge ? 5'000'000 : 5'000));
    builder.AddStream(kRoot, u"small", GeneratedPattern(isLarge ? 4'000 : 40));
    for (int i = 0; i < (isLarge ? 2000 : 2); ++i) builder.AddStream(kRoot, u"other", {});
    const TemporaryFile path(builder.Build().bytes);
    const std::unique_ptr<KELIStorage> root(
        KELStgOpenStorageRoot(KELXFilePath(path.Path().c_str())));
    const KELXString large(L"large");
    const KELXString small(L"small");
    CostOfOpening(*root, small);  // lists the children
    costs[isLarge][0] = CostOfOpening(*root, large);
    costs[isLarge][1] = CostOfOpening(*root, small);
  }
  EXPECT_EQ(costs[0][0], costs[1][0]);
  EXPECT_EQ(costs[0][1], costs[1][1]);
  EXPECT_LE(costs[0][1], 4);
}

TEST(Cost, OpeningAStorageAllocatesTheSameWhateverTheDirectory) {
  int costs[2] = {};
  for (const bool isLarge : {false, true}) {
    CompoundFileBuilder builder;
    const EntryIndex inner = builder.AddStorage(kRoot, u"Inner");
    builder.AddStream(inner, u"a", Pattern(10));
    for (int i = 0; i < (isLarge ? 5000 : 5); ++i) builder.AddStream(kRoot, u"o", Pattern(70));
    const TemporaryFile path(builder.Build().bytes);
    const std::unique_ptr<KELIStorage> root(
        KELStgOpenStorageRoot(KELXFilePath(path.Path().c_str())));
    const KELXString name(L"Inner");
    CloseStorage(OpenStorage(root.get(), name));  // lists the children
    const int before = counters.allocations;
    CloseStorage(OpenStorage(root.get(), name));
    costs[isLarge] = counters.allocations - before;
  }
  EXPECT_EQ(costs[0], costs[1]);
}

}  // namespace
