#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <new>
#include <sstream>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/EntryName.h"

#ifndef KELX_VERSION
#define KELX_VERSION "unknown"
#endif

namespace kelst {

namespace {

constexpr const char* kVersion = "kelst " KELX_VERSION;

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 something asked for failed, the rest was done; 2 wrong usage;\n"
    "3 a file cannot be opened or is not a compound file. Of several the highest counts.\n";

void SetUp(CLI::App& app) {
  app.set_version_flag("--version", kVersion, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.get_formatter()->label("REQUIRED", "");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->column_width(26);
  const std::string footer = app.get_footer();
  app.footer(footer + (footer.empty() ? "" : "\n") + kExitCodes);
}

void AddCommands(CLI::App& app, Report& report) {
  AddInfo(app, report);
  AddLs(app, report);
  AddFind(app, report);
  AddCat(app, report);
  AddHexdump(app, report);
  AddExtract(app, report);
  AddProps(app, report);
  AddCheck(app, report);
  AddMap(app, report);
  AddReport(app, report);
  app.footer("'kelst COMMAND --help' tells more about a command.\n");
  app.require_subcommand(1);
  SetUp(app);
  for (CLI::App* command : app.get_subcommands({})) {
    command->group("Commands");
    SetUp(*command);
  }
}

std::string CommandOf(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? "kelst" : "kelst " + chosen.front()->get_name();
}

/// What is wrong with the command line. Of a word that is no command the parser says nothing.
std::string WhyNotParsed(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv) {
  const std::string first = argc > 1 ? argv[1] : "";
  const bool isMeantAsCommand = !first.empty() && first[0] != '-';
  if (app.get_subcommands().empty() && isMeantAsCommand) {
    return "no command named \"" + Printable(first) + '"';
  }
  return Printable(error.what());
}

void Run(int argc, char** argv, Report& report) {
  CLI::App app("Looks into compound files and takes out what they hold.", "kelst");
  AddCommands(app, report);
  try {
    app.parse(ArgumentsOf(argc, argv));
  } catch (const CLI::Success& success) {  // --help, --version
    std::ostringstream text;
    app.exit(success, text);
    report.Out().Write(text.str());
  } catch (const CLI::ParseError& error) {
    report.Fail(ExitCode::kUsage,
                WhyNotParsed(app, error, argc, argv) + "; see '" + CommandOf(app) + " --help'");
  }
}

}  // namespace

}  // namespace kelst

int main(int argc, char** argv) {
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // a closed pipe shows as a failed write
  kelst::Report report;
  try {
    kelst::Run(argc, argv, report);
  } catch (const std::bad_alloc&) {
    report.Fail(kelst::ExitCode::kFailed, "out of memory");
  } catch (const std::exception& error) {
    report.Fail(kelst::ExitCode::kFailed, kelst::Printable(error.what()));
  }
  return static_cast<int>(report.Finish());
}
