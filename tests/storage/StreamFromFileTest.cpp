#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>

#include "tests/storage/OpenedFile.h"
#include "tests/support/Damage.h"

namespace {

using namespace kelx::test;  // NOLINT: the words of the builder

const Bytes kSmallBytes = Pattern(100, 1);
const Bytes kLargeBytes = Pattern(10000, 2);

struct BuiltFile {
  CompoundFile file;
  std::size_t largeStart;  ///< where the large stream begins; it ends with the file
};

BuiltFile SmallAndLarge(Format format = {}) {
  CompoundFileBuilder builder(format);
  builder.AddStream(kRoot, u"small", kSmallBytes);
  const EntryIndex large = builder.AddStream(kRoot, u"large", kLargeBytes);
  CompoundFile file = builder.Build();
  const std::size_t start = file.layout.SectorOffset(file.layout.entries[large].startSector);
  return {std::move(file), start};
}

TEST(OpenStream, TheCutoffDecidesWhereAStreamIsRead) {
  for (const std::uint32_t cutoff : {0U, 1U, 64U, 4096U, 0xFFFFFFFFU}) {
    for (const std::uint32_t size : {1U, 63U, 64U, 65U, 4095U, 4096U, 5000U}) {
      CompoundFileBuilder builder({.miniStreamCutoff = cutoff});
      builder.AddStream(kRoot, u"stream", Pattern(size));
      const OpenedFile opened(builder.Build());
      EXPECT_EQ(Contents(*opened.root, "stream"), Pattern(size)) << cutoff << ' ' << size;
      std::filesystem::remove(opened.file.Path());
      const auto stream = TryStream(*opened.root, "stream");
      const bool isFromFile = size >= cutoff;
      EXPECT_EQ(stream.status, isFromFile ? -1 : 0) << cutoff << ' ' << size;
      EXPECT_EQ(stream.out, isFromFile ? Out::kUntouched : Out::kObject) << cutoff << ' ' << size;
    }
  }
}

/// Overwrites from `length` on with zeros, as a file cut short there is read.
Bytes ZeroedFrom(Bytes bytes, std::size_t length) {
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(std::min(length, bytes.size())),
            bytes.end(), static_cast<unsigned char>(0));
  return bytes;
}

TEST(OpenStream, BytesThatTheFileLacksAreZero) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    for (const std::uint32_t sectorSize : {512U, 4096U}) {
      const BuiltFile whole = SmallAndLarge({.sectorSize = sectorSize, .byteOrder = order});
      for (std::size_t kept = 0; kept <= kLargeBytes.size(); kept += 199) {
        CompoundFile file = whole.file;
        TruncateTo(file, whole.largeStart + kept);
        const OpenedFile opened(file);
        EXPECT_EQ(Contents(*opened.root, "large"), ZeroedFrom(kLargeBytes, kept)) << kept;
      }
    }
  }
}

void Overwrite(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

TEST(OpenStream, LargeStreamsAreReadFromTheFileAsItIsNow) {
  const BuiltFile whole = SmallAndLarge();
  struct Change {
    const char* name;
    std::function<void(const std::string&)> make;
    Out out;
    Bytes large;
  };
  const Change changes[] = {
      {"none", [](const std::string&) {}, Out::kObject, kLargeBytes},
      {"shrunk",
       [&](const std::string& path) { std::filesystem::resize_file(path, whole.largeStart + 700); },
       Out::kObject, ZeroedFrom(kLargeBytes, 700)},
      {"emptied", [](const std::string& path) { std::filesystem::resize_file(path, 0); },
       Out::kObject, Bytes(10000)},
      {"overwritten",
       [&](const std::string& path) { Overwrite(path, Bytes(whole.file.bytes.size(), 0xAA)); },
       Out::kObject, Bytes(10000, 0xAA)},
      {"removed",
       [](const std::string& path) { std::filesystem::remove(path); },
       Out::kUntouched,
       {}},
  };
  for (const Change& change : changes) {
    const OpenedFile opened(whole.file);
    change.make(opened.file.Path());
    const auto stream = TryStream(*opened.root, "large");
    EXPECT_EQ(stream.status, change.out == Out::kObject ? 0 : -1) << change.name;
    EXPECT_EQ(stream.out, change.out) << change.name;
    EXPECT_EQ(stream.object ? Rest(*stream.object) : Bytes(), change.large) << change.name;
    EXPECT_EQ(Contents(*opened.root, "small"), kSmallBytes) << change.name;
  }
}

}  // namespace
