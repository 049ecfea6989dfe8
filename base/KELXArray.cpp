#include "base/KELXArray.h"

#include <sys/mman.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

/// Blocks from this size on ask for huge pages: the page faults of a fresh large block cost more
/// than reading a file into it.
constexpr std::size_t kHugeBlock = kHugePage;

constexpr unsigned int kMostElements = INT_MAX;

std::size_t Bytes(const KELXArrayHeader& header, unsigned int count) {
  return std::size_t{count} * header.elementSize;
}

void* AllocateBlock(std::size_t bytes) {
  if (bytes < kHugeBlock) return std::malloc(bytes);
  const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  void* const block = std::aligned_alloc(kHugePage, rounded);
  if (block != nullptr) madvise(block, rounded, MADV_HUGEPAGE);
  return block;
}

/// Moves the elements to a block of `capacity` elements. False when there is no memory for it.
bool Relocate(KELXArrayHeader& header, unsigned int capacity) {
  if (header.elements != nullptr && capacity == header.capacity) return true;
  const std::size_t bytes = std::max<std::size_t>(Bytes(header, capacity), 1);
  void* block = nullptr;
  if (bytes < kHugeBlock && Bytes(header, header.capacity) < kHugeBlock) {
    block = std::realloc(header.elements, bytes);
    if (block == nullptr) return false;
  } else {
    block = AllocateBlock(bytes);
    if (block == nullptr) return false;
    if (header.count > 0) std::memcpy(block, header.elements, Bytes(header, header.count));
    std::free(header.elements);
  }
  header.elements = block;
  header.capacity = capacity;
  return true;
}

/// Makes room for `count` elements, at least doubling so that appending stays linear.
void Grow(KELXArrayHeader& header, unsigned int count) {
  if (header.elements != nullptr && count <= header.capacity) return;
  const unsigned int doubled = std::min(header.capacity, kMostElements / 2) * 2;
  const unsigned int wanted = count <= header.capacity ? header.capacity : std::max(count, doubled);
  if (!Relocate(header, wanted) && !Relocate(header, count)) std::terminate();
}

/// Gives up a share of `header` for a header of its own with the same bytes.
void Detach(KELXArrayHeader*& header) {
  if (!kelxArrayIsShared(header)) return;
  KELXArrayHeader* own =
      kelxArrayAllocate(static_cast<int>(header->capacity), static_cast<int>(header->elementSize));
  if (header->count > 0) {
    void* const slots = kelxArrayExtend(own, static_cast<int>(header->count));
    std::memcpy(slots, header->elements, Bytes(*header, header->count));
  }
  kelxArrayFree(header, nullptr);
  header = own;
}

}  // namespace

KELXArrayFreeCallback::~KELXArrayFreeCallback() = default;

KELXArrayHeader* kelxArrayAllocate(int capacity, int elementSize) {
  return new KELXArrayHeader{static_cast<unsigned int>(std::max(capacity, 0)), 0, nullptr,
                             static_cast<unsigned int>(std::max(elementSize, 0)), 1};
}

int kelxArrayCount(const KELXArrayHeader* header) {
  return header == nullptr ? 0 : static_cast<int>(header->count);
}

bool kelxArrayIsShared(const KELXArrayHeader* header) {
  return header != nullptr && header->sharers.load(std::memory_order_acquire) > 1;
}

void kelxArrayAdd(KELXArrayHeader*& header, void* element) {
  const auto* const begin = static_cast<const std::byte*>(header->elements);
  const auto* source = static_cast<const std::byte*>(element);
  const std::size_t held = Bytes(*header, header->count);
  const bool isOwn = !std::less<>()(source, begin) && std::less<>()(source, begin + held);
  const std::ptrdiff_t offset = isOwn ? source - begin : 0;
  void* const slot = kelxArrayExtend(header, 1);
  if (slot == nullptr) std::terminate();
  if (isOwn) source = static_cast<const std::byte*>(header->elements) + offset;
  if (source != nullptr) std::memcpy(slot, source, header->elementSize);
}

void* kelxArrayExtend(KELXArrayHeader*& header, int count) {
  if (count <= 0 || static_cast<unsigned int>(count) > kMostElements - header->count) {
    return nullptr;
  }
  Detach(header);
  const unsigned int held = header->count;
  Grow(*header, held + static_cast<unsigned int>(count));
  header->count = held + static_cast<unsigned int>(count);
  return static_cast<std::byte*>(header->elements) + Bytes(*header, held);
}

void kelxArrayReallocSize(KELXArrayHeader*& header, unsigned int capacity) {
  Detach(header);
  Relocate(*header, std::clamp(capacity, header->count, kMostElements));
}

void kelxArrayClear(KELXArrayHeader*& header) {
  if (!kelxArrayIsShared(header)) {
    header->count = 0;
    return;
  }
  KELXArrayHeader* const own =
      kelxArrayAllocate(static_cast<int>(header->capacity), static_cast<int>(header->elementSize));
  kelxArrayFree(header, nullptr);
  header = own;
}

KELXArrayHeader* kelxArrayCopy(KELXArrayHeader* header) {
  if (header != nullptr) header->sharers.fetch_add(1, std::memory_order_relaxed);
  return header;
}

void kelxArrayFree(KELXArrayHeader*& header, KELXArrayFreeCallback* owner) {
  if (header != nullptr && header->sharers.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    if (owner != nullptr && header->count > 0) owner->Callback();
    std::free(header->elements);
    delete header;
  }
  header = nullptr;
}
