#include "tools/kelst/Listing.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

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

Counts CountBelow(const CompoundFile& file, std::size_t start) {
  Counts counts;
  const auto nodes = file.Entries().Nodes();
  for (std::size_t position = std::max<std::size_t>(start, 1); position < nodes[start].end;
       ++position) {
    const KELStStorageDirEntry& entry = file.Directory().At(nodes[position].index);
    if (entry.isStream()) ++counts.streams;
    if (entry.isStorage() && position != start) ++counts.storages;
  }
  return counts;
}

/// The lines that lead from the storages above to an entry.
std::string Branches(std::span<const TreeNode> nodes, std::size_t start, std::size_t position) {
  if (position == start) return "";
  const auto isLast = [&](std::size_t at) { return nodes[at].end == nodes[nodes[at].parent].end; };
  std::vector<std::string_view> parts{isLast(position) ? "└── " : "├── "};
  for (std::size_t at = nodes[position].parent; at != start; at = nodes[at].parent) {
    parts.emplace_back(isLast(at) ? "    " : "│   ");
  }
  std::string branches;
  std::for_each(parts.rbegin(), parts.rend(), [&](std::string_view part) { branches += part; });
  return branches;
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

void PrintTree(const CompoundFile& file, std::size_t start, Output& out) {
  const auto nodes = file.Entries().Nodes();
  const std::size_t sizeWidth = std::max<std::size_t>(Grouped(nodes[start].bytes).size(), 8);
  const std::size_t kindWidth = 7;
  out.Write(file.Name() + '\n');
  for (std::size_t position = std::max<std::size_t>(start, 1);
       position < nodes[start].end && out.IsGood(); ++position) {
    const KELStStorageDirEntry& entry = file.Directory().At(nodes[position].index);
    const std::string name =
        position == start ? file.Entries().PathOf(position) : file.Entries().NameOf(position);
    out.Write(PaddedLeft(Grouped(nodes[position].bytes), sizeWidth) + "  " +
              PaddedRight(KindText(entry), kindWidth) + "  " + Branches(nodes, start, position) +
              name + (entry.isStorage() ? "/" : "") + '\n');
  }
  const Counts counts = CountBelow(file, start);
  out.Write(PaddedLeft(Grouped(nodes[start].bytes), sizeWidth) + "  bytes in " +
            WithUnit(counts.streams, "stream") +
            (counts.storages == 0 ? "" : " and " + WithUnit(counts.storages, "storage")) + '\n');
}

void PrintPaths(const CompoundFile& file, std::size_t start, Output& out) {
  const TreeNode& node = file.Entries().Nodes()[start];
  const bool isStorage = start == 0 || file.Directory().At(node.index).isStorage();
  for (std::size_t position = isStorage ? start + 1 : start; position < node.end && out.IsGood();
       ++position) {
    out.Write(file.Entries().PathOf(position) + '\n');
  }
}

void PrintTable(const CompoundFile& file, std::size_t start, Output& out) {
  const Row titles{"index", "kind", "size", "start", "created", "modified", "class id"};
  const std::size_t end = file.Entries().Nodes()[start].end;
  Widths widths{};
  Widen(widths, titles);
  for (std::size_t position = start; position < end; ++position) {
    Widen(widths, RowOf(file, position));
  }
  PrintRow(titles, widths, "path", out);
  for (std::size_t position = start; position < end && out.IsGood(); ++position) {
    PrintRow(RowOf(file, position), widths, file.Entries().PathOf(position), out);
  }
}

}  // namespace kelst
