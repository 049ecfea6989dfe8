#include <memory>
#include <string>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/HtmlPage.h"
#include "tools/kelst/OutputFile.h"

namespace kelst {

namespace {

constexpr const char* kReportHelp =
    "The page shows what info, check, map, props and ls tell: how the file is built, what is\n"
    "wrong with it, where everything lies, the property sets and the tree. It is one HTML file\n"
    "without scripts that needs no network. Of very large files it shows the first rows of each\n"
    "table and counts the rest. What check finds is part of the page and no failure.\n";

struct ReportOptions {
  std::string file;
  std::string output;
};

void RunReport(const ReportOptions& options, Report& report) {
  const auto inspected = InspectedFile::Open(options.file, report);
  if (!inspected) return;
  const auto file = CompoundFile::Open(options.file, report);
  if (!file) return;
  const std::string name = Printable(FileNameOf(options.file));
  WriteResult({options.output, options.file}, HtmlPage(*file, *inspected, name), report);
  file->ReportChange(report);
}

}  // namespace

void AddReport(CLI::App& app, Report& report) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App* const command = app.add_subcommand("report", "Write all about a file as a web page");
  AddText(*command, "FILE", options->file, "A compound file")->required();
  AddOutputOption(*command, options->output);
  command->footer(kReportHelp);
  command->callback([options, &report] { RunReport(*options, report); });
}

}  // namespace kelst
