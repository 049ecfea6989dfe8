#pragma once

#include <cstddef>
#include <span>

#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Output.h"

namespace kelst {

// Ways to list entries of a file, which positions in its tree give: an entry, and then all that is
// below it in any order that puts a storage before what it holds.
using Positions = std::span<const std::size_t>;

/// A tree that people read, with kinds, sizes and totals.
void PrintTree(const CompoundFile& file, Positions order, Output& out);

/// The path of every entry below the first one, or its own when it is no storage, one a line.
void PrintPaths(const CompoundFile& file, Positions order, Output& out);

/// A table of what the directory says of each entry.
void PrintTable(const CompoundFile& file, Positions order, Output& out);

/// The same and more as one JSON document on one line.
void PrintJson(const CompoundFile& file, Positions order, Output& out);

}  // namespace kelst
