#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/Folder.h"
#include "tools/kelst/Progress.h"
#include "tools/kelst/StreamContent.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr const char* kExtractHelp =
    "Storages become folders, streams files. A file has the name that ls prints with % in the\n"
    "place of the backslash: %x05 for a control character, a slash (%x2F) or a backslash\n"
    "(%x5C), %% for a percent sign, %#12 at the end where an earlier entry has the same name.\n"
    "The names . and .. become %x2E and %x2E%x2E. Nothing is written outside of DIR, and no\n"
    "symbolic link in it is followed. A stream that is damaged leaves no file.\n";

struct ExtractOptions {
  std::string file;
  std::vector<std::string> paths;
  std::string folder = ".";
  bool force = false;
};

/// What is to be done with each entry, by position in the tree.
struct Plan {
  std::vector<bool> wanted;   // it was asked for, or is in a storage that was
  std::vector<bool> visited;  // it is wanted, or holds something wanted
  std::uint64_t streams = 0;
  std::uint64_t bytes = 0;
};

Plan MakePlan(const CompoundFile& file, const std::vector<std::size_t>& starts) {
  const auto nodes = file.Entries().Nodes();
  Plan plan{std::vector<bool>(nodes.size()), std::vector<bool>(nodes.size())};
  for (const std::size_t start : starts) plan.wanted[start] = true;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (plan.wanted[nodes[i].parent]) plan.wanted[i] = true;
    const bool isStream = i > 0 && file.Directory().At(nodes[i].index).isStream();
    if (!plan.wanted[i] || !isStream) continue;
    ++plan.streams;
    plan.bytes += nodes[i].bytes;
  }
  for (std::size_t i = nodes.size(); i-- > 0;) {
    if (plan.wanted[i]) plan.visited[i] = true;
    if (plan.visited[i]) plan.visited[nodes[i].parent] = true;
  }
  return plan;
}

std::string Reason(const std::system_error& error) {
  switch (error.code().value()) {
    case EEXIST:
      return "exists already, and --force was not given";
    case ELOOP:
    case ENOTDIR:
      return "something stands in its place that is not a folder";
    default:
      return error.code().message();
  }
}

class Extraction {
 public:
  Extraction(CompoundFile& file, const ExtractOptions& options, const Plan& plan, Report& report)
      : file_(file),
        force_(options.force),
        plan_(plan),
        report_(report),
        progress_(plan.streams, plan.bytes) {}

  /// Extracts into `folder`. What fails is reported and left out, with all that is in it.
  void Run(Folder folder);

  /// "3 streams and 1 storage, 4,711 bytes (4.6 KiB)"
  [[nodiscard]] std::string Summary() const {
    return WithUnit(streams_, "stream") + " and " + WithUnit(storages_, "storage") + ", " +
           SizeText(bytes_);
  }

 private:
  [[nodiscard]] std::string FileNameOf(std::size_t position) const;
  bool Extract(std::size_t position);
  bool ExtractStream(std::size_t position);
  void Fail(std::size_t position, const std::string& reason);

  CompoundFile& file_;
  const bool force_;
  const Plan& plan_;
  Report& report_;
  Progress progress_;
  std::vector<Folder> folders_;  // the open ones, from the outermost to the one that is filled
  std::uint64_t streams_ = 0;
  std::uint64_t storages_ = 0;
  std::uint64_t bytes_ = 0;
};

void Extraction::Run(Folder folder) {
  const auto nodes = file_.Entries().Nodes();
  folders_.push_back(std::move(folder));
  for (std::size_t position = 1; position < nodes.size();) {
    folders_.erase(folders_.begin() + nodes[position].depth, folders_.end());
    const bool isEntered = plan_.visited[position] && Extract(position);
    position = isEntered ? position + 1 : nodes[position].end;
  }
  progress_.Clear();
}

std::string Extraction::FileNameOf(std::size_t position) const {
  const TreeNode& node = file_.Entries().Nodes()[position];
  const std::string name = FileName(file_.Directory().FullAt(node.index).name);
  return node.isRepeated ? name + FileNameIndex(node.index) : name;
}

/// Whether what is below the entry can be extracted too.
bool Extraction::Extract(std::size_t position) {
  const KELStStorageDirEntry& entry = file_.Directory().At(file_.Entries().Nodes()[position].index);
  try {
    if (entry.isStream()) return ExtractStream(position);
    if (!entry.isStorage()) {
      Fail(position, "is neither a stream nor a storage");
      return false;
    }
    folders_.push_back(folders_.back().OpenOrMakeInside(FileNameOf(position)));
    ++storages_;
    return true;
  } catch (const std::system_error& error) {
    Fail(position, Reason(error));
    return false;
  }
}

bool Extraction::ExtractStream(std::size_t position) {
  const std::string name = FileNameOf(position);
  const Folder& folder = folders_.back();
  if (!force_ && folder.Has(name)) throw std::system_error(EEXIST, std::generic_category());
  StreamContent content(file_, file_.Entries().Nodes()[position].index);
  NewFile target(folder);
  for (auto piece = content.Next(); !piece.empty(); piece = content.Next()) {
    target.Write(piece);
    progress_.Add(0, piece.size());
  }
  const std::string problem = content.Problem();
  if (!problem.empty()) {
    Fail(position, problem);
    return false;
  }
  target.Keep(name, force_);
  progress_.Add(1, 0);
  ++streams_;
  bytes_ += file_.Entries().Nodes()[position].bytes;
  return true;
}

void Extraction::Fail(std::size_t position, const std::string& reason) {
  progress_.Clear();
  report_.Fail(ExitCode::kFailed,
               file_.Name() + ": " + file_.Entries().PathOf(position) + ": " + reason);
}

/// The entries that were asked for, as far as they are there.
std::vector<std::size_t> FindAll(const CompoundFile& file, const std::vector<std::string>& paths,
                                 Report& report) {
  if (paths.empty()) return {0};
  std::vector<std::size_t> positions;
  for (const std::string& path : paths) {
    const auto position = file.Find(path, "stream or storage", report);
    if (position) positions.push_back(*position);
  }
  return positions;
}

void RunExtract(const ExtractOptions& options, Report& report) {
  const auto file = CompoundFile::Open(options.file, report);
  if (!file) return;
  const std::vector<std::size_t> starts = FindAll(*file, options.paths, report);
  if (starts.empty()) return;
  const Plan plan = MakePlan(*file, starts);
  Extraction extraction(*file, options, plan, report);
  try {
    extraction.Run(Folder::OpenOrMake(options.folder));
  } catch (const std::system_error& error) {
    report.Fail(ExitCode::kFailed, Printable(options.folder) + ": " + Reason(error));
    return;
  }
  report.Out().Write("extracted " + extraction.Summary() + ", to " + Printable(options.folder) +
                     '\n');
  file->ReportProblems(report);
}

}  // namespace

void AddExtract(CLI::App& app, Report& report) {
  const auto options = std::make_shared<ExtractOptions>();
  CLI::App* const command = app.add_subcommand("extract", "Save streams as files");
  AddText(*command, "FILE", options->file, "A compound file")->required();
  AddTexts(*command, "PATH", options->paths, "What to extract of it; all of it by default");
  AddText(*command, "-C,--directory", options->folder,
          "The folder to extract to, made where it is missing; this one by default")
      ->type_name("DIR");
  command->add_flag("-f,--force", options->force, "Replace files that exist");
  command->footer(std::string(kExtractHelp) + '\n' + kPathHelp);
  command->callback([options, &report] { RunExtract(*options, report); });
}

}  // namespace kelst
