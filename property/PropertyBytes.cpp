#include "property/PropertyBytes.h"

#include <algorithm>
#include <array>

#include "compound/ByteCursor.h"

namespace kelx::internal {

namespace {

constexpr std::size_t kGuidBytes = 16;

/// The place in a stream of each byte of a GUID in display order.
constexpr std::array<std::size_t, kGuidBytes> kDisplayOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                               8, 9, 10, 11, 12, 13, 14, 15};

std::uintptr_t Address(const unsigned char* cursor) noexcept {
  return reinterpret_cast<std::uintptr_t>(cursor);
}

}  // namespace

unsigned char* PropertyBytes::Move(const unsigned char* cursor, std::uint64_t distance) noexcept {
  // Where no memory is only an address can stand. NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<unsigned char*>(Address(cursor) + static_cast<std::uintptr_t>(distance));
}

std::uint64_t PropertyBytes::Place(const unsigned char* cursor) const noexcept {
  return Address(cursor) - Address(begin_);
}

bool PropertyBytes::Fits(const unsigned char* cursor, std::uint64_t size) const noexcept {
  if (cursor == nullptr) return false;
  if (begin_ == nullptr) return true;
  const std::uint64_t place = Place(cursor);
  return place <= length_ && size <= length_ - place;
}

std::span<const unsigned char> PropertyBytes::Held(const unsigned char* cursor,
                                                   std::uint64_t size) const noexcept {
  if (begin_ == nullptr) return {cursor, static_cast<std::size_t>(size)};
  const std::uint64_t place = Place(cursor);
  if (place >= held_) return {};
  return {begin_ + place, static_cast<std::size_t>(std::min(size, held_ - place))};
}

std::span<const unsigned char> PropertyBytes::Take(unsigned char*& cursor,
                                                   std::uint64_t size) const noexcept {
  if (!Fits(cursor, size)) return {};
  const auto held = Held(cursor, size);
  cursor = Move(cursor, size);
  return held;
}

std::uint64_t PropertyBytes::ReadInteger(unsigned char*& cursor, std::size_t width) const noexcept {
  return DecodeValue<std::uint64_t>(Take(cursor, width), true);
}

void PropertyBytes::ReadGuid(unsigned char*& cursor, unsigned char* out) const noexcept {
  std::array<unsigned char, kGuidBytes> stored{};
  std::ranges::copy(Take(cursor, kGuidBytes), stored.begin());
  std::ranges::transform(kDisplayOrder, out, [&](std::size_t place) { return stored[place]; });
}

}  // namespace kelx::internal
