#include <memory>
#include <string>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/StreamContent.h"

namespace kelst {

namespace {

struct CatOptions {
  std::string file;
  std::string path;
};

void WriteStream(CompoundFile& file, std::size_t position, Report& report) {
  const std::string path = file.Name() + ": " + file.Entries().PathOf(position) + ": ";
  const std::uint32_t index = file.Entries().Nodes()[position].index;
  StreamContent content(file, index);
  for (auto piece = content.Next(); !piece.empty() && report.Out().IsGood();
       piece = content.Next()) {
    report.Out().Write(piece);
  }
  const std::string problem = report.Out().IsGood() ? content.Problem() : "";
  if (!problem.empty()) report.Fail(ExitCode::kFailed, path + problem);
}

void RunCat(const CatOptions& options, Report& report) {
  const auto file = CompoundFile::Open(options.file, report);
  if (!file) return;
  const auto position = file->FindStream(options.path, report);
  if (position) WriteStream(*file, *position, report);
}

}  // namespace

void AddCat(CLI::App& app, Report& report) {
  const auto options = std::make_shared<CatOptions>();
  CLI::App* const command = app.add_subcommand("cat", "Write the bytes of a stream");
  AddText(*command, "FILE", options->file, "A compound file")->required();
  AddText(*command, "PATH", options->path, "A stream in it, as ls prints it")->required();
  command->footer(kPathHelp);
  command->callback([options, &report] { RunCat(*options, report); });
}

}  // namespace kelst
