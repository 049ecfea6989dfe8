#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/FullDirectory.h"

namespace kelst {

/// One entry in its place in the tree.
struct TreeNode {
  std::uint32_t index;      ///< in the directory
  int depth;                ///< 0 for the root
  std::size_t parent;       ///< position of the storage it is in; its own for the root
  bool isRepeated;          ///< a sibling with a lower index has the same name
  std::size_t end = 0;      ///< position behind the last entry below it
  std::uint64_t bytes = 0;  ///< size of the stream, or of all streams below
};

/// How a path that leads nowhere could have been meant.
struct Lookup {
  std::optional<std::size_t> position;
  std::string suggestion;  ///< a path that differs in letter case only; else empty
};

/// Every entry that can be reached from the root, each once: a storage comes before what it holds,
/// siblings come in the order of their directory indexes.
///
/// Building it takes time linear in the size of the directory, but for sorting, and a call stack of
/// constant depth, whatever the links in the file are. A second way to an entry is not followed.
class Tree {
 public:
  /// Storages at this depth are shown without what they hold. No program nests half as deep, and
  /// extraction keeps a folder open for each level.
  static constexpr int kMaxDepth = 256;

  /// `directory` has an entry and must outlive the tree.
  explicit Tree(const FullDirectory& directory);

  [[nodiscard]] std::span<const TreeNode> Nodes() const { return nodes_; }

  /// What is wrong with the links, as messages: the first few, and their number.
  [[nodiscard]] const std::vector<std::string>& Problems() const { return problems_; }
  [[nodiscard]] std::size_t ProblemCount() const { return problemCount_; }

  /// The name of an entry in written form, with its index where that is needed to tell it from a
  /// sibling.
  [[nodiscard]] std::string NameOf(std::size_t position) const;

  /// The names from below the root down to the entry, with slashes between; "/" for the root.
  [[nodiscard]] std::string PathOf(std::size_t position) const;

  /// Finds an entry. Of several that fit, an exact match comes before a stream whose name differs
  /// in letter case only, that before an entry whose packed name means the one asked for, and a
  /// lower directory index before a higher one.
  [[nodiscard]] Lookup Find(const EntryPath& path) const;

 private:
  struct Building;

  std::vector<std::uint32_t> ClaimSiblings(Building& building, std::size_t parent);
  void AddChildren(Building& building, std::size_t parent);
  void SumUp();
  void AddProblem(std::size_t position, const std::string& text);
  [[nodiscard]] bool IsAncestor(std::uint32_t index, std::size_t position) const;
  using IsName = bool (*)(std::u16string_view name, std::u16string_view wanted);
  [[nodiscard]] std::optional<std::size_t> FindChild(std::size_t parent, const NamePattern& pattern,
                                                     IsName isName) const;

  const FullDirectory& directory_;
  std::vector<TreeNode> nodes_;
  std::vector<std::string> problems_;
  std::size_t problemCount_ = 0;
};

}  // namespace kelst
