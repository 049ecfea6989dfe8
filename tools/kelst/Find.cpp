#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/EntryJson.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/Glob.h"
#include "tools/kelst/InstallerName.h"

namespace kelst {

namespace {

constexpr const char* kFindHelp =
    "GLOB is compared with the whole name of each storage and stream as ls shows it, escapes\n"
    "included and without \\#N, and with what a packed name of an installer database means. In it\n"
    "* is any characters, ? is one, [abc], [a-z] and [!abc] are one of a set; [*] is a star. As "
    "in\n"
    "the format itself, letter case does not count. Quote it in a shell. N is decimal, or\n"
    "hexadecimal after 0x; a storage has the size of all that it holds.\n"
    "\n"
    "The exit code is 0 when something was found, and 1 when nothing was. Every file is looked\n"
    "at, whatever is wrong with others.\n";

struct FindOptions {
  std::vector<std::string> files;
  std::string name;
  std::uint64_t minSize = 0;
  bool json = false;
};

bool Matches(const Glob& glob, const std::u16string& name) {
  const auto decoded = DecodedInstallerName(name);
  return glob.Matches(WrittenName(name)) || (decoded && glob.Matches(WrittenName(*decoded)));
}

void PrintFound(const CompoundFile& file, std::size_t position, bool json, Output& out) {
  if (json) {
    nlohmann::ordered_json entry{{"file", file.Utf8Path()}};
    entry.update(EntryJson(file, position));
    out.Write(entry.dump() + '\n');
  } else {
    out.Write(file.Name() + ": " + file.Entries().PathOf(position) + '\n');
  }
}

/// Prints what matches in one file. False when nothing does.
bool FindIn(const CompoundFile& file, const Glob& glob, const FindOptions& options, Output& out) {
  const auto nodes = file.Entries().Nodes();
  bool hasFound = false;
  for (std::size_t position = 1; position < nodes.size() && out.IsGood(); ++position) {
    const bool isFound = nodes[position].bytes >= options.minSize &&
                         Matches(glob, file.Directory().FullAt(nodes[position].index).name);
    if (isFound) PrintFound(file, position, options.json, out);
    hasFound = hasFound || isFound;
  }
  return hasFound;
}

void RunFind(const FindOptions& options, Report& report) {
  const auto glob = Glob::Parse(options.name);
  if (!glob) {
    report.Fail(ExitCode::kUsage, "--name: \"" + Printable(options.name) + "\" is not valid UTF-8");
    return;
  }
  bool hasFound = false;
  for (const std::string& path : options.files) {
    const auto file = CompoundFile::Open(path, report);
    if (!file) continue;
    hasFound = FindIn(*file, *glob, options, report.Out()) || hasFound;
    file->ReportProblems(report);
  }
  if (!hasFound) report.Raise(ExitCode::kFailed);
}

}  // namespace

void AddFind(CLI::App& app, Report& report) {
  const auto options = std::make_shared<FindOptions>();
  CLI::App* const command = app.add_subcommand("find", "Find storages and streams by name");
  AddTexts(*command, "FILE", options->files, "Compound files")->required();
  AddText(*command, "--name", options->name, "What the name is like")
      ->required()
      ->type_name("GLOB");
  AddNumber(*command, "--min-size", options->minSize, "Only what has at least so many bytes");
  command->add_flag("--json", options->json,
                    "One JSON document for each that is found, each on a line");
  command->footer(kFindHelp);
  command->callback([options, &report] { RunFind(*options, report); });
}

}  // namespace kelst
