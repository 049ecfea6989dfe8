#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>
#include <utility>

#include "tests/support/Content.h"
#include "tests/support/DiskFormat.h"

namespace kelx::test {

using Sink = std::function<void(std::uint64_t offset, std::span<const unsigned char> bytes)>;

Sink IntoMemory(Bytes& image);
/// Throws `std::runtime_error` if the file cannot be written.
Sink IntoFile(std::FILE* file);

/// Spreads contents over the sectors of chains; sector 0 is `base` bytes into the sink.
class SectorWriter {
 public:
  SectorWriter(Sink sink, std::uint64_t base, std::uint32_t sectorSize)
      : sink_(std::move(sink)), base_(base), sectorSize_(sectorSize) {}

  void Write(std::span<const std::uint32_t> chain, const Content& content);

 private:
  Sink sink_;
  std::uint64_t base_;
  std::uint32_t sectorSize_;
  Bytes buffer_;  ///< kept from chain to chain, as most are short
};

}  // namespace kelx::test
