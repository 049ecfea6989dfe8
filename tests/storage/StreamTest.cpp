#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <numeric>

#include "storage/KELIStream.h"
#include "tests/storage/OpenedFile.h"

namespace {

using kelx::test::Bytes;
using kelx::test::Rest;

constexpr unsigned long kUnset = 4711;

/// A stream that holds the bytes 0, 1, 2 ...
std::unique_ptr<KELIStream> Counting(std::size_t size, unsigned long reserved = 0) {
  auto stream = std::make_unique<KELIStream>(reserved);
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
  EXPECT_EQ(stream->Write(bytes.data(), bytes.size(), nullptr), 0);
  return stream;
}

TEST(Stream, ReadsWhatIsLeft) {
  const auto stream = Counting(10);
  struct Step {
    unsigned long count;
    unsigned long read;
    Bytes buffer;
  };
  const Step steps[] = {
      {4, 4, {0, 1, 2, 3, 99, 99, 99, 99, 99, 99}},
      {0, 0, {99, 99, 99, 99, 99, 99, 99, 99, 99, 99}},
      {10, 6, {4, 5, 6, 7, 8, 9, 99, 99, 99, 99}},
      {10, 0, {99, 99, 99, 99, 99, 99, 99, 99, 99, 99}},
  };
  for (const Step& step : steps) {
    Bytes buffer(10, 99);
    unsigned long read = kUnset;
    EXPECT_EQ(stream->Read(buffer.data(), step.count, &read), 0);
    EXPECT_EQ(read, step.read);
    EXPECT_EQ(buffer, step.buffer);
  }
}

TEST(Stream, ReadsWithoutACountPointer) {
  const auto stream = Counting(10);
  Bytes buffer(3);
  EXPECT_EQ(stream->Read(buffer.data(), 3, nullptr), 0);
  EXPECT_EQ(buffer, (Bytes{0, 1, 2}));
  EXPECT_EQ(Rest(*stream), (Bytes{3, 4, 5, 6, 7, 8, 9}));
}

TEST(Stream, MovesToAnyPosition) {
  constexpr unsigned long kHighest = std::numeric_limits<unsigned long>::max();
  struct Case {
    unsigned long offset;
    unsigned long origin;
    unsigned long delta;
    Bytes rest;
  };
  const Case cases[] = {
      {0, 0, 0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {3, 5, 0, {8, 9}},
      {3, 5, 1, {9}},
      {3, 5, 2, {}},
      {100, 0, 0, {}},
      {100, 0, kHighest - 92, {7, 8, 9}},  // 93 bytes back
      {kHighest, 9, 0, {8, 9}},            // the base less 1
      {kHighest, 0, 0, {}},
      {kHighest, 0, 10, {9}},
      {std::size_t{1} << 32, 0, 0, {}},  // not position 0
      {std::size_t{1} << 31, 0, 0, {}},
  };
  for (const Case& one : cases) {
    const auto stream = Counting(10);
    stream->SeekCur(4);  // where the stream stands does not count for Seek
    EXPECT_EQ(stream->Seek(one.offset, one.origin), 0);
    EXPECT_EQ(stream->SeekCur(one.delta), 0);
    EXPECT_EQ(Rest(*stream), one.rest) << one.offset << ' ' << one.origin << ' ' << one.delta;
  }
}

TEST(Stream, AReadPastTheEndKeepsThePosition) {
  const auto stream = Counting(10);
  stream->SeekCur(12);
  Bytes buffer(4);
  stream->Read(buffer.data(), buffer.size(), nullptr);
  Bytes more{10, 11, 12, 13};
  stream->Write(more.data(), more.size(), nullptr);
  EXPECT_EQ(Rest(*stream), (Bytes{12, 13}));
}

TEST(Stream, WritesAtTheEnd) {
  const auto stream = Counting(10);
  stream->Seek(2, 0);
  Bytes more{7, 8, 9};
  unsigned long written = kUnset;
  EXPECT_EQ(stream->Write(more.data(), more.size(), &written), 0);
  EXPECT_EQ(written, 3U);
  EXPECT_EQ(stream->Write(more.data(), 0, &written), 0);
  EXPECT_EQ(written, 0U);
  EXPECT_EQ(Rest(*stream), (Bytes{2, 3, 4, 5, 6, 7, 8, 9, 7, 8, 9}));
}

TEST(Stream, ReservedRoomIsNoContent) {
  for (const unsigned long reserved : {0UL, 3UL, 1000UL, 0x80000000UL, 0xFFFFFFFFUL}) {
    EXPECT_EQ(Rest(*Counting(0, reserved)), Bytes()) << reserved;
    EXPECT_EQ(Rest(*Counting(200, reserved)).size(), 200U) << reserved;
  }
}

TEST(Stream, DumpsAllOfIt) {
  for (const std::size_t size : {0U, 1U, 10U}) {
    const auto stream = Counting(size);
    stream->SeekCur(4);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    EXPECT_EQ(stream->Dump(file.get()), 0);
    std::rewind(file.get());
    Bytes dumped(100);
    dumped.resize(std::fread(dumped.data(), 1, dumped.size(), file.get()));
    EXPECT_EQ(dumped, Rest(*Counting(size)));
    EXPECT_EQ(Rest(*stream).size(), size < 4 ? 0 : size - 4);
    EXPECT_EQ(stream->Dump(nullptr), 0);
  }
}

TEST(Stream, CarriesACopyOfItsEntry) {
  KELIStream stream(0);
  KELStStorageDirEntry entry;
  entry.setSize(5);
  EXPECT_EQ(stream.Stat(&entry), 0);
  EXPECT_EQ(entry.getSize(), 0U);
  entry.setType(2);
  entry.setSize(77);
  entry.setStartSect(9);
  stream.setDirEntry(entry);
  entry.setSize(78);
  EXPECT_EQ(stream.getDirEntry().getSize(), 77U);
  EXPECT_EQ(stream.Stat(&entry), 0);
  EXPECT_EQ(entry.getSize(), 77U);
  EXPECT_EQ(entry.getStartSect(), 9U);
  EXPECT_TRUE(entry.isStream());
  EXPECT_EQ(stream.Stat(nullptr), 0);
  EXPECT_EQ(Rest(stream), Bytes());  // the size of the entry is no content
}

}  // namespace
