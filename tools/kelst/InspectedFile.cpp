#include "tools/kelst/InspectedFile.h"

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Refusal.h"

namespace kelst {

std::unique_ptr<InspectedFile> InspectedFile::Open(const std::string& path, Report& report) {
  const auto state = StateToRead(path, report);
  if (!state) return nullptr;
  OpenedFile file = OpenForReading(KELXFilePath(path.c_str()));
  if (!file) {
    report.Fail(ExitCode::kNotOpened, Printable(path) + ": " + kChanged);
    return nullptr;
  }
  auto tables = std::make_unique<const FileTables>(file.get());
  if (!tables->IsAccepted()) {
    ReportRefusal(path, tables->Header(), state->Size(), report);
    return nullptr;
  }
  return std::unique_ptr<InspectedFile>(
      new InspectedFile(path, *state, std::move(file), std::move(tables)));
}

void InspectedFile::ReportChange(Report& report) const {
  kelst::ReportChange(path_, state_, report);
}

FindingList InspectedFile::Check(std::uint64_t mostKept) const {
  const Subject subject{*tables_, walk_, map_, file_.get()};
  FindingList findings(mostKept);
  CheckAll(subject, findings);
  return findings;
}

}  // namespace kelst
