#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <span>

namespace kelx::internal {

/// The same value with its bytes in the opposite order.
template <typename T>
[[nodiscard]] T ReverseBytes(T value) noexcept {
  auto raw = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
  std::ranges::reverse(raw);
  return std::bit_cast<T>(raw);
}

/// The value that `bytes` spell, in host byte order or reversed. Missing bytes count as zeros that
/// stand after the given ones.
template <typename T>
[[nodiscard]] T DecodeValue(std::span<const unsigned char> bytes, bool sameByteOrder) noexcept {
  std::array<unsigned char, sizeof(T)> raw{};
  std::ranges::copy(bytes.first(std::min(bytes.size(), raw.size())), raw.begin());
  const T value = std::bit_cast<T>(raw);
  return sameByteOrder ? value : ReverseBytes(value);
}

/// Puts values that were read as they stand in a file into host byte order.
template <typename T>
void OrderBytes(std::span<T> values, bool sameByteOrder) noexcept {
  if (!sameByteOrder) std::ranges::transform(values, values.begin(), ReverseBytes<T>);
}

/// Reads fixed-width values one after another from bytes that a caller keeps alive.
///
/// Past the end every value reads as zero; a value cut by the end keeps the bytes it has.
class ByteCursor {
 public:
  ByteCursor(std::span<const unsigned char> bytes, bool sameByteOrder) noexcept
      : rest_(bytes), sameByteOrder_(sameByteOrder) {}

  template <typename T>
  [[nodiscard]] T Read() noexcept {
    return DecodeValue<T>(Take(sizeof(T)), sameByteOrder_);
  }

  /// The next `count` bytes as they stand, or as many as are left.
  std::span<const unsigned char> Take(std::size_t count) noexcept {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// Takes `destination.size()` bytes as they stand into `destination`; what is missing is zero.
  void CopyTo(std::span<unsigned char> destination) noexcept {
    const auto taken = Take(destination.size());
    std::ranges::fill(std::ranges::copy(taken, destination.begin()).out, destination.end(),
                      static_cast<unsigned char>(0));
  }

 private:
  std::span<const unsigned char> rest_;
  bool sameByteOrder_;
};

}  // namespace kelx::internal
