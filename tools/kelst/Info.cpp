#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Facts.h"
#include "tools/kelst/Sectors.h"

namespace kelst {

namespace {

struct InfoOptions {
  std::vector<std::string> files;
  bool json = false;
};

void PrintText(const CompoundFile& file, Output& out) {
  constexpr std::size_t kLabelWidth = 14;
  out.Write(file.Name() + '\n');
  for (const Fact& fact : FactsOf(file)) {
    const std::string padding(kLabelWidth - fact.label.size(), ' ');
    out.Write("  " + std::string(fact.label) + padding + fact.text + '\n');
  }
}

void PrintJson(const CompoundFile& file, Output& out) {
  const KELStStorageFileInfo& image = file.Image();
  const KELStStorageHeader header = image.getHeader();
  const EntryCounts counts = CountEntries(file);
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
      {"fatEntries", image.getFatSector().Count()},
      {"miniFatEntries", image.getMiniFatSector().Count()},
      {"difatSectors", header.numDifSects},
      {"directoryEntries", file.Directory().Count()},
      {"entriesByKind",
       {{"root", counts.directory.roots},
        {"storage", counts.directory.storages},
        {"stream", counts.directory.streams},
        {"other", counts.directory.others},
        {"empty", counts.directory.empty}}},
      {"unreachableEntries", counts.Unreachable()},
      {"depth", counts.depth},
      {"streams", counts.tree.streams},
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
