#include "tools/kelst/CompoundFile.h"

#include <utility>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/OpenedFile.h"
#include "tools/kelst/Refusal.h"
#include "tools/kelst/Sectors.h"

namespace kelst {

CompoundFile::CompoundFile(const std::string& path, const FileState& state,
                           std::unique_ptr<KELIStorage> root)
    : path_(path),
      name_(Printable(path)),
      state_(state),
      root_(std::move(root)),
      directory_(Image(), OpenForReading(KELXFilePath(path.c_str())).get(), Image().getFatSector()),
      tree_(directory_) {
  const KELStStorageFileInfo& image = Image();
  ForEachSector(
      image.getFatSector(), image.getMiniStreamStartSect(), image.getHeader().sectorShift,
      static_cast<std::uint64_t>(image.getMiniStream().Count()),
      [this](unsigned int sector, std::uint64_t) { miniStreamSectors_.push_back(sector); });
}

std::string CompoundFile::Utf8Path() const {
  return KELXString::fromUtf8(Image().GetFilePath().toUtf8()).toUtf8();
}

std::uint64_t CompoundFile::MiniSectorOffset(unsigned int miniSector) const {
  const std::uint64_t offset = Image().getEquivalentMiniFatBytePos(miniSector);
  const unsigned int shift = Image().getHeader().sectorShift;
  if (offset >> shift >= miniStreamSectors_.size()) return UINT64_MAX;
  const unsigned int sector = miniStreamSectors_[offset >> shift];
  if (!IsWithinReach(sector, shift)) return UINT64_MAX;
  return Image().getEquivalentFatBytePos(sector) + offset % (std::uint64_t{1} << shift);
}

std::unique_ptr<CompoundFile> CompoundFile::Open(const std::string& path, Report& report) {
  const auto state = StateToRead(path, report);
  if (!state) return nullptr;
  auto root = std::make_unique<KELIStorage>(KELXFilePath(path.c_str()));
  const KELStStorageFileInfo& image = *root->getStStorageFileInfo();
  if (!image.checkValidity()) {
    ReportRefusal(path, image.getHeader(), state->Size(), report);
    return nullptr;
  }
  return std::unique_ptr<CompoundFile>(new CompoundFile(path, *state, std::move(root)));
}

void CompoundFile::ReportChange(Report& report) const {
  kelst::ReportChange(path_, state_, report);
}

void CompoundFile::ReportProblems(Report& report) const {
  ReportChange(report);
  for (const std::string& problem : tree_.Problems()) {
    report.Fail(ExitCode::kFailed, name_ + ": " + problem);
  }
  const std::size_t more = tree_.ProblemCount() - tree_.Problems().size();
  if (more == 0) return;
  report.Fail(ExitCode::kFailed, name_ + ": " + std::to_string(more) + " more of such problems");
}

std::optional<std::size_t> CompoundFile::Find(const std::string& path, std::string_view what,
                                              Report& report) const {
  const auto pattern = ParseEntryPath(path);
  if (!pattern) {
    report.Fail(ExitCode::kUsage, "\"" + Printable(path) + "\" is not a path as ls prints it");
    return std::nullopt;
  }
  const Lookup found = tree_.Find(*pattern);
  if (found.position) return found.position;
  std::string message = name_ + ": no " + std::string(what) + " named \"" + Printable(path) + '"';
  if (!found.suggestion.empty()) message += " (is it \"" + found.suggestion + "\"?)";
  report.Fail(ExitCode::kFailed, message);
  return std::nullopt;
}

std::optional<std::size_t> CompoundFile::FindStream(const std::string& path, Report& report) const {
  const auto position = Find(path, "stream", report);
  if (!position) return std::nullopt;
  const std::uint32_t index = tree_.Nodes()[*position].index;
  if (*position > 0 && directory_.At(index).isStream()) return position;
  report.Fail(ExitCode::kFailed, name_ + ": " + tree_.PathOf(*position) + ": is not a stream");
  return std::nullopt;
}

}  // namespace kelst
