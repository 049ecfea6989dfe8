#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/EntryName.h"
#include "tools/kelst/FindingText.h"
#include "tools/kelst/InspectedFile.h"
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

void PrintFinding(const Finding& finding, EntryPaths& paths, Output& out) {
  std::string line = "  ";
  if (finding.place.entry) {
    line +=
        paths.Of(*finding.place.entry) + " (entry " + std::to_string(*finding.place.entry) + "), ";
  }
  out.Write(line + PlaceText(finding.place) + ": " + finding.text + '\n');
}

void PrintText(const std::string& name, const FindingList& findings, EntryPaths& paths,
               Output& out) {
  out.Write(name + ": " + TotalsText(findings) + '\n');
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    out.Write(std::string(NameOf(facts.severity)) + ' ' + std::string(facts.name) + ", " +
              Grouped(group.count) + " found\n");
    for (const Finding& finding : group.kept) PrintFinding(finding, paths, out);
    const std::uint64_t more = group.count - group.kept.size();
    if (more > 0) out.Write("  " + Grouped(more) + " more; --all shows them\n");
  });
}

Json FindingJson(const Finding& finding, const InspectedFile& file) {
  const Place& place = finding.place;
  Json json{{"text", finding.text}};
  if (place.entry) {
    json["entry"] = *place.entry;
    json["path"] = file.Paths().Of(*place.entry);
  }
  std::uint64_t offset = place.first;
  if (place.unit != Place::Unit::kByte) {
    const bool isMini = place.unit == Place::Unit::kMiniSector;
    const auto sector = static_cast<std::uint32_t>(place.first);
    json[isMini ? "miniSector" : "sector"] = place.first;
    json["count"] = place.count;
    const SectorMap& map = file.Map();
    if (sector >= (isMini ? map.MiniSectorCount() : file.Tables().SectorCount())) return json;
    offset = isMini ? map.MiniOffsetOf(sector) : file.Tables().OffsetOf(sector);
  }
  json["offset"] = offset;
  return json;
}

void PrintJson(const std::string& path, const InspectedFile& file, const FindingList& findings,
               Output& out) {
  Json groups = Json::array();
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    Json shown = Json::array();
    for (const Finding& finding : group.kept) shown.push_back(FindingJson(finding, file));
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
  const auto file = InspectedFile::Open(path, report);
  if (!file) return;
  const FindingList findings =
      file->Check(options.all ? std::numeric_limits<std::uint64_t>::max() : kMostShown);
  if (options.json) {
    PrintJson(path, *file, findings, report.Out());
  } else {
    PrintText(Printable(path), findings, file->Paths(), report.Out());
  }
  if (!IsClean(findings)) report.Raise(ExitCode::kFailed);
  file->ReportChange(report);
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
