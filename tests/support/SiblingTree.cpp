#include "tests/support/SiblingTree.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <string>

namespace kelx::test {
namespace {

using Indices = std::span<const std::uint32_t>;

/// Covers the scripts that tests use: Latin-1, Greek and Cyrillic.
char16_t UpperCase(char16_t unit) {
  const auto within = [unit](char16_t first, char16_t last) {
    return unit >= first && unit <= last;
  };
  if (within(u'a', u'z') || (within(0xE0, 0xFE) && unit != 0xF7) ||
      (within(0x3B1, 0x3C9) && unit != 0x3C2) || within(0x430, 0x44F)) {
    return static_cast<char16_t>(unit - 0x20);
  }
  return within(0x450, 0x45F) ? static_cast<char16_t>(unit - 0x50) : unit;
}

std::vector<std::u16string> UpperCaseNames(std::span<const CompoundFileEntry> entries) {
  std::vector<std::u16string> names;
  names.reserve(entries.size());
  for (const CompoundFileEntry& entry : entries) {
    std::ranges::transform(entry.name, names.emplace_back(entry.name).begin(), UpperCase);
  }
  return names;
}

/// The entries except the root, family by family.
std::vector<std::uint32_t> SortByFamily(std::span<const CompoundFileEntry> entries, bool byName) {
  std::vector<std::uint32_t> order(entries.size() - 1);
  std::iota(order.begin(), order.end(), 1U);
  const std::vector<std::u16string> names = UpperCaseNames(entries);
  std::ranges::stable_sort(order, [&](std::uint32_t a, std::uint32_t b) {
    if (entries[a].parent != entries[b].parent) return entries[a].parent < entries[b].parent;
    if (!byName) return false;
    if (names[a].size() != names[b].size()) return names[a].size() < names[b].size();
    return names[a] < names[b];
  });
  return order;
}

std::uint32_t LinkList(Indices family, std::vector<Links>& links) {
  for (std::size_t i = 1; i < family.size(); ++i) links[family[i - 1]].right = family[i];
  return family.front();
}

/// Halving leaves only the deepest level incomplete, so that making this one red and all others
/// black gives every branch the same number of black entries.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the logarithm of the family.
std::uint32_t LinkBalanced(Indices family, int levelsToRed, std::vector<Links>& links) {
  if (family.empty()) return kNoEntry;
  const std::size_t middle = family.size() / 2;
  Links& top = links[family[middle]];
  top.red = levelsToRed == 0;
  top.left = LinkBalanced(family.first(middle), levelsToRed - 1, links);
  top.right = LinkBalanced(family.subspan(middle + 1), levelsToRed - 1, links);
  return family[middle];
}

std::uint32_t LinkFamily(Indices family, Siblings siblings, std::vector<Links>& links) {
  if (siblings == Siblings::kRightList) return LinkList(family, links);
  const int fullLevels = static_cast<int>(std::bit_width(family.size() + 1)) - 1;
  return LinkBalanced(family, fullLevels, links);
}

}  // namespace

std::vector<Links> LinkEntries(std::span<const CompoundFileEntry> entries, Siblings siblings) {
  std::vector<Links> links(entries.size());
  const auto order = SortByFamily(entries, siblings != Siblings::kInsertionOrder);
  for (auto first = order.begin(); first != order.end();) {
    const std::uint32_t parent = entries[*first].parent;
    const auto last = std::find_if(
        first, order.end(), [&](std::uint32_t index) { return entries[index].parent != parent; });
    links[parent].child = LinkFamily(Indices(first, last), siblings, links);
    first = last;
  }
  return links;
}

}  // namespace kelx::test
