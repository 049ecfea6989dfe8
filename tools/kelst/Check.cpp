#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
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

/// With --all. A finding takes some 200 bytes, and four bytes of a FAT can make one.
constexpr std::uint64_t kMostKept = 1'000'000;

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

void PrintText(const std::string& name, const FindingList& findings, bool all, EntryPaths& paths,
               Output& out) {
  out.Write(name + ": " + TotalsText(findings) + '\n');
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    out.Write(std::string(NameOf(facts.severity)) + ' ' + std::string(facts.name) + ", " +
              Grouped(group.count) + " found\n");
    for (const Finding& finding : group.kept) {
      if (!out.IsGood()) return;
      PrintFinding(finding, paths, out);
    }
    const std::uint64_t more = group.count - group.kept.size();
    if (more > 0) out.Write("  " + Grouped(more) + (all ? " more\n" : " more; --all shows them\n"));
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

/// Writes an object without its end, which must not be empty, for more members to follow.
void OpenObject(const Json& object, Output& out) {
  std::string text = object.dump();
  text.back() = ',';
  out.Write(text);
}

/// The findings go out one by one: all of those of a damaged file would fill the memory.
void PrintJson(const std::string& path, const InspectedFile& file, const FindingList& findings,
               Output& out) {
  OpenObject({{"file", KELXString::fromUtf8(path).toUtf8()},
              {"clean", IsClean(findings)},
              {"errors", findings.CountOf(Severity::kError)},
              {"warnings", findings.CountOf(Severity::kWarning)},
              {"notes", findings.CountOf(Severity::kNote)}},
             out);
  std::string before = "\"groups\":[";
  ForEachGroup(findings, [&](const CodeFacts& facts, const FindingList::Group& group) {
    out.Write(std::exchange(before, ","));
    OpenObject({{"code", facts.name}, {"severity", NameOf(facts.severity)}, {"count", group.count}},
               out);
    std::string comma = "\"findings\":[";
    for (const Finding& finding : group.kept) {
      if (!out.IsGood()) return;
      out.Write(std::exchange(comma, ",") + FindingJson(finding, file).dump());
    }
    out.Write("]}");
  });
  out.Write((before == "," ? "" : before) + "]}\n");
}

void CheckFile(const std::string& path, const CheckOptions& options, Report& report) {
  const auto file = InspectedFile::Open(path, report);
  if (!file) return;
  const FindingList findings = file->Check(options.all ? kMostKept : kMostShown);
  if (options.json) {
    PrintJson(path, *file, findings, report.Out());
  } else {
    PrintText(Printable(path), findings, options.all, file->Paths(), report.Out());
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
