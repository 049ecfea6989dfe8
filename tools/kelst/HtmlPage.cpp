#include "tools/kelst/HtmlPage.h"

#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <string_view>
#include <vector>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Facts.h"
#include "tools/kelst/FindingText.h"
#include "tools/kelst/InstallerName.h"
#include "tools/kelst/Listing.h"
#include "tools/kelst/MapDrawing.h"
#include "tools/kelst/Markup.h"
#include "tools/kelst/PageStyle.h"
#include "tools/kelst/PropertySets.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

// What bounds a page. Columns are those of Markup.h.
constexpr std::uint64_t kMostFindings = 10;  // of each kind
constexpr std::size_t kMostTreeRows = 2000;
constexpr std::size_t kMostPropertyRows = 1000;
constexpr std::uint64_t kMostPropertyBytes = std::uint64_t{16} * 1024 * 1024;  // of all streams
constexpr std::size_t kNameColumns = 120;
constexpr std::size_t kValueColumns = 500;

/// A class that a cell of a table has, and its text, not escaped yet.
struct CellText {
  std::string_view className;
  std::string text;
};

std::string OpeningTag(std::string_view tag, std::string_view className) {
  const std::string start = "<" + std::string(tag);
  return className.empty() ? start + ">" : start + " class=\"" + std::string(className) + "\">";
}

/// An element with text in it.
std::string Element(std::string_view tag, std::string_view className, std::string_view text) {
  return OpeningTag(tag, className) + Escaped(text) + "</" + std::string(tag) + ">";
}

class Page {
 public:
  Page(CompoundFile& file, const InspectedFile& inspected, const std::string& name)
      : file_(file),
        inspected_(inspected),
        name_(name),
        findings_(inspected.Check(kMostFindings)) {}

  std::string Write() {
    WriteHead();
    WriteFacts();
    WriteFindings();
    html_ += Heading("map", "Map") + DrawMap(inspected_, name_, MapUse::kInPage);
    WritePropertySets();
    WriteTree();
    html_ += "<footer>Written by kelst report.</footer>\n</body>\n</html>\n";
    return std::move(html_);
  }

 private:
  static std::string Heading(std::string_view id, std::string_view text) {
    return "<h2 id=\"" + std::string(id) + "\">" + std::string(text) + "</h2>\n";
  }

  void WriteHead() {
    const bool isClean = IsClean(findings_);
    html_ +=
        "<!DOCTYPE html>\n"
        "<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n<head>\n"
        "<meta charset=\"utf-8\"/>\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'sha256-" +
        std::string(kPageStyleHash) +
        "'; base-uri 'none'; form-action 'none'\"/>\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n" +
        Element("title", "", name_) + "\n<style>" + PageStyle() + "</style>\n</head>\n<body>\n" +
        Element("h1", "", name_) + "\n<p class=\"lead\">" +
        Element("span", isClean ? "clean" : SeverityClass(), TotalsText(findings_)) +
        "</p>\n<nav aria-label=\"Parts of this page\"><a href=\"#facts\">Facts</a> "
        "<a href=\"#findings\">Findings</a> <a href=\"#map\">Map</a> "
        "<a href=\"#properties\">Property sets</a> <a href=\"#tree\">Tree</a></nav>\n";
  }

  [[nodiscard]] std::string_view SeverityClass() const {
    return NameOf(findings_.CountOf(Severity::kError) > 0 ? Severity::kError : Severity::kWarning);
  }

  void BeginTable(std::string_view className, const std::string& caption,
                  std::initializer_list<CellText> titles) {
    html_ +=
        OpeningTag("table", className) + "\n" + Element("caption", "", caption) + "\n<thead><tr>";
    for (const CellText& title : titles) {
      html_ += OpeningTag("th scope=\"col\"", title.className) + Escaped(title.text) + "</th>";
    }
    html_ += "</tr></thead>\n<tbody>\n";
  }

  void AddRow(std::initializer_list<CellText> cells) {
    html_ += "<tr>";
    for (const CellText& cell : cells) html_ += Element("td", cell.className, cell.text);
    html_ += "</tr>\n";
  }

  void EndTable() { html_ += "</tbody>\n</table>\n"; }

  void WriteFacts() {
    html_ += Heading("facts", "Facts") + "<table class=\"facts\">\n" +
             Element("caption", "", "How the file is built") + "\n<tbody>\n";
    for (const Fact& fact : FactsOf(file_)) {
      html_ += "<tr><th scope=\"row\">" + Escaped(fact.label) + "</th>" +
               Element("td", "", fact.text) + "</tr>\n";
    }
    EndTable();
  }

  void WriteFindings() {
    html_ += Heading("findings", "Findings");
    bool isEmpty = true;
    ForEachGroup(findings_, [&](const CodeFacts& facts, const FindingList::Group& group) {
      isEmpty = false;
      WriteGroup(facts, group);
    });
    if (isEmpty) html_ += "<p>Nothing is wrong with this file.</p>\n";
  }

  void WriteGroup(const CodeFacts& facts, const FindingList::Group& group) {
    html_ += "<h3>" + Element("span", NameOf(facts.severity), NameOf(facts.severity)) + " " +
             Escaped(facts.name) + "</h3>\n";
    BeginTable("findings", Grouped(group.count) + " found",
               {{"", "Entry"}, {"", "Place"}, {"", "What was found"}});
    for (const Finding& finding : group.kept) {
      const std::string entry =
          finding.place.entry ? inspected_.Paths().Of(*finding.place.entry) : "";
      AddRow(
          {{"name", End(entry, kNameColumns)}, {"", PlaceText(finding.place)}, {"", finding.text}});
    }
    EndTable();
    AddRest(group.count - group.kept.size(), "finding", "check --all");
  }

  void AddRest(std::uint64_t count, std::string_view noun, const std::string& command) {
    if (count == 0) return;
    html_ += Element("p", "dim",
                     WithUnit(count, "more " + std::string(noun)) + "; kelst " + command +
                         " shows all") +
             "\n";
  }

  void WritePropertySets() {
    html_ += Heading("properties", "Property sets");
    std::uint64_t left = 0;
    std::uint64_t shown = 0;
    std::uint64_t bytesLeft = kMostPropertyBytes;
    const auto nodes = file_.Entries().Nodes();
    for (std::size_t position = 0; position < nodes.size(); ++position) {
      if (!IsPropertyStream(file_, nodes[position].index)) continue;
      if (nodes[position].bytes > bytesLeft || propertyRows_ >= kMostPropertyRows) {
        ++left;
        continue;
      }
      ++shown;
      bytesLeft -= nodes[position].bytes;
      WritePropertySet(position);
    }
    if (shown + left == 0) html_ += "<p>The file has none.</p>\n";
    AddRest(left, "property set", "props --all");
  }

  void WritePropertySet(std::size_t position) {
    std::vector<std::string> problems;
    const std::optional<PropertySet> set = ReadPropertySet(file_, position, problems);
    const std::string path = End(file_.Entries().PathOf(position), kNameColumns);
    html_ += Element("h3", "name", path) + "\n";
    ++propertyRows_;  // so that sets without properties come to an end too
    for (const std::string& problem : problems) {
      html_ += Element("p", "error", problem) + "\n";
    }
    if (!set) return;
    for (const Section& section : set->sections) WriteSection(*set, section);
  }

  void WriteSection(const PropertySet& set, const Section& section) {
    BeginTable("properties",
               "FMTID " + section.formatId + ", code page " + std::to_string(set.codePage) +
                   (set.name.empty() ? "" : ", " + Start(Printable(set.name), kNameColumns)),
               {{"number", "Id"}, {"", "Name"}, {"", "Kind"}, {"", "Value"}});
    std::uint64_t left = 0;
    for (const Property& property : section.properties) {
      if (propertyRows_ >= kMostPropertyRows) {
        ++left;
        continue;
      }
      ++propertyRows_;
      AddRow({{"number", std::to_string(property.id)},
              {"", Start(Printable(property.name), kNameColumns)},
              {"", property.kind},
              {"", Start(Printable(property.value), kValueColumns)}});
    }
    EndTable();
    AddRest(left, "row", "props");
  }

  void WriteTree() {
    const auto nodes = file_.Entries().Nodes();
    html_ += Heading("tree", "Tree");
    BeginTable("tree", Grouped(nodes[0].bytes) + " bytes in all streams",
               {{"", "Name"}, {"", "Kind"}, {"number", "Bytes"}});
    const std::size_t end = std::min(nodes.size(), kMostTreeRows + 1);
    std::vector<std::size_t> order(nodes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    Branches branches(nodes, order);
    for (std::size_t position = 1; position < end; ++position) {
      WriteTreeRow(position, branches.Of(position));
    }
    EndTable();
    AddRest(nodes.size() - end, "row", "ls");
    for (const std::string& problem : file_.Entries().Problems()) {
      html_ += Element("p", "error", End(problem, kNameColumns)) + "\n";
    }
  }

  void WriteTreeRow(std::size_t position, const std::string& branches) {
    const auto nodes = file_.Entries().Nodes();
    const KELStStorageDirEntry& entry = file_.Directory().At(nodes[position].index);
    html_ += "<tr><td class=\"name\"><span class=\"branch\" aria-hidden=\"true\">" + branches +
             "</span>" +
             Escaped(file_.Entries().NameOf(position) + (entry.isStorage() ? "/" : "") +
                     InstallerMeaning(file_.Directory().FullAt(nodes[position].index).name)) +
             "</td>" + Element("td", "", KindText(entry)) +
             Element("td", "number", Grouped(nodes[position].bytes)) + "</tr>\n";
  }

  CompoundFile& file_;
  const InspectedFile& inspected_;
  const std::string& name_;
  const FindingList findings_;
  std::size_t propertyRows_ = 0;
  std::string html_;
};

}  // namespace

std::string HtmlPage(CompoundFile& file, const InspectedFile& inspected, const std::string& name) {
  return Page(file, inspected, name).Write();
}

}  // namespace kelst
