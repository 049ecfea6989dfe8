#include "tools/kelst/Listing.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tools/kelst/Colour.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/InstallerName.h"
#include "tools/kelst/PropertySets.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

std::string PaddedLeft(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string PaddedRight(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

struct Counts {
  std::uint64_t streams = 0;
  std::uint64_t storages = 0;
};

Counts CountBelow(const CompoundFile& file, Positions order) {
  Counts counts;
  for (const std::size_t position : order) {
    if (position == 0) continue;
    const KELStStorageDirEntry& entry = file.Directory().At(file.Entries().Nodes()[position].index);
    if (entry.isStream()) ++counts.streams;
    if (entry.isStorage() && position != order.front()) ++counts.storages;
  }
  return counts;
}

/// The name or path of an entry as people see it: coloured, and with what a packed name means.
std::string Shown(const CompoundFile& file, std::size_t position, const std::string& text,
                  const Painter& painter) {
  const std::uint32_t index = file.Entries().Nodes()[position].index;
  const std::string meaning = InstallerMeaning(file.Directory().FullAt(index).name);
  if (file.Directory().At(index).isStorage()) return painter.Paint(text, Colour::kBlue) + meaning;
  if (IsPropertyStream(file, index)) return painter.Paint(text, Colour::kCyan) + meaning;
  return text + meaning;
}

constexpr std::size_t kColumns = 7;  // before the path
using Row = std::array<std::string, kColumns>;
constexpr std::array kIsNumber{true, false, true, true, false, false, false};

std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

Row RowOf(const CompoundFile& file, std::size_t position) {
  const TreeNode& node = file.Entries().Nodes()[position];
  const KELStStorageDirEntry& entry = file.Directory().At(node.index);
  const FullEntry& full = file.Directory().FullAt(node.index);
  return {std::to_string(node.index),
          KindText(entry),
          std::to_string(entry.getSize()),
          entry.isStorage() || entry.getSize() == 0 ? "-" : std::to_string(entry.getStartSect()),
          OrDash(TimeText(full.created)),
          OrDash(TimeText(full.modified)),
          OrDash(ClassIdText(full.classId))};
}

using Widths = std::array<std::size_t, kColumns>;

void Widen(Widths& widths, const Row& row) {
  for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
}

void PrintRow(const Row& row, const Widths& widths, const std::string& path, Output& out) {
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    line += (kIsNumber[i] ? PaddedLeft(row[i], widths[i]) : PaddedRight(row[i], widths[i])) + "  ";
  }
  out.Write(line + path + '\n');
}

}  // namespace

Branches::Branches(std::span<const TreeNode> nodes, Positions order)
    : nodes_(nodes), start_(order.front()), lastChild_(nodes[start_].end - start_) {
  for (const std::size_t position : order.subspan(1)) LastChild(position) = position;
}

std::string Branches::Of(std::size_t position) {
  if (position == start_) return "";
  std::vector<std::string_view> parts{IsLast(position) ? "└── " : "├── "};
  for (std::size_t at = nodes_[position].parent; at != start_; at = nodes_[at].parent) {
    parts.emplace_back(IsLast(at) ? "    " : "│   ");
  }
  std::string branches;
  std::for_each(parts.rbegin(), parts.rend(), [&](std::string_view part) { branches += part; });
  return branches;
}

void PrintTree(const CompoundFile& file, Positions order, Output& out) {
  const auto nodes = file.Entries().Nodes();
  const std::string total = Grouped(nodes[order.front()].bytes);
  const std::size_t sizeWidth = std::max<std::size_t>(total.size(), 8);
  const std::size_t kindWidth = 7;
  const Painter painter;
  Branches branches(nodes, order);
  out.Write(file.Name() + '\n');
  for (const std::size_t position : order) {
    if (!out.IsGood()) return;
    if (position == 0) continue;
    const KELStStorageDirEntry& entry = file.Directory().At(nodes[position].index);
    const std::string name = position == order.front() ? file.Entries().PathOf(position)
                                                       : file.Entries().NameOf(position);
    out.Write(PaddedLeft(Grouped(nodes[position].bytes), sizeWidth) + "  " +
              PaddedRight(KindText(entry), kindWidth) + "  " + branches.Of(position) +
              Shown(file, position, name + (entry.isStorage() ? "/" : ""), painter) + '\n');
  }
  const Counts counts = CountBelow(file, order);
  out.Write(PaddedLeft(total, sizeWidth) + "  bytes in " + WithUnit(counts.streams, "stream") +
            (counts.storages == 0 ? "" : " and " + WithUnit(counts.storages, "storage")) + '\n');
}

void PrintPaths(const CompoundFile& file, Positions order, Output& out) {
  const std::size_t start = order.front();
  const std::uint32_t index = file.Entries().Nodes()[start].index;
  const bool isStorage = start == 0 || file.Directory().At(index).isStorage();
  for (const std::size_t position : order.subspan(isStorage ? 1 : 0)) {
    if (!out.IsGood()) return;
    out.Write(file.Entries().PathOf(position) + '\n');
  }
}

void PrintTable(const CompoundFile& file, Positions order, Output& out) {
  const Row titles{"index", "kind", "size", "start", "created", "modified", "class id"};
  const Painter painter;
  Widths widths{};
  Widen(widths, titles);
  for (const std::size_t position : order) Widen(widths, RowOf(file, position));
  PrintRow(titles, widths, "path", out);
  for (const std::size_t position : order) {
    if (!out.IsGood()) return;
    const std::string path = Shown(file, position, file.Entries().PathOf(position), painter);
    PrintRow(RowOf(file, position), widths, path, out);
  }
}

}  // namespace kelst
