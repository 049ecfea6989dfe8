#include <unistd.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/PropertySets.h"

namespace kelst {

namespace {

constexpr const char* kPropsHelp =
    "--set takes the name of a set or of its stream as ls prints it, or an FMTID. --get takes the\n"
    "identifier or the name of a property and prints its bare value, of the first set that has\n"
    "it. Names that a set does not give are the usual ones of the two standard sets.\n";

using Json = nlohmann::ordered_json;

struct PropsOptions {
  std::vector<std::string> files;
  std::string storage;
  std::string set;
  std::string property;
  bool all = false;
  bool json = false;
};

std::string UpperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

bool IsFormatId(const std::string& wanted, const std::string& formatId) {
  const std::string upper = UpperCase(wanted);
  return upper == formatId || '{' + upper + '}' == formatId;
}

bool IsStream(const std::string& wanted, const std::string& path) {
  return path == wanted || path.ends_with('/' + wanted);
}

/// Leaves of the set what --set asks for: all of it, the section with the FMTID, or nothing.
std::optional<PropertySet> Select(PropertySet set, const std::string& wanted) {
  const bool isNamed = wanted.empty() || (!set.name.empty() && set.name == wanted);
  if (isNamed || IsStream(wanted, set.stream)) return set;
  std::erase_if(set.sections,
                [&](const Section& section) { return !IsFormatId(wanted, section.formatId); });
  return set.sections.empty() ? std::nullopt : std::optional(std::move(set));
}

const Property* FindProperty(const PropertySet& set, const std::string& wanted) {
  for (const Section& section : set.sections) {
    const auto found = std::ranges::find_if(section.properties, [&](const Property& property) {
      return std::to_string(property.id) == wanted || property.name == wanted;
    });
    if (found != section.properties.end()) return &*found;
  }
  return nullptr;
}

/// How wide a text is, if each of its characters takes one column.
std::size_t Width(const std::string& utf8) {
  const auto isTrail = [](char byte) { return (byte & 0xC0) == 0x80; };
  return utf8.size() - static_cast<std::size_t>(std::ranges::count_if(utf8, isTrail));
}

std::string Padded(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, Width(text)), ' ');
}

void PrintSection(const Section& section, Output& out) {
  constexpr std::size_t kIdWidth = 10;
  constexpr std::size_t kKindWidth = 7;
  std::size_t nameWidth = 1;
  for (const Property& property : section.properties) {
    nameWidth = std::max(nameWidth, Width(Printable(property.name)));
  }
  out.Write("  FMTID " + section.formatId + '\n');
  for (const Property& property : section.properties) {
    const std::string id = std::to_string(property.id);
    const std::string name = property.name.empty() ? "-" : Printable(property.name);
    out.Write(std::string(kIdWidth - std::min(kIdWidth, id.size()), ' ') + id + "  " +
              Padded(name, nameWidth) + "  " + Padded(property.kind, kKindWidth) + "  " +
              Printable(property.value) + '\n');
  }
}

void PrintSet(const CompoundFile& file, const PropertySet& set, Output& out) {
  out.Write(file.Name() + ": " + set.stream);
  if (!set.name.empty()) out.Write(", named " + Printable(set.name));
  out.Write(", code page " + std::to_string(set.codePage) + '\n');
  for (const Section& section : set.sections) PrintSection(section, out);
}

Json SetJson(const PropertySet& set) {
  Json sections = Json::array();
  for (const Section& section : set.sections) {
    Json properties = Json::array();
    for (const Property& property : section.properties) {
      properties.push_back({{"id", property.id},
                            {"name", property.name},
                            {"kind", property.kind},
                            {"value", property.value}});
    }
    sections.push_back({{"fmtid", section.formatId}, {"properties", std::move(properties)}});
  }
  return {{"stream", set.stream},
          {"name", set.name},
          {"codePage", set.codePage},
          {"sections", std::move(sections)}};
}

bool IsStorage(const CompoundFile& file, std::size_t position) {
  return !file.Directory().At(file.Entries().Nodes()[position].index).isStream();
}

/// The sets that were asked for, of the storage at `start` or, with --all, of those below it too.
std::vector<PropertySet> CollectSets(CompoundFile& file, std::size_t start,
                                     const PropsOptions& options, Report& report) {
  std::vector<PropertySet> sets;
  const std::size_t end = options.all ? file.Entries().Nodes()[start].end : start + 1;
  for (std::size_t position = start; position < end; ++position) {
    if (!IsStorage(file, position)) continue;
    for (PropertySet& set : PropertySetsOf(file, position, report)) {
      std::optional<PropertySet> selected = Select(std::move(set), options.set);
      if (selected) sets.push_back(*std::move(selected));
    }
  }
  return sets;
}

/// Prints the bare value. A terminal is spared control characters; a program gets them.
bool PrintValue(const std::vector<PropertySet>& sets, const std::string& wanted, Output& out) {
  for (const PropertySet& set : sets) {
    const Property* const property = FindProperty(set, wanted);
    if (property == nullptr) continue;
    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
    out.Write((isTerminal ? Printable(property->value) : property->value) + '\n');
    return true;
  }
  return false;
}

void ShowFile(CompoundFile& file, const PropsOptions& options, Report& report) {
  const auto fail = [&](const std::string& problem) {
    report.Fail(ExitCode::kFailed, file.Name() + ": " + problem);
  };
  const auto start = file.Find(options.storage, "storage", report);
  if (!start) return;
  if (!IsStorage(file, *start)) return fail('"' + Printable(options.storage) + "\" is a stream");
  const std::vector<PropertySet> sets = CollectSets(file, *start, options, report);
  if (sets.empty() && !options.set.empty()) {
    return fail("no property set \"" + Printable(options.set) + '"');
  }
  if (!options.property.empty()) {
    if (PrintValue(sets, options.property, report.Out())) return;
    return fail("no property \"" + Printable(options.property) + '"');
  }
  if (options.json) {
    Json document{{"file", file.Utf8Path()}, {"propertySets", Json::array()}};
    for (const PropertySet& set : sets) document["propertySets"].push_back(SetJson(set));
    report.Out().Write(document.dump() + '\n');
  } else {
    for (const PropertySet& set : sets) PrintSet(file, set, report.Out());
  }
}

void RunProps(const PropsOptions& options, Report& report) {
  for (const std::string& path : options.files) {
    const auto file = CompoundFile::Open(path, report);
    if (!file) continue;
    ShowFile(*file, options, report);
    file->ReportChange(report);
  }
}

}  // namespace

void AddProps(CLI::App& app, Report& report) {
  const auto options = std::make_shared<PropsOptions>();
  CLI::App* const command = app.add_subcommand("props", "Show property sets: title, author, ...");
  AddTexts(*command, "FILE", options->files, "Compound files")->required();
  AddText(*command, "--storage", options->storage, "The storage to look in; the root by default")
      ->type_name("PATH");
  command->add_flag("--all", options->all, "Look in every storage below it too");
  AddText(*command, "--set", options->set, "Only this set")->type_name("NAME|FMTID");
  CLI::Option* const get =
      AddText(*command, "--get", options->property, "Print the bare value of one property");
  get->type_name("ID|NAME");
  command->add_flag("--json", options->json, "One JSON document a file, each on a line")
      ->excludes(get);
  command->footer(std::string(kPropsHelp) + '\n' + kPathHelp);
  command->callback([options, &report] { RunProps(*options, report); });
}

}  // namespace kelst
