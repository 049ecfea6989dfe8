#pragma once

#include <cstddef>
#include <vector>

#include "tools/kelst/CompoundFile.h"

namespace kelst {

/// What the entries of a storage are sorted by.
enum class SortKey {
  kIndex,  ///< in the directory
  kName,   ///< by code point, letter case ignored; packed names as decoded
  kSize,   ///< largest first, a storage with all that it holds
};

/// The positions in the tree of an entry and all that is below it, to be listed in this order: a
/// storage comes before what it holds. Entries with equal keys are in the order of their indexes.
std::vector<std::size_t> ListingOrder(const CompoundFile& file, std::size_t start, SortKey key);

}  // namespace kelst
