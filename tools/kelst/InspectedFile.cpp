#include "tools/kelst/InspectedFile.h"

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Refusal.h"

namespace kelst {

std::unique_ptr<InspectedFile> InspectedFile::Open(const std::string& path, Report& report) {
  const auto refuse = [&](const std::string& reason) {
    report.Fail(ExitCode::kNotOpened, Printable(path) + ": " + reason);
    return nullptr;
  };
  const auto state = FileState::Of(path);
  const std::string reason = WhyNotOpened(path, state);
  if (!reason.empty()) return refuse(reason);
  OpenedFile file = OpenForReading(KELXFilePath(path.c_str()));
  if (!file) return refuse("cannot be opened again");
  auto tables = std::make_unique<const FileTables>(file.get());
  if (!tables->IsAccepted()) {
    return refuse(WhyRefused(tables->Header(), state->Size()));
  }
  return std::unique_ptr<InspectedFile>(
      new InspectedFile(path, *state, std::move(file), std::move(tables)));
}

void InspectedFile::ReportChange(Report& report) const {
  if (FileState::Of(path_) == state_) return;
  report.Fail(ExitCode::kFailed, Printable(path_) + ": " + kChanged);
}

FindingList InspectedFile::Check(std::uint64_t mostKept) const {
  const Subject subject{*tables_, walk_, map_, file_.get()};
  FindingList findings(mostKept);
  CheckAll(subject, findings);
  return findings;
}

}  // namespace kelst
