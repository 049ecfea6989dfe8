#include "tools/kelst/Tree.h"

#include <algorithm>
#include <set>

#include "tools/kelst/InstallerName.h"
#include "tools/kelst/Sectors.h"

namespace kelst {

namespace {

constexpr std::size_t kMostProblems = 20;  // a damaged directory can have one an entry

bool IsStored(std::u16string_view name, std::u16string_view wanted) { return name == wanted; }

bool IsDecoded(std::u16string_view name, std::u16string_view wanted) {
  return DecodedInstallerName(name) == wanted;
}

}  // namespace

struct Tree::Building {
  explicit Building(std::uint32_t count) : claimed(count) {}

  std::vector<bool> claimed;      // entries that have their place in the tree
  std::vector<TreeNode> pending;  // entries still to be added, the next one last
};

Tree::Tree(const FullDirectory& directory) : directory_(directory) {
  Building building(directory.Count());
  building.claimed[0] = true;
  building.pending.push_back({.index = 0, .depth = 0, .parent = 0, .isRepeated = false});
  while (!building.pending.empty()) {
    nodes_.push_back(building.pending.back());
    building.pending.pop_back();
    AddChildren(building, nodes_.size() - 1);
  }
  SumUp();
}

/// The entries that sibling links reach from the child link of a storage, in directory order.
std::vector<std::uint32_t> Tree::ClaimSiblings(Building& building, std::size_t parent) {
  std::vector<std::uint32_t> siblings;
  std::vector<std::uint32_t> links{directory_.At(nodes_[parent].index).getChild()};
  while (!links.empty()) {
    const std::uint32_t index = links.back();
    links.pop_back();
    if (index >= kFirstMark) continue;
    const std::string entry = "entry " + std::to_string(index);
    if (index >= directory_.Count()) {
      AddProblem(parent, "a link leads to " + entry + ", beyond the directory");
    } else if (building.claimed[index]) {
      AddProblem(parent, IsAncestor(index, parent) ? "the storage contains itself (" + entry + ")"
                                                   : entry + " is reached from two places");
    } else {
      building.claimed[index] = true;
      siblings.push_back(index);
      links.push_back(directory_.At(index).getLeftSib());
      links.push_back(directory_.At(index).getRightSib());
    }
  }
  std::ranges::sort(siblings);
  return siblings;
}

void Tree::AddChildren(Building& building, std::size_t parent) {
  const TreeNode storage = nodes_[parent];
  const KELStStorageDirEntry& entry = directory_.At(storage.index);
  if (storage.depth > 0 && !entry.isStorage()) return;
  if (storage.depth == kMaxDepth) {
    if (entry.getChild() < kFirstMark) {
      AddProblem(parent, "nested deeper than " + std::to_string(kMaxDepth) + " storages");
    }
    return;
  }
  std::set<std::u16string_view> names;
  const auto first = static_cast<std::ptrdiff_t>(building.pending.size());
  for (const std::uint32_t index : ClaimSiblings(building, parent)) {
    const bool isRepeated = !names.insert(directory_.FullAt(index).name).second;
    building.pending.push_back({index, storage.depth + 1, parent, isRepeated});
  }
  std::reverse(building.pending.begin() + first, building.pending.end());
}

void Tree::SumUp() {
  for (std::size_t position = nodes_.size(); position-- > 0;) {
    TreeNode& node = nodes_[position];
    const KELStStorageDirEntry& entry = directory_.At(node.index);
    if (entry.isStream() && node.depth > 0) node.bytes = entry.getSize();
    node.end = std::max(node.end, position + 1);
    if (node.depth == 0) continue;
    TreeNode& parent = nodes_[node.parent];
    parent.end = std::max(parent.end, node.end);
    parent.bytes += node.bytes;
  }
}

void Tree::AddProblem(std::size_t position, const std::string& text) {
  if (problemCount_++ < kMostProblems) problems_.push_back(PathOf(position) + ": " + text);
}

/// Whether the entry at `position`, or a storage that it is in, has this directory index.
bool Tree::IsAncestor(std::uint32_t index, std::size_t position) const {
  while (nodes_[position].index != index && position > 0) position = nodes_[position].parent;
  return nodes_[position].index == index;
}

std::string Tree::NameOf(std::size_t position) const {
  const TreeNode& node = nodes_[position];
  if (node.depth == 0) return "/";
  std::string name = WrittenName(directory_.FullAt(node.index).name);
  return node.isRepeated ? name + WrittenIndex(node.index) : name;
}

std::string Tree::PathOf(std::size_t position) const {
  if (position == 0) return NameOf(position);
  std::vector<std::size_t> way;
  for (; position > 0; position = nodes_[position].parent) way.push_back(position);
  std::string path;
  for (; !way.empty(); way.pop_back()) {
    if (!path.empty()) path += '/';
    path += NameOf(way.back());
  }
  return path;
}

std::optional<std::size_t> Tree::FindChild(std::size_t parent, const NamePattern& pattern,
                                           IsName isName) const {
  for (std::size_t child = parent + 1; child < nodes_[parent].end; child = nodes_[child].end) {
    const std::uint32_t index = nodes_[child].index;
    if (pattern.index && *pattern.index != index) continue;
    if (isName(directory_.FullAt(index).name, pattern.name)) return child;
  }
  return std::nullopt;
}

Lookup Tree::Find(const EntryPath& path) const {
  std::size_t position = 0;
  bool isExact = true;  // else a storage on the way differs in letter case
  for (const NamePattern& component : path) {
    auto child = FindChild(position, component, IsStored);
    if (!child) {
      child = FindChild(position, component, EqualIgnoringCase);
      isExact = isExact && (!child || directory_.At(nodes_[*child].index).isStream());
    }
    if (!child) child = FindChild(position, component, IsDecoded);
    if (!child) return {};
    position = *child;
  }
  if (!isExact) return {.position = {}, .suggestion = PathOf(position)};
  return {.position = position, .suggestion = {}};
}

}  // namespace kelst
