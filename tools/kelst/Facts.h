#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kelst/CompoundFile.h"

namespace kelst {

/// How many entries of a directory are of each kind.
struct KindCounts {
  std::uint64_t roots = 0;
  std::uint64_t storages = 0;
  std::uint64_t streams = 0;
  std::uint64_t others = 0;
  std::uint64_t empty = 0;

  [[nodiscard]] std::uint64_t& CountOf(const KELStStorageDirEntry& entry) {
    if (entry.isRoot()) return roots;
    if (entry.isStorage()) return storages;
    if (entry.isStream()) return streams;
    return entry.getType() == 0 ? empty : others;
  }
  [[nodiscard]] std::uint64_t Used() const { return roots + storages + streams + others; }
};

struct EntryCounts {
  KindCounts directory;
  KindCounts tree;
  int depth = 0;

  /// Entries in use that no links lead to.
  [[nodiscard]] std::uint64_t Unreachable() const { return directory.Used() - tree.Used(); }
};

EntryCounts CountEntries(const CompoundFile& file);

/// What is to be told about a file in a line.
struct Fact {
  std::string_view label;  ///< "byte order"
  std::string text;
};

/// How a file is built. What there is nothing to tell of is left out.
std::vector<Fact> FactsOf(const CompoundFile& file);

}  // namespace kelst
