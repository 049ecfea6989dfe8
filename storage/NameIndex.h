#pragma once

#include <cstddef>
#include <vector>

#include "base/KELXDynamicArray.h"
#include "base/KELXString.h"
#include "compound/KELStStorageDirEntry.h"

namespace kelx::internal {

/// Finds entries of a list by name without searching through the list.
class NameIndex {
 public:
  /// How names are compared: `order` is 0 for equal names, which have one `hash`.
  struct Comparison {
    int (KELXString::*order)(const KELXString&) const noexcept;
    std::size_t (KELXString::*hash)() const noexcept;
  };

  static constexpr Comparison kExact{&KELXString::compareTo, &KELXString::hash};
  static constexpr Comparison kIgnoreCase{&KELXString::compareToIgnoreCase,
                                          &KELXString::hashIgnoreCase};

  /// An index of those `entries` for which `isWanted` holds.
  NameIndex(const KELXDynamicArray<KELStStorageDirEntry>& entries,
            bool (KELStStorageDirEntry::*isWanted)() const, Comparison comparison);

  /// The position in the list of the first wanted entry of that name, or -1.
  [[nodiscard]] int Find(const KELXString& name) const;

 private:
  struct Slot {
    std::size_t hash;
    int position;
  };

  [[nodiscard]] KELXString NameOf(const Slot& slot) const;
  [[nodiscard]] int Order(const Slot& slot, std::size_t hash, const KELXString& name) const;

  KELXDynamicArray<KELStStorageDirEntry> entries_;
  Comparison comparison_;
  std::vector<Slot> slots_;  // by hash, then name, then position: equal hashes cost no search
};

}  // namespace kelx::internal
