#include "storage/NameIndex.h"

#include <algorithm>
#include <utility>

namespace kelx::internal {

NameIndex::NameIndex(const KELXDynamicArray<KELStStorageDirEntry>& entries,
                     bool (KELStStorageDirEntry::*isWanted)() const, Comparison comparison)
    : entries_(entries), comparison_(comparison) {
  for (int i = 0; i < entries.Count(); ++i) {
    const KELStStorageDirEntry& entry = *entries.At(i);
    if ((entry.*isWanted)()) slots_.push_back({(entry.getName().*comparison.hash)(), i});
  }
  std::ranges::sort(slots_, {},
                    [](const Slot& slot) { return std::pair(slot.hash, slot.position); });
  // Of entries that share a name only the first can be found. Without the others names need hardly
  // ever be compared to sort, not even when one name stands a million times.
  const auto isRepeated = [this](const Slot& a, const Slot& b) {
    return a.hash == b.hash && Order(a, b.hash, NameOf(b)) == 0;
  };
  slots_.erase(std::unique(slots_.begin(), slots_.end(), isRepeated), slots_.end());
  if (std::ranges::adjacent_find(slots_, {}, &Slot::hash) == slots_.end()) return;
  std::ranges::sort(slots_, [this](const Slot& a, const Slot& b) {
    const int order = Order(a, b.hash, NameOf(b));
    return order != 0 ? order < 0 : a.position < b.position;
  });
}

int NameIndex::Find(const KELXString& name) const {
  const std::size_t hash = (name.*comparison_.hash)();
  const auto slot = std::ranges::partition_point(
      slots_, [&](const Slot& candidate) { return Order(candidate, hash, name) < 0; });
  return slot != slots_.end() && Order(*slot, hash, name) == 0 ? slot->position : -1;
}

KELXString NameIndex::NameOf(const Slot& slot) const {
  return entries_.At(slot.position)->getName();
}

int NameIndex::Order(const Slot& slot, std::size_t hash, const KELXString& name) const {
  if (slot.hash != hash) return slot.hash < hash ? -1 : 1;
  return (NameOf(slot).*comparison_.order)(name);
}

}  // namespace kelx::internal
