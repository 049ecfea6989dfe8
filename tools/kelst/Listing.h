#pragma once

#include <cstddef>

#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Output.h"

namespace kelst {

// Ways to list an entry of a file, given by its position in the tree, and all that is below it.

/// A tree that people read, with kinds, sizes and totals.
void PrintTree(const CompoundFile& file, std::size_t start, Output& out);

/// The path of every entry below the given one, or its own when it is no storage, one a line.
void PrintPaths(const CompoundFile& file, std::size_t start, Output& out);

/// A table of what the directory says of each entry.
void PrintTable(const CompoundFile& file, std::size_t start, Output& out);

/// The same and more as one JSON document on one line.
void PrintJson(const CompoundFile& file, std::size_t start, Output& out);

}  // namespace kelst
