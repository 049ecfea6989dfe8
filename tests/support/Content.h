#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <utility>

#include "tests/support/DiskFormat.h"

namespace kelx::test {

/// The bytes of a stream, held or made on demand.
struct Content {
  Content() = default;
  Content(Bytes bytes);  // implicit, so that a call site can pass plain bytes
  Content(std::uint64_t sizeInBytes,
          std::function<void(std::uint64_t offset, std::span<unsigned char> out)> fillFrom)
      : size(sizeInBytes), fill(std::move(fillFrom)) {}

  std::uint64_t size = 0;
  /// Writes the content from `offset` on; asked for bytes inside the size only.
  std::function<void(std::uint64_t offset, std::span<unsigned char> out)> fill;
};

/// Bytes in which no two sectors are alike, and none of two seeds; also without holding them.
Bytes Pattern(std::size_t size, std::uint32_t seed = 0);
Content GeneratedPattern(std::uint64_t size, std::uint32_t seed = 0);

}  // namespace kelx::test
