#include "base/KELXFilePath.h"

#include <gtest/gtest.h>

namespace {

TEST(FilePath, OpensTheNamedFile) {
  const KELXFilePath sample(KELX_TEST_DATA "/cells.xls");
  const KELXFilePath copy(sample);
  std::FILE* file = copy.OpenFile("rb");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fgetc(file), 0xD0);
  std::fclose(file);
  EXPECT_EQ(copy.toUtf8(), KELX_TEST_DATA "/cells.xls");
}

TEST(FilePath, NullWhenTheFileCannotBeOpened) {
  EXPECT_EQ(KELXFilePath().OpenFile("rb"), nullptr);
  EXPECT_EQ(KELXFilePath(nullptr).OpenFile("rb"), nullptr);
  EXPECT_EQ(KELXFilePath("/no/such/file").OpenFile("rb"), nullptr);
  EXPECT_EQ(KELXFilePath("/no/such/folder/file").OpenFile("w+b"), nullptr);
}

}  // namespace
