#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tools/kelst/FullDirectory.h"

namespace kelst {

/// A link between directory entries that leads nowhere.
struct BadLink {
  enum class Kind : std::uint8_t {
    kOutside,   ///< beyond the directory
    kRepeated,  ///< to an entry that another link leads to
    kEmpty,     ///< to an empty slot
  };
  Kind kind;
  std::uint32_t from;
  std::uint32_t to;
};

/// Follows the links of a directory: each entry once, in linear time, whatever the links are.
class DirectoryWalk {
 public:
  explicit DirectoryWalk(const FullDirectory& directory);

  /// Whether links lead from the root to an entry. They lead to the root itself.
  [[nodiscard]] bool IsReached(std::uint32_t index) const { return reached_[index]; }

  [[nodiscard]] const std::vector<BadLink>& BadLinks() const { return badLinks_; }

  /// Calls `visit(children)` for each storage that has some: their indexes in the order in which
  /// the sibling tree keeps them, by name.
  template <typename Visit>
  void ForEachFamily(Visit visit) const {
    std::size_t first = 0;
    for (const std::size_t end : familyEnds_) {
      visit(std::span(order_).subspan(first, end - first));
      first = end;
    }
  }

 private:
  void WalkFamily(std::uint32_t storage);
  bool Claim(std::uint32_t from, std::uint32_t to);

  const FullDirectory& directory_;
  std::vector<bool> reached_;
  std::vector<std::uint32_t> order_;
  std::vector<std::size_t> familyEnds_;
  std::vector<BadLink> badLinks_;
};

}  // namespace kelst
