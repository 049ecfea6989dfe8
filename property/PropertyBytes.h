#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kelx::internal {

/// The bytes of a property-set stream, read at cursors.
///
/// Of the stream's length only the first bytes may be held; the rest reads as zeros. A cursor may
/// stand anywhere, also where no memory is: it is looked at as an address until a value at it is
/// known to be held. Without bytes, every cursor but null stands before memory without an end.
class PropertyBytes {
 public:
  PropertyBytes(const unsigned char* begin, unsigned int held, unsigned int length) noexcept
      : begin_(begin), held_(held), length_(length) {}

  /// The distance of `cursor` from the begin; before it, more than any stream's length.
  [[nodiscard]] std::uint64_t Place(const unsigned char* cursor) const noexcept;

  /// Whether `size` bytes at `cursor` lie whole inside the stream.
  [[nodiscard]] bool Fits(const unsigned char* cursor, std::uint64_t size) const noexcept;

  /// Those of `size` bytes at `cursor` that are held.
  [[nodiscard]] std::span<const unsigned char> Held(const unsigned char* cursor,
                                                    std::uint64_t size) const noexcept;

  /// Moves `cursor` past `size` bytes and returns those of them that are held; when they do not fit
  /// `cursor` stays and the result is empty.
  std::span<const unsigned char> Take(unsigned char*& cursor, std::uint64_t size) const noexcept;

  /// Reads a little-endian value and moves `cursor` past it; 0, and `cursor` stays, when it does
  /// not fit.
  template <std::unsigned_integral T>
  T Read(unsigned char*& cursor) const noexcept {
    return static_cast<T>(ReadInteger(cursor, sizeof(T)));
  }

  /// Reads a GUID into the 16 bytes at `out`, in display order.
  void ReadGuid(unsigned char*& cursor, unsigned char* out) const noexcept;

  /// The cursor `distance` bytes after (or, modulo the address space, before) `cursor`.
  static unsigned char* Move(const unsigned char* cursor, std::uint64_t distance) noexcept;

  /// How many bytes are held.
  [[nodiscard]] unsigned int HeldCount() const noexcept { return held_; }

 private:
  [[nodiscard]] std::uint64_t ReadInteger(unsigned char*& cursor, std::size_t width) const noexcept;

  const unsigned char* begin_;
  unsigned int held_;
  unsigned int length_;
};

}  // namespace kelx::internal
