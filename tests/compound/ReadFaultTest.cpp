#include <gtest/gtest.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "compound/KELReadValue.h"
#include "compound/KELStStorageFileInfo.h"
#include "tests/support/CompoundFileBuilder.h"

// A device that fails in the middle of a file: what it did not deliver reads as zeros.

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

/// A file in memory that cannot be read from `faultStart` to `faultEnd`.
struct FaultyFile {
  const Bytes& bytes;
  std::size_t faultStart;
  std::size_t faultEnd;
  std::size_t position = 0;
};

ssize_t ReadFaulty(void* cookie, char* buffer, std::size_t size) {
  auto& file = *static_cast<FaultyFile*>(cookie);
  if (file.position >= file.faultStart && file.position < file.faultEnd) {
    errno = EIO;
    return -1;
  }
  const std::size_t stop = file.position < file.faultStart
                               ? std::min(file.faultStart, file.bytes.size())
                               : file.bytes.size();
  const std::size_t length = std::min(size, stop - std::min(stop, file.position));
  std::copy_n(file.bytes.begin() + static_cast<std::ptrdiff_t>(file.position), length, buffer);
  file.position += length;
  return static_cast<ssize_t>(length);
}

int SeekFaulty(void* cookie, off64_t* offset, int whence) {
  auto& file = *static_cast<FaultyFile*>(cookie);
  const std::size_t from = whence == SEEK_SET   ? 0
                           : whence == SEEK_CUR ? file.position
                                                : file.bytes.size();
  file.position = from + static_cast<std::size_t>(*offset);
  *offset = static_cast<off64_t>(file.position);
  return 0;
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

/// Without a buffer, which would read beyond what is asked for.
OwnedFile Open(FaultyFile& file) {
  OwnedFile opened(fopencookie(&file, "rb", {ReadFaulty, nullptr, SeekFaulty, nullptr}));
  std::setvbuf(opened.get(), nullptr, _IONBF, 0);
  return opened;
}

/// All that the steps of loading find, as text.
std::string Loaded(const Bytes& bytes, std::size_t faultStart, std::size_t faultEnd) {
  FaultyFile faulty{bytes, faultStart, faultEnd};
  const OwnedFile file = Open(faulty);
  KELStStorageFileInfo image;
  image.setHeader(file.get());
  if (!image.checkHeader()) return "refused";
  image.readDifSector(file.get());
  image.readFatSector(file.get());
  image.readMiniFatSector(file.get());
  image.readDirectorySector(file.get());
  image.setMiniStreamData(file.get());
  std::string text;
  for (const unsigned int next : image.getFatSector()) text += std::to_string(next) + ' ';
  text += "\nmini FAT: ";
  for (const unsigned int next : image.getMiniFatSector()) text += std::to_string(next) + ' ';
  for (const KELStStorageDirEntry& entry : image.getDirArray()) {
    text += '\n' + entry.getName().toUtf8() + ' ' + std::to_string(entry.getSize());
  }
  text += "\nmini stream: ";
  for (const unsigned char byte : image.getMiniStream()) text += std::to_string(byte) + ' ';
  return text;
}

Bytes SmallFile() {
  CompoundFileBuilder builder({.extraFatSectors = 3, .fatSectorsInHeader = 1});
  builder.AddStream(kRoot, u"large", Pattern(5000));
  builder.AddStream(kRoot, u"small", Pattern(300));
  builder.AddStream(builder.AddStorage(kRoot, u"Inner"), u"deep", Pattern(100));
  return builder.Build().bytes;
}

TEST(ReadFault, AFileThatFailsFromSomewhereOnReadsAsOneCutThere) {
  const Bytes whole = SmallFile();
  for (std::size_t start = 0; start <= whole.size(); start += 64) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(start));
    EXPECT_EQ(Loaded(whole, start, whole.size()), Loaded(cut, start, start)) << start;
  }
}

TEST(ReadFault, AFaultInASectorOfTheLargeStreamTouchesNothingElse) {
  const Bytes whole = SmallFile();
  const std::string expected = Loaded(whole, 0, 0);
  const Bytes content = Pattern(5000);
  const auto found = std::ranges::search(whole, content);
  ASSERT_FALSE(found.empty());
  const auto start = static_cast<std::size_t>(found.begin() - whole.begin());
  EXPECT_EQ(Loaded(whole, start, start + content.size()), expected);
  EXPECT_NE(Loaded(whole, 512, 1024), expected);
}

TEST(ReadFault, BytesBeforeTheFaultAreDelivered) {
  const Bytes bytes = Pattern(100);
  FaultyFile faulty{bytes, 10, 20};
  const OwnedFile file = Open(faulty);
  Bytes buffer(16, 0xAA);
  EXPECT_EQ(KELReadBytes(file.get(), 4, 16, buffer.data()), 6);
  Bytes expected(bytes.begin() + 4, bytes.begin() + 10);
  expected.resize(16, 0);
  EXPECT_EQ(buffer, expected);
  EXPECT_EQ(KELReadBytes(file.get(), 20, 16, buffer.data()), 16);
  EXPECT_TRUE(std::equal(buffer.begin(), buffer.end(), bytes.begin() + 20));
  unsigned int value = 0xAAAAAAAA;
  KELSetPosition(file.get(), 8);
  KELReadUINT(file.get(), value, true);
  EXPECT_EQ(value, bytes[8] | (static_cast<unsigned int>(bytes[9]) << 8));
}

}  // namespace
