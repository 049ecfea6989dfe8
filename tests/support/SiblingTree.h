#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tests/support/CompoundFileEntry.h"

namespace kelx::test {

/// How the children of one storage hang together.
enum class Siblings {
  kBalanced,        ///< a red-black tree in the format's name order: the well-formed way
  kRightList,       ///< in name order, each the right sibling of the one before
  kInsertionOrder,  ///< a balanced tree over the children as they were added, whatever their names
};

struct Links {
  std::uint32_t left = kNoEntry;
  std::uint32_t right = kNoEntry;
  std::uint32_t child = kNoEntry;
  bool red = false;
};

/// The links of every entry, by index. Entry 0 is the root; its `parent` is not looked at.
std::vector<Links> LinkEntries(std::span<const CompoundFileEntry> entries, Siblings siblings);

}  // namespace kelx::test
