#include <memory>
#include <string>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/MapDrawing.h"
#include "tools/kelst/OutputFile.h"

namespace kelst {

namespace {

constexpr const char* kMapHelp =
    "The picture is an SVG file, which browsers show. Its cells are sectors from the first to the\n"
    "last, or runs of sectors where there are more than 16,384; colours tell what they hold. "
    "Below\n"
    "it stand the streams: how large they are, and in how many fragments. Point at a cell to see\n"
    "what it is. Lost sectors are marked as in use, but part of nothing; appended ones lie behind\n"
    "all that the file's tables know of; missing ones belong to a stream, but lie beyond the end\n"
    "of the file.\n";

struct MapOptions {
  std::string file;
  std::string output;
};

void RunMap(const MapOptions& options, Report& report) {
  const auto file = InspectedFile::Open(options.file, report);
  if (!file) return;
  const std::string name = Printable(FileNameOf(options.file));
  WriteResult({options.output, options.file}, DrawMap(*file, name, MapUse::kOwnFile), report);
  file->ReportChange(report);
}

}  // namespace

void AddMap(CLI::App& app, Report& report) {
  const auto options = std::make_shared<MapOptions>();
  CLI::App* const command = app.add_subcommand("map", "Draw what each sector holds");
  AddText(*command, "FILE", options->file, "A compound file")->required();
  AddOutputOption(*command, options->output);
  command->footer(kMapHelp);
  command->callback([options, &report] { RunMap(*options, report); });
}

}  // namespace kelst
