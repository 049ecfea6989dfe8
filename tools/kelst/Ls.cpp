#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/Listing.h"
#include "tools/kelst/ListingOrder.h"

namespace kelst {

namespace {

constexpr const char* kLsHelp =
    "'kelst ls FILE PATH' lists a part of one file: the second of two arguments is a PATH when\n"
    "the first file holds it, and when there is no file of that name. A stream that is smaller\n"
    "than the limit that info tells starts in a mini sector.\n"
    "\n"
    "--sort name ignores letter case, --sort size puts the largest first, and --sort index is the\n"
    "default: the order of the directory. A storage always comes right before what it holds, and\n"
    "counts with all of that.\n"
    "\n"
    "Behind a name that an installer database has packed stands in brackets what it means. On a\n"
    "terminal storages and property sets are coloured, unless NO_COLOR has a value.\n";

struct LsOptions {
  std::vector<std::string> arguments;
  std::string path;
  bool hasPath = false;
  bool onlyPaths = false;
  bool isLong = false;
  bool json = false;
  std::string sortKey = "index";
};

SortKey SortKeyOf(const std::string& name) {
  if (name == "name") return SortKey::kName;
  return name == "size" ? SortKey::kSize : SortKey::kIndex;
}

bool Exists(const std::string& path) {
  struct stat facts {};
  return stat(path.c_str(), &facts) == 0;
}

/// Prints lists of files one after another.
class Lister {
 public:
  Lister(const LsOptions& options, Report& report) : options_(options), report_(report) {}

  void List(const CompoundFile& file, std::size_t start, bool isOneOfMany) {
    Output& out = report_.Out();
    const std::vector<std::size_t> order = ListingOrder(file, start, SortKeyOf(options_.sortKey));
    if (!options_.json && !isFirst_) out.Write("\n");
    isFirst_ = false;
    if (options_.json) {
      PrintJson(file, order, out);
    } else if (options_.isLong || options_.onlyPaths) {
      if (isOneOfMany) out.Write(file.Name() + ":\n");
      options_.isLong ? PrintTable(file, order, out) : PrintPaths(file, order, out);
    } else {
      PrintTree(file, order, out);
    }
    file.ReportProblems(report_);
  }

 private:
  const LsOptions& options_;
  Report& report_;
  bool isFirst_ = true;
};

/// Of exactly two arguments the second is a path when the first file holds it, and also when there
/// is no file of this name. `file` is null when the first could not be opened.
bool SecondIsPath(const CompoundFile* file, const std::string& argument) {
  const auto path = ParseEntryPath(argument);
  const bool isHeld = file != nullptr && path && file->Entries().Find(*path).position;
  return isHeld || !Exists(argument);
}

void RunLs(LsOptions& options, Report& report) {
  Lister lister(options, report);
  for (std::size_t i = 0; i < options.arguments.size(); ++i) {
    const auto file = CompoundFile::Open(options.arguments[i], report);
    if (!options.hasPath && i == 0 && options.arguments.size() == 2 &&
        SecondIsPath(file.get(), options.arguments[1])) {
      options.path = options.arguments[1];
      options.arguments.pop_back();
    }
    if (!file) continue;
    const auto start = file->Find(options.path, "stream or storage", report);
    if (start) lister.List(*file, *start, options.arguments.size() > 1);
  }
}

}  // namespace

void AddLs(CLI::App& app, Report& report) {
  const auto options = std::make_shared<LsOptions>();
  CLI::App* const command = app.add_subcommand("ls", "List what files hold");
  AddTexts(*command, "FILE", options->arguments, "Compound files; or one of them and a PATH in it")
      ->required();
  AddText(*command, "-p,--path", options->path, "List only this PATH, in each FILE")
      ->type_name("PATH");
  command->add_flag("-1", options->onlyPaths, "Print one path a line and nothing else");
  command->add_flag("-l,--long", options->isLong,
                    "Print a table: index, kind, size, start sector, times, class id");
  command->add_flag("--json", options->json, "Print one JSON document a file, each on a line");
  AddText(*command, "--sort", options->sortKey, "Sort the entries of each storage by this")
      ->check(CLI::IsMember({"name", "size", "index"}).description(""))
      ->type_name("name|size|index");
  command->footer(std::string(kLsHelp) + '\n' + kPathHelp);
  command->callback([options, command, &report] {
    if (options->onlyPaths + options->isLong + options->json > 1) {
      throw CLI::ParseError("only one of -1, -l and --json can be given", 0);
    }
    options->hasPath = command->count("--path") > 0;
    RunLs(*options, report);
  });
}

}  // namespace kelst
