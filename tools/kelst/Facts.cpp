#include "tools/kelst/Facts.h"

#include <algorithm>

#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

std::uint64_t CountOf(const auto& array) { return static_cast<std::uint64_t>(array.Count()); }

/// "8 entries: 1 root, 6 streams, 1 empty"
std::string DirectoryText(const FullDirectory& directory, const KindCounts& counts) {
  std::string text = Grouped(directory.Count()) + " entries: " + Grouped(counts.roots) + " root";
  if (counts.storages > 0) text += ", " + WithUnit(counts.storages, "storage");
  if (counts.streams > 0) text += ", " + WithUnit(counts.streams, "stream");
  if (counts.others > 0) text += ", " + Grouped(counts.others) + " of another kind";
  if (counts.empty > 0) text += ", " + Grouped(counts.empty) + " empty";
  return text;
}

std::string MiniStreamText(const KELStStorageFileInfo& image) {
  const std::uint64_t stated = image.getMiniStreamLength();
  const std::uint64_t held = CountOf(image.getMiniStream());
  return SizeText(stated) + (held == stated ? "" : ", of which " + Grouped(held) + " are there");
}

std::string VersionText(const KELStStorageHeader& header) {
  return std::to_string(InFileOrder(header, header.majorVersion)) + " (minor " +
         std::to_string(InFileOrder(header, header.minorVersion)) + ")";
}

std::string MiniSectorsText(const KELStStorageHeader& header) {
  return WithUnit(1U << header.miniSectorShift, "byte") + ", for streams below " +
         WithUnit(header.miniStreamCutoff, "byte");
}

}  // namespace

EntryCounts CountEntries(const CompoundFile& file) {
  EntryCounts counts;
  const FullDirectory& directory = file.Directory();
  for (std::uint32_t index = 0; index < directory.Count(); ++index) {
    ++counts.directory.CountOf(directory.At(index));
  }
  for (const TreeNode& node : file.Entries().Nodes()) {
    ++counts.tree.CountOf(directory.At(node.index));
    counts.depth = std::max(counts.depth, node.depth);
  }
  return counts;
}

std::vector<Fact> FactsOf(const CompoundFile& file) {
  const KELStStorageFileInfo& image = file.Image();
  const KELStStorageHeader header = image.getHeader();
  const EntryCounts counts = CountEntries(file);
  const FullEntry& root = file.Directory().FullAt(0);
  std::vector<Fact> facts{
      {"size", SizeText(file.Size())},
      {"version", VersionText(header)},
      {"byte order", IsHostByteOrder(header) ? "little-endian" : "big-endian"},
      {"sectors", WithUnit(1U << header.sectorShift, "byte")},
      {"mini sectors", MiniSectorsText(header)},
      {"mini stream", MiniStreamText(image)},
      {"FAT", Grouped(CountOf(image.getFatSector())) + " entries"},
      {"mini FAT", Grouped(CountOf(image.getMiniFatSector())) + " entries"},
      {"DIFAT", WithUnit(header.numDifSects, "sector")},
      {"directory", DirectoryText(file.Directory(), counts.directory)},
      {"unreachable", counts.Unreachable() == 0 ? "" : Grouped(counts.Unreachable()) + " entries"},
      {"depth", WithUnit(static_cast<std::uint64_t>(counts.depth), "level")},
      {"content",
       WithUnit(counts.tree.streams, "stream") + ", " + SizeText(file.Entries().Nodes()[0].bytes)},
      {"class id", ClassIdText(root.classId)},
      {"created", TimeText(root.created)},
      {"modified", TimeText(root.modified)}};
  std::erase_if(facts, [](const Fact& fact) { return fact.text.empty(); });
  return facts;
}

}  // namespace kelst
