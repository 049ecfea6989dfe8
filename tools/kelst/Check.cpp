#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/analysis/Analysis.h"
#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/OpenedFile.h"
#include "tools/kelst/Refusal.h"
#include "tools/kelst/Tree.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kMostShown = 5;

constexpr const char* kCheckHelp =
    "Errors say that content is lost or doubtful, warnings that a rule of the format is broken,\n"
    "notes what is no fault but worth knowing. The exit code is 1 when there is an error or a\n"
    "warning. docs/findings.md explains each finding.\n";

using Json = nlohmann::ordered_json;

struct CheckOptions {
  std::vector<std::string> files;
  bool all = false;
  bool json = false;
};

/// How the entries of a directory are called.
class EntryPaths {
 public:
  explicit EntryPaths(const FullDirectory& directory) : directory_(directory) {}

  /// The path as ls prints it; of an entry that ls does not list the name alone.
  [[nodiscard]] std::string Of(std::uint32_t index) {
    if (!tree_) MakeTree();
    if (positions_[index] != kNone) return tree_->PathOf(positions_[index]);
    return WrittenName(directory_.FullAt(index).name);
  }

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  /// Late: of most files there is nothing to say that needs it.
  void MakeTree() {
    tree_.emplace(directory_);
    positions_.resize(directory_.Count(), kNone);
    for (std::size_t i = 0; i < tree_->Nodes().size(); ++i) positions_[tree_->Nodes()[i].index] = i;
  }

  const FullDirectory& directory_;
  std::optional<Tree> tree_;
  std::vector<std::size_t> positions_;
};

/// "sectors 3 to 7"
std::string PlaceText(const Place& place) {
  if (place.unit == Place::Unit::kByte) return "byte " + Grouped(place.first);
  const std::string sector = place.unit == Place::Unit::kSector ? "sector" : "mini sector";
  if (place.count == 1) return sector + ' ' + Grouped(place.first);
  return sector + "s " + Grouped(place.first) + " to " + Grouped(place.first + place.count - 1);
}

void PrintFinding(const Finding& finding, EntryPaths& paths, Output& out) {
  std::string line = "  ";
  if (finding.place.entry) {
    line +=
        paths.Of(*finding.place.entry) + " (entry " + std::to_string(*finding.place.entry) + "), ";
  }
  out.Write(line + PlaceText(finding.place) + ": " + finding.text + '\n');
}

/// "2 errors, 1 note"
std::string Totals(const FindingList& findings) {
  std::string text;
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    const std::uint64_t count = findings.CountOf(severity);
    if (count > 0) text += (text.empty() ? "" : ", ") + WithUnit(count, NameOf(severity));
  }
  return text;
}

bool IsClean(const FindingList& findings) {
  return findings.CountOf(Severity::kError) + findings.CountOf(Severity::kWarning) == 0;
}

/// Calls `visit` for each code that something was found of, the gravest first.
template <typename Visit>
void ForEachGroup(const FindingList& findings, Visit visit) {
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    for (const CodeFacts& facts : AllCodes()) {
      const FindingList::Group& group = findings.Of(facts.code);
      if (facts.severity == severity && group.count > 0) visit(facts, group);
    }
  }
}

void PrintText(const std::string& name, const FindingList& findings, EntryPaths& paths,
               Output& out) {
  const std::string totals = Totals(findings);
  const std::string clean = IsClean(findings) ? "clean" : "";
  out.Write(name + ": " + clean + (clean.empty() || totals.empty() ? "" : ", ") + totals + '\n');
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    out.Write(std::string(NameOf(facts.severity)) + ' ' + std::string(facts.name) + ", " +
              Grouped(group.count) + " found\n");
    for (const Finding& finding : group.kept) PrintFinding(finding, paths, out);
    const std::uint64_t more = group.count - group.kept.size();
    if (more > 0) out.Write("  " + Grouped(more) + " more; --all shows them\n");
  });
}

Json FindingJson(const Finding& finding, const SectorMap& map, const FileTables& tables,
                 EntryPaths& paths) {
  const Place& place = finding.place;
  Json json{{"text", finding.text}};
  if (place.entry) {
    json["entry"] = *place.entry;
    json["path"] = paths.Of(*place.entry);
  }
  std::uint64_t offset = place.first;
  if (place.unit != Place::Unit::kByte) {
    const bool isMini = place.unit == Place::Unit::kMiniSector;
    const auto sector = static_cast<std::uint32_t>(place.first);
    json[isMini ? "miniSector" : "sector"] = place.first;
    json["count"] = place.count;
    if (sector >= (isMini ? map.MiniSectorCount() : tables.SectorCount())) return json;
    offset = isMini ? map.MiniOffsetOf(sector) : tables.OffsetOf(sector);
  }
  json["offset"] = offset;
  return json;
}

void PrintJson(const std::string& path, const Subject& subject, const FindingList& findings,
               EntryPaths& paths, Output& out) {
  Json groups = Json::array();
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    Json shown = Json::array();
    for (const Finding& finding : group.kept) {
      shown.push_back(FindingJson(finding, subject.map, subject.tables, paths));
    }
    groups.push_back({{"code", facts.name},
                      {"severity", NameOf(facts.severity)},
                      {"count", group.count},
                      {"findings", std::move(shown)}});
  });
  const Json document{{"file", KELXString::fromUtf8(path).toUtf8()},
                      {"clean", IsClean(findings)},
                      {"errors", findings.CountOf(Severity::kError)},
                      {"warnings", findings.CountOf(Severity::kWarning)},
                      {"notes", findings.CountOf(Severity::kNote)},
                      {"groups", std::move(groups)}};
  out.Write(document.dump() + '\n');
}

void CheckFile(const std::string& path, const CheckOptions& options, Report& report) {
  const auto refuse = [&](const std::string& reason) {
    report.Fail(ExitCode::kNotOpened, Printable(path) + ": " + reason);
  };
  const auto state = FileState::Of(path);
  const std::string reason = WhyNotOpened(path, state);
  if (!reason.empty()) return refuse(reason);
  const OpenedFile file = OpenForReading(KELXFilePath(path.c_str()));
  if (!file) return refuse("cannot be opened again");
  const FileTables tables(file.get());
  if (!tables.IsAccepted()) {
    return refuse("not a compound file: " + WhyRefused(tables.Header(), state->Size()));
  }
  const DirectoryWalk walk(tables.Directory());
  const SectorMap map(tables, walk);
  const Subject subject{tables, walk, map, file.get()};
  FindingList findings(options.all ? std::numeric_limits<std::uint64_t>::max() : kMostShown);
  CheckAll(subject, findings);
  EntryPaths paths(tables.Directory());
  if (options.json) {
    PrintJson(path, subject, findings, paths, report.Out());
  } else {
    PrintText(Printable(path), findings, paths, report.Out());
  }
  if (!IsClean(findings)) report.Raise(ExitCode::kFailed);
  if (FileState::Of(path) != state) {
    report.Fail(ExitCode::kFailed, Printable(path) + ": " + kChanged);
  }
}

void RunCheck(const CheckOptions& options, Report& report) {
  for (const std::string& path : options.files) CheckFile(path, options, report);
}

}  // namespace

void AddCheck(CLI::App& app, Report& report) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* const command = app.add_subcommand("check", "Tell what is wrong with files");
  AddTexts(*command, "FILE", options->files, "Compound files")->required();
  command->add_flag("--all", options->all, "Show all findings, not the first five of a kind");
  command->add_flag("--json", options->json, "One JSON document a file, each on a line");
  command->footer(kCheckHelp);
  command->callback([options, &report] { RunCheck(*options, report); });
}

}  // namespace kelst
