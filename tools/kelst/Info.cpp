#include <algorithm>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

struct InfoOptions {
  std::vector<std::string> files;
  bool json = false;
};

/// How many entries of the directory are of each kind.
struct KindCounts {
  std::uint64_t roots = 0;
  std::uint64_t storages = 0;
  std::uint64_t streams = 0;
  std::uint64_t others = 0;
  std::uint64_t empty = 0;

  [[nodiscard]] std::uint64_t& CountOf(const KELStStorageDirEntry& entry) {
    if (entry.isRoot()) return roots;
    if (entry.isStorage()) return storages;
    if (entry.isStream()) return streams;
    return entry.getType() == 0 ? empty : others;
  }
  [[nodiscard]] std::uint64_t Used() const { return roots + storages + streams + others; }
};

struct Facts {
  KindCounts directory;
  KindCounts tree;
  int depth = 0;

  /// Entries in use that no links lead to.
  [[nodiscard]] std::uint64_t Unreachable() const { return directory.Used() - tree.Used(); }
};

Facts FactsOf(const CompoundFile& file) {
  Facts facts;
  const FullDirectory& directory = file.Directory();
  for (std::uint32_t index = 0; index < directory.Count(); ++index) {
    ++facts.directory.CountOf(directory.At(index));
  }
  for (const TreeNode& node : file.Entries().Nodes()) {
    ++facts.tree.CountOf(directory.At(node.index));
    facts.depth = std::max(facts.depth, node.depth);
  }
  return facts;
}

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

/// One line of the table. Nothing is printed where there is nothing to tell.
void Line(Output& out, std::string_view label, const std::string& text) {
  constexpr std::size_t kLabelWidth = 14;
  if (text.empty()) return;
  const std::string padding(kLabelWidth - label.size(), ' ');
  out.Write("  " + std::string(label) + padding + text + '\n');
}

std::string MiniStreamText(const KELStStorageFileInfo& image) {
  const std::uint64_t stated = image.getMiniStreamLength();
  const std::uint64_t held = CountOf(image.getMiniStream());
  return SizeText(stated) + (held == stated ? "" : ", of which " + Grouped(held) + " are there");
}

void PrintText(const CompoundFile& file, Output& out) {
  const KELStStorageFileInfo& image = file.Image();
  const KELStStorageHeader header = image.getHeader();
  const Facts facts = FactsOf(file);
  const FullEntry& root = file.Directory().FullAt(0);
  out.Write(file.Name() + '\n');
  Line(out, "size", SizeText(file.Size()));
  Line(out, "version",
       std::to_string(InFileOrder(header, header.majorVersion)) + " (minor " +
           std::to_string(InFileOrder(header, header.minorVersion)) + ")");
  Line(out, "byte order", IsHostByteOrder(header) ? "little-endian" : "big-endian");
  Line(out, "sectors", WithUnit(1U << header.sectorShift, "byte"));
  Line(out, "mini sectors",
       WithUnit(1U << header.miniSectorShift, "byte") + ", for streams below " +
           WithUnit(header.miniStreamCutoff, "byte"));
  Line(out, "mini stream", MiniStreamText(image));
  Line(out, "FAT", Grouped(CountOf(image.getFatSector())) + " entries");
  Line(out, "mini FAT", Grouped(CountOf(image.getMiniFatSector())) + " entries");
  Line(out, "DIFAT", WithUnit(header.numDifSects, "sector"));
  Line(out, "directory", DirectoryText(file.Directory(), facts.directory));
  Line(out, "unreachable",
       facts.Unreachable() == 0 ? "" : Grouped(facts.Unreachable()) + " entries");
  Line(out, "depth", WithUnit(static_cast<std::uint64_t>(facts.depth), "level"));
  Line(out, "content",
       WithUnit(facts.tree.streams, "stream") + ", " + SizeText(file.Entries().Nodes()[0].bytes));
  Line(out, "class id", ClassIdText(root.classId));
  Line(out, "created", TimeText(root.created));
  Line(out, "modified", TimeText(root.modified));
}

void PrintJson(const CompoundFile& file, Output& out) {
  const KELStStorageFileInfo& image = file.Image();
  const KELStStorageHeader header = image.getHeader();
  const Facts facts = FactsOf(file);
  const nlohmann::ordered_json document{
      {"file", file.Utf8Path()},
      {"size", file.Size()},
      {"majorVersion", InFileOrder(header, header.majorVersion)},
      {"minorVersion", InFileOrder(header, header.minorVersion)},
      {"byteOrder", IsHostByteOrder(header) ? "little-endian" : "big-endian"},
      {"sectorSize", 1U << header.sectorShift},
      {"miniSectorSize", 1U << header.miniSectorShift},
      {"miniStreamCutoff", header.miniStreamCutoff},
      {"miniStreamSize", image.getMiniStreamLength()},
      {"fatEntries", CountOf(image.getFatSector())},
      {"miniFatEntries", CountOf(image.getMiniFatSector())},
      {"difatSectors", header.numDifSects},
      {"directoryEntries", file.Directory().Count()},
      {"entriesByKind",
       {{"root", facts.directory.roots},
        {"storage", facts.directory.storages},
        {"stream", facts.directory.streams},
        {"other", facts.directory.others},
        {"empty", facts.directory.empty}}},
      {"unreachableEntries", facts.Unreachable()},
      {"depth", facts.depth},
      {"streams", facts.tree.streams},
      {"streamBytes", file.Entries().Nodes()[0].bytes},
  };
  out.Write(document.dump() + '\n');
}

void RunInfo(const InfoOptions& options, Report& report) {
  bool isFirst = true;
  for (const std::string& path : options.files) {
    const auto file = CompoundFile::Open(path, report);
    if (!file) continue;
    if (options.json) {
      PrintJson(*file, report.Out());
    } else {
      report.Out().Write(isFirst ? "" : "\n");
      PrintText(*file, report.Out());
    }
    isFirst = false;
    file->ReportProblems(report);
  }
}

}  // namespace

void AddInfo(CLI::App& app, Report& report) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App* const command = app.add_subcommand("info", "Tell how files are built");
  AddTexts(*command, "FILE", options->files, "Compound files")->required();
  command->add_flag("--json", options->json, "One JSON document a file, each on a line");
  command->callback([options, &report] { RunInfo(*options, report); });
}

}  // namespace kelst
