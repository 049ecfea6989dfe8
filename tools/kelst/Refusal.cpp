#include "tools/kelst/Refusal.h"

#include <cerrno>
#include <system_error>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/OpenedFile.h"
#include "tools/kelst/Sectors.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kShiftsEnd = 34;  // where the last of the tested shifts ends in the file
constexpr unsigned int kDirectorySectorsEnd = 8;

std::string SystemMessage() { return std::generic_category().message(errno); }

std::string Expected(const std::string& what, unsigned int found, const std::string& expected) {
  return what + " is " + std::to_string(found) + " (" + expected + " expected)";
}

bool IsSectorShift(unsigned int shift) { return shift == 9 || shift == 12; }

// The sector shift comes first: of a file that is something else altogether it tells most. A wrong
// byte-order mark makes it, too, read wrong.
std::string WhyNone(const KELStStorageHeader& header, std::uint64_t size) {
  if (size == 0) return "the file is empty";
  if (size < kShiftsEnd) return "the file is too short (" + WithUnit(size, "byte") + ")";
  const unsigned int shift = header.sectorShift;
  if (!IsSectorShift(shift) && IsSectorShift(InFileOrder(header, header.sectorShift))) {
    return Expected("byte-order mark", header.byteOrder, std::to_string(kHostMark));
  }
  if (!IsSectorShift(shift)) return Expected("sector shift", shift, "9 or 12");
  if (header.miniSectorShift != 6) {
    return Expected("mini sector shift", header.miniSectorShift, "6");
  }
  if (header.reserved != 0) return Expected("reserved field at byte 34", header.reserved, "0");
  if (header.reserved1 != 0) return Expected("reserved field at byte 36", header.reserved1, "0");
  return "the file could not be read";
}

/// The empty string when a file in `state` can be read. The reason why there is none is in errno.
std::string WhyNotOpened(const std::string& path, const std::optional<FileState>& state) {
  if (!state) return SystemMessage();
  if (S_ISDIR(state->Mode())) return "is a directory";
  if (!S_ISREG(state->Mode())) return "is not a regular file";
  return OpenForReading(KELXFilePath(path.c_str())) ? "" : SystemMessage();
}

// A directory may be large in a file that is sound; the library refuses the file all the same.
std::string WhyRefused(const KELStStorageHeader& header, std::uint64_t size) {
  const bool isSound = IsSectorShift(header.sectorShift) && header.miniSectorShift == 6 &&
                       header.reserved == 0 && header.reserved1 == 0;
  if (isSound && header.numDirSects >= kDirectorySectorsEnd) {
    return "its header states " + WithUnit(header.numDirSects, "directory sector") +
           "; kelst reads files that state less than " + std::to_string(kDirectorySectorsEnd);
  }
  return "not a compound file: " + WhyNone(header, size);
}

void ReportNotOpened(const std::string& path, const std::string& reason, Report& report) {
  report.Fail(ExitCode::kNotOpened, Printable(path) + ": " + reason);
}

}  // namespace

std::optional<FileState> StateToRead(const std::string& path, Report& report) {
  auto state = FileState::Of(path);
  const std::string reason = WhyNotOpened(path, state);
  if (reason.empty()) return state;
  ReportNotOpened(path, reason, report);
  return std::nullopt;
}

void ReportRefusal(const std::string& path, const KELStStorageHeader& header, std::uint64_t size,
                   Report& report) {
  ReportNotOpened(path, WhyRefused(header, size), report);
}

void ReportChange(const std::string& path, const FileState& before, Report& report) {
  if (FileState::Of(path) == before) return;
  report.Fail(ExitCode::kFailed, Printable(path) + ": " + kChanged);
}

}  // namespace kelst
