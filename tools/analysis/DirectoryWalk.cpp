#include "tools/analysis/DirectoryWalk.h"

#include "tools/kelst/Sectors.h"

namespace kelst {

DirectoryWalk::DirectoryWalk(const FullDirectory& directory)
    : directory_(directory), reached_(directory.Count()) {
  if (directory.Count() == 0) return;
  reached_[0] = true;
  // Of an empty slot the links say nothing: a directory that the file has lost is all zeros.
  if (directory.At(0).getType() != 0) WalkFamily(0);
  std::size_t walked = 0;
  while (walked < order_.size()) {  // families add to the order
    const std::uint32_t index = order_[walked++];
    if (directory.At(index).isStorage()) WalkFamily(index);
  }
}

/// In order: what is left of an entry, the entry, what is right of it.
void DirectoryWalk::WalkFamily(std::uint32_t storage) {
  const std::size_t first = order_.size();
  std::vector<std::uint32_t> above;
  std::uint32_t from = storage;
  std::uint32_t next = directory_.At(storage).getChild();
  while (true) {
    while (Claim(from, next)) {
      above.push_back(next);
      from = next;
      next = directory_.At(from).getLeftSib();
    }
    if (above.empty()) break;
    from = above.back();
    above.pop_back();
    order_.push_back(from);
    next = directory_.At(from).getRightSib();
  }
  if (order_.size() > first) familyEnds_.push_back(order_.size());
}

/// Whether `to` is an entry that had not been reached.
bool DirectoryWalk::Claim(std::uint32_t from, std::uint32_t to) {
  if (to >= kFirstMark) return false;
  const auto refuse = [&](BadLink::Kind kind) {
    badLinks_.push_back({kind, from, to});
    return false;
  };
  if (to >= directory_.Count()) return refuse(BadLink::Kind::kOutside);
  if (reached_[to]) return refuse(BadLink::Kind::kRepeated);
  if (directory_.At(to).getType() == 0) return refuse(BadLink::Kind::kEmpty);
  reached_[to] = true;
  return true;
}

}  // namespace kelst
