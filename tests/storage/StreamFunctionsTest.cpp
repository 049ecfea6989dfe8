#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "storage/KELStgFunctions.h"
#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

/// A stream that holds `size` bytes; its entry states `stated`.
std::unique_ptr<KELIStream> Holding(std::size_t size, unsigned long stated) {
  auto stream = std::make_unique<KELIStream>(0);
  Bytes bytes = Pattern(size);
  stream->Write(bytes.data(), bytes.size(), nullptr);
  KELStStorageDirEntry entry;
  entry.setSize(stated);
  stream->setDirEntry(entry);
  return stream;
}

TEST(StreamFunctions, ReadExactly) {
  const auto stream = Holding(6, 6);
  const Bytes whole = Pattern(6);
  unsigned char buffer[10] = {};
  char signedBuffer[10] = {};
  EXPECT_FALSE(ReadStream(stream.get(), buffer, 10));
  EXPECT_EQ(Bytes(buffer, buffer + 6), whole);
  EXPECT_TRUE(ReadStream(stream.get(), buffer, 0));
  EXPECT_FALSE(ReadStream(stream.get(), buffer, 1));  // the position moved to the end
  EXPECT_TRUE(SeekStream(stream.get(), 0, 0));
  EXPECT_TRUE(ReadStream(stream.get(), signedBuffer, 6));
  EXPECT_EQ(Bytes(signedBuffer, signedBuffer + 6), whole);
}

TEST(StreamFunctions, MoveThePosition) {
  struct Case {
    long offset;
    int origin;
    unsigned long forward;
    std::size_t left;
  };
  const Case cases[] = {
      {0, 0, 0, 2500},  {5, 0, 0, 2495},   {5, 1, 0, 2494},  {5, 2, 0, 2493}, {4, 0, 3, 2493},
      {9, -2, 0, 2493}, {-3, 10, 0, 2493}, {-3, 0, 3, 2500}, {-3, 0, 0, 0},   {2501, 0, 0, 0},
  };
  const auto stream = Holding(2500, 2500);
  for (const Case& one : cases) {
    EXPECT_TRUE(SeekStream(stream.get(), one.offset, one.origin));
    unsigned long forward = one.forward;
    EXPECT_TRUE(TellStream(stream.get(), forward));
    EXPECT_EQ(forward, one.forward);
    EXPECT_EQ(Rest(*stream).size(), one.left) << one.offset << ' ' << one.origin;
  }
}

struct Writing {
  long position;
  unsigned long size;
  unsigned long stated;
  bool result;
  std::size_t written;
  std::size_t left;  ///< for later reads
};

const Writing kWritings[] = {
    {0, 0, 2500, true, 2500, 0},        {100, 0, 2500, false, 2048, 0},
    {100, 1500, 2500, true, 1500, 900}, {0, 1024, 2500, true, 1024, 1476},
    {0, 1, 2500, true, 1, 2499},        {2500, 1, 2500, false, 0, 0},
    {0, 2501, 2500, false, 2048, 0},    {0, 0xFFFFFFFF, 2500, false, 2048, 0},
    {0, 0, 0, true, 0, 2500},           {0, 0, 3000, false, 2048, 0},
    {1477, 1023, 2500, true, 1023, 0},  {1476, 1025, 2500, false, 1024, 0},
};

/// Has `write(stream, size)` write as `one` says, and compares what is then in the file.
template <typename Write>
void ExpectWritten(const Writing& one, const std::string& path, Write write) {
  const Bytes whole = Pattern(2500);
  const auto stream = Holding(whole.size(), one.stated);
  stream->Seek(static_cast<unsigned long>(one.position), 0);
  EXPECT_EQ(write(stream.get(), one.size), one.result) << one.position << ' ' << one.size;
  Bytes written(5000);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  written.resize(std::fread(written.data(), 1, written.size(), file.get()));
  const auto from = whole.begin() + one.position;
  EXPECT_EQ(written, Bytes(from, from + static_cast<std::ptrdiff_t>(one.written))) << one.size;
  EXPECT_EQ(Rest(*stream).size(), one.left) << one.position << ' ' << one.size;
}

TEST(StreamFunctions, WriteToAPath) {
  const TemporaryFolder folder;
  for (const Writing& one : kWritings) {
    const std::string path = folder.Write("out", Bytes(4000, 1));  // emptied first
    KELXFilePath target = PathTo(path);
    ExpectWritten(one, path, [&](KELIStream* stream, unsigned long size) {
      return WriteStreamToFile(stream, target, size);
    });
  }
}

TEST(StreamFunctions, WriteToAnOpenFile) {
  const TemporaryFolder folder;
  for (const Writing& one : kWritings) {
    const std::string path = folder.PathOf("out");
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    ExpectWritten(one, path, [&](KELIStream* stream, unsigned long size) {
      const bool result = WriteStreamToFile(stream, file, size);
      EXPECT_EQ(std::fclose(file), 0);
      return result;
    });
  }
}

TEST(StreamFunctions, WhatCannotBeWrittenIsNotRead) {
  const TemporaryFolder folder;
  const auto stream = Holding(6, 6);
  KELXFilePath noFile = PathTo(folder.PathOf("no/such/folder"));
  KELXFilePath aFolder = PathTo(folder.Path());
  KELXFilePath target = PathTo(folder.PathOf("out"));
  EXPECT_FALSE(WriteStreamToFile(stream.get(), noFile, 0));
  EXPECT_FALSE(WriteStreamToFile(stream.get(), aFolder, 0));
  EXPECT_FALSE(WriteStreamToFile(stream.get(), static_cast<std::FILE*>(nullptr), 0));
  EXPECT_EQ(Rest(*stream), Pattern(6));
  EXPECT_FALSE(WriteStreamToFile(nullptr, target, 1));
  EXPECT_FALSE(std::filesystem::exists(folder.PathOf("out")));
}

TEST(StreamFunctions, TheSizeIsTheStatedOne) {
  CompoundFileBuilder builder;
  const EntryIndex entry = builder.AddStream(kRoot, u"b", Pattern(2500));
  CompoundFile file = builder.Build();
  PatchEntry(file, entry, EntryField::kSize, 4000);
  const OpenedFile opened(file);
  const auto stream = std::move(TryStream(*opened.root, "b").object);
  unsigned long size = 0;
  EXPECT_TRUE(GetStreamSize(stream.get(), size));
  EXPECT_EQ(size, 4000U);
  EXPECT_EQ(Rest(*stream).size(), 2560U);  // what its 40 mini sectors have
}

}  // namespace
