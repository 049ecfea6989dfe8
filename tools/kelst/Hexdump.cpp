#include <array>
#include <memory>
#include <string>

#include "tools/kelst/Arguments.h"
#include "tools/kelst/Commands.h"
#include "tools/kelst/CompoundFile.h"
#include "tools/kelst/StreamContent.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr const char* kHexdumpHelp =
    "Each line has the offset of its first byte in hexadecimal, 16 bytes, and the same bytes as\n"
    "characters, a dot for each that is not printable ASCII. N is decimal, or hexadecimal after\n"
    "0x. Where the stream ends exactly at --offset nothing is printed; an --offset beyond its end\n"
    "is an error, a --length beyond it is not.\n";

constexpr std::size_t kRowBytes = 16;

struct HexdumpOptions {
  std::string file;
  std::string path;
  ByteRange range;
};

/// Prints rows of bytes, however these are cut into pieces.
class HexRows {
 public:
  HexRows(std::uint64_t offset, Output& out) : offset_(offset), out_(out) { Clear(); }

  void Add(std::span<const unsigned char> bytes) {
    for (const unsigned char byte : bytes) {
      const std::size_t half = held_ / (kRowBytes / 2);
      PutHex(kBytesColumn + 3 * held_ + half, byte, 2);
      line_[kTextColumn + held_] = byte >= ' ' && byte < 0x7F ? static_cast<char>(byte) : '.';
      if (++held_ == kRowBytes) Finish();
    }
  }

  /// Prints the row as far as it goes, unless it is empty.
  void Finish() {
    if (held_ == 0) return;
    PutHex(0, offset_, kOffsetDigits);
    line_[kTextColumn + held_] = '|';
    line_[kTextColumn + held_ + 1] = '\n';
    out_.Write(std::string_view(line_.data(), kTextColumn + held_ + 2));
    offset_ += held_;
    Clear();
  }

 private:
  static constexpr std::size_t kOffsetDigits = 8;
  static constexpr std::size_t kBytesColumn = kOffsetDigits + 2;
  static constexpr std::size_t kTextColumn = kBytesColumn + 3 * kRowBytes + 3;

  void Clear() {
    held_ = 0;
    line_.fill(' ');
    line_[kTextColumn - 1] = '|';
  }

  void PutHex(std::size_t column, std::uint64_t number, std::size_t digits) {
    for (; digits > 0; number >>= 4) line_[column + --digits] = "0123456789abcdef"[number & 0xF];
  }

  std::uint64_t offset_;  // of the row
  Output& out_;
  std::array<char, kTextColumn + kRowBytes + 2> line_{};
  std::size_t held_ = 0;  // bytes in the row
};

void DumpStream(CompoundFile& file, std::size_t position, ByteRange range, Report& report) {
  const auto fail = [&](const std::string& problem) {
    report.Fail(ExitCode::kFailed,
                file.Name() + ": " + file.Entries().PathOf(position) + ": " + problem);
  };
  const std::uint32_t index = file.Entries().Nodes()[position].index;
  const std::uint64_t size = file.Directory().At(index).getSize();
  if (range.offset > size) {
    return fail("offset " + Grouped(range.offset) + " is beyond the end (" +
                WithUnit(size, "byte") + ")");
  }
  StreamContent content(file, index, range);
  HexRows rows(range.offset, report.Out());
  for (auto piece = content.Next(); !piece.empty() && report.Out().IsGood();
       piece = content.Next()) {
    rows.Add(piece);
  }
  rows.Finish();
  const std::string problem = report.Out().IsGood() ? content.Problem() : "";
  if (!problem.empty()) fail(problem);
}

void RunHexdump(const HexdumpOptions& options, Report& report) {
  const auto file = CompoundFile::Open(options.file, report);
  if (!file) return;
  const auto position = file->FindStream(options.path, report);
  if (position) DumpStream(*file, *position, options.range, report);
}

}  // namespace

void AddHexdump(CLI::App& app, Report& report) {
  const auto options = std::make_shared<HexdumpOptions>();
  CLI::App* const command = app.add_subcommand("hexdump", "Show the bytes of a stream as numbers");
  AddText(*command, "FILE", options->file, "A compound file")->required();
  AddText(*command, "PATH", options->path, "A stream in it, as ls prints it")->required();
  AddNumber(*command, "--offset", options->range.offset, "Begin at this byte; 0 by default");
  AddNumber(*command, "--length", options->range.length, "Show so many bytes; all by default");
  command->footer(std::string(kHexdumpHelp) + '\n' + kPathHelp);
  command->callback([options, &report] { RunHexdump(*options, report); });
}

}  // namespace kelst
