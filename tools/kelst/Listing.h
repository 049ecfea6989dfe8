#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Output.h"

namespace kelst {

// Ways to list entries of a file, which positions in its tree give: an entry, and then all that is
// below it in any order that puts a storage before what it holds.
using Positions = std::span<const std::size_t>;

/// The lines that lead from the storages above to each entry of a tree: "│   └── ".
class Branches {
 public:
  Branches(std::span<const TreeNode> nodes, Positions order);

  std::string Of(std::size_t position);

 private:
  /// The last one that is listed of the siblings of an entry.
  std::size_t& LastChild(std::size_t position) {
    return lastChild_[nodes_[position].parent - start_];
  }
  bool IsLast(std::size_t position) { return LastChild(position) == position; }

  std::span<const TreeNode> nodes_;
  std::size_t start_;
  std::vector<std::size_t> lastChild_;  // of each entry from start_ on
};

/// A tree that people read, with kinds, sizes and totals.
void PrintTree(const CompoundFile& file, Positions order, Output& out);

/// The path of every entry below the first one, or its own when it is no storage, one a line.
void PrintPaths(const CompoundFile& file, Positions order, Output& out);

/// A table of what the directory says of each entry.
void PrintTable(const CompoundFile& file, Positions order, Output& out);

/// The same and more as one JSON document on one line.
void PrintJson(const CompoundFile& file, Positions order, Output& out);

}  // namespace kelst
