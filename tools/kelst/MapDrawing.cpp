#include "tools/kelst/MapDrawing.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "tools/analysis/SectorGrid.h"
#include "tools/analysis/StreamLayouts.h"
#include "tools/kelst/InstallerName.h"
#include "tools/kelst/Markup.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

// In pixels.
constexpr int kWidth = 1000;
constexpr int kMargin = 20;
constexpr int kGridLeft = 84;
constexpr int kGridWidth = 896;
constexpr int kMostCellHeight = 28;
constexpr int kLeastSpacedWidth = 14;  // smaller cells touch, lest the gaps be all that one sees
constexpr int kRowLabelHeight = 14;
constexpr int kLineHeight = 22;
constexpr int kSwatch = 12;
constexpr int kLegendColumns = 3;
constexpr int kLegendWidth = 320;
constexpr int kSizeRight = 640;
constexpr int kSectorsRight = 740;
constexpr int kFragmentsRight = 830;
constexpr int kMissingRight = kWidth - kMargin;

constexpr std::size_t kTitleColumns = 80;
constexpr std::size_t kNameColumns = 48;
constexpr std::size_t kTooltipColumns = 40;

constexpr std::size_t kHues = 10;
constexpr std::size_t kMostLargest = 12;
constexpr std::size_t kMostFragmented = 6;

struct KindLook {
  std::string_view label;
  std::string_view className;
};

/// By CellKind.
constexpr std::array<KindLook, kCellKinds> kLooks{{
    {"header", "header"},
    {"FAT", "fat"},
    {"DIFAT", "difat"},
    {"directory", "directory"},
    {"mini FAT", "minifat"},
    {"mini stream", "ministream"},
    {"streams", "s0"},
    {"free", "free"},
    {"lost", "lost"},
    {"unknown", "unknown"},
    {"appended", "appended"},
    {"where chains meet", "crossed"},
    {"missing, beyond the end", "missing"},
    {"", ""},
}};

const KindLook& LookOf(CellKind kind) { return kLooks[static_cast<std::size_t>(kind)]; }

/// "4.2 %"
std::string ShareText(std::uint64_t part, std::uint64_t whole) {
  std::array<char, 16> text;
  const double share = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
  static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f %%", share));
  return part > 0 && share < 0.05 ? "< 0.1 %" : text.data();
}

/// An offset that is a multiple of something large, in the unit that it is a multiple of.
std::string OffsetText(std::uint64_t offset) {
  constexpr std::uint64_t kKibi = 1024;
  if (offset == 0) return "0";
  if (offset % (kKibi * kKibi) == 0) return Grouped(offset / kKibi / kKibi) + " MiB";
  return Grouped(offset / kKibi) + " KiB";
}

std::string Number(std::int64_t number) { return std::to_string(number); }

class Drawing {
 public:
  Drawing(const InspectedFile& file, const std::string& name)
      : file_(file),
        name_(name),
        grid_(file.Tables(), file.Map()),
        streams_(StreamsByRoom(file.Tables(), file.Map())),
        hues_(file.Tables().Directory().Count()) {
    for (std::size_t i = 0; i < streams_.size(); ++i) {
      hues_[streams_[i].entry] = static_cast<std::uint8_t>(i % kHues);
    }
  }

  std::string Draw(MapUse use) {
    const bool isOwnFile = use == MapUse::kOwnFile;
    if (isOwnFile) DrawTitle();
    DrawHead();
    DrawGrid();
    DrawLegend();
    DrawStreams();
    const std::string size = Number(kWidth) + ' ' + Number(y_ + kMargin);
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"map\" viewBox=\"0 0 " +
                      size + "\" role=\"group\" aria-label=\"Map of the file\"";
    if (isOwnFile) {
      svg += " width=\"" + Number(kWidth) + "\" height=\"" + Number(y_ + kMargin) + "\">\n<title>" +
             Escaped(name_) + "</title>\n<style>" + std::string(MapStyle()) +
             "</style>\n<rect class=\"back\" width=\"100%\" height=\"100%\"/>\n";
    } else {
      svg += ">\n";
    }
    return svg + body_ + "</svg>\n";
  }

 private:
  void AddText(int x, std::string_view className, const std::string& text) {
    body_ += "<text x=\"" + Number(x) + "\" y=\"" + Number(y_) + "\" class=\"" +
             std::string(className) + "\">" + Escaped(text) + "</text>\n";
  }

  /// A shape with the given words for the pointer, if any.
  void AddRect(int x, int y, int width, int height, std::string_view className,
               const std::string& words = "") {
    body_ += "<rect x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" width=\"" + Number(width) +
             "\" height=\"" + Number(height) + "\" class=\"" + std::string(className) + '"';
    body_ += words.empty() ? "/>\n" : "><title>" + Escaped(words) + "</title></rect>\n";
  }

  [[nodiscard]] std::string ClassOf(const CellContent& content) const {
    if (content.kind != CellKind::kStream) return std::string(LookOf(content.kind).className);
    return 's' + Number(hues_[content.owner]);
  }

  void DrawTitle() {
    y_ = 34;
    AddText(kMargin, "name title", Start(name_, kTitleColumns));
  }

  void DrawHead() {
    const FileTables& tables = file_.Tables();
    y_ += kLineHeight;
    AddText(kMargin, "dim",
            SizeText(tables.FileLength()) + ": the header and " +
                WithUnit(tables.SectorCount(), "sector") + " of " +
                WithUnit(tables.SectorSize(), "byte") + '.');
    y_ += kLineHeight;
    AddText(kMargin, "dim", CellText());
    y_ += 16;
  }

  [[nodiscard]] std::string CellText() const {
    const std::uint32_t sectors = grid_.SectorsACell();
    if (sectors == 1) return "Each cell is a sector.";
    return "Each cell is " + WithUnit(sectors, "sector") +
           " and has the colour of what most of them hold, or of damage.";
  }

  void DrawGrid() {
    cellWidth_ = kGridWidth / static_cast<int>(grid_.Columns());
    cellHeight_ = std::min(cellWidth_, kMostCellHeight);
    const int top = y_;
    const int height = static_cast<int>(grid_.Rows()) * cellHeight_;
    DrawOffsets(top);
    body_ += "<g role=\"img\" aria-label=\"Cells\">\n";
    for (std::uint32_t row = 0; row < grid_.Rows(); ++row) {
      DrawRow(row, top + static_cast<int>(row) * cellHeight_);
    }
    body_ += "</g>\n";
    if (cellWidth_ >= kLeastSpacedWidth) DrawLines(top, height);
    y_ = top + height + kSwatch / 2;
  }

  /// Tells of the rows, as far as there is room, where in the file they begin.
  void DrawOffsets(int top) {
    const std::uint64_t rowBytes =
        std::uint64_t{grid_.SectorsACell()} * file_.Tables().SectorSize() * grid_.Columns();
    const int step = (kRowLabelHeight + cellHeight_ - 1) / cellHeight_;
    for (int row = 0; row < static_cast<int>(grid_.Rows()); row += step) {
      y_ = top + row * cellHeight_ + std::max(cellHeight_, kRowLabelHeight) / 2 + 4;
      AddText(kGridLeft - 8, "dim small right",
              OffsetText(rowBytes * static_cast<std::uint64_t>(row)));
    }
  }

  /// Shows the cells that became one shape.
  void DrawLines(int top, int height) {
    body_ += "<path class=\"lines\" d=\"";
    for (int x = cellWidth_; x < kGridWidth; x += cellWidth_) {
      body_ += "M" + Number(kGridLeft + x) + ' ' + Number(top) + "v" + Number(height);
    }
    body_ += "\"/>\n";
  }

  /// Neighbours that are alike become one shape.
  void DrawRow(std::uint32_t row, int y) {
    const auto cells = grid_.Cells();
    const std::size_t start = std::size_t{row} * grid_.Columns();
    const std::size_t end = std::min(start + grid_.Columns(), cells.size());
    const int gap = cellWidth_ >= kLeastSpacedWidth ? 1 : 0;
    for (std::size_t first = start; first < end;) {
      std::size_t next = first + 1;
      while (next < end && cells[next] == cells[first]) ++next;
      if (cells[first].content.kind != CellKind::kNothing) {
        AddRect(kGridLeft + static_cast<int>(first - start) * cellWidth_, y,
                static_cast<int>(next - first) * cellWidth_ - gap, cellHeight_ - gap,
                ClassOf(cells[first].content), WordsFor(cells[first], first, next));
      }
      first = next;
    }
  }

  /// "sectors 12 to 40: mostly Workbook", of the cells `first` to `end`.
  [[nodiscard]] std::string WordsFor(const Cell& cell, std::size_t first, std::size_t end) const {
    const std::uint64_t place = std::uint64_t{first} * grid_.SectorsACell();
    const std::uint64_t last =
        std::min<std::uint64_t>(std::uint64_t{end} * grid_.SectorsACell(), grid_.Places()) - 1;
    if (last == 0) return "header";
    const std::string start = place == 0     ? "header to sector "
                              : place < last ? "sectors " + Grouped(place - 1) + " to "
                                             : "sector ";
    const bool isDamage = cell.content.kind >= CellKind::kLost;
    return start + Grouped(last - 1) + ": " +
           (cell.isMixed ? (isDamage ? "partly " : "mostly ") : "") + HolderOf(cell.content);
  }

  [[nodiscard]] std::string HolderOf(const CellContent& content) const {
    std::string text;
    if (content.kind != CellKind::kStream) text = LookOf(content.kind).label;
    if (content.owner == SectorClaims::kNoOwner) return text;
    return text + (text.empty() ? "" : ", ") +
           End(file_.Paths().Of(content.owner), kTooltipColumns);
  }

  void AddSwatch(int x, std::string_view className) {
    AddRect(x, y_ - kSwatch + 1, kSwatch, kSwatch - 1, className);
  }

  void DrawLegend() {
    int column = kLegendColumns;
    for (std::size_t i = 0; i + 1 < kCellKinds; ++i) {
      const auto kind = static_cast<CellKind>(i);
      if (grid_.CountOf(kind) == 0) continue;
      if (column == kLegendColumns) {
        column = 0;
        y_ += kLineHeight;
      }
      DrawLegendEntry(kMargin + column++ * kLegendWidth, kind);
    }
    y_ += kLineHeight;
  }

  void DrawLegendEntry(int x, CellKind kind) {
    AddSwatch(x, LookOf(kind).className);
    if (kind == CellKind::kStream) {  // several hues
      AddRect(x + kSwatch / 3, y_ - kSwatch + 1, kSwatch / 3, kSwatch - 1, "s1");
      AddRect(x + kSwatch * 2 / 3, y_ - kSwatch + 1, kSwatch / 3, kSwatch - 1, "s2");
    }
    const std::uint32_t count = grid_.CountOf(kind);
    std::string text = std::string(LookOf(kind).label);
    if (kind != CellKind::kHeader) text += ": " + WithUnit(count, "sector");
    if (kind != CellKind::kHeader && kind != CellKind::kMissing) {
      text += ", " + ShareText(count, std::uint64_t{file_.Tables().SectorCount()} + 1);
    }
    AddText(x + kSwatch + 8, "", text);
  }

  /// How many of the largest streams are listed, whatever their fragments.
  [[nodiscard]] std::size_t LargestCount() const {
    return streams_.size() <= kMostLargest + kMostFragmented ? streams_.size() : kMostLargest;
  }

  /// Of all other streams those that lie in most fragments.
  [[nodiscard]] std::vector<StreamLayout> FragmentedOthers() const {
    std::vector<StreamLayout> others(streams_.begin() + static_cast<std::ptrdiff_t>(LargestCount()),
                                     streams_.end());
    std::erase_if(others, [](const StreamLayout& stream) { return stream.fragments < 2; });
    std::ranges::stable_sort(others, [](const StreamLayout& a, const StreamLayout& b) {
      return a.fragments > b.fragments;
    });
    others.resize(std::min(others.size(), kMostFragmented));
    return others;
  }

  void DrawStreams() {
    if (streams_.empty()) return;
    const std::size_t largest = LargestCount();
    const std::vector<StreamLayout> others = FragmentedOthers();
    std::string heading = "Streams";
    if (largest < streams_.size()) {
      heading += ": the " + Grouped(largest) + " largest of " + Grouped(streams_.size());
    }
    if (!others.empty()) heading += ", and those in most fragments";
    y_ += kLineHeight;
    AddText(kMargin, "head", heading);
    AddText(kSizeRight, "dim right", "bytes");
    AddText(kSectorsRight, "dim right", "sectors");
    AddText(kFragmentsRight, "dim right", "fragments");
    for (std::size_t i = 0; i < largest; ++i) DrawStream(streams_[i]);
    for (const StreamLayout& stream : others) DrawStream(stream);
  }

  void DrawStream(const StreamLayout& stream) {
    y_ += kLineHeight;
    AddSwatch(kMargin, stream.isMini ? LookOf(CellKind::kMiniStream).className
                                     : ClassOf({CellKind::kStream, stream.entry}));
    AddText(kMargin + kSwatch + 8, "name",
            End(file_.Paths().Of(stream.entry) +
                    InstallerMeaning(file_.Tables().Directory().FullAt(stream.entry).name),
                kNameColumns));
    AddText(kSizeRight, "right", Grouped(stream.size));
    AddText(kSectorsRight, "right", Grouped(stream.sectors) + (stream.isMini ? " mini" : ""));
    AddText(kFragmentsRight, "right", Grouped(stream.fragments));
    if (stream.missing > 0)
      AddText(kMissingRight, "bad right", Grouped(stream.missing) + " missing");
  }

  const InspectedFile& file_;
  const std::string& name_;
  const SectorGrid grid_;
  const std::vector<StreamLayout> streams_;
  std::vector<std::uint8_t> hues_;  // by entry
  std::string body_;
  int y_ = 0;  // of the last line of text
  int cellWidth_ = 0;
  int cellHeight_ = 0;
};

}  // namespace

std::string DrawMap(const InspectedFile& file, const std::string& name, MapUse use) {
  return Drawing(file, name).Draw(use);
}

}  // namespace kelst
