#include "tools/kelst/ListingOrder.h"

#include <algorithm>
#include <string>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/InstallerName.h"

namespace kelst {

namespace {

struct NamedPosition {
  KELXString name;
  std::size_t position;
};

void SortByName(const CompoundFile& file, std::vector<std::size_t>& positions) {
  std::vector<NamedPosition> named;
  for (const std::size_t position : positions) {
    const std::u16string& name =
        file.Directory().FullAt(file.Entries().Nodes()[position].index).name;
    const std::string text = PlainUtf8(DecodedInstallerName(name).value_or(name));
    named.push_back({KELXString::fromUtf8(text), position});
  }
  std::ranges::stable_sort(named, [](const NamedPosition& a, const NamedPosition& b) {
    return a.name.compareToIgnoreCase(b.name) < 0;
  });
  std::ranges::transform(named, positions.begin(), &NamedPosition::position);
}

void Sort(const CompoundFile& file, std::vector<std::size_t>& siblings, SortKey key) {
  const auto bytesOf = [&](std::size_t at) { return file.Entries().Nodes()[at].bytes; };
  if (key == SortKey::kName) SortByName(file, siblings);
  if (key == SortKey::kSize) std::ranges::stable_sort(siblings, std::ranges::greater(), bytesOf);
}

}  // namespace

std::vector<std::size_t> ListingOrder(const CompoundFile& file, std::size_t start, SortKey key) {
  const auto nodes = file.Entries().Nodes();
  std::vector<std::size_t> order;
  std::vector<std::size_t> pending{start};  // the next one last
  while (!pending.empty()) {
    const std::size_t position = pending.back();
    pending.pop_back();
    order.push_back(position);
    std::vector<std::size_t> children;
    for (std::size_t at = position + 1; at < nodes[position].end; at = nodes[at].end) {
      children.push_back(at);
    }
    Sort(file, children, key);
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
  return order;
}

}  // namespace kelst
