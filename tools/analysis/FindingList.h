#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tools/analysis/Finding.h"

namespace kelst {

/// Findings by code: all are counted, the first of each code are kept.
class FindingList {
 public:
  struct Group {
    std::uint64_t count = 0;
    std::vector<Finding> kept;
  };

  explicit FindingList(std::uint64_t mostKept) : mostKept_(mostKept) {}

  /// `describe()` makes the finding. It is called only when the finding is kept, so that a hundred
  /// thousand cost no text.
  template <typename Describe>
  void Add(FindingCode code, Describe describe) {
    Group& group = groups_[static_cast<std::size_t>(code)];
    if (group.count++ < mostKept_) group.kept.push_back(describe());
  }

  [[nodiscard]] const Group& Of(FindingCode code) const {
    return groups_[static_cast<std::size_t>(code)];
  }

  [[nodiscard]] std::uint64_t CountOf(Severity severity) const {
    std::uint64_t count = 0;
    for (const CodeFacts& facts : AllCodes()) {
      if (facts.severity == severity) count += Of(facts.code).count;
    }
    return count;
  }

 private:
  static constexpr std::size_t kCodeCount =
      static_cast<std::size_t>(FindingCode::kPropertySetTooLarge) + 1;

  std::uint64_t mostKept_;
  std::array<Group, kCodeCount> groups_;
};

}  // namespace kelst
