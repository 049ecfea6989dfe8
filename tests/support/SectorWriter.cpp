#include "tests/support/SectorWriter.h"

#include <algorithm>
#include <stdexcept>

namespace kelx::test {
namespace {

/// Bounds the buffer between a content and the sink.
constexpr std::size_t kPieceSize = std::size_t{1} << 20;

/// How many sectors at the start of `chain` follow one another.
std::size_t RunLength(std::span<const std::uint32_t> chain, std::size_t limit) {
  std::size_t count = 1;
  while (count < std::min(limit, chain.size()) && chain[count] == chain[0] + count) ++count;
  return count;
}

}  // namespace

Sink IntoMemory(Bytes& image) {
  return [&image](std::uint64_t offset, std::span<const unsigned char> bytes) {
    std::ranges::copy(bytes, std::span(image).subspan(offset).begin());
  };
}

Sink IntoFile(std::FILE* file) {
  return [file](std::uint64_t offset, std::span<const unsigned char> bytes) {
    const auto wanted = static_cast<off_t>(offset);
    const bool placed = ftello(file) == wanted || fseeko(file, wanted, SEEK_SET) == 0;
    if (!placed || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) {
      throw std::runtime_error("cannot write the compound file");
    }
  };
}

void SectorWriter::Write(std::span<const std::uint32_t> chain, const Content& content) {
  for (std::uint64_t done = 0; !chain.empty();) {
    const std::size_t count = RunLength(chain, kPieceSize / sectorSize_);
    const std::uint64_t length = std::min<std::uint64_t>(count * sectorSize_, content.size - done);
    buffer_.resize(std::max<std::size_t>(buffer_.size(), length));
    const std::span<unsigned char> piece(buffer_.data(), length);
    content.fill(done, piece);
    sink_(base_ + std::uint64_t{chain[0]} * sectorSize_, piece);
    done += length;
    chain = chain.subspan(count);
  }
}

}  // namespace kelx::test
