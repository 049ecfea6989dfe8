#include "bench/Floors.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace kelx::bench {

namespace {

constexpr std::uint64_t kHugePage = std::uint64_t{2} << 20;
constexpr std::uint64_t kSectorSize = 512;

using Buffer = std::unique_ptr<unsigned char, decltype(&std::free)>;

/// malloc hands blocks that were freed out again, with their pages, once they have become common.
/// From here on it takes each large one from the system.
Buffer MakeFreshBuffer(std::uint64_t bytes) {
  constexpr int kLargeBlock = 128 * 1024;
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  return {static_cast<unsigned char*>(std::malloc(bytes)), &std::free};
}

Buffer MakeHugeBuffer(std::uint64_t bytes) {
  const std::uint64_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  Buffer buffer(static_cast<unsigned char*>(std::aligned_alloc(kHugePage, rounded)), &std::free);
  madvise(buffer.get(), rounded, MADV_HUGEPAGE);
  return buffer;
}

void ReadInto(const Buffer& buffer, const std::string& path, std::uint64_t bytes) {
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  benchmark::DoNotOptimize(std::fread(buffer.get(), 1, bytes, file));
  std::fclose(file);
}

}  // namespace

std::uint64_t FileSize(const std::string& path) { return std::filesystem::file_size(path); }

void ReadPlainly(const std::string& path, std::uint64_t bytes) {
  ReadInto(MakeFreshBuffer(bytes), path, bytes);
}

void ReadIntoHugePages(const std::string& path, std::uint64_t bytes) {
  ReadInto(MakeHugeBuffer(bytes), path, bytes);
}

void ReadSectors(const std::string& path, std::uint64_t bytes) {
  const Buffer buffer = MakeHugeBuffer(bytes);
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const std::uint64_t sectors = bytes / kSectorSize;
  constexpr std::uint64_t kStride = 7;  // odd, so that it meets every one of 2^n sectors
  for (std::uint64_t i = 0; i < sectors; ++i) {
    const std::uint64_t sector = i * kStride % sectors + 1;
    benchmark::DoNotOptimize(pread(file, buffer.get() + i * kSectorSize, kSectorSize,
                                   static_cast<off_t>(sector * kSectorSize)));
  }
  close(file);
}

}  // namespace kelx::bench
