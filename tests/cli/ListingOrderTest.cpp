#include <gtest/gtest.h>

#include "tests/cli/RunKelst.h"
#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/TemporaryFile.h"

namespace kelx::test {
namespace {

TEST(ListingOrderTest, SortsTheEntriesOfEachStorage) {
  CompoundFileBuilder builder;
  builder.AddStream(kRoot, u"b", Pattern(10));
  const EntryIndex storage = builder.AddStorage(kRoot, u"C");
  builder.AddStream(storage, u"y", Pattern(5));
  builder.AddStream(storage, u"X", Pattern(6));
  builder.AddStream(kRoot, u"A", Pattern(10));
  builder.AddStream(kRoot, u"\u4840\u4829", Pattern(11));  // f, a table
  builder.AddStream(kRoot, u"B", Pattern(12));
  const TemporaryFile file(builder.Build().bytes);
  using Paths = std::vector<std::string>;
  const std::string table = "\u4840\u4829";
  const std::vector<std::pair<Paths, Paths>> cases{
      {{}, {"b", "C", "C/y", "C/X", "A", table, "B"}},
      {{"--sort", "index"}, {"b", "C", "C/y", "C/X", "A", table, "B"}},
      {{"--sort", "name"}, {"A", "b", "B", "C", "C/X", "C/y", table}},
      {{"--sort", "size"}, {"B", "C", "C/X", "C/y", table, "b", "A"}},
      {{"--sort", "size", "-p", "C"}, {"C/X", "C/y"}},
      {{"--sort", "name", "-p", "C/y"}, {"C/y"}},
  };
  for (const auto& [options, paths] : cases) {
    Paths arguments{"ls", "-1", file.Path()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Lines(RunKelst(arguments).out), paths) << testing::PrintToString(options);
  }
  EXPECT_EQ(RunKelst({"ls", "--sort", "size", file.Path()}).out,
            file.Path() +
                "\n"
                "      12  stream   ├── B\n"
                "      11  storage  ├── C/\n"
                "       6  stream   │   ├── X\n"
                "       5  stream   │   └── y\n"
                "      11  stream   ├── \u4840\u4829 (f)\n"
                "      10  stream   ├── b\n"
                "      10  stream   └── A\n"
                "      54  bytes in 6 streams and 1 storage\n");
}

}  // namespace
}  // namespace kelx::test
