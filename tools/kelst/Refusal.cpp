#include "tools/kelst/Refusal.h"

#include <cerrno>
#include <system_error>

#include "tools/kelst/OpenedFile.h"
#include "tools/kelst/ValueText.h"

namespace kelst {

namespace {

constexpr std::uint64_t kShiftsEnd = 34;  // where the last of the tested shifts ends in the file
constexpr unsigned int kDirectorySectorsEnd = 8;

std::string SystemMessage() { return std::generic_category().message(errno); }

std::string Expected(const std::string& what, unsigned int found, const std::string& expected) {
  return what + " is " + std::to_string(found) + " (" + expected + " expected)";
}

}  // namespace

std::string WhyNotOpened(const std::string& path, const std::optional<FileState>& state) {
  if (!state) return SystemMessage();
  if (S_ISDIR(state->Mode())) return "is a directory";
  if (!S_ISREG(state->Mode())) return "is not a regular file";
  return OpenForReading(KELXFilePath(path.c_str())) ? "" : SystemMessage();
}

// The sector shift comes first: of a file that is something else altogether it tells most.
std::string WhyRefused(const KELStStorageHeader& header, std::uint64_t size) {
  if (size == 0) return "the file is empty";
  if (size < kShiftsEnd) return "the file is too short (" + WithUnit(size, "byte") + ")";
  if (header.sectorShift != 9 && header.sectorShift != 12) {
    return Expected("sector shift", header.sectorShift, "9 or 12");
  }
  if (header.miniSectorShift != 6) {
    return Expected("mini sector shift", header.miniSectorShift, "6");
  }
  if (header.reserved != 0) return Expected("reserved field at byte 34", header.reserved, "0");
  if (header.reserved1 != 0) return Expected("reserved field at byte 36", header.reserved1, "0");
  if (header.numDirSects >= kDirectorySectorsEnd) {
    return Expected("number of directory sectors", header.numDirSects, "less than 8");
  }
  return "the file could not be read";
}

}  // namespace kelst
