#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Tree.h"

namespace kelst {

/// How the entries of a directory are called.
class EntryPaths {
 public:
  explicit EntryPaths(const FullDirectory& directory) : directory_(directory) {}
  EntryPaths(const EntryPaths&) = delete;
  EntryPaths& operator=(const EntryPaths&) = delete;

  /// The path as ls prints it; of an entry that ls does not list the name alone.
  [[nodiscard]] std::string Of(std::uint32_t index) {
    if (!tree_) MakeTree();
    if (positions_[index] != kNone) return tree_->PathOf(positions_[index]);
    return WrittenName(directory_.FullAt(index).name);
  }

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  /// Late: of most files there is nothing to say that needs it.
  void MakeTree() {
    tree_.emplace(directory_);
    positions_.resize(directory_.Count(), kNone);
    for (std::size_t i = 0; i < tree_->Nodes().size(); ++i) positions_[tree_->Nodes()[i].index] = i;
  }

  const FullDirectory& directory_;
  std::optional<Tree> tree_;
  std::vector<std::size_t> positions_;
};

}  // namespace kelst
