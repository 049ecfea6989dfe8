#include "tests/support/Content.h"

#include <algorithm>

namespace kelx::test {
namespace {

void FillPattern(std::uint64_t start, std::span<unsigned char> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = static_cast<unsigned char>(((start + i) * 0x9E3779B97F4A7C15) >> 56);
  }
}

}  // namespace

Content::Content(Bytes bytes) : size(bytes.size()) {
  fill = [held = std::move(bytes)](std::uint64_t offset, std::span<unsigned char> out) {
    std::ranges::copy(std::span(held).subspan(offset, out.size()), out.begin());
  };
}

Content GeneratedPattern(std::uint64_t size, std::uint32_t seed) {
  const std::uint64_t start = std::uint64_t{seed} << 32;
  return Content(size, [start](std::uint64_t offset, std::span<unsigned char> out) {
    FillPattern(start + offset, out);
  });
}

Bytes Pattern(std::size_t size, std::uint32_t seed) {
  Bytes bytes(size);
  GeneratedPattern(size, seed).fill(0, bytes);
  return bytes;
}

}  // namespace kelx::test
